// Rows by their texts: how these compare, and finding one by what is typed. Letters that follow each other within a
// second name the beginning of one.
#pragma once

#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <string>
#include <string_view>

namespace zb::internal
{
/// Without regard to case: below 0, 0, above 0.
inline int compareTexts(std::u16string_view one, std::u16string_view other)
{
    constexpr DWORD withoutCase = 0x1;
    return CompareStringW(LOCALE_USER_DEFAULT, withoutCase, one.data(), static_cast<int>(one.size()), other.data(),
                          static_cast<int>(other.size())) -
           CSTR_EQUAL;
}

inline bool isSameText(std::u16string_view one, std::u16string_view other)
{
    return compareTexts(one, other) == 0;
}

inline bool beginsWith(std::u16string_view text, std::u16string_view beginning)
{
    return text.size() >= beginning.size() && isSameText(text.substr(0, beginning.size()), beginning);
}

class TypeAhead
{
  public:
    /// False for what names nothing: controls, and a blank that is not inside a name.
    bool take(WCHAR character)
    {
        if (isOver())
        {
            clear();
        }
        if (character < u' ' || (character == u' ' && m_text.empty()))
        {
            return false;
        }
        m_time = GetTickCount();
        // One letter again and again goes from row to row; more of them name one.
        const bool repeats = m_text.size() == 1 && towupper(m_text[0]) == towupper(character);
        if (!repeats)
        {
            m_text += character;
        }
        return true;
    }
    /// Whether the present row is left out of what is looked at first.
    bool goesOn() const
    {
        return m_text.size() == 1;
    }
    bool isTyping() const
    {
        return !m_text.empty() && !isOver();
    }
    void clear()
    {
        m_text.clear();
    }
    const std::u16string &text() const
    {
        return m_text;
    }

  private:
    bool isOver() const
    {
        constexpr DWORD longest = 1000; // milliseconds
        return GetTickCount() - m_time > longest;
    }
    std::u16string m_text;
    DWORD m_time = 0;
};
} // namespace zb::internal
