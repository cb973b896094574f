// Reading the priority in front of a subject.
#include "tasks/TaskSubject.h"

#include "platform/text.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

namespace
{
/// Longest text in front of the colon, without and with a bar in it.
constexpr std::size_t longestToken = 3;
constexpr std::size_t longestTokenWithBar = 7;

struct Priority
{
    std::u16string_view letter;
    std::u16string_view number;
    LONG days = 0;
};

bool isDigit(WCHAR ch)
{
    return ch >= u'0' && ch <= u'9';
}

/// Letter and number of the part in front of bar or colon; false when it is none.
bool readToken(std::u16string_view token, Priority &priority)
{
    if (token.empty() || iswctype(token.front(), C1_ALPHA) == 0)
    {
        return false;
    }
    priority.letter = token.substr(0, 1);
    if (token.size() == 3)
    {
        // "05" is 5.
        priority.number = token.substr(token[1] == u'0' ? 2 : 1);
        return isDigit(token[1]) && isDigit(token[2]);
    }
    if (token.size() > 1 && isDigit(token[1]))
    {
        priority.number = token.substr(1, 1);
        return true;
    }
    return token.size() != 2;
}

LONG daysIn(std::u16string_view digits)
{
    return _wtol(std::u16string(digits).c_str());
}

/// `head` is what stands in front of the first colon; false when that is no priority.
bool readHead(std::u16string_view head, Priority &priority)
{
    const std::size_t bar = head.find(u'|');
    const bool hasBar = bar != std::u16string_view::npos;
    if (head.empty() || head.size() > (hasBar ? longestTokenWithBar : longestToken))
    {
        return false;
    }
    const bool isRead = bar == 0 ? head.size() > 1 && isDigit(head[1]) : readToken(head.substr(0, bar), priority);
    if (isRead && hasBar)
    {
        priority.days = daysIn(head.substr(bar + 1));
    }
    return isRead;
}

WCHAR *duplicate(std::u16string_view text)
{
    auto *copy = static_cast<WCHAR *>(std::malloc((text.size() + 1) * sizeof(WCHAR)));
    if (copy != nullptr)
    {
        std::copy(text.begin(), text.end(), copy);
        copy[text.size()] = 0;
    }
    return copy;
}

void put(std::u16string_view text, WCHAR *target)
{
    *std::copy(text.begin(), text.end(), target) = 0;
}
} // namespace

WCHAR *CTask::ParseExtraFromSubjectInt(const WCHAR *subject, WCHAR *letter, WCHAR *number, int &days)
{
    const std::u16string_view text = subject != nullptr ? subject : u"";
    const std::size_t colon = text.find(u':');
    Priority priority;
    if (colon == std::u16string_view::npos || !readHead(text.substr(0, colon), priority))
    {
        *letter = *number = 0;
        days = 0;
        return duplicate(text);
    }
    put(priority.letter, letter);
    put(priority.number, number);
    days = priority.days;
    const std::u16string_view rest = text.substr(colon + 1);
    return duplicate(rest.substr(!rest.empty() && rest.front() == u' ' ? 1 : 0));
}
