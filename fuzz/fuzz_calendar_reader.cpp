// Any bytes as a calendar file: cut into components, zones and events read. No device is open.
#include "interchange/calendar_survey.h"
#include "interchange/event_item.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace zb::interchange;
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const auto bytes = openMemory(text);
    try
    {
        CalendarReader reader(*bytes);
        ZoneBook zones("Europe/Berlin");
        const CalendarSurvey survey(reader, zones);
        CalendarComponent component;
        while (reader.next(component))
        {
            if (component.kind == ComponentKind::Event && survey.lineThatCounts(component) == component.line)
            {
                readEvent(component, zones);
            }
        }
    }
    catch (const CalendarFileError &)
    {
        // how bad files are meant to end
    }
    return 0;
}
