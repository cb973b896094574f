#include "platform/linux/text_layout_cache.h"

namespace zb::internal
{
std::shared_ptr<const TextLayout> TextLayoutCache::find(std::u16string_view text)
{
    const auto found = m_index.find(text);
    if (found == m_index.end())
    {
        return nullptr;
    }
    m_entries.splice(m_entries.begin(), m_entries, found->second);
    return found->second->layout;
}

void TextLayoutCache::add(std::u16string_view text, std::shared_ptr<const TextLayout> layout)
{
    if (text.size() > longestText || m_index.count(text) != 0)
    {
        return;
    }
    while (m_characters + text.size() > mostCharacters)
    {
        dropLast();
    }
    m_entries.push_front({std::u16string(text), std::move(layout)});
    m_index.emplace(m_entries.front().text, m_entries.begin());
    m_characters += text.size();
}

void TextLayoutCache::dropLast()
{
    m_characters -= m_entries.back().text.size();
    m_index.erase(m_entries.back().text);
    m_entries.pop_back();
}
} // namespace zb::internal
