#include "platform/linux/text_layout_words.h"

namespace zb::internal
{
void WordCache::makeKey(std::u16string_view word, const WordStyle &style)
{
    m_key.clear();
    m_key += static_cast<char16_t>(style.source << 8U | style.script);
    m_key += style.backward ? u'<' : u'>';
    m_key += word;
}

ShapedWord *WordCache::find(std::u16string_view word, const WordStyle &style)
{
    makeKey(word, style);
    if (const auto found = m_words.find(m_key); found != m_words.end())
    {
        return &found->second;
    }
    auto former = m_former.extract(m_key);
    if (former.empty())
    {
        return nullptr;
    }
    m_characters += m_key.size();
    return &m_words.insert(std::move(former)).position->second;
}

const ShapedWord &WordCache::add(std::u16string_view word, const WordStyle &style, ShapedWord shaped)
{
    makeKey(word, style);
    m_characters += m_key.size();
    return m_words.insert_or_assign(m_key, std::move(shaped)).first->second;
}

void WordCache::trim()
{
    if (m_characters > mostCharacters)
    {
        m_former = std::move(m_words);
        m_words.clear();
        m_characters = 0;
    }
}
} // namespace zb::internal
