// Any bytes as a calendar file: cut into components, zones, events and series read. No device is open.
#include "interchange/calendar_survey.h"
#include "interchange/event_item.h"
#include "interchange/event_series.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace
{
using namespace zb::interchange;

// 2026-03-02 09:00 in ticks: unrolled days depend on today.
constexpr LONGLONG now = 134'169'156'000'000'000;

void readAll(CalendarReader &reader)
{
    ZoneBook zones("Europe/Berlin");
    const CalendarSurvey survey(reader, zones);
    CalendarComponent component;
    std::vector<CalendarComponent> changes;
    while (reader.next(component))
    {
        if (component.kind != ComponentKind::Event || survey.lineThatCounts(component) != component.line)
        {
            continue;
        }
        if (component.has(EventField::RecurrenceId))
        {
            changes.push_back(component);
        }
        if (component.repeats())
        {
            readSeries(component, changes, zones, now,
                       [](zb::AppointmentItem &item, const CalendarComponent &, const ExactRecord *)
                       { zb::encodeAppointment(item); });
        }
        else
        {
            readEvent(component, zones);
        }
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto bytes = openMemory(std::string_view(reinterpret_cast<const char *>(data), size));
    try
    {
        CalendarReader reader(*bytes);
        readAll(reader);
    }
    catch (const CalendarFileError &)
    {
        // how bad files are meant to end
    }
    return 0;
}
