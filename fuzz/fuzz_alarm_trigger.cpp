// Triggers of alarms with arbitrary words: whatever they say, the minutes are those that a record can hold.
#include "interchange/alarm_lead.h"
#include "platform/pim_objects.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    zb::interchange::CalendarComponent event;
    event.hasAlarm = true;
    event.alarmTrigger.assign(reinterpret_cast<const char *>(data), size);
    zb::interchange::EventTimes times;
    times.start = {0, 0x01DCAA00};
    const auto lead = zb::interchange::alarmLead(event, times);
    const auto ofTask = zb::interchange::alarmLead(event, std::nullopt, 0x01DCAA0000000000);
    if ((lead && (*lead < 0 || *lead > PIM_LONGEST_REMINDER)) || (ofTask && *ofTask == 0))
    {
        std::abort();
    }
    return 0;
}
