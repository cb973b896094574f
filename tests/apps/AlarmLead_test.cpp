// How long before their items the alarms of calendar files go off.
#include "apps/CalendarText.h"
#include "interchange/alarm_lead.h"
#include "interchange/event_item.h"
#include "interchange/task_item.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
using namespace zb;
using namespace zb::interchange;
using namespace zb::test;

/// Berlin, one hour ahead of UTC in March until the 29th.
class AlarmLead : public DeviceTest
{
  protected:
    static CalendarComponent component(const std::string &text)
    {
        const std::string file = calendarOf(text);
        const auto source = openMemory(file);
        CalendarReader reader(*source);
        CalendarComponent found;
        EXPECT_TRUE(reader.next(found));
        return found;
    }
    static std::string alarm(const std::string &trigger)
    {
        return "BEGIN:VALARM\nACTION:DISPLAY\n" + trigger + "\nEND:VALARM\n";
    }
    std::optional<LONG> ofEvent(const std::string &times, const std::string &trigger)
    {
        ZoneBook zones{"Europe/Berlin"};
        const CalendarComponent event = component(eventOf(times + alarm(trigger)));
        return alarmLead(event, readEventTimes(event, zones));
    }
    std::optional<LONG> ofTask(const std::string &dates, const std::string &trigger)
    {
        ZoneBook zones{"Europe/Berlin"};
        const CalendarComponent task = component("BEGIN:VTODO\nSUMMARY:x\n" + dates + alarm(trigger) + "END:VTODO\n");
        const TaskReading reading = readTask(task, zones);
        return reading.item ? reading.item->reminderMinutes : std::nullopt;
    }
};

TEST_F(AlarmLead, OfEvents)
{
    const std::string hour = "DTSTART:20260302T120000Z\nDTEND:20260302T130000Z\n";
    const std::string day = "DTSTART;VALUE=DATE:20260305\n";
    const struct
    {
        std::string times;
        std::string trigger;
        std::optional<LONG> minutes;
    } cases[] = {{hour, "TRIGGER:-PT15M", 15},
                 {hour, "TRIGGER:-P1D", 1440},
                 {hour, "TRIGGER:-P1W", 10080},
                 {hour, "TRIGGER:-P1DT2H3M", 1563},
                 {hour, "TRIGGER:PT0S", 0},
                 {hour, "TRIGGER:-PT0M", 0},
                 {hour, "TRIGGER:-PT90S", 2},
                 {hour, "TRIGGER:PT10M", 0},
                 {hour, "TRIGGER;RELATED=END:-PT75M", 15},
                 {hour, "trigger;related=end:PT0S", 0},
                 {hour, "TRIGGER;RELATED=START:-PT5M", 5},
                 {hour, "TRIGGER;VALUE=DATE-TIME:20260302T113000Z", 30},
                 {hour, "TRIGGER;VALUE=DATE-TIME:20260302T113000", std::nullopt},
                 {hour, "TRIGGER:-P20Y", std::nullopt},
                 {hour, "TRIGGER:-P99999D", 10 * 365 * 1440},
                 {hour, "TRIGGER:soon", std::nullopt},
                 {hour, "TRIGGER:", std::nullopt},
                 {hour, "DESCRIPTION:none", std::nullopt},
                 {day, "TRIGGER:-PT15H", 900},
                 {day, "TRIGGER:PT9H", 0},
                 {day, "TRIGGER;RELATED=END:-P1DT6H", 360},
                 {day, "TRIGGER;VALUE=DATE-TIME:20260304T220000Z", 60}};
    for (const auto &each : cases)
    {
        EXPECT_EQ(ofEvent(each.times, each.trigger), each.minutes) << each.times << each.trigger;
    }
}

TEST_F(AlarmLead, OfToDosByTheMidnightOfTheDueDate)
{
    const std::string due = "DUE;VALUE=DATE:20260305\n";
    const std::string at = "DUE:20260305T090000Z\n"; // ten o'clock in Berlin
    EXPECT_EQ(ofTask(due, "TRIGGER;RELATED=END:-PT4H"), 240);
    EXPECT_EQ(ofTask(due, "TRIGGER:PT9H"), -540) << "without a start it counts from the due date";
    EXPECT_EQ(ofTask(at, "TRIGGER;RELATED=END:-PT1H"), -540) << "nine o'clock of that day";
    EXPECT_EQ(ofTask(due + "DTSTART;VALUE=DATE:20260303\n", "TRIGGER:PT8H"), 2400) << "8 o'clock two days before";
    EXPECT_EQ(ofTask(due, "TRIGGER;VALUE=DATE-TIME:20260305T070000Z"), -480);
    EXPECT_EQ(ofTask(due, "TRIGGER:PT0S"), 1) << "0 would mean none";
    EXPECT_EQ(ofTask("DTSTART;VALUE=DATE:20260303\n", "TRIGGER:PT8H"), std::nullopt) << "no due date";
    EXPECT_EQ(ofTask(due, "TRIGGER:soon"), std::nullopt);
}

TEST_F(AlarmLead, TheFirstTriggerCountsAndThoseOfOtherPartsDoNot)
{
    const CalendarComponent event = component(
        eventOf("DTSTART:20260302T120000Z\nTRIGGER:-PT1M\nBEGIN:VALARM\nACTION:AUDIO\nEND:VALARM\n"
                "BEGIN:VALARM\nBEGIN:X-PART\nTRIGGER:-PT2M\nEND:X-PART\nTRIGGER:-PT3M\nTRIGGER:-PT4M\nEND:VALARM\n" +
                alarm("TRIGGER:-PT5M")));
    EXPECT_EQ(event.alarmTrigger, "-PT3M");
    ZoneBook zones{"Europe/Berlin"};
    EXPECT_EQ(alarmLead(event, readEventTimes(event, zones)), 3);
}
} // namespace
