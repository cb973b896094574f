// Appointments moved in the day and the week, by pen and by keys; zb tells where they have gone.
#include "apps/ZembrikCalendar.h"

namespace
{
using zb::test::Picture;

constexpr std::uint32_t todayColor = 0x2F5D96;
constexpr std::uint32_t red = 0xE04040;     ///< of the category "Red"
constexpr std::uint32_t paleRed = 0xEC8C8C; ///< 60 hundredths of it on white, in columns too narrow for words
constexpr std::uint32_t carried = 0x6D8EB6; ///< 70 hundredths of the colour of today on white
constexpr int gridTop = 50;                 // below caption and bar
constexpr int gridBottom = 294;
constexpr int hours = 32; // column of the hours
constexpr int slot = 20;  // half an hour
constexpr int column = (240 - 13 - hours) / 7; // of a day in the week
/// Where a time of the day lies in the day view, which opens at 8 o'clock.
constexpr int yAt(int hour, int minute = 0)
{
    return gridTop + ((hour - 8) * 60 + minute) * slot / 30;
}

class ZembrikMoves : public zb::test::ZembrikCalendarTest
{
  protected:
    /// The first row of a colour below the caption, in the column of a day of the week (Monday 0).
    static int topOf(const Picture &week, std::uint32_t color, int day)
    {
        for (int y = gridTop; y < gridBottom; ++y)
        {
            if (week.at(hours + day * column + column / 2, y) == color)
            {
                return y;
            }
        }
        return -1;
    }
    static std::string at(int x, int y)
    {
        return " " + std::to_string(x) + " " + std::to_string(y) + "\n";
    }
    /// Down at a place, over another one, and there up.
    static std::string pull(int x, int y, int toX, int toY)
    {
        return "pen down" + at(x, y) + "pen move" + at((x + toX) / 2, (y + toY) / 2) + "pen move" + at(toX, toY) +
               "pen up" + at(toX, toY);
    }
    /// The middle of a day's column in the week.
    static constexpr int day(int weekday)
    {
        return hours + weekday * column + column / 2;
    }
};
} // namespace

TEST_F(ZembrikMoves, AStripPulledWithThePenMovesTheAppointment)
{
    import(today("One", "1210", "1300"));
    const std::string pull = "pen down 35 " + std::to_string(yAt(12, 40)) + "\npen move 35 " +
                             std::to_string(yAt(12, 55)) + "\npen move 60 " + std::to_string(yAt(13, 35)) + "\n";
    const Picture after13 = after("day", pull + "pen up 60 " + std::to_string(yAt(13, 35)));
    EXPECT_EQ(startOf("One"), "2026-11-20T13:10");
    EXPECT_EQ(after13.at(35, yAt(13, 40)), todayColor);
    EXPECT_NE(after13.at(35, yAt(12, 30)), todayColor);
    after("day", "key Tab\nkey Shift+Up\nkey Shift+Up\nkey Shift+Right");
    EXPECT_EQ(startOf("One"), "2026-11-21T12:10");
}

TEST_F(ZembrikMoves, OneDayOfASeriesMovesAloneAndNotPastItsNeighbour)
{
    import(event("Daily", "20261118T120000", "20261118T130000", "RRULE:FREQ=DAILY;COUNT=5\r\n"));
    const Picture moved = after("day", "key Tab\nkey Shift+Down");
    EXPECT_EQ(after("day", "key Tab"), moved) << "the list follows what was written";
    EXPECT_EQ(startOf("Daily", "2026-11-20", "2026-11-20"), "2026-11-20T12:30");
    EXPECT_EQ(startOf("Daily", "2026-11-19", "2026-11-19"), "2026-11-19T12:00");
    const Picture before = after("day", "key Tab");
    const Picture refused = after("day", "key Tab\nkey Shift+Right");
    EXPECT_NE(refused.at(0, 0), before.at(0, 0)) << "a box has the front";
    EXPECT_EQ(startOf("Daily", "2026-11-20", "2026-11-20"), "2026-11-20T12:30");
    EXPECT_EQ(after("day", "key Tab\nkey Shift+Right\nkey Enter"), before) << "nothing has changed";
}


TEST_F(ZembrikMoves, WhatCrossesMidnightGoesByItsFirstPartToAnyTimeOfAnyDay)
{
    import(event("Night", "20261118T221000", "20261119T014000", "CATEGORIES:Red\r\n"));
    const Picture week = after("week", "key End");
    const int top = topOf(week, paleRed, 2);
    ASSERT_GT(top, 0);
    // To the last half hour of Friday, although the first part alone took four of them.
    const int bottom = gridBottom - slot / 2;
    const std::string held = "key End\npen down" + at(day(2), top + 5) + "pen move" + at(day(3), bottom - slot) +
                             "pen move" + at(day(4), bottom);
    const Picture under = after("week", held);
    EXPECT_GT(zb::test::count(under, carried, day(4), bottom - slot, day(5), gridBottom), column / 2 * slot / 2)
        << "where it would begin";
    EXPECT_EQ(under.at(day(2), top + 5), paleRed) << "it lies there until the pen goes up";
    EXPECT_EQ(startOf("Night"), "2026-11-18T22:10");
    after("week", held + "pen up" + at(day(4), bottom));
    EXPECT_EQ(startOf("Night"), "2026-11-20T23:40");
    EXPECT_NE(zb({"agenda", "--from", "2026-11-21", "--to", "2026-11-21"}).out.find("until 3:10"), std::string::npos)
        << "as long as before";
    const int late = topOf(after("week", "key End"), paleRed, 4) + 2;
    after("week", "key End\n" + pull(day(4), late, day(1), late - 3 * slot));
    EXPECT_EQ(startOf("Night"), "2026-11-17T22:10");
}

TEST_F(ZembrikMoves, ItsLaterPartStaysUnderThePenAndGoesAlongByKeys)
{
    import(event("Night", "20261118T220000", "20261119T020000", "CATEGORIES:Red\r\n"));
    const int top = topOf(after("week", "key Home"), paleRed, 3);
    ASSERT_GT(top, 0);
    after("week", "key Home\n" + pull(day(3), top + 5, day(5), top + 45));
    EXPECT_EQ(startOf("Night"), "2026-11-18T22:00");
    after("week", "key Tab\nkey Tab\nkey Shift+Down\nkey Shift+Right");
    EXPECT_EQ(startOf("Night"), "2026-11-19T22:30");
}

TEST_F(ZembrikMoves, WholeDaysArePulledFromDayToDayOfTheWeek)
{
    import(event("Fair", "20261118", "20261120", "CATEGORIES:Red\r\n"));
    const Picture week = after("week", "");
    const int y = topOf(week, paleRed, 3) + 3; // on Thursday, its second day
    EXPECT_EQ(after("week", "tap" + at(day(3), y)), after("week", "key Tab\nkey Enter")) << "a tap opens it";
    EXPECT_EQ(after("week", pull(day(3), y, day(3) + 3, y + 100)), week) << "within its day nothing changes";
    after("week", pull(day(3), y, day(5), y));
    EXPECT_EQ(startOf("Fair"), "2026-11-20");
    const Picture moved = after("week", "");
    EXPECT_EQ(topOf(moved, paleRed, 3), -1);
    EXPECT_GT(topOf(moved, paleRed, 4), 0);
    EXPECT_GT(topOf(moved, paleRed, 5), 0) << "two days as before";
    after("week", "key Tab\nkey Shift+Left\nkey Shift+Down");
    EXPECT_EQ(startOf("Fair"), "2026-11-19") << "keys move it by days alone";
}

TEST_F(ZembrikMoves, WhereThereIsRoomForWordsWholeDaysArePulledByTheirStrip)
{
    import(event("Fair", "20261118", "20261119", "CATEGORIES:Red\r\n"));
    const Words wide = {"--size", "800x320"};
    const int width = (800 - 13 - hours) / 7;
    const Picture week = after("week", "", wide);
    const int left = hours + 2 * width;
    int y = gridTop;
    while (y < gridBottom && week.at(left + 3, y) != red)
    {
        ++y;
    }
    const Picture next = after("week", "key Ctrl+Right", wide);
    EXPECT_EQ(after("week", pull(left + 80, y + 4, left + 80 - width, y + 4), wide), next) << "its words are no strip";
    EXPECT_EQ(startOf("Fair"), "2026-11-18");
    after("week", pull(left + 3, y + 4, left + 3 - width, y + 4), wide);
    EXPECT_EQ(startOf("Fair"), "2026-11-17");
}

TEST_F(ZembrikMoves, OneWholeDayOfASeriesMovesAlone)
{
    import(event("Yoga", "20261116", "20261117", "RRULE:FREQ=WEEKLY;COUNT=3\r\nCATEGORIES:Red\r\n"));
    const int y = topOf(after("week", ""), paleRed, 0) + 3;
    after("week", pull(day(0), y, day(2), y));
    EXPECT_EQ(startOf("Yoga"), "2026-11-18");
    EXPECT_EQ(startOf("Yoga", "2026-11-23", "2026-11-29"), "2026-11-23");
}

TEST_F(ZembrikMoves, TasksOnTopOfADayStay)
{
    import("BEGIN:VTODO\r\nUID:t\r\nSUMMARY:Task\r\nDUE;VALUE=DATE:20261120\r\nCATEGORIES:Red\r\nEND:VTODO\r\n");
    const Picture week = after("week", "key F2\nkey S");
    const int y = topOf(week, paleRed, 4) + 3;
    ASSERT_GT(y, gridTop);
    after("week", pull(day(4), y, day(2), y));
    EXPECT_NE(zb({"agenda", "--from", "2026-11-20", "--to", "2026-11-20", "--tasks"}).out.find("Task"), std::string::npos);
}

TEST_F(ZembrikMoves, WhatLastsADayOrMoreKeepsItsTime)
{
    import(event("Long", "20261117T120000", "20261118T130000", "CATEGORIES:Red\r\n"));
    const int y = topOf(after("week", ""), paleRed, 1) + 3;
    after("week", pull(day(1), y, day(3), y));
    EXPECT_EQ(startOf("Long"), "2026-11-19T12:00");
    after("week", "key Tab\nkey Shift+Down");
    EXPECT_EQ(startOf("Long"), "2026-11-19T12:30");
}
