// The date picker: messages, fields under keys and pen, and the month that drops down.
#include "platform/date_picker.h"
#include "support/PenAndKeys.h"
#include "support/ScreenWindow.h"
#include "support/TextStage.h"

#include <gtest/gtest.h>
#include <utility>

namespace
{
using zb::test::pressKey;
using zb::test::ScreenWindow;
using zb::test::settle;
using zb::test::tapAt;
using zb::test::typeText;

std::string text(const SYSTEMTIME &moment)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%d-%02d-%02d %02d:%02d:%02d", moment.wYear, moment.wMonth, moment.wDay,
                  moment.wHour, moment.wMinute, moment.wSecond);
    return buffer;
}

SYSTEMTIME at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    SYSTEMTIME moment{};
    moment.wYear = static_cast<WORD>(year);
    moment.wMonth = static_cast<WORD>(month);
    moment.wDay = static_cast<WORD>(day);
    moment.wHour = static_cast<WORD>(hour);
    moment.wMinute = static_cast<WORD>(minute);
    moment.wSecond = static_cast<WORD>(second);
    return moment;
}

/// A picker at 10, 10 of 120 by 22, in a font whose letters are 5 wide; the device's date is 2026-03-02.
class DatePickers : public zb::test::TextTest
{
  protected:
    ~DatePickers() override
    {
        zb::keyUp(VK_CONTROL);
        zb::keyUp(VK_MENU);
        DeleteObject(font);
        parent.before = nullptr; // it outlives what hears
    }
    void make(DWORD style, const SYSTEMTIME &shown, const WCHAR *picture = nullptr)
    {
        parent.before = [this](UINT message, WPARAM, LPARAM lParam, LRESULT &)
        {
            if (message == WM_NOTIFY)
            {
                const auto &header = *reinterpret_cast<NMHDR *>(lParam);
                codes.push_back(static_cast<int>(header.code));
                if (header.code == DTN_DATETIMECHANGE)
                {
                    told = reinterpret_cast<NMDATETIMECHANGE *>(lParam)->dwFlags == GDT_NONE
                               ? "none"
                               : text(reinterpret_cast<NMDATETIMECHANGE *>(lParam)->st);
                }
            }
            return false;
        };
        picker = CreateWindowExW(0, DATETIMEPICK_CLASSW, u"", style | WS_CHILD | WS_VISIBLE, 10, 10, 120, 22,
                                 parent.window, nullptr, nullptr, nullptr);
        SendMessageW(picker, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        EXPECT_EQ(set(shown), 1);
        if (picture != nullptr)
        {
            EXPECT_EQ(send(DTM_SETFORMATW, 0, reinterpret_cast<LPARAM>(picture)), 1);
        }
        SetFocus(picker);
        settle();
        codes.clear();
    }
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageW(picker, message, wParam, lParam);
    }
    LRESULT set(const SYSTEMTIME &moment) const
    {
        return send(DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&moment));
    }
    std::string shown() const
    {
        SYSTEMTIME moment{};
        const LRESULT kind = send(DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&moment));
        return kind == static_cast<LRESULT>(GDT_VALID) ? text(moment) : "none";
    }
    static void keys(std::initializer_list<int> all, std::initializer_list<int> held = {})
    {
        for (const int key : all)
        {
            pressKey(key, held);
        }
    }
    HWND month() const
    {
        return reinterpret_cast<HWND>(send(DTM_GETMONTHCAL));
    }
    /// The open month's client area is 210 by 206: a header of 28, names of 20, six rows of 22 with seven days of 30.
    void tapMonth(int x, int y) const
    {
        POINT point{x, y};
        ClientToScreen(month(), &point);
        tapAt(point.x, point.y);
    }
    std::vector<int> takeCodes()
    {
        return std::exchange(codes, {});
    }
    using Codes = std::vector<int>;

    ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 300, 300};
    LOGFONTW description = zb::test::plainFont(10);
    HFONT font = CreateFontIndirectW(&description);
    HWND picker = nullptr;
    Codes codes;
    std::string told;
};

constexpr int changed = -759;
} // namespace

TEST_F(DatePickers, TheNumbersThatHostsSend)
{
    EXPECT_EQ(DTM_GETSYSTEMTIME, 0x1001U);
    EXPECT_EQ(DTM_SETSYSTEMTIME, 0x1002U);
    EXPECT_EQ(DTM_SETFORMATW, 0x1032U);
    EXPECT_EQ(DTN_DATETIMECHANGE, 0xFFFFFD09U);
    EXPECT_EQ(DTN_DROPDOWN, 0xFFFFFD0EU);
    EXPECT_EQ(DTN_CLOSEUP, 0xFFFFFD0FU);
}

TEST_F(DatePickers, MomentsBySilentMessages)
{
    make(0, at(2026, 3, 19, 15, 7, 30));
    EXPECT_EQ(shown(), "2026-03-19 15:07:30");
    SYSTEMTIME moment{};
    send(DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&moment));
    EXPECT_EQ(moment.wDayOfWeek, 4) << "a Thursday, whatever was given";
    EXPECT_EQ(set(at(2026, 2, 30)), 0);
    EXPECT_EQ(set(at(1600, 1, 1)), 0);
    EXPECT_EQ(set(at(10000, 1, 1)), 0);
    EXPECT_EQ(send(DTM_SETSYSTEMTIME, GDT_NONE), 0) << "there always is a date without a check box";
    EXPECT_EQ(shown(), "2026-03-19 15:07:30");
    EXPECT_EQ(takeCodes(), Codes{});
}

TEST_F(DatePickers, BeginsWithNow)
{
    picker =
        CreateWindowExW(0, DATETIMEPICK_CLASSW, u"", WS_CHILD, 0, 0, 9, 9, parent.window, nullptr, nullptr, nullptr);
    EXPECT_EQ(shown(), "2026-03-02 10:00:00") << "nine o'clock of UTC in Berlin";
}

TEST_F(DatePickers, ARangeHoldsWhatIsShown)
{
    make(0, at(2026, 3, 19));
    const SYSTEMTIME range[2] = {at(2026, 3, 20), at(2026, 4, 2)};
    EXPECT_EQ(send(DTM_SETRANGE, GDTR_MIN | GDTR_MAX, reinterpret_cast<LPARAM>(range)), 1);
    EXPECT_EQ(shown(), "2026-03-20 00:00:00");
    EXPECT_EQ(set(at(2026, 3, 19)), 0);
    EXPECT_EQ(set(at(2026, 4, 3)), 0);
    keys({VK_UP, VK_UP}); // the month, twice
    EXPECT_EQ(shown(), "2026-04-02 00:00:00");
    SYSTEMTIME both[2] = {};
    EXPECT_EQ(send(DTM_GETRANGE, 0, reinterpret_cast<LPARAM>(both)), 3);
    EXPECT_EQ(text(both[1]), "2026-04-02 00:00:00");
    EXPECT_EQ(send(DTM_SETRANGE, 0, 0), 1);
    EXPECT_EQ(send(DTM_GETRANGE, 0, reinterpret_cast<LPARAM>(both)), 0);
    EXPECT_EQ(set(at(1999, 1, 1)), 1);
}

TEST_F(DatePickers, ArrowsChangeTheMarkedField)
{
    make(0, at(2026, 1, 31)); // month, day, year
    keys({VK_UP});
    EXPECT_EQ(told, "2026-02-28 00:00:00");
    keys({VK_UP});
    EXPECT_EQ(told, "2026-03-31 00:00:00") << "the day that was asked for comes back";
    keys({VK_RIGHT, VK_UP});
    EXPECT_EQ(shown(), "2026-03-01 00:00:00") << "around within the month";
    keys({VK_DOWN});
    EXPECT_EQ(shown(), "2026-03-31 00:00:00");
    keys({VK_RIGHT, VK_RIGHT, VK_DOWN});
    EXPECT_EQ(shown(), "2025-03-31 00:00:00");
    keys({VK_LEFT, VK_HOME});
    EXPECT_EQ(shown(), "2025-03-01 00:00:00");
    keys({VK_END});
    EXPECT_EQ(shown(), "2025-03-31 00:00:00");
    keys({VK_LEFT, VK_HOME, VK_DOWN});
    EXPECT_EQ(shown(), "2025-12-31 00:00:00") << "months go around, too";
    EXPECT_EQ(takeCodes(), Codes(9, changed));
}

TEST_F(DatePickers, DigitsFillFieldsAndGoOn)
{
    make(DTS_SHORTDATECENTURYFORMAT, at(2026, 1, 31));
    typeText(u"2"); // no month begins with it but this one
    EXPECT_EQ(shown(), "2026-02-28 00:00:00");
    typeText(u"14");
    EXPECT_EQ(shown(), "2026-02-14 00:00:00");
    typeText(u"1999");
    EXPECT_EQ(shown(), "1999-02-14 00:00:00");
    EXPECT_EQ(takeCodes(), (Codes{changed, changed, changed}));
    keys({VK_LEFT, VK_LEFT});
    typeText(u"1/");
    EXPECT_EQ(shown(), "1999-01-14 00:00:00") << "a separator ends a field";
    typeText(u"0");
    typeText(u"\b3");
    EXPECT_EQ(shown(), "1999-01-14 00:00:00") << "not yet all of it";
    keys({VK_RIGHT});
    EXPECT_EQ(shown(), "1999-01-03 00:00:00");
    typeText(u"29");
    SetFocus(parent.window);
    EXPECT_EQ(shown(), "2029-01-03 00:00:00") << "two digits of a year";
    SetFocus(picker);
    typeText(u"30");
    keys({VK_LEFT});
    EXPECT_EQ(shown(), "1930-01-03 00:00:00");
    typeText(u"99");
    EXPECT_EQ(shown(), "1930-01-09 00:00:00") << "what can't follow begins anew";
}

TEST_F(DatePickers, ADayOfAMonthStillToCome)
{
    make(0, at(2026, 2, 10), u"dd.MM.yyyy");
    typeText(u"3103");
    EXPECT_EQ(shown(), "2026-03-31 00:00:00");
}

TEST_F(DatePickers, NamesByTheirFirstLetters)
{
    make(DTS_LONGDATEFORMAT, at(2026, 3, 19)); // Thursday, March 19, 2026
    typeText(u"s");
    EXPECT_EQ(shown(), "2026-03-21 00:00:00") << "Saturday";
    typeText(u"S");
    EXPECT_EQ(shown(), "2026-03-22 00:00:00") << "Sunday";
    keys({VK_RIGHT});
    typeText(u"a");
    EXPECT_EQ(shown(), "2026-04-22 00:00:00");
    typeText(u"a");
    EXPECT_EQ(shown(), "2026-08-22 00:00:00");
    typeText(u"x");
    EXPECT_EQ(shown(), "2026-08-22 00:00:00");
}

TEST_F(DatePickers, Times)
{
    make(DTS_TIMEFORMAT, at(2026, 3, 19, 15, 7, 30)); // 3:07:30 PM
    typeText(u"11");
    EXPECT_EQ(shown(), "2026-03-19 23:07:30") << "the half of the day stays";
    typeText(u"12");
    EXPECT_EQ(shown(), "2026-03-19 23:12:30");
    typeText(u"7"); // no seconds begin with it
    EXPECT_EQ(shown(), "2026-03-19 23:12:07");
    typeText(u"a");
    EXPECT_EQ(shown(), "2026-03-19 11:12:07");
    keys({VK_UP});
    EXPECT_EQ(shown(), "2026-03-19 23:12:07");
    keys({VK_LEFT, VK_LEFT, VK_LEFT, VK_UP});
    EXPECT_EQ(shown(), "2026-03-19 00:12:07");
    typeText(u"12");
    EXPECT_EQ(shown(), "2026-03-19 00:12:07") << "twelve at night";
    tapAt(10 + 85, 21); // the arrow up
    EXPECT_EQ(shown(), "2026-03-19 00:13:07") << "of the minutes, where the mark has gone";
    tapAt(10 + 110, 21);
    EXPECT_EQ(shown(), "2026-03-19 00:12:07");
    keys({VK_F4});
    EXPECT_EQ(month(), nullptr);
}

TEST_F(DatePickers, ACheckBoxForNoDate)
{
    make(DTS_SHOWNONE, at(2026, 3, 19));
    tapAt(10 + 10, 21);
    EXPECT_EQ(shown(), "none");
    EXPECT_EQ(told, "none");
    keys({VK_UP});
    typeText(u"5");
    EXPECT_EQ(takeCodes(), (Codes{changed}));
    typeText(u" ");
    EXPECT_EQ(told, "2026-03-19 00:00:00");
    EXPECT_EQ(send(DTM_SETSYSTEMTIME, GDT_NONE), 1);
    EXPECT_EQ(shown(), "none");
    keys({VK_F4});
    EXPECT_EQ(shown(), "2026-03-19 00:00:00") << "who asks for the month wants a date";
}

TEST_F(DatePickers, ATapMarksAField)
{
    make(DTS_SHORTDATECENTURYFORMAT, at(2026, 3, 19)); // "3/19/2026" from 4 on, 5 a letter
    tapAt(10 + 4 + 12, 21);
    keys({VK_UP});
    EXPECT_EQ(shown(), "2026-03-20 00:00:00");
    tapAt(10 + 4 + 40, 21);
    keys({VK_UP});
    EXPECT_EQ(shown(), "2027-03-20 00:00:00");
    tapAt(10 + 3, 21);
    keys({VK_UP});
    EXPECT_EQ(shown(), "2027-04-20 00:00:00");
}

TEST_F(DatePickers, TheMonthByPen)
{
    make(0, at(2026, 3, 19, 8, 30));
    tapAt(10 + 110, 21);
    ASSERT_NE(month(), nullptr);
    RECT place{};
    GetWindowRect(month(), &place);
    EXPECT_TRUE(zb::test::is(place, 10, 31, 10 + 212, 31 + 208)) << "below, on the field's frame";
    EXPECT_EQ(takeCodes(), (Codes{-754}));
    tapMonth(45, 59); // Sunday is first: the second day of the first row is the 2nd
    EXPECT_EQ(shown(), "2026-03-02 08:30:00");
    EXPECT_EQ(month(), nullptr);
    EXPECT_EQ(takeCodes(), (Codes{-753, changed}));
    tapAt(10 + 110, 21);
    tapMonth(110, 14); // a month later
    tapMonth(200, 14); // a year later
    tapMonth(200, 14);
    tapMonth(130, 14); // a year back
    EXPECT_EQ(takeCodes(), (Codes{-754})) << "nothing is taken by looking around";
    tapMonth(15, 59);
    EXPECT_EQ(shown(), "2027-03-28 08:30:00") << "the week in which April 2027 begins";
    tapAt(10 + 110, 21);
    tapMonth(100, 195); // today
    EXPECT_EQ(shown(), "2026-03-02 08:30:00");
    tapAt(10 + 110, 21);
    takeCodes();
    tapAt(290, 290);
    EXPECT_EQ(month(), nullptr);
    EXPECT_EQ(takeCodes(), (Codes{-753})) << "a tap beside gives up";
    zb::penDown(10 + 110, 21);
    settle();
    POINT day{75, 103};
    ClientToScreen(month(), &day);
    zb::penMove(day.x, day.y);
    settle();
    zb::penUp(day.x, day.y);
    settle();
    EXPECT_EQ(shown(), "2026-03-17 08:30:00") << "one stroke from the button to a day";
}

TEST_F(DatePickers, TheMonthByKeys)
{
    make(0, at(2026, 3, 31));
    keys({VK_F4, VK_NEXT});
    EXPECT_EQ(shown(), "2026-03-31 00:00:00");
    keys({VK_NEXT, VK_RETURN});
    EXPECT_EQ(shown(), "2026-05-31 00:00:00") << "a month of 30 days in between changes nothing";
    keys({VK_F4, VK_LEFT, VK_UP, VK_ESCAPE});
    EXPECT_EQ(shown(), "2026-05-31 00:00:00");
    EXPECT_EQ(month(), nullptr);
    typeText(u" ");
    ASSERT_NE(month(), nullptr);
    keys({VK_PRIOR}, {VK_CONTROL});
    keys({VK_HOME, VK_RIGHT, VK_DOWN, VK_SPACE});
    EXPECT_EQ(shown(), "2025-05-09 00:00:00");
    const SYSTEMTIME range[2] = {at(2025, 5, 5), at(2025, 5, 20)};
    send(DTM_SETRANGE, GDTR_MIN | GDTR_MAX, reinterpret_cast<LPARAM>(range));
    keys({VK_F4, VK_PRIOR, VK_RETURN});
    EXPECT_EQ(shown(), "2025-05-05 00:00:00");
    keys({VK_F4, VK_END, VK_RETURN});
    EXPECT_EQ(shown(), "2025-05-20 00:00:00");
    keys({VK_F4});
    tapMonth(15 + 4 * 30, 59); // the 1st, a Thursday
    EXPECT_NE(month(), nullptr) << "out of range";
    SetFocus(parent.window);
    EXPECT_EQ(month(), nullptr);
}

TEST_F(DatePickers, PicturesOfTheHost)
{
    make(0, at(2026, 3, 19));
    EXPECT_EQ(send(DTM_SETFORMATW, 0, reinterpret_cast<LPARAM>(u"yyyy'-y-'MM dddd")), 1);
    keys({VK_UP});
    EXPECT_EQ(shown(), "2027-03-19 00:00:00") << "the picture's first field, not the letter in its text";
    keys({VK_RIGHT, VK_UP});
    EXPECT_EQ(shown(), "2027-04-19 00:00:00");
    keys({VK_RIGHT, VK_DOWN});
    EXPECT_EQ(shown(), "2027-04-18 00:00:00");
    EXPECT_EQ(send(DTM_SETFORMATW, 0, 0), 1);
    keys({VK_UP});
    EXPECT_EQ(shown(), "2027-05-18 00:00:00") << "the locale's again: month first";
}

TEST_F(DatePickers, AParentMayDestroyItInAnyNotification)
{
    for (const int code : {changed, -754, -753})
    {
        make(0, at(2026, 3, 19));
        const HWND gone = picker;
        parent.before = [this, code](UINT message, WPARAM, LPARAM lParam, LRESULT &)
        {
            if (message == WM_NOTIFY && static_cast<int>(reinterpret_cast<NMHDR *>(lParam)->code) == code)
            {
                parent.before = nullptr;
                DestroyWindow(picker);
            }
            return false;
        };
        keys({VK_F4, VK_RIGHT, VK_RETURN});
        EXPECT_EQ(IsWindow(gone), FALSE) << code;
    }
}

TEST(DatePickerLocales, DecideOnTheOrderOfFieldsAndWeeks)
{
    zb::DeviceOptions options;
    options.locale = "de-DE";
    const zb::test::TestDevice device(options);
    const ScreenWindow parent{RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, 300, 300};
    const HWND picker = CreateWindowExW(0, DATETIMEPICK_CLASSW, u"", WS_CHILD | WS_VISIBLE, 10, 10, 120, 22,
                                        parent.window, nullptr, nullptr, nullptr);
    SetFocus(picker);
    SYSTEMTIME moment{};
    SendMessageW(picker, WM_KEYDOWN, VK_UP, 0);
    SendMessageW(picker, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&moment));
    EXPECT_EQ(text(moment), "2026-03-03 10:00:00") << "the day comes first";
    SendMessageW(picker, WM_KEYDOWN, VK_F4, 0);
    const auto month = reinterpret_cast<HWND>(SendMessageW(picker, DTM_GETMONTHCAL, 0, 0));
    SendMessageW(month, WM_LBUTTONDOWN, 0, zb::test::pair(15, 59));
    SendMessageW(month, WM_LBUTTONUP, 0, zb::test::pair(15, 59));
    SendMessageW(picker, DTM_GETSYSTEMTIME, 0, reinterpret_cast<LPARAM>(&moment));
    EXPECT_EQ(text(moment), "2026-02-23 10:00:00") << "weeks begin on Monday";
}
