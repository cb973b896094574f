// zembrik's agenda, day, week and month, by pen and by keys.
#include "apps/ZembrikCalendar.h"

namespace
{
using zb::test::count;
using zb::test::Picture;

constexpr std::uint32_t todayColor = 0x2F5D96;
constexpr std::uint32_t selectionColor = 0x1F4E8C;
constexpr std::uint32_t headColor = 0xE6EBF2;
constexpr std::uint32_t nowColor = 0xC62828;
constexpr std::uint32_t red = 0xE04040; ///< of the category "Red"
constexpr std::uint32_t paleRed = 0xEC8C8C; ///< 60 hundredths of it on white, in columns too narrow for words
constexpr std::uint32_t usual = 0x6C9BD2;
constexpr int gridTop = 50; // below caption and bar
constexpr int gridBottom = 294;
constexpr int hours = 32; // column of the hours
constexpr int slot = 20;  // half an hour
/// Where a time of the day lies in the day view, which opens at 8 o'clock.
constexpr int yAt(int hour, int minute = 0)
{
    return gridTop + ((hour - 8) * 60 + minute) * slot / 30;
}

class ZembrikCalendar : public zb::test::ZembrikCalendarTest
{
  protected:
    int rowsOf(const Picture &picture, std::uint32_t color, int x) const
    {
        return count(picture, color, x, gridTop, x + 1, gridBottom);
    }
};
} // namespace

TEST_F(ZembrikCalendar, TheAgendaOpensAtTodayAlsoWhenNothingIsOnIt)
{
    std::string items = event("Before", "20261118T080000", "20261118T090000");
    for (int day = 21; day < 30; ++day)
    {
        const std::string date = "202611" + std::to_string(day) + "T";
        items += event("Later" + std::to_string(day), date + "080000", date + "090000");
    }
    import(items);
    const Picture without = further("agenda", "");
    EXPECT_EQ(without.at(1, gridTop + 1), todayColor);
    EXPECT_EQ(count(without, red), 0);
    import(today("Now", "0900", "1000", "CATEGORIES:Red\r\n"));
    const Picture with = further("agenda", "");
    EXPECT_EQ(with.at(1, gridTop + 1), todayColor);
    EXPECT_GT(count(with, red), 4 * 15) << "the strip of the category";
    EXPECT_EQ(further("agenda", "key Left").at(1, gridTop + 1), headColor) << "the day before that holds something";
    EXPECT_EQ(after("agenda", ""), with);
    EXPECT_EQ(after("agenda", "key Left\ntap 120 38"), with);
}

TEST_F(ZembrikCalendar, AnItemOpensByTapAndByEnterAndTheCardLeadsBack)
{
    import(today("Now", "0900", "1000"));
    const Picture list = after("agenda", "");
    const Picture byPen = after("agenda", "tap 120 112");
    EXPECT_EQ(after("agenda", "key Down\nkey Enter"), byPen);
    EXPECT_EQ(byPen.at(238, 60), selectionColor) << "the head of the card has the cursor";
    const Picture chosen = after("agenda", "key Down");
    EXPECT_GT(rowsOf(chosen, selectionColor, 4), 15);
    for (const char *back : {"key Escape", "key Backspace", "key Enter", "tap 60 34"})
    {
        EXPECT_EQ(after("agenda", std::string("key Down\nkey Enter\n") + back), chosen) << back;
    }
    EXPECT_EQ(rowsOf(list, selectionColor, 4), 0);
}

TEST_F(ZembrikCalendar, APenThatDrawsScrollsAndIsNoTap)
{
    std::string items;
    for (int n = 10; n < 40; ++n)
    {
        items += today("Item" + std::to_string(n), "0900", "1000");
    }
    import(items);
    const Picture list = after("agenda", "");
    const Picture drawn = after("agenda", "pen down 100 200\npen move 100 180\npen move 100 120\nwait 300\npen up 100 120");
    EXPECT_NE(drawn, list);
    EXPECT_NE(drawn.at(1, gridTop + 1), todayColor) << "the head has gone up";
    EXPECT_GT(count(drawn, todayColor, 0, 26, 240, gridTop), 0) << "the bar is still there, so no card is open";
    EXPECT_NE(after("agenda", "pen down 100 200\nwheel -2\npen up 300 300"), list);
}

TEST_F(ZembrikCalendar, StrokesArrowsAndKeysLeafAlike)
{
    std::string items = event("Month", "20261220T080000", "20261220T090000");
    for (int day = 18; day < 30; ++day)
    {
        const std::string date = "202611" + std::to_string(day) + "T";
        items += event("Item" + std::to_string(day), date + "080000", date + "090000");
    }
    import(items);
    for (const char *view : {"agenda", "day", "week", "month"})
    {
        const Picture start = after(view, "");
        const Picture on = after(view, "tap 222 38");
        EXPECT_NE(on, start) << view;
        EXPECT_EQ(after(view, "pen down 180 200\npen move 150 200\npen move 80 204\npen up 80 204"), on) << view;
        EXPECT_EQ(after(view, "key F2\nkey F"), on) << view;
        EXPECT_EQ(after(view, "tap 222 38\ntap 18 38"), start) << view;
        EXPECT_EQ(after(view, "tap 222 38\ntap 222 38\nkey T"), start) << view;
        if (std::string(view) != "day")
        {
            EXPECT_EQ(after(view, "key Ctrl+Right"), on) << view;
        }
    }
    EXPECT_EQ(after("day", "key Ctrl+Right"), after("day", "key Right\nkey Right\nkey Right\nkey Right\nkey Right\n"
                                                           "key Right\nkey Right"));
}

TEST_F(ZembrikCalendar, TheDayShowsBlocksAtTheirTimesSideBySideWhereTheyOverlap)
{
    import(today("One", "1200", "1300", "CATEGORIES:Red\r\n") + today("Two", "0815", "0900") +
           today("Three", "0830", "0930", "TRANSP:TRANSPARENT\r\n"));
    const Picture day = after("day", "");
    const int x = hours + 3; // of the strip
    EXPECT_NEAR(rowsOf(day, todayColor, x), (60 + 45) * slot / 30, 5) << "busy strips as long as they last";
    EXPECT_EQ(day.at(x, yAt(12, 30)), todayColor);
    EXPECT_NE(day.at(x, yAt(8, 10)), todayColor) << "the strip begins a quarter past the half hour";
    EXPECT_EQ(day.at(x, yAt(8, 40)), todayColor);
    const int middle = hours + (240 - 13 - hours) / 2 + 4;
    EXPECT_EQ(day.at(middle, yAt(9)), 0xC9D3DEU) << "the free one has the second half";
    // 26 hundredths of the category's colour.
    EXPECT_EQ(day.at(200, yAt(12, 50)), 0xF7CDCDU);
    EXPECT_EQ(count(day, nowColor, hours + 2, yAt(10), 220, yAt(10) + 2), 2 * (220 - hours - 2)) << "the present moment";
}

TEST_F(ZembrikCalendar, WholeDaysStandOnTopAndOpen)
{
    import(event("Fair", "20261120", "20261122", "CATEGORIES:Red\r\n"));
    const Picture day = after("day", "");
    EXPECT_GT(count(day, red, hours, gridTop, hours + 8, gridTop + 20), 3 * 8);
    const Picture card = after("day", "tap 120 " + std::to_string(gridTop + 7));
    EXPECT_EQ(after("day", "key Tab\nkey Enter"), card);
    EXPECT_NE(card, day);
    const Picture week = after("week", "");
    EXPECT_GT(count(week, paleRed), 2 * 20 * 8) << "on both days";
}

TEST_F(ZembrikCalendar, WeeksBeginAsTheLocaleSaysAndMarkToday)
{
    const int width = (240 - 13 - hours) / 7;
    const auto todayAt = [&](const Picture &week, int column)
    { return week.at(hours + column * width + width / 2, gridTop + 1) == todayColor; };
    const Picture monday = after("week", "");
    EXPECT_TRUE(todayAt(monday, 4));
    EXPECT_FALSE(todayAt(monday, 5));
    locale = "en_US.UTF-8";
    EXPECT_TRUE(todayAt(after("week", ""), 5));
    EXPECT_GT(count(after("month", ""), todayColor, 5 * 34 + 2, gridTop, 6 * 34 + 8, gridBottom), 50);
    locale = "en_GB.UTF-8";
    EXPECT_EQ(after("week", "tap " + std::to_string(hours + 4 * width + 10) + " 60"), after("day", ""));
}

TEST_F(ZembrikCalendar, TheMonthMarksDaysAndATapOpensOne)
{
    import(event("One", "20261103T100000", "20261103T110000", "CATEGORIES:Red\r\n") +
           event("Two", "20261103T120000", "20261103T130000") + today("Here", "1100", "1200"));
    const Picture month = after("month", "");
    // November 2026 begins on a Sunday, so the 3rd is the Tuesday of the second week.
    const int left = 240 / 7 + 1;
    EXPECT_GT(count(month, red, left, gridTop, 2 * left, gridBottom), 3 * 24);
    EXPECT_EQ(count(month, red), count(month, red, left, gridTop, 2 * left, gridBottom));
    EXPECT_GT(count(month, usual, left, gridTop, 2 * left, gridBottom), 3 * 24);
    const Picture third = after("day", "key Ctrl+Left\nkey Ctrl+Left\nkey Left\nkey Left\nkey Left");
    EXPECT_EQ(after("month", "tap 50 130"), third);
    EXPECT_EQ(after("month", "key Up\nkey Up\nkey Left\nkey Left\nkey Left\nkey Enter"), third);
}

TEST_F(ZembrikCalendar, WordsStandInAMonthThatHasRoom)
{
    import(today("Here", "1100", "1200", "CATEGORIES:Red\r\n"));
    const Picture wide = after("month", "", {"--size", "800x600"});
    const int strips = count(wide, red);
    EXPECT_GT(strips, 3 * 8);
    EXPECT_LT(strips, 8 * 20) << "a strip beside words, no bar";
    EXPECT_GT(count(wide, 0xF8DEDEU) + count(wide, 0xF8D5D5U), 50) << "its tint";
}

TEST_F(ZembrikCalendar, ThePlaceIsKeptForTheRestOfTheDay)
{
    const Picture november = after("month", "");
    ASSERT_EQ(play("key PageDown\nkey Ctrl+Q", {"--size", "240x320", "month"}).exitCode, 0);
    const Picture december = further("month", "");
    EXPECT_NE(december, november);
    EXPECT_EQ(further("month", "key PageUp\nkey PageDown"), december);
    now = "2026-11-21T09:00Z";
    const Picture nextDay = further("month", "");
    EXPECT_EQ(after("month", ""), nextDay);
    EXPECT_NE(nextDay, december);
    EXPECT_NE(nextDay, november) << "the mark of today has moved on";
}

TEST_F(ZembrikCalendar, ViewsHandTheDayOnToEachOther)
{
    const Picture next = after("week", "tap 222 38");
    const Picture day = after("day", "key Right\nkey Right\nkey Right\nkey Right\nkey Right\nkey Right\nkey Right");
    EXPECT_EQ(further("week", ""), next) << "from the run before";
    EXPECT_EQ(further("day", ""), day);
    EXPECT_EQ(further("month", "key Enter"), day) << "within a run";
}

TEST_F(ZembrikCalendar, TheMenuKeepsTheSettingsOfTheLists)
{
    import("BEGIN:VTODO\r\nUID:t\r\nSUMMARY:Task\r\nDUE;VALUE=DATE:20261120\r\nCATEGORIES:Red\r\nEND:VTODO\r\n");
    for (const char *view : {"agenda", "day", "week", "month"})
    {
        const std::uint32_t mark = std::string(view) == "week" ? paleRed : red;
        EXPECT_EQ(count(after(view, ""), mark), 0) << view;
        const Picture with = after(view, "key F2\nkey S");
        EXPECT_GT(count(with, mark), 20) << view;
        EXPECT_EQ(further(view, ""), with) << view << ": the next run";
        EXPECT_EQ(count(after(view, "key F2\nkey S"), mark), 0) << view;
    }
}

TEST_F(ZembrikCalendar, PicturesAtTwoDensities)
{
    import(event("Fair", "20261120", "20261122", "CATEGORIES:Red\r\nLOCATION:Hall 4\r\n") +
           today("Breakfast with Nadia", "0800", "0900", "LOCATION:Corner cafe\r\n") +
           today("Call", "0830", "0930", "CATEGORIES:Red\r\n") + today("Lunch", "1100", "1215") +
           event("Daily", "20261116T100000", "20261116T104500", "RRULE:FREQ=DAILY;COUNT=9\r\n"));
    for (const std::string view : {"agenda", "day", "week", "month"})
    {
        EXPECT_TRUE(matchesPicture(after(view, ""), "calendar-" + view + "-96"));
        EXPECT_TRUE(matchesPicture(after(view, "", {"--size", "480x640", "--dpi", "192"}), "calendar-" + view + "-192"));
    }
}
