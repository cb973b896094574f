// Imported series against an independent expansion: random repeating events, with deleted, added, changed and cancelled
// days, are imported and shown by the calendar's loader over ranges of days; libical expands the same file by its own
// iterator and zones, and both must name the same rows.
//
// Deliberate differences, which the events here stay clear of:
// - a record has one pair of yearly changes of its zone, not the zone's history: the years here have today's rules;
// - on the very day of a change the loader judges a zone by the day, not by the hour: times here begin at 4 o'clock;
// - a start that the rule does not name counts as one of its COUNT, where libical's iterator begins behind it;
// - an unrolled event has the days around the device's today alone: the ranges here lie among them;
// - a day that a change moves is shown by its new time alone in every range; its row may stand outside the range when
// the
//   old day lies inside, and is then not for that list.
#include "apps/CalendarText.h"
#include "apps/ListedRows.h"
#include "interchange/calendar_import.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>
#include <libical/ical.h>

#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <tuple>

namespace
{
using namespace zb::test;
using namespace zb::interchange;

constexpr int minutesPerDay = 1440;

/// Day of the row, start (minutes since 1899-12-30), subject.
using Row = std::tuple<int, long long, std::string>;

std::string timeText(const char *format, const icaltimetype &at)
{
    char text[40];
    std::snprintf(text, sizeof text, format, at.year, at.month, at.day, at.hour, at.minute);
    return text;
}

std::string dateText(const icaltimetype &at)
{
    return timeText("%04d%02d%02d", at);
}

std::string momentText(const icaltimetype &at)
{
    return timeText("%04d%02d%02dT%02d%02d00", at);
}

long long minutesOf(const icaltimetype &at)
{
    return static_cast<long long>(dayNumberOf(at.year, at.month, at.day)) * minutesPerDay + at.hour * 60 + at.minute;
}

struct Change
{
    icaltimetype original; ///< by the wall clock of the series
    bool cancelled = false;
    icaltimetype start;
    int minutes = 0;
    std::string subject;
};

struct Event
{
    std::string zone; ///< empty: floating
    bool allDay = false;
    icaltimetype start;
    int minutes = 60; ///< days for whole days
    std::string rule;
    std::vector<icaltimetype> deleted;
    std::vector<Change> changes;
};

class Maker
{
  public:
    explicit Maker(std::uint32_t seed) : m_random(seed)
    {
    }

    int number(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(m_random);
    }

    Event event()
    {
        static const char *zones[] = {"",           "Europe/Berlin", "America/New_York",
                                      "Asia/Tokyo", "Europe/London", "Asia/Kolkata"};
        Event event;
        event.allDay = number(0, 4) == 0;
        event.zone = event.allDay ? "" : zones[number(0, 5)];
        event.start = icaltime_null_time();
        event.start.year = number(2025, 2026);
        event.start.month = number(1, 12);
        event.start.day = number(1, 28);
        event.start.hour = event.allDay ? 0 : number(4, 23);
        event.start.minute = event.allDay ? 0 : number(0, 3) * 15;
        event.minutes = event.allDay ? number(1, 3) : number(0, 6) == 0 ? number(5, 20) * 60 : number(1, 8) * 15;
        event.rule = rule(event.start);
        spoil(event);
        return event;
    }

  private:
    std::string rule(const icaltimetype &start)
    {
        static const char *days[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
        const std::string own = days[icaltime_day_of_week(start) - 1];
        const int nth = (start.day - 1) / 7 + 1;
        const std::string interval = ";INTERVAL=" + std::to_string(number(1, 4));
        std::string text;
        switch (number(0, 10))
        {
        case 0:
        case 1:
            text = "FREQ=DAILY" + interval;
            break;
        case 2:
        case 3:
        case 4:
            text = "FREQ=WEEKLY" + interval + ";BYDAY=" + own;
            for (const char *day : days)
            {
                text += number(0, 2) == 0 && day != own ? std::string(",") + day : std::string();
            }
            break;
        case 5:
            text = "FREQ=MONTHLY" + interval;
            break;
        case 6:
            text = "FREQ=MONTHLY;BYDAY=" + std::to_string(nth) + own;
            break;
        case 7:
            text = "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1";
            break;
        case 8:
            text = "FREQ=MONTHLY;BYMONTHDAY=1,15," + std::to_string(start.day);
            break;
        case 9:
            text = "FREQ=YEARLY";
            break;
        default:
            text = "FREQ=DAILY;BYDAY=MO,WE,FR";
            break;
        }
        switch (number(0, 3))
        {
        case 0:
            // A count only where the rule names its start: see the differences above.
            return text.find("BYSETPOS") == std::string::npos && text.find("MO,WE,FR") == std::string::npos
                       ? text + ";COUNT=" + std::to_string(number(1, 60))
                       : text;
        case 1:
            return text + ";UNTIL=" + std::to_string(start.year + 1) + "0615T235959";
        default:
            return text;
        }
    }

    /// Deletes and changes days that the rule names, and now and then one that it does not.
    void spoil(Event &event)
    {
        icalrecur_iterator *iterator =
            icalrecur_iterator_new(icalrecurrencetype_from_string(event.rule.c_str()), event.start);
        std::set<long long> taken;
        for (int n = 0; n < 80; ++n)
        {
            icaltimetype day = icalrecur_iterator_next(iterator);
            if (icaltime_is_null_time(day) != 0)
            {
                break;
            }
            const int fate = number(0, 19);
            if (!taken.insert(minutesOf(day)).second || fate > 2 || (n == 0 && fate != 1))
            {
                continue;
            }
            if (fate == 0)
            {
                event.deleted.push_back(day);
                continue;
            }
            event.changes.push_back(change(event, day));
        }
        icalrecur_iterator_free(iterator);
    }

    Change change(const Event &event, const icaltimetype &day)
    {
        Change change;
        change.original = day;
        change.cancelled = number(0, 4) == 0;
        change.start = day;
        const int moved = number(0, 2) == 0 ? number(-9, 9) : 0;
        change.start.day += moved;
        change.start.hour = event.allDay ? 0 : number(4, 20);
        change.start = icaltime_normalize(change.start);
        change.minutes = event.allDay ? number(1, 3) : number(1, 10) * 30;
        change.subject = number(0, 1) == 0 ? "Series" : "Changed " + std::to_string(m_changes++);
        return change;
    }

    std::mt19937 m_random;
    int m_changes = 0;
};

std::string property(const Event &event, const std::string &name, const icaltimetype &at)
{
    if (event.allDay)
    {
        return name + ";VALUE=DATE:" + dateText(at) + "\n";
    }
    return name + (event.zone.empty() ? "" : ";TZID=" + event.zone) + ":" + momentText(at) + "\n";
}

std::string lengthText(const Event &event, int minutes)
{
    return event.allDay ? "DURATION:P" + std::to_string(minutes) + "D\n"
                        : "DURATION:PT" + std::to_string(minutes) + "M\n";
}

std::string fileOf(const Event &event)
{
    std::string lines = "UID:random@test\nSUMMARY:Series\n" + property(event, "DTSTART", event.start) +
                        lengthText(event, event.minutes) + "RRULE:" + event.rule + "\n";
    for (const icaltimetype &day : event.deleted)
    {
        lines += property(event, "EXDATE", day);
    }
    std::string body = eventOf(lines);
    for (const Change &change : event.changes)
    {
        const std::string text =
            eventOf("UID:random@test\n" + property(event, "RECURRENCE-ID", change.original) +
                    (change.cancelled ? "STATUS:CANCELLED\n" : "SUMMARY:" + change.subject + "\n") +
                    property(event, "DTSTART", change.start) + lengthText(event, change.minutes));
        body = minutesOf(change.original) % 2 == 0 ? body + text : text + body;
    }
    return calendarOf(body);
}

class Expected
{
  public:
    explicit Expected(const Event &event) : m_event(event)
    {
        m_device = icaltimezone_get_builtin_timezone("Europe/Berlin");
        m_zone = event.zone.empty() ? m_device : icaltimezone_get_builtin_timezone(event.zone.c_str());
    }

    /// All rows up to a day.
    std::multiset<Row> rows(int lastDay)
    {
        std::map<long long, const Change *> changes;
        for (const Change &change : m_event.changes)
        {
            changes[minutesOf(change.original)] = &change;
        }
        std::set<long long> deleted;
        for (const icaltimetype &day : m_event.deleted)
        {
            deleted.insert(minutesOf(day));
        }
        std::set<long long> days = {minutesOf(m_event.start)};
        m_days[minutesOf(m_event.start)] = m_event.start;
        icalrecur_iterator *iterator =
            icalrecur_iterator_new(icalrecurrencetype_from_string(m_event.rule.c_str()), m_event.start);
        for (icaltimetype day = icalrecur_iterator_next(iterator);
             icaltime_is_null_time(day) == 0 && minutesOf(day) / minutesPerDay <= lastDay + 20;
             day = icalrecur_iterator_next(iterator))
        {
            m_days[minutesOf(day)] = day;
        }
        icalrecur_iterator_free(iterator);
        for (const auto &[minutes, day] : m_days)
        {
            const auto change = changes.find(minutes);
            if (change != changes.end())
            {
                if (!change->second->cancelled)
                {
                    add(change->second->start, change->second->minutes, change->second->subject);
                }
            }
            else if (deleted.count(minutes) == 0)
            {
                add(day, m_event.minutes, "Series");
            }
        }
        return m_rows;
    }

  private:
    icaltimetype onDevice(icaltimetype at) const
    {
        at.zone = m_zone;
        return icaltime_convert_to_zone(at, m_device);
    }

    void add(const icaltimetype &at, int minutes, const std::string &subject)
    {
        if (m_event.allDay)
        {
            const int first = static_cast<int>(minutesOf(at) / minutesPerDay);
            for (int n = 0; n < minutes; ++n)
            {
                m_rows.emplace(first + n, minutesOf(at), subject);
            }
            return;
        }
        icaltimetype end = at;
        end.minute += minutes;
        const long long from = minutesOf(onDevice(at));
        const long long to = minutesOf(onDevice(icaltime_normalize(end)));
        for (long long day = from / minutesPerDay; day <= std::max(from, to - 1) / minutesPerDay; ++day)
        {
            m_rows.emplace(static_cast<int>(day), from, subject);
        }
    }

    const Event &m_event;
    icaltimezone *m_device;
    icaltimezone *m_zone;
    std::map<long long, icaltimetype> m_days;
    std::multiset<Row> m_rows;
};

class SeriesDifferentialTest : public DeviceTest
{
};

TEST_F(SeriesDifferentialTest, ImportedSeriesShowTheDaysThatAnIndependentExpansionNames)
{
    const char *given = std::getenv("ZB_SEED");
    const std::uint32_t seed = given != nullptr ? static_cast<std::uint32_t>(std::atoi(given)) : 20261121;
    Maker maker(seed);
    const int base = dayNumberOf(2026, 1, 1);
    std::size_t patterns = 0;
    std::size_t unrolled = 0;
    std::size_t changed = 0;
    for (int round = 0; round < 400; ++round)
    {
        const Event event = maker.event();
        const std::string text = fileOf(event);
        const auto bytes = openMemory(text);
        const ImportReport report = importCalendar(*bytes, "random.ics", {});
        ASSERT_EQ(report.failure.has_value(), false);
        ASSERT_EQ(report.refused, 0U) << text;
        patterns += report.series;
        unrolled += report.unrolled;
        changed += report.changedDays;
        const std::multiset<Row> all = Expected(event).rows(base + 900);
        for (int range = 0; range < 6; ++range)
        {
            const int from = base + maker.number(0, 600);
            const int to = from + maker.number(0, 3) * maker.number(0, 12);
            std::multiset<Row> expected;
            for (const Row &row : all)
            {
                if (std::get<0>(row) >= from && std::get<0>(row) <= to)
                {
                    expected.insert(row);
                }
            }
            std::multiset<Row> shown;
            for (const ListedRow &row : listedRows(from, to))
            {
                shown.emplace(row.day, static_cast<long long>(row.startDay) * minutesPerDay + row.startMinute,
                              row.subject);
            }
            ASSERT_EQ(shown, expected) << "range " << from << " to " << to << ", seed " << seed << ", round " << round
                                       << "\n"
                                       << text;
        }
        const auto again = openMemory(text);
        const ImportReport second = importCalendar(*again, "random.ics", {});
        ASSERT_EQ(second.added + second.updated + second.removed, 0U) << text;
    }
    EXPECT_GT(patterns, 150U);
    EXPECT_GT(unrolled, 50U);
    EXPECT_GT(changed, 100U);
}
} // namespace
