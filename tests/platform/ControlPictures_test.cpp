// How the standard controls look in all their states: a sheet of each, at two densities.
#include "platform/controls.h"
#include "platform/image_list.h"
#include "platform/property_sheet.h"
#include "platform/resources.h"
#include "platform/tab_control.h"
#include "support/DialogBytes.h"
#include "support/LoopScript.h"
#include "support/Picture.h"
#include "support/ScreenWindow.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace
{
using namespace zb::test;

const std::filesystem::path facesFolder = "/usr/share/fonts/truetype/dejavu";

/// All places are given in pixels at 96 dots an inch. Only one control can have the focus, so those that are to show it
/// get it one after the other, and each is put into the picture as it looked then.
class ControlPictures : public ::testing::TestWithParam<int>
{
  protected:
    void SetUp() override
    {
        if (!std::filesystem::exists(facesFolder / "DejaVuSans.ttf"))
        {
            GTEST_SKIP() << "no DejaVu Sans here";
        }
        zb::DeviceOptions options;
        options.screen = {dots(240), dots(height), GetParam()};
        options.fonts.files = {facesFolder / "DejaVuSans.ttf", facesFolder / "DejaVuSans-Bold.ttf"};
        device = std::make_unique<TestDevice>(options);
        sheet =
            std::make_unique<ScreenWindow>(RGB(255, 255, 255), WS_POPUP | WS_VISIBLE, 0, 0, dots(240), dots(height));
    }
    int dots(int pixels) const
    {
        return pixels * GetParam() / 96;
    }
    HWND make(const WCHAR *type, const WCHAR *text, DWORD style, int x, int y, int wide, int high) const
    {
        return CreateWindowExW(0, type, text, style | WS_CHILD | WS_VISIBLE, dots(x), dots(y), dots(wide), dots(high),
                               sheet->window, nullptr, nullptr, nullptr);
    }
    static Picture shot()
    {
        const HBITMAP screen = zb::captureScreen();
        Picture picture = pictureOf(screen);
        DeleteObject(screen);
        return picture;
    }
    void put(const Picture &from, const RECT &box)
    {
        for (int y = box.top; y < std::min<int>(box.bottom, whole.height); ++y)
        {
            const auto start = static_cast<std::size_t>(y * whole.width + box.left);
            std::copy_n(from.pixels.begin() + static_cast<std::ptrdiff_t>(start), box.right - box.left,
                        whole.pixels.begin() + static_cast<std::ptrdiff_t>(start));
        }
    }
    /// Everything as it is without a focus.
    void begin()
    {
        SetFocus(sheet->window);
        settle();
        whole = shot();
    }
    void addFocused(HWND control)
    {
        SetFocus(control);
        settle();
        RECT box{};
        GetWindowRect(control, &box);
        put(shot(), box);
    }
    void check(const std::string &name)
    {
        EXPECT_TRUE(matchesPicture(whole, "control-" + name + "-" + std::to_string(GetParam())));
    }

    static constexpr int height = 290;
    std::unique_ptr<TestDevice> device;
    std::unique_ptr<ScreenWindow> sheet;
    Picture whole;
};

void fillRows(HWND control, UINT message, int count)
{
    static constexpr const WCHAR *words[] = {u"Appointment", u"Birthday",    u"Conference call with the whole team",
                                             u"Dentist",     u"Every month", u"Flight",
                                             u"Groceries",   u"Holiday"};
    for (int i = 0; i < count; ++i)
    {
        SendMessageW(control, message, 0, reinterpret_cast<LPARAM>(words[i % 8]));
    }
}
} // namespace

TEST_P(ControlPictures, Static)
{
    make(u"STATIC", u"&Left, and wrapped where it is too long for one line", SS_LEFT, 8, 8, 104, 50);
    make(u"STATIC", u"Centre", SS_CENTER | WS_BORDER, 124, 8, 104, 20);
    make(u"STATIC", u"Right", SS_RIGHT | WS_BORDER, 124, 34, 104, 20);
    make(u"STATIC", u"Not wrapped but cut off", SS_LEFTNOWORDWRAP, 8, 66, 104, 18);
    make(u"STATIC", u"Mine && &yours", SS_NOPREFIX, 124, 66, 104, 18);
    make(u"STATIC", u"In the middle", SS_CENTERIMAGE | SS_CENTER | WS_BORDER, 8, 92, 104, 40);
    EnableWindow(make(u"STATIC", u"Disabled", SS_LEFT, 124, 92, 104, 18), FALSE);
    const HWND picture = make(u"STATIC", u"", SS_BITMAP, 8, 142, 48, 48);
    const HBITMAP bitmap = LoadBitmapW(nullptr, MAKEINTRESOURCEW(513));
    SendMessageW(picture, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap));
    const HWND centred = make(u"STATIC", u"", SS_BITMAP | SS_CENTERIMAGE | WS_BORDER, 124, 142, 60, 60);
    SendMessageW(centred, STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap));
    begin();
    check("static");
    DeleteObject(bitmap);
}

TEST_P(ControlPictures, Button)
{
    make(u"BUTTON", u"&Push", BS_PUSHBUTTON, 8, 8, 70, 26);
    make(u"BUTTON", u"Default", BS_DEFPUSHBUTTON, 84, 8, 70, 26);
    const HWND focused = make(u"BUTTON", u"Focus", BS_PUSHBUTTON, 160, 8, 70, 26);
    SendMessageW(make(u"BUTTON", u"Pressed", BS_PUSHBUTTON, 8, 40, 70, 26), BM_SETSTATE, TRUE, 0);
    EnableWindow(make(u"BUTTON", u"Disabled", BS_PUSHBUTTON, 84, 40, 70, 26), FALSE);
    make(u"BUTTON", u"Two lines of words", BS_PUSHBUTTON | BS_MULTILINE, 160, 40, 70, 40);
    int row = 0;
    for (const DWORD kind : {BS_AUTOCHECKBOX, BS_AUTO3STATE, BS_AUTORADIOBUTTON})
    {
        const int y = 84 + 44 * row++;
        make(u"BUTTON", u"Not", kind | WS_GROUP, 8, y, 70, 20);
        SendMessageW(make(u"BUTTON", u"Checked", kind, 84, y, 70, 20), BM_SETCHECK, kind == BS_AUTO3STATE ? 2 : 1, 0);
        const HWND disabled = make(u"BUTTON", u"Disabled", kind, 160, y, 74, 20);
        SendMessageW(disabled, BM_SETCHECK, 1, 0);
        EnableWindow(disabled, FALSE);
        SendMessageW(make(u"BUTTON", u"Pressed", kind, 84, y + 22, 70, 20), BM_SETSTATE, TRUE, 0);
    }
    const HWND check = make(u"BUTTON", u"Focus", BS_AUTOCHECKBOX, 8, 106, 70, 20);
    const HWND radio = make(u"BUTTON", u"Focus", BS_AUTORADIOBUTTON, 8, 194, 70, 20);
    make(u"BUTTON", u"Group of &buttons", BS_GROUPBOX, 4, 218, 150, 38);
    EnableWindow(make(u"BUTTON", u"Disabled", BS_GROUPBOX, 160, 218, 74, 38), FALSE);
    begin();
    for (const HWND one : {focused, check, radio})
    {
        addFocused(one);
    }
    this->check("button");
}

TEST_P(ControlPictures, Edit)
{
    make(u"EDIT", u"One line", WS_BORDER, 8, 8, 104, 22);
    const HWND focused = make(u"EDIT", u"With the caret", WS_BORDER, 124, 8, 104, 22);
    const HWND selected = make(u"EDIT", u"Selected words", WS_BORDER, 8, 36, 104, 22);
    SendMessageW(selected, EM_SETSEL, 0, 8);
    const HWND scrolled = make(u"EDIT", u"One line that is too long for its field", WS_BORDER, 124, 36, 104, 22);
    make(u"EDIT", u"Read only", WS_BORDER | ES_READONLY, 8, 64, 104, 22);
    EnableWindow(make(u"EDIT", u"Disabled", WS_BORDER, 124, 64, 104, 22), FALSE);
    make(u"EDIT", u"Right", WS_BORDER | ES_RIGHT, 8, 92, 104, 22);
    make(u"EDIT", u"Centre", WS_BORDER | ES_CENTER, 124, 92, 104, 22);
    const WCHAR *note =
        u"A note of several lines, wrapped at words.\r\n\r\nIt goes on below and has a bar to scroll it, "
        u"since it is longer than what can be seen of it here.";
    const HWND many = make(u"EDIT", note, WS_BORDER | ES_MULTILINE | WS_VSCROLL, 8, 122, 104, 84);
    SendMessageW(many, EM_SETSEL, 2, 20);
    make(u"EDIT", u"Short", WS_BORDER | ES_MULTILINE | WS_VSCROLL, 124, 122, 104, 40);
    EnableWindow(make(u"EDIT", note, WS_BORDER | ES_MULTILINE, 124, 168, 104, 38), FALSE);
    make(u"EDIT", u"Lines that are\r\nnot wrapped but scrolled", WS_BORDER | ES_MULTILINE | WS_HSCROLL | WS_VSCROLL, 8,
         212, 220, 44);
    begin();
    SendMessageW(focused, EM_SETSEL, 4, 4);
    SendMessageW(scrolled, EM_SETSEL, 100, 100);
    for (const HWND one : {focused, selected, scrolled, many})
    {
        addFocused(one);
        SendMessageW(one, EM_SCROLLCARET, 0, 0);
        addFocused(one);
    }
    check("edit");
}

TEST_P(ControlPictures, ListBox)
{
    const HWND one = make(u"LISTBOX", u"", WS_BORDER | WS_VSCROLL, 8, 8, 108, 82);
    fillRows(one, LB_ADDSTRING, 8);
    SendMessageW(one, LB_SETCURSEL, 2, 0);
    const HWND short1 = make(u"LISTBOX", u"", WS_BORDER | WS_VSCROLL, 124, 8, 108, 82);
    fillRows(short1, LB_ADDSTRING, 3);
    SendMessageW(short1, LB_SETCURSEL, 1, 0);
    const HWND many = make(u"LISTBOX", u"", WS_BORDER | LBS_EXTENDEDSEL | WS_VSCROLL, 8, 98, 108, 82);
    fillRows(many, LB_ADDSTRING, 8);
    SendMessageW(many, LB_SELITEMRANGE, TRUE, MAKELONG(0, 1));
    SendMessageW(many, LB_SETSEL, TRUE, 3);
    const HWND disabled = make(u"LISTBOX", u"", WS_BORDER | WS_VSCROLL, 124, 98, 108, 82);
    fillRows(disabled, LB_ADDSTRING, 8);
    SendMessageW(disabled, LB_SETCURSEL, 0, 0);
    EnableWindow(disabled, FALSE);
    const HWND empty = make(u"LISTBOX", u"", WS_BORDER | WS_VSCROLL, 8, 188, 108, 60);
    const HWND bar = make(u"LISTBOX", u"", WS_BORDER | WS_VSCROLL | LBS_DISABLENOSCROLL, 124, 188, 108, 62);
    fillRows(bar, LB_ADDSTRING, 2);
    begin();
    for (const HWND shown : {short1, many, empty})
    {
        addFocused(shown);
    }
    check("listbox");
}

TEST_P(ControlPictures, ComboBox)
{
    const auto make4 = [this](DWORD style, int x, int y, const WCHAR *text)
    {
        const HWND combo = make(u"COMBOBOX", u"", style | WS_VSCROLL, x, y, 108, 110);
        fillRows(combo, CB_ADDSTRING, 8);
        SendMessageW(combo, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text));
        return combo;
    };
    make4(CBS_DROPDOWNLIST, 8, 8, u"Dentist");
    const HWND focused = make4(CBS_DROPDOWNLIST, 124, 8, u"Dentist");
    make4(CBS_DROPDOWN, 8, 36, u"Birthday");
    const HWND edited = make4(CBS_DROPDOWN, 124, 36, u"Birthday");
    EnableWindow(make4(CBS_DROPDOWNLIST, 8, 64, u"Conf"), FALSE);
    EnableWindow(make4(CBS_DROPDOWN, 124, 64, u"Conf"), FALSE);
    const HWND simple = make4(CBS_SIMPLE, 8, 94, u"Dentist");
    make4(CBS_DROPDOWNLIST, 8, 212, u"Conf");
    const HWND open = make4(CBS_DROPDOWNLIST, 124, 112, u"Birthday");
    begin();
    for (const HWND one : {focused, edited, simple})
    {
        addFocused(one);
    }
    SendMessageW(open, CB_SHOWDROPDOWN, TRUE, 0);
    settle();
    RECT box{};
    SendMessageW(open, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&box));
    put(shot(), box);
    check("combobox");
}

TEST_P(ControlPictures, ScrollBar)
{
    const auto bar = [this](DWORD style, int x, int y, int wide, int high, UINT page, int position)
    {
        const HWND one = make(u"SCROLLBAR", u"", style | WS_TABSTOP, x, y, wide, high);
        const SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, 99, page, position, 0};
        SetScrollInfo(one, SB_CTL, &info, TRUE);
        return one;
    };
    bar(SBS_HORZ, 8, 8, 140, 13, 20, 0);
    bar(SBS_HORZ, 8, 28, 140, 13, 50, 50);
    bar(SBS_HORZ, 8, 48, 140, 13, 2, 40);
    bar(SBS_HORZ, 8, 68, 140, 13, 100, 0);
    EnableWindow(bar(SBS_HORZ, 8, 88, 140, 13, 20, 30), FALSE);
    const HWND focused = bar(SBS_HORZ, 8, 108, 140, 20, 30, 30);
    bar(SBS_HORZ, 8, 136, 30, 13, 20, 30);
    bar(SBS_VERT, 160, 8, 13, 120, 20, 0);
    const HWND pressed = bar(SBS_VERT, 180, 8, 13, 120, 20, 30);
    const HWND held = bar(SBS_VERT, 200, 8, 13, 120, 20, 30);
    begin();
    addFocused(focused);
    for (const auto &[control, along] : {std::pair(pressed, 4), std::pair(held, 55)})
    {
        RECT box{};
        GetWindowRect(control, &box);
        zb::penDown(box.left + dots(5), box.top + dots(along));
        settle();
        put(shot(), box);
        zb::penUp(box.left + dots(5), box.top + dots(along));
        settle();
    }
    check("scrollbar");
}

TEST_P(ControlPictures, Tabs)
{
    const auto tabs = [this](DWORD style, int y, int chosen, std::initializer_list<const WCHAR *> words)
    {
        const HWND control = make(WC_TABCONTROLW, u"", style | WS_BORDER, 8, y, 222, 42);
        for (const WCHAR *one : words)
        {
            std::u16string text = one;
            const TCITEMW item{TCIF_TEXT, 0, 0, text.data(), 0, -1, 0};
            SendMessageW(control, TCM_INSERTITEMW, 99, reinterpret_cast<LPARAM>(&item));
        }
        SendMessageW(control, TCM_SETCURSEL, static_cast<WPARAM>(chosen), 0);
        return control;
    };
    tabs(0, 8, 1, {u"Task", u"Notes", u"Links"});
    const HWND focused = tabs(TCS_BOTTOM, 56, 0, {u"Task", u"Notes", u"Links"});
    tabs(TCS_BOTTOM, 104, 2, {u"Appointment", u"Notes", u"Links", u"Log"});
    tabs(TCS_BOTTOM, 152, 3, {u"Appointment", u"Notes", u"Attendees", u"Categories", u"Links", u"Journal"});
    EnableWindow(tabs(TCS_BOTTOM, 200, 1, {u"Task", u"Notes", u"Links"}), FALSE);
    const HWND pictures = tabs(TCS_BOTTOM, 216, 1, {u"Task", u"Repeats", u""});
    MoveWindow(pictures, dots(8), dots(246), dots(222), dots(14 + 28), TRUE);
    const HIMAGELIST images = ImageList_LoadImage(nullptr, MAKEINTRESOURCEW(207), 0, 0, CLR_NONE, IMAGE_BITMAP, 0);
    ASSERT_NE(images, nullptr);
    SendMessageW(pictures, TCM_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
    for (const int index : {1, 2})
    {
        const TCITEMW item{TCIF_IMAGE, 0, 0, nullptr, 0, 0, 0};
        SendMessageW(pictures, TCM_SETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
    }
    begin();
    addFocused(focused);
    check("tabs");
    ImageList_Destroy(images);
}

TEST_P(ControlPictures, PropertySheet)
{
    DialogBytes bytes(WS_POPUP | WS_VISIBLE, 0, 0, 130, 100, u"Task");
    bytes.item(zb::DIALOG_STATIC, SS_LEFT, 6, 8, 36, 10, 0xFFFF, u"Subject:")
        .item(zb::DIALOG_EDIT, WS_TABSTOP | WS_BORDER, 44, 6, 84, 14, 10, u"Buy milk")
        .item(zb::DIALOG_STATIC, SS_LEFT, 6, 27, 36, 10, 0xFFFF, u"Priority:")
        .item(zb::DIALOG_COMBOBOX, WS_TABSTOP | CBS_DROPDOWNLIST, 44, 25, 84, 80, 11)
        .item(zb::DIALOG_BUTTON, WS_TABSTOP | BS_AUTOCHECKBOX, 44, 46, 84, 12, 12, u"Completed")
        .item(zb::DIALOG_EDIT, WS_TABSTOP | WS_BORDER | ES_MULTILINE | WS_VSCROLL, 6, 64, 122, 90, 13,
              u"The page goes on below.");
    std::array<PROPSHEETPAGEW, 4> pages{};
    const WCHAR *titles[] = {u"Task", u"Notes", u"Categories", u"Links"};
    for (std::size_t i = 0; i < pages.size(); ++i)
    {
        pages[i].dwSize = sizeof(PROPSHEETPAGEW);
        pages[i].dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
        pages[i].pResource = bytes.data();
        pages[i].pszTitle = titles[i];
        pages[i].pfnDlgProc = [](HWND window, UINT message, WPARAM, LPARAM) -> LONG_PTR
        {
            if (message == WM_INITDIALOG)
            {
                fillRows(GetDlgItem(window, 11), CB_ADDSTRING, 4);
                SendDlgItemMessageW(window, 11, CB_SETCURSEL, 0, 0);
            }
            return message == WM_INITDIALOG ? 1 : 0;
        };
    }
    PROPSHEETHEADERW header{};
    header.dwSize = sizeof header;
    header.dwFlags = PSH_PROPSHEETPAGE;
    header.hwndParent = sheet->window;
    header.pszCaption = u"Buy milk";
    header.nPages = 4;
    header.ppsp = pages.data();
    const LoopScript script({[this] { whole = shot(); }, key(VK_ESCAPE)});
    EXPECT_EQ(PropertySheetW(&header), 0);
    EXPECT_TRUE(script.isDone());
    check("sheet");
}

INSTANTIATE_TEST_SUITE_P(Densities, ControlPictures, ::testing::Values(96, 192));
