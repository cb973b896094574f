#include "interchange/series_calendar.h"

#include "interchange/calendar_text.h"
#include "interchange/date_fields.h"
#include "interchange/rule_days.h"
#include "platform/clock.h"
#include "platform/text.h"

#include <algorithm>
#include <cstdio>

namespace zb::interchange
{
namespace
{
constexpr std::size_t longestShownRule = 80;

LONGLONG dayOf(LONGLONG ticks)
{
    return ticks - ticks % ticksPerDay;
}

template <typename Take>
void eachValue(std::string_view list, const Take &take)
{
    while (!list.empty())
    {
        const std::size_t comma = list.find(',');
        const std::string_view value = trimmed(list.substr(0, comma));
        if (!value.empty())
        {
            take(value);
        }
        list = comma == std::string_view::npos ? std::string_view() : list.substr(comma + 1);
    }
}

/// Whether the text is this word, which is in upper case.
bool isWord(std::string_view text, std::string_view word)
{
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char ch, char wanted)
                      { return ch == wanted || (ch >= 'a' && ch <= 'z' && ch - 'a' + 'A' == wanted); });
}

} // namespace

SeriesCalendar::SeriesCalendar(const CalendarComponent &series, ZoneBook &zones, SeriesReading &reading)
    : m_event(series), m_zones(zones), m_reading(reading)
{
}

bool SeriesCalendar::read(const std::vector<CalendarComponent> &changedDays)
{
    EventReading own = readEvent(m_event, m_zones);
    tellZone(own);
    if (!own.item)
    {
        m_reading.reason = own.reason;
        m_reading.line = own.line;
        return false;
    }
    item = std::move(*own.item);
    times = own.times;
    m_floating = times.zone == nullptr || times.zone == &m_zones.device();
    m_zone = (times.zone != nullptr ? *times.zone : m_zones.device()).shared_from_this();
    times.zone = m_zone.get();
    start = times.wallStart;
    const LONGLONG end = ticksOf(item.start) + item.durationMinutes * ticksPerMinute;
    wallMinutes = item.allDay ? LONGLONG{item.days} * 1440 - 1
                              : std::max<LONGLONG>(0, (wallOfUtc(end) - start + ticksPerMinute / 2) / ticksPerMinute);
    m_reading.identity = item.interchangeId;
    m_reading.line = m_event.lineOf(m_event.has(EventField::Rule) ? EventField::Rule : EventField::RepeatDates);
    for (const RepetitionLine &line : m_event.repetition)
    {
        readLine(line);
    }
    if (m_event.oversized)
    {
        m_reading.findings.push_back({m_event.line, "a repeating event lists more days than can be read; the rest of "
                                                    "them was passed over"});
    }
    for (const CalendarComponent &change : changedDays)
    {
        readChange(change);
    }
    return true;
}

void SeriesCalendar::readLine(const RepetitionLine &line)
{
    const std::string_view zone = parameterOf(line.parameters, "TZID");
    m_unreadableDates = 0;
    switch (line.kind)
    {
    case EventField::Rule:
        readRule(line, rules);
        break;
    case EventField::ExceptionRule:
        readRule(line, exceptionRules);
        break;
    case EventField::ExceptionDates:
        eachValue(line.value, [&](std::string_view value) { readDeleted(value, zone); });
        break;
    default:
        eachValue(line.value, [&](std::string_view value) { readListed(value, zone); });
        break;
    }
    if (m_unreadableDates != 0 || line.cut)
    {
        m_reading.findings.push_back({line.line, "the line names days of a repeating event that can't be read; they "
                                                 "were passed over"});
    }
}

void SeriesCalendar::readRule(const RepetitionLine &line, std::vector<icalrecurrencetype> &into)
{
    const auto rule = parseRule(line.value, [this](LONGLONG utc) { return allDay() ? utc : wallOfUtc(utc); });
    if (rule && !line.cut && RuleDays(*rule, start).isValid())
    {
        into.push_back(*rule);
        return;
    }
    const bool repeats = line.kind == EventField::Rule;
    ruleUnreadable = ruleUnreadable || repeats;
    m_reading.findings.push_back(
        {line.line, "the rule \"" + shown(line.value, longestShownRule) + "\" can't be followed; " +
                        (repeats ? "the event came in as its first day only" : "its days were not taken out")});
}

void SeriesCalendar::readDeleted(std::string_view value, std::string_view zone)
{
    const auto moment = readMoment(value, zone, m_zones);
    if (!moment)
    {
        ++m_unreadableDates;
    }
    else if (moment->isDate || allDay())
    {
        deletedDays.insert(dayOf(wallOfMoment(*moment)));
    }
    else
    {
        deletedMoments.insert(moment->ticks);
    }
}

void SeriesCalendar::readListed(std::string_view value, std::string_view zone)
{
    const std::size_t slash = value.find('/');
    const auto moment = readMoment(value.substr(0, slash), zone, m_zones);
    if (!moment)
    {
        ++m_unreadableDates;
        return;
    }
    ListedDay day;
    day.wall = allDay() ? dayOf(wallOfMoment(*moment)) : wallOfMoment(*moment);
    if (moment->isDate && !allDay())
    {
        day.wall += start % ticksPerDay; // a day alone means the time of the series on that day
    }
    if (slash != std::string_view::npos && !allDay())
    {
        const std::string end(trimmed(value.substr(slash + 1)));
        const auto until = readMoment(end, zone, m_zones);
        const icaldurationtype span =
            until ? icaldurationtype_null_duration() : icaldurationtype_from_string(end.c_str());
        const LONGLONG minutes =
            until ? (until->ticks - moment->ticks) / ticksPerMinute : LONGLONG{icaldurationtype_as_int(span)} / 60;
        const bool whole = until || icaldurationtype_is_bad_duration(span) == 0;
        day.minutes = whole && minutes >= 0 && minutes <= 1440 * 366 ? static_cast<LONG>(minutes) : day.minutes;
    }
    listed.push_back(day);
}

void SeriesCalendar::readChange(const CalendarComponent &event)
{
    ChangedDay change;
    change.event = &event;
    change.cancelled = event.says(EventField::Status, "CANCELLED");
    const std::string_view raw = event.rawValue(EventField::RecurrenceId);
    const std::string_view zone = event.parameter(EventField::RecurrenceId, "TZID");
    const auto moment = readMoment(raw, zone, m_zones);
    EventReading own = readEvent(event, m_zones);
    if (!own.item && !change.cancelled)
    {
        tellZone(own);
        ++m_reading.refusedDays;
        m_reading.findings.push_back({own.line, "an event was left out: " + own.reason});
        return;
    }
    if (own.item)
    {
        tellZone(own);
        change.item = std::move(*own.item);
        change.times = own.times;
        change.identity = change.item.interchangeId;
        change.times.zone = nullptr; // may not outlive the reading
        change.item.partOfSeries = true;
    }
    change.future = isWord(event.parameter(EventField::RecurrenceId, "RANGE"), "THISANDFUTURE");
    change.isDate = moment && moment->isDate;
    change.original = !moment ? -1 : allDay() ? dayOf(wallOfMoment(*moment)) : wallOfMoment(*moment);
    if (change.isDate && !allDay())
    {
        change.original += start % ticksPerDay;
    }
    if (change.identity.empty() && moment)
    {
        const bool asWritten =
            moment->isDate || (zone.empty() && trimmed(raw).back() != 'Z' && trimmed(raw).back() != 'z');
        change.identity = dayIdentity(item.interchangeId, asWritten ? std::string(raw) : utcText(moment->ticks));
    }
    changes.push_back(std::move(change));
}

void SeriesCalendar::tellZone(const EventReading &reading)
{
    if (!reading.unknownZone.empty())
    {
        m_reading.unknownZones.push_back({reading.unknownZone, reading.unknownZoneLine});
    }
}

LONGLONG SeriesCalendar::wallOfMoment(const ListedMoment &moment) const
{
    return moment.isDate ? moment.ticks : wallOfUtc(moment.ticks);
}

LONGLONG SeriesCalendar::utcOf(LONGLONG wall) const
{
    const auto utc = m_zone->toUtc(fieldsOf(wall));
    return utc ? ticksOf(*utc) : wall;
}

LONGLONG SeriesCalendar::wallOfUtc(LONGLONG utc) const
{
    return std::max<LONGLONG>(0, utc + m_zone->offsetMinutes(fileTimeOf(utc)) * ticksPerMinute);
}

LONGLONG SeriesCalendar::deviceWallOf(LONGLONG utc) const
{
    return std::max<LONGLONG>(0, utc + m_zones.device().offsetMinutes(fileTimeOf(utc)) * ticksPerMinute);
}

bool SeriesCalendar::isInDeviceZone() const
{
    return allDay() || m_zones.isDevice(*m_zone);
}

bool SeriesCalendar::isDeleted(LONGLONG wall) const
{
    return deletedDays.count(dayOf(wall)) != 0 ||
           (!allDay() && !deletedMoments.empty() && deletedMoments.count(utcOf(wall)) != 0);
}

std::u16string SeriesCalendar::identityOf(LONGLONG wall) const
{
    std::string day = utcText(allDay() || m_floating ? wall : utcOf(wall));
    if (allDay() || m_floating)
    {
        day.resize(allDay() ? 8 : 15);
    }
    return dayIdentity(item.interchangeId, day);
}
} // namespace zb::interchange
