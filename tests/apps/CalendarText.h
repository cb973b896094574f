// Calendar files for tests, written as short as they can be.
#pragma once

#include <string>

namespace zb::test
{
/// Lines with LF, as tests write them, with the line ends of the format.
inline std::string withCrLf(const std::string &text)
{
    std::string lines;
    for (const char ch : text)
    {
        lines += ch == '\n' ? "\r\n" : std::string(1, ch);
    }
    return lines;
}

/// A whole calendar around components; its first line is line 1, the first of the body line 4.
inline std::string calendarOf(const std::string &body)
{
    return withCrLf("BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//test//EN\n" + body + "END:VCALENDAR\n");
}

/// An event of these lines, each ended by LF.
inline std::string eventOf(const std::string &lines)
{
    return "BEGIN:VEVENT\n" + lines + "END:VEVENT\n";
}

/// A plain event of an hour with this number in its UID, subject and day.
inline std::string plainEvent(int number)
{
    const std::string text = std::to_string(number);
    const int day = number % 28 + 1;
    const std::string date = std::string("202603") + (day < 10 ? "0" : "") + std::to_string(day);
    return eventOf("UID:plain-" + text + "@test\nDTSTAMP:20260101T000000Z\nDTSTART:" + date +
                   "T090000Z\nDTEND:" + date + "T100000Z\nSUMMARY:Event " + text + "\nLOCATION:Room " + text +
                   "\nDESCRIPTION:What event " + text + " is about\n");
}

/// A calendar of `count` plain events.
inline std::string manyEvents(int count)
{
    std::string body;
    for (int n = 0; n < count; ++n)
    {
        body += plainEvent(n);
    }
    return calendarOf(body);
}
} // namespace zb::test
