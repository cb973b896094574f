// How date pickers and their month look, at two densities.
#include "platform/date_picker.h"
#include "support/ControlSheet.h"

namespace
{
using namespace zb::test;

class DatePickerPictures : public ControlSheet
{
  protected:
    HWND picker(DWORD style, int x, int y, int width) const
    {
        const HWND made = add(DATETIMEPICK_CLASSW, u"", style, x, y, width, 22);
        const SYSTEMTIME shown{2026, 3, 0, 19, 15, 7, 30, 0};
        EXPECT_EQ(SendMessageW(made, DTM_SETSYSTEMTIME, GDT_VALID, reinterpret_cast<LPARAM>(&shown)), 1);
        return made;
    }
};
} // namespace

TEST_P(DatePickerPictures, EveryState)
{
    // Left: the forms; then with a check box set, cleared, disabled, too narrow, in a picture of the host's.
    picker(DTS_SHORTDATEFORMAT, 6, 6, 110);
    picker(DTS_SHORTDATECENTURYFORMAT, 122, 6, 110);
    picker(DTS_LONGDATEFORMAT, 6, 34, 226);
    picker(DTS_TIMEFORMAT, 6, 62, 140);
    picker(DTS_SHOWNONE, 6, 90, 110);
    const HWND none = picker(DTS_SHOWNONE, 122, 90, 110);
    SendMessageW(none, DTM_SETSYSTEMTIME, GDT_NONE, 0);
    picker(DTS_SHOWNONE | WS_DISABLED, 6, 118, 110);
    picker(DTS_TIMEFORMAT | WS_DISABLED, 122, 118, 110);
    picker(DTS_LONGDATEFORMAT, 6, 146, 110);
    const HWND own = picker(0, 122, 146, 110);
    SendMessageW(own, DTM_SETFORMATW, 0, reinterpret_cast<LPARAM>(u"'W' ddd d.M. HH:mm"));
    const HWND typed = picker(DTS_SHORTDATECENTURYFORMAT, 6, 174, 110);
    // Right: the open month, its range beginning today.
    const HWND open = picker(DTS_RIGHTALIGN | DTS_SHORTDATECENTURYFORMAT, 300, 6, 150);
    const SYSTEMTIME range[2] = {{2026, 3, 0, 2, 0, 0, 0, 0}, {}};
    SendMessageW(open, DTM_SETRANGE, GDTR_MIN, reinterpret_cast<LPARAM>(range));
    SetFocus(typed);
    SendMessageW(typed, WM_KEYDOWN, VK_RIGHT, 0);
    expectSheet("date-picker");
    SetFocus(open);
    SendMessageW(open, WM_KEYDOWN, VK_F4, 0);
    expectSheet("date-picker-open");
}

INSTANTIATE_TEST_SUITE_P(Densities, DatePickerPictures, ::testing::Values(96, 192));
