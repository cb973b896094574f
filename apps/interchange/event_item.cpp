#include "interchange/event_item.h"

#include "interchange/alarm_lead.h"
#include "interchange/calendar_text.h"
#include "interchange/event_times.h"
#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zb::interchange
{
namespace
{
constexpr std::size_t longestDay = 64;

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
        item.reminderMinutes = alarmLead(m_event, m_times);
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
        const std::u16string id = identityOf(m_event.rawValue(EventField::Uid));
        if (id.empty())
        {
            return toUtf16("content-" + contentOf(m_event).hex());
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
