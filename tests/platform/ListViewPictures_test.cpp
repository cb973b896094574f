// How list views look, at two densities.
#include "platform/list_view.h"
#include "support/ControlSheet.h"

namespace
{
using namespace zb::test;

class ListViewPictures : public ControlSheet
{
  protected:
    ~ListViewPictures() override
    {
        if (images != nullptr)
        {
            ImageList_Destroy(images);
        }
    }
    static void column(HWND list, int number, const WCHAR *title, int width, int format = LVCFMT_LEFT)
    {
        std::u16string text = title;
        LVCOLUMNW given{LVCF_TEXT | LVCF_WIDTH | LVCF_FMT, format, width, text.data(), 0, 0, 0, 0};
        SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(number), reinterpret_cast<LPARAM>(&given));
    }
    static void row(HWND list, int number, std::initializer_list<const WCHAR *> texts, int image = 0)
    {
        int column = 0;
        for (const WCHAR *one : texts)
        {
            std::u16string text = one;
            LVITEMW given{
                LVIF_TEXT | (column == 0 ? LVIF_IMAGE : 0), number, column, 0, 0, text.data(), 0, image, 0, 0};
            SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&given));
            ++column;
        }
    }
    static void state(HWND list, int row, UINT state, UINT mask)
    {
        LVITEMW given{LVIF_STATE, row, 0, state, mask, nullptr, 0, 0, 0, 0};
        SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&given));
    }
    void addImages(HWND list)
    {
        if (images == nullptr)
        {
            const int side = dots(16);
            const HDC context = CreateCompatibleDC(nullptr);
            const HDC screen = GetDC(nullptr);
            const HBITMAP bitmap = CreateCompatibleBitmap(screen, 2 * side, side);
            ReleaseDC(nullptr, screen);
            const HGDIOBJ former = SelectObject(context, bitmap);
            for (int i = 0; i < 2; ++i)
            {
                const RECT box{i * side, 0, (i + 1) * side, side};
                const HBRUSH key = CreateSolidBrush(RGB(255, 0, 255));
                const HBRUSH brush = CreateSolidBrush(i == 0 ? RGB(0xC0, 0x40, 0x30) : RGB(0x30, 0x80, 0x50));
                FillRect(context, &box, key);
                const RECT inner{box.left + dots(2), dots(2), box.right - dots(2), side - dots(2)};
                FillRect(context, &inner, brush);
                DeleteObject(brush);
                DeleteObject(key);
            }
            SelectObject(context, former);
            DeleteDC(context);
            images = ImageList_Create(side, side, ILC_COLOR32 | ILC_MASK, 2, 0);
            ImageList_AddMasked(images, bitmap, RGB(255, 0, 255));
            DeleteObject(bitmap);
        }
        SendMessageW(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));
    }
    /// Three columns; more rows than fit.
    HWND report(DWORD style, DWORD extended, int x, int y, int width, int height)
    {
        const HWND list = add(WC_LISTVIEWW, u"", LVS_REPORT | WS_BORDER | style, x, y, width, height);
        SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(extended));
        column(list, 0, u"Name", dots(90));
        column(list, 1, u"Size", dots(50), LVCFMT_RIGHT);
        column(list, 2, u"Date", dots(70), LVCFMT_CENTER);
        const WCHAR *names[] = {u"Business", u"Holiday", u"Personal and private", u"Travel", u"Meetings", u"Reading"};
        for (int i = 0; i < 6; ++i)
        {
            row(list, i, {names[i], u"12 KB", u"1/2/2005"}, i % 2);
        }
        return list;
    }
    HIMAGELIST images = nullptr;
};
} // namespace

TEST_P(ListViewPictures, EveryState)
{
    // Left: the focus in a report with pictures and check boxes; below it rows alone, then a disabled one.
    const HWND first = report(LVS_EDITLABELS, LVS_EX_FULLROWSELECT | LVS_EX_CHECKBOXES, 6, 6, 232, 130);
    addImages(first);
    state(first, 1, INDEXTOSTATEIMAGEMASK(2), LVIS_STATEIMAGEMASK);
    state(first, 1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    HDITEMW arrow{HDI_FORMAT, 0, nullptr, nullptr, 0, HDF_SORTUP, 0};
    SendMessageW(reinterpret_cast<HWND>(SendMessageW(first, LVM_GETHEADER, 0, 0)), HDM_SETITEMW, 0,
                 reinterpret_cast<LPARAM>(&arrow));
    const HWND plain =
        add(WC_LISTVIEWW, u"", LVS_LIST | LVS_SINGLESEL | LVS_SHOWSELALWAYS | WS_BORDER, 6, 144, 110, 86);
    SendMessageW(plain, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_CHECKBOXES);
    row(plain, 0, {u"Overdue"});
    row(plain, 1, {u"Waiting for somebody"});
    row(plain, 2, {u"Done"});
    state(plain, 1, LVIS_SELECTED, LVIS_SELECTED);
    state(plain, 2, INDEXTOSTATEIMAGEMASK(2), LVIS_STATEIMAGEMASK);
    const HWND disabled =
        report(LVS_NOCOLUMNHEADER | LVS_SHOWSELALWAYS | WS_DISABLED, LVS_EX_CHECKBOXES, 124, 144, 114, 86);
    state(disabled, 0, LVIS_SELECTED, LVIS_SELECTED);
    add(WC_LISTVIEWW, u"", LVS_REPORT | WS_BORDER, 6, 238, 232, 76);
    // Right: lines between the cells, chosen labels alone, columns wider than the room, scrolled to the end.
    const HWND grid = report(LVS_SHOWSELALWAYS, LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT, 244, 6, 230, 100);
    state(grid, 0, LVIS_SELECTED, LVIS_SELECTED);
    state(grid, 2, LVIS_CUT, LVIS_CUT);
    const HWND labels = report(LVS_SHOWSELALWAYS, LVS_EX_SUBITEMIMAGES, 244, 112, 150, 96);
    addImages(labels);
    state(labels, 5, LVIS_SELECTED, LVIS_SELECTED);
    SendMessageW(labels, LVM_ENSUREVISIBLE, 5, 0);
    SendMessageW(labels, LVM_SCROLL, static_cast<WPARAM>(dots(40)), 0);
    SetFocus(first);
    expectSheet("list-view");
}

TEST_P(ListViewPictures, ALabelBeingEditedAndAPressedTitle)
{
    const HWND edited = report(LVS_EDITLABELS, LVS_EX_CHECKBOXES, 6, 6, 232, 130);
    addImages(edited);
    const HWND pressed = report(LVS_SHOWSELALWAYS, 0, 244, 6, 230, 130);
    state(pressed, 1, LVIS_SELECTED, LVIS_SELECTED);
    state(pressed, 3, LVIS_DROPHILITED, LVIS_DROPHILITED);
    SetFocus(edited);
    SendMessageW(edited, LVM_EDITLABELW, 2, 0);
    penDownIn(pressed, 120, 10);
    expectSheet("list-view-edit");
    zb::penUp(0, 0);
    settle();
}

INSTANTIATE_TEST_SUITE_P(Densities, ListViewPictures, ::testing::Values(96, 192));
