// The import of 10,000 events beside what libical alone needs to parse the same file into components.
//
// Each round imports a calendar of its own (other UIDs), so that every event is new to a device that grows from round
// to round; the second figure imports one that the device has already.
#include "interchange/calendar_import.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

#include <cstdio>
#include <libical/ical.h>
#include <memory>
#include <string>
#include <vector>

namespace
{
constexpr int eventCount = 10'000;
constexpr int rounds = 11;

std::string twoDigits(int value)
{
    return (value < 10 ? "0" : "") + std::to_string(value);
}

std::string eventText(int number, int series)
{
    const std::string zone = number % 3 == 0 ? "America/New_York" : "Europe/Berlin";
    const std::string date =
        std::to_string(2020 + number % 10) + twoDigits(number % 12 + 1) + twoDigits(number % 28 + 1);
    const std::string hour = twoDigits(8 + number % 10);
    const std::string text = std::to_string(number);
    return "BEGIN:VEVENT\r\nUID:" + text + "-" + std::to_string(series) +
           "@bench.example\r\nDTSTAMP:20260101T000000Z\r\n" + "DTSTART;TZID=" + zone + ":" + date + "T" + hour +
           "0000\r\nDTEND;TZID=" + zone + ":" + date + "T" + hour + "4500\r\nSUMMARY:Meeting number " + text +
           " with people\r\nLOCATION:Room " + text +
           "\\, second floor\r\nDESCRIPTION:What is to be done\\, by whom and until when.\\nMore of it on a\r\n  "
           "second "
           "line\r\nSTATUS:CONFIRMED\r\nTRANSP:OPAQUE\r\nEND:VEVENT\r\n";
}

std::string calendarText(int series)
{
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//bench//EN\r\n";
    for (int n = 0; n < eventCount; ++n)
    {
        text += eventText(n, series);
    }
    return text + "END:VCALENDAR\r\n";
}

/// A device in a temporary folder and the calendars of all rounds.
class Stage : public zb::bench::DeviceStage
{
  public:
    Stage()
    {
        for (int n = 0; n <= rounds; ++n)
        {
            m_calendars.push_back(calendarText(n));
        }
    }
    const std::string &calendar(int number) const
    {
        return m_calendars.at(static_cast<std::size_t>(number));
    }

  private:
    std::vector<std::string> m_calendars;
};

zb::interchange::ImportReport import(const std::string &text)
{
    const auto bytes = zb::interchange::openMemory(text);
    return zb::interchange::importCalendar(*bytes, "bench.ics", {});
}

void parse(benchmark::State &state, const std::string &text)
{
    icalcomponent *const calendar = icalparser_parse_string(text.c_str());
    if (calendar == nullptr || icalcomponent_count_components(calendar, ICAL_VEVENT_COMPONENT) != eventCount)
    {
        state.SkipWithError("libical did not find all events");
    }
    icalcomponent_free(calendar);
}

void importNew(benchmark::State &state)
{
    const Stage stage;
    int parsed = 0;
    int imported = 0;
    zb::bench::compareInRounds(
        state, zb::bench::wallSeconds, [&] { parse(state, stage.calendar(parsed++)); },
        [&]
        {
            if (import(stage.calendar(imported++)).added != eventCount)
            {
                state.SkipWithError("not all events came in");
            }
        },
        rounds);
}
BENCHMARK(importNew)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void importUnchanged(benchmark::State &state)
{
    const Stage stage;
    import(stage.calendar(0));
    zb::bench::compareInRounds(
        state, zb::bench::wallSeconds, [&] { parse(state, stage.calendar(0)); },
        [&]
        {
            if (import(stage.calendar(0)).unchanged != eventCount)
            {
                state.SkipWithError("not all events were found again");
            }
        },
        rounds);
}
BENCHMARK(importUnchanged)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

/// A dry run: everything but the commit.
void dryRun(benchmark::State &state)
{
    const Stage stage;
    zb::interchange::ImportOptions options;
    options.dryRun = true;
    zb::bench::compareInRounds(
        state, zb::bench::wallSeconds, [&] { parse(state, stage.calendar(0)); },
        [&]
        {
            const auto bytes = zb::interchange::openMemory(stage.calendar(0));
            benchmark::DoNotOptimize(zb::interchange::importCalendar(*bytes, "bench.ics", options));
        },
        rounds);
}
BENCHMARK(dryRun)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
