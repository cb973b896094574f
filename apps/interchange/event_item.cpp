#include "interchange/event_item.h"

#include "interchange/event_times.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zb::interchange
{
namespace
{
constexpr std::size_t longestIdentity = 255;
constexpr std::size_t longestDay = 64;

/// A TEXT value without its escapes. A backslash in front of anything else stands for itself, as careless writers of
/// paths mean it.
std::u16string unescaped(std::string_view raw)
{
    std::string text;
    text.reserve(raw.size());
    for (std::size_t at = 0; at < raw.size(); ++at)
    {
        const char next = raw[at] == '\\' && at + 1 < raw.size() ? raw[at + 1] : '\0';
        const bool lineBreak = next == 'n' || next == 'N';
        if (lineBreak || next == ',' || next == ';' || next == '\\' || next == ':' || next == '"')
        {
            text.push_back(lineBreak ? '\n' : next);
            ++at;
        }
        else
        {
            text.push_back(raw[at]);
        }
    }
    return toUtf16(text);
}

bool isControl(char16_t ch)
{
    return ch < 0x20 || (ch >= 0x7F && ch < 0xA0);
}

std::u16string trimmed(std::u16string text)
{
    const auto blank = [](char16_t ch) { return ch == u' ' || ch == u'\t' || ch == u'\r' || ch == u'\n'; };
    const auto end = std::find_if_not(text.rbegin(), text.rend(), blank).base();
    text.erase(end, text.end());
    text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), blank));
    return text;
}

/// Rows and dialogs show subject and place on one line.
std::u16string oneLine(const std::u16string &text)
{
    std::u16string line;
    line.reserve(text.size());
    for (const char16_t ch : text)
    {
        const bool blank = isControl(ch) || ch == 0x2028 || ch == 0x2029;
        if (!blank || (!line.empty() && line.back() != u' '))
        {
            line.push_back(blank ? u' ' : ch);
        }
    }
    return trimmed(std::move(line));
}

/// Text of several lines, each ended as the device's edit controls end them.
std::u16string manyLines(const std::u16string &text)
{
    std::u16string lines;
    lines.reserve(text.size() + 16);
    for (std::size_t at = 0; at < text.size(); ++at)
    {
        const char16_t ch = text[at];
        if (ch == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n')
        {
            continue;
        }
        if (ch == u'\n' || ch == u'\r')
        {
            lines += u"\r\n";
        }
        else if (ch == u'\t' || !isControl(ch))
        {
            lines.push_back(ch);
        }
    }
    return trimmed(std::move(lines));
}

/// All that an event says, for one without UID.
Fingerprint contentOf(const CalendarComponent &event)
{
    if (event.repetition.empty())
    {
        return fingerprint(event.text);
    }
    std::string text = event.text;
    for (const RepetitionLine &line : event.repetition)
    {
        text.append(line.parameters).append(1, ':').append(line.value).append(1, '\n');
    }
    return fingerprint(text);
}

class EventBuilder
{
  public:
    EventBuilder(const CalendarComponent &event, const EventTimes &times) : m_event(event), m_times(times)
    {
    }

    AppointmentItem build() const
    {
        AppointmentItem item;
        item.subject = oneLine(unescaped(m_event.rawValue(EventField::Summary)));
        item.location = oneLine(unescaped(m_event.rawValue(EventField::Location)));
        item.notes = manyLines(unescaped(m_event.rawValue(EventField::Description)));
        item.interchangeId = identity();
        item.start = m_times.start;
        item.durationMinutes = m_times.minutes;
        item.allDay = m_times.allDay;
        item.days = m_times.days;
        item.busy = busyStatus();
        // A class that is not known must be taken as private.
        item.isPrivate = m_event.has(EventField::Class) && !m_event.says(EventField::Class, "PUBLIC");
        item.reminder = m_event.hasAlarm;
        return item;
    }

  private:
    BusyStatus busyStatus() const
    {
        constexpr std::array<std::pair<std::string_view, BusyStatus>, 5> words = {
            {{"FREE", BusyStatus::Free},
             {"TENTATIVE", BusyStatus::Tentative},
             {"BUSY", BusyStatus::Busy},
             {"OOF", BusyStatus::OutOfOffice},
             {"WORKINGELSEWHERE", BusyStatus::Free}}};
        for (const auto &[word, status] : words)
        {
            if (m_event.says(EventField::BusyStatus, word))
            {
                return status;
            }
        }
        if (m_event.says(EventField::Transparency, "TRANSPARENT"))
        {
            return BusyStatus::Free;
        }
        return m_event.says(EventField::Status, "TENTATIVE") ? BusyStatus::Tentative : BusyStatus::Busy;
    }

    std::u16string identity() const
    {
        std::u16string id = trimmed(unescaped(m_event.rawValue(EventField::Uid)));
        if (id.empty())
        {
            return toUtf16("content-" + contentOf(m_event).hex());
        }
        if (id.size() > longestIdentity)
        {
            id = toUtf16("long-" + fingerprint(toUtf8(std::u16string_view(id))).hex());
        }
        return m_times.changedDay.empty() ? id : dayIdentity(id, m_times.changedDay);
    }

    const CalendarComponent &m_event;
    const EventTimes &m_times;
};

std::string keyOf(const CalendarComponent &event, std::string_view day)
{
    std::string key(event.rawValue(EventField::Uid));
    key += '\n';
    key += day;
    return key;
}
} // namespace

std::u16string dayIdentity(const std::u16string &series, std::string_view day)
{
    std::u16string text = toUtf16(day);
    if (text.size() > longestDay)
    {
        text = toUtf16("long-" + fingerprint(day).hex());
    }
    return series + u'\n' + text;
}

EventReading readEvent(const CalendarComponent &event, ZoneBook &zones)
{
    EventReading reading;
    try
    {
        reading.times = readEventTimes(event, zones);
        const EventTimes &times = reading.times;
        reading.unknownZone = times.unknownZone;
        reading.unknownZoneLine = times.unknownZoneLine;
        reading.item = EventBuilder(event, times).build();
    }
    catch (const EventLeftOut &left)
    {
        reading.reason = left.reason;
        reading.line = left.line;
    }
    return reading;
}

Fingerprint eventKey(const CalendarComponent &event)
{
    return event.rawValue(EventField::Uid).empty()
               ? contentOf(event)
               : fingerprint(keyOf(event, event.rawValue(EventField::RecurrenceId)));
}

Fingerprint seriesKey(const CalendarComponent &event)
{
    return fingerprint(event.rawValue(EventField::Uid));
}

Fingerprint changedDayKey(const CalendarComponent &series)
{
    return fingerprint(keyOf(series, series.rawValue(EventField::Start)));
}
} // namespace zb::interchange
