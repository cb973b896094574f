#include "platform/linux/text_layout_cache.h"

#include <iterator>
#include <utility>

namespace zb::internal
{
namespace
{
/// What is kept of dropped entries, so that one long text doesn't leave hundreds behind.
constexpr std::size_t mostDropped = 8;
/// A long text's memory is not kept.
constexpr std::size_t longestDropped = 1024;
} // namespace

std::shared_ptr<const TextLayout> TextLayoutCache::find(std::u16string_view text)
{
    // A text is asked for again at once: measured, then drawn.
    if (!m_entries.empty() && m_entries.front().text == text)
    {
        return m_entries.front().layout;
    }
    const auto found = m_index.find(text);
    if (found == m_index.end())
    {
        return nullptr;
    }
    m_entries.splice(m_entries.begin(), m_entries, found->second);
    return found->second->layout;
}

void TextLayoutCache::add(std::u16string_view text, std::shared_ptr<TextLayout> layout)
{
    if (text.size() > longestText || m_index.count(text) != 0)
    {
        return;
    }
    while (m_characters + text.size() > mostCharacters)
    {
        dropLast();
    }
    if (m_dropped.empty())
    {
        m_dropped.emplace_front();
    }
    m_entries.splice(m_entries.begin(), m_dropped, m_dropped.begin());
    Entry &entry = m_entries.front();
    entry.text = text;
    entry.layout = std::move(layout);
    if (m_droppedNodes.empty())
    {
        m_index.emplace(entry.text, m_entries.begin());
    }
    else
    {
        Index::node_type &node = m_droppedNodes.back();
        node.key() = entry.text;
        node.mapped() = m_entries.begin();
        m_index.insert(std::move(node));
        m_droppedNodes.pop_back();
    }
    m_characters += text.size();
}

std::shared_ptr<TextLayout> TextLayoutCache::spare()
{
    if (m_spares.empty())
    {
        return std::make_shared<TextLayout>();
    }
    std::shared_ptr<TextLayout> layout = std::move(m_spares.back());
    m_spares.pop_back();
    layout->glyphs.clear();
    layout->clusters.clear();
    layout->extents.clear();
    layout->width = 0;
    layout->even.reset();
    return layout;
}

void TextLayoutCache::giveBack(std::shared_ptr<TextLayout> layout)
{
    if (m_spares.size() < mostDropped && layout.use_count() == 1 && layout->extents.capacity() <= longestDropped)
    {
        m_spares.push_back(std::move(layout));
    }
}

void TextLayoutCache::dropLast()
{
    Entry &last = m_entries.back();
    m_characters -= last.text.size();
    Index::node_type node = m_index.extract(std::u16string_view(last.text));
    giveBack(std::move(last.layout));
    if (m_dropped.size() >= mostDropped || last.text.capacity() > longestDropped)
    {
        m_entries.pop_back();
        return;
    }
    m_droppedNodes.push_back(std::move(node));
    m_dropped.splice(m_dropped.end(), m_entries, std::prev(m_entries.end()));
}
} // namespace zb::internal
