// Device contexts: selection, stock, states, lives of objects, errors.
#include "platform/gdi.h"
#include "platform/kernel.h"
#include "platform/user.h"
#include "support/DrawingBoard.h"
#include "support/MessageWindow.h"
#include "support/TestDevice.h"

#include <cmath>
#include <cstring>

namespace
{
using namespace zb::test;

DWORD errorOf(const std::function<void()> &call)
{
    SetLastError(0);
    call();
    return GetLastError();
}

TEST(GdiContexts, AFreshMemoryContextHasTheStockObjectsAndOneBlackAndWhitePixel)
{
    HDC context = CreateCompatibleDC(nullptr);
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(GetCurrentObject(context, OBJ_PEN), GetStockObject(BLACK_PEN));
    EXPECT_EQ(GetCurrentObject(context, OBJ_BRUSH), GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(GetCurrentObject(context, OBJ_FONT), GetStockObject(SYSTEM_FONT));
    BITMAP bitmap{};
    ASSERT_EQ(GetObjectW(GetCurrentObject(context, OBJ_BITMAP), sizeof bitmap, &bitmap), int{sizeof bitmap});
    EXPECT_EQ(bitmap.bmWidth, 1);
    EXPECT_EQ(bitmap.bmHeight, 1);
    EXPECT_EQ(bitmap.bmBitsPixel, 1);
    EXPECT_EQ(GetTextColor(context), RGB(0, 0, 0));
    EXPECT_EQ(GetBkColor(context), RGB(255, 255, 255));
    EXPECT_EQ(GetBkMode(context), OPAQUE);
    EXPECT_EQ(SetTextAlign(context, TA_CENTER), TA_LEFT | TA_TOP);
    EXPECT_TRUE(DeleteDC(context));
}

TEST(GdiContexts, TheFirstBitmapOfEachContextIsItsOwn)
{
    HDC one = CreateCompatibleDC(nullptr);
    HDC other = CreateCompatibleDC(nullptr);
    EXPECT_EQ(SetPixel(one, 0, 0, RGB(255, 255, 255)), RGB(255, 255, 255));
    EXPECT_EQ(GetPixel(other, 0, 0), RGB(0, 0, 0));
    EXPECT_EQ(SetPixel(other, 0, 0, RGB(200, 255, 1)), RGB(255, 255, 255));
    DeleteDC(one);
    DeleteDC(other);
}

TEST(GdiContexts, SelectingGivesTheObjectThatWasSelectedBefore)
{
    DrawingBoard board(2, 2);
    HPEN pen = CreatePen(PS_SOLID, 2, RGB(1, 2, 3));
    HBRUSH brush = CreateSolidBrush(RGB(4, 5, 6));
    LOGFONTW description{};
    description.lfHeight = -14;
    HFONT font = CreateFontIndirectW(&description);
    EXPECT_EQ(SelectObject(board.context(), pen), GetStockObject(BLACK_PEN));
    EXPECT_EQ(SelectObject(board.context(), brush), GetStockObject(WHITE_BRUSH));
    EXPECT_EQ(SelectObject(board.context(), font), GetStockObject(SYSTEM_FONT));
    EXPECT_EQ(GetCurrentObject(board.context(), OBJ_PEN), pen);
    EXPECT_EQ(GetCurrentObject(board.context(), OBJ_BRUSH), brush);
    EXPECT_EQ(GetCurrentObject(board.context(), OBJ_FONT), font);
    EXPECT_EQ(GetCurrentObject(board.context(), OBJ_BITMAP), board.bitmap());
    EXPECT_EQ(SelectObject(board.context(), GetStockObject(BLACK_PEN)), pen);
    EXPECT_EQ(SelectObject(board.context(), GetStockObject(WHITE_BRUSH)), brush);
    EXPECT_EQ(SelectObject(board.context(), GetStockObject(SYSTEM_FONT)), font);
    for (HGDIOBJ object : {pen, brush, font})
    {
        EXPECT_TRUE(DeleteObject(object));
        EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DeleteObject(object)); }), ERROR_INVALID_HANDLE);
    }
}

TEST(GdiContexts, ADeletedObjectLivesForTheContextThatHasIt)
{
    DrawingBoard board(3, 1);
    HPEN pen = CreatePen(PS_SOLID, 1, RGB(255, 0, 0));
    SelectObject(board.context(), pen);
    EXPECT_TRUE(DeleteObject(pen));
    LOGPEN record{};
    EXPECT_EQ(GetObjectW(pen, sizeof record, &record), 0);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(SelectObject(board.context(), pen), nullptr); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(GetCurrentObject(board.context(), OBJ_PEN), pen);

    HBITMAP bitmap = CreateCompatibleBitmap(board.context(), 2, 2);
    HDC context = CreateCompatibleDC(nullptr);
    HGDIOBJ first = SelectObject(context, bitmap);
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_EQ(SetPixel(context, 1, 1, RGB(9, 8, 7)), RGB(9, 8, 7));
    EXPECT_EQ(GetPixel(context, 1, 1), RGB(9, 8, 7));
    EXPECT_EQ(SelectObject(context, first), bitmap);
    EXPECT_EQ(GetPixel(context, 1, 1), CLR_INVALID);
    DeleteDC(context);
}

TEST(GdiContexts, ABitmapIsInOneContextAtATimeAndInNoneOfTheScreens)
{
    DrawingBoard board(2, 2);
    HDC other = CreateCompatibleDC(nullptr);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(SelectObject(other, board.bitmap()), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(SelectObject(board.context(), board.bitmap()), board.bitmap());
    HDC screen = GetDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, 2, 2);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(SelectObject(screen, bitmap), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_NE(SelectObject(other, bitmap), nullptr);
    EXPECT_TRUE(DeleteDC(other));
    HDC third = CreateCompatibleDC(nullptr);
    EXPECT_NE(SelectObject(third, bitmap), nullptr);
    EXPECT_TRUE(DeleteDC(third));
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
}

TEST(GdiContexts, StockObjectsAreNeverDeleted)
{
    const int all[] = {WHITE_BRUSH, LTGRAY_BRUSH, GRAY_BRUSH, DKGRAY_BRUSH, BLACK_BRUSH, NULL_BRUSH,
                       WHITE_PEN,   BLACK_PEN,    NULL_PEN,   SYSTEM_FONT,  BORDERX_PEN, BORDERY_PEN};
    for (const int which : all)
    {
        HGDIOBJ object = GetStockObject(which);
        ASSERT_NE(object, nullptr) << which;
        EXPECT_TRUE(DeleteObject(object)) << which;
        EXPECT_GT(GetObjectW(object, 0, nullptr), 0) << which;
        EXPECT_EQ(GetStockObject(which), object) << which;
    }
    for (const int which : {-1, 9, 12, 14, 31, 34})
    {
        EXPECT_EQ(errorOf([&] { EXPECT_EQ(GetStockObject(which), nullptr); }), ERROR_INVALID_PARAMETER) << which;
    }
}

TEST(GdiContexts, StockBrushesAndPensHaveTheirColours)
{
    const std::pair<int, COLORREF> brushes[] = {{WHITE_BRUSH, 0xFFFFFF},
                                                {LTGRAY_BRUSH, 0xC0C0C0},
                                                {GRAY_BRUSH, 0x808080},
                                                {DKGRAY_BRUSH, 0x404040},
                                                {BLACK_BRUSH, 0x000000}};
    for (const auto &[which, color] : brushes)
    {
        LOGBRUSH record{};
        ASSERT_EQ(GetObjectW(GetStockObject(which), sizeof record, &record), int{sizeof record});
        EXPECT_EQ(record.lbStyle, BS_SOLID);
        EXPECT_EQ(record.lbColor, color);
    }
    LOGBRUSH none{};
    GetObjectW(GetStockObject(NULL_BRUSH), sizeof none, &none);
    EXPECT_EQ(none.lbStyle, BS_NULL);
    LOGPEN pen{};
    GetObjectW(GetStockObject(WHITE_PEN), sizeof pen, &pen);
    EXPECT_EQ(pen.lopnColor, RGB(255, 255, 255));
    EXPECT_EQ(pen.lopnWidth.x, 1);
    GetObjectW(GetStockObject(NULL_PEN), sizeof pen, &pen);
    EXPECT_EQ(pen.lopnStyle, UINT{PS_NULL});
}

TEST(GdiContexts, RecordsOfObjectsComeWholeOrNotAtAll)
{
    HPEN pen = CreatePen(PS_DASH, 0, RGB(1, 2, 3));
    LOGPEN record{};
    EXPECT_EQ(GetObjectW(pen, 0, nullptr), int{sizeof record});
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(GetObjectW(pen, sizeof record - 1, &record), 0); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(record.lopnColor, 0U);
    EXPECT_EQ(GetObjectW(pen, sizeof record + 20, &record), int{sizeof record});
    EXPECT_EQ(record.lopnStyle, UINT{PS_DASH});
    EXPECT_EQ(record.lopnWidth.x, 1);
    EXPECT_EQ(record.lopnColor, RGB(1, 2, 3));
    DeleteObject(pen);

    LOGFONTW description{};
    description.lfHeight = -17;
    description.lfItalic = 1;
    std::u16string(u"DejaVu Sans").copy(description.lfFaceName, LF_FACESIZE);
    HFONT font = CreateFontIndirectW(&description);
    LOGFONTW read{};
    EXPECT_EQ(GetObjectW(font, sizeof read, &read), int{sizeof read});
    EXPECT_EQ(std::memcmp(&read, &description, sizeof read), 0);
    DeleteObject(font);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreateFontIndirectW(nullptr), nullptr); }), ERROR_INVALID_PARAMETER);

    DrawingBoard board(17, 3);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(GetObjectW(board.context(), 0, nullptr), 0); }), ERROR_INVALID_HANDLE);
}

TEST(GdiContexts, PensAndBrushesOfUnknownKindsAreRefused)
{
    EXPECT_EQ(errorOf([] { EXPECT_EQ(CreatePen(2, 1, 0), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(CreatePen(PS_SOLID, -1, 0), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(CreatePen(PS_SOLID, 32768, 0), nullptr); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(CreatePenIndirect(nullptr), nullptr); }), ERROR_INVALID_PARAMETER);
    LOGPEN record{77, {1, 0}, 0};
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreatePenIndirect(&record), nullptr); }), ERROR_INVALID_PARAMETER);
    record = {PS_SOLID, {3, 99}, RGB(7, 8, 9)};
    HPEN pen = CreatePenIndirect(&record);
    LOGPEN read{};
    GetObjectW(pen, sizeof read, &read);
    EXPECT_EQ(read.lopnWidth.x, 3);
    EXPECT_EQ(read.lopnColor, RGB(7, 8, 9));
    DeleteObject(pen);
}

TEST(GdiContexts, SystemColoursStandForTheirValues)
{
    DrawingBoard board(1, 1);
    SetTextColor(board.context(), SYS_COLOR_INDEX_FLAG | COLOR_HIGHLIGHT);
    EXPECT_EQ(GetTextColor(board.context()), GetSysColor(COLOR_HIGHLIGHT));
    EXPECT_EQ(SetTextColor(board.context(), RGB(1, 2, 3)), GetSysColor(COLOR_HIGHLIGHT));
    EXPECT_EQ(SetBkColor(board.context(), SYS_COLOR_INDEX_FLAG | COLOR_INFOBK), RGB(255, 255, 255));
    EXPECT_EQ(GetBkColor(board.context()), GetSysColor(COLOR_INFOBK));
    SetBkColor(board.context(), 0x12345678);
    EXPECT_EQ(GetBkColor(board.context()), 0x345678U);
    HBRUSH brush = CreateSolidBrush(SYS_COLOR_INDEX_FLAG | COLOR_HIGHLIGHT);
    LOGBRUSH record{};
    GetObjectW(brush, sizeof record, &record);
    EXPECT_EQ(record.lbColor, GetSysColor(COLOR_HIGHLIGHT));
    DeleteObject(brush);
}

TEST(GdiContexts, ModesGiveTheFormerAndRefuseUnknownOnes)
{
    DrawingBoard board(1, 1);
    EXPECT_EQ(SetBkMode(board.context(), TRANSPARENT), OPAQUE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(SetBkMode(board.context(), 3), 0); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(GetBkMode(board.context()), TRANSPARENT);
    EXPECT_EQ(SetTextAlign(board.context(), TA_RIGHT | TA_BASELINE), TA_LEFT | TA_TOP);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(SetTextAlign(board.context(), 0x100), GDI_ERROR); }), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(SetTextAlign(board.context(), 0), TA_RIGHT | TA_BASELINE);
}

TEST(GdiContexts, SavedStatesComeBackWithAllThatTheyHold)
{
    DrawingBoard board(4, 4);
    HDC context = board.context();
    HPEN pen = CreatePen(PS_SOLID, 1, 0);
    EXPECT_EQ(SaveDC(context), 1);
    SelectObject(context, pen);
    SetTextColor(context, RGB(1, 1, 1));
    SetBkColor(context, RGB(2, 2, 2));
    SetBkMode(context, TRANSPARENT);
    SetTextAlign(context, TA_RIGHT);
    IntersectClipRect(context, 1, 1, 3, 3);
    EXPECT_EQ(SaveDC(context), 2);
    SetTextColor(context, RGB(3, 3, 3));
    IntersectClipRect(context, 2, 2, 3, 3);
    EXPECT_TRUE(RestoreDC(context, -1));
    RECT box{};
    EXPECT_EQ(GetClipBox(context, &box), SIMPLEREGION);
    EXPECT_EQ(box.left, 1);
    EXPECT_EQ(box.right, 3);
    EXPECT_EQ(GetTextColor(context), RGB(1, 1, 1));
    EXPECT_EQ(GetCurrentObject(context, OBJ_PEN), pen);
    EXPECT_TRUE(RestoreDC(context, 1));
    GetClipBox(context, &box);
    EXPECT_EQ(box.left, 0);
    EXPECT_EQ(box.right, 4);
    EXPECT_EQ(GetTextColor(context), RGB(0, 0, 0));
    EXPECT_EQ(GetBkColor(context), RGB(255, 255, 255));
    EXPECT_EQ(GetBkMode(context), OPAQUE);
    EXPECT_EQ(SetTextAlign(context, TA_LEFT), TA_LEFT);
    EXPECT_EQ(GetCurrentObject(context, OBJ_PEN), GetStockObject(BLACK_PEN));
    for (const int wrong : {1, 0, -2, -1})
    {
        EXPECT_EQ(errorOf([&] { EXPECT_FALSE(RestoreDC(context, wrong)); }), ERROR_INVALID_PARAMETER) << wrong;
    }
    DeleteObject(pen);
}

TEST(GdiContexts, RestoringAnEarlierStateDropsTheLaterOnes)
{
    DrawingBoard board(1, 1);
    for (int i = 1; i <= 3; ++i)
    {
        EXPECT_EQ(SaveDC(board.context()), i);
    }
    EXPECT_TRUE(RestoreDC(board.context(), 2));
    EXPECT_FALSE(RestoreDC(board.context(), 2));
    EXPECT_EQ(SaveDC(board.context()), 2);
    EXPECT_TRUE(RestoreDC(board.context(), 1));
}

TEST(GdiContexts, ARestoredStateBringsItsBitmapBackUnlessAnotherContextTookIt)
{
    HDC context = CreateCompatibleDC(nullptr);
    HBITMAP one = CreateBitmap(2, 2, 1, 32, nullptr);
    HBITMAP two = CreateBitmap(3, 3, 1, 32, nullptr);
    SelectObject(context, one);
    SaveDC(context);
    SelectObject(context, two);
    EXPECT_TRUE(RestoreDC(context, -1));
    EXPECT_EQ(GetCurrentObject(context, OBJ_BITMAP), one);
    SaveDC(context);
    SelectObject(context, two);
    HDC other = CreateCompatibleDC(nullptr);
    EXPECT_NE(SelectObject(other, one), nullptr);
    EXPECT_TRUE(RestoreDC(context, -1));
    EXPECT_EQ(GetCurrentObject(context, OBJ_BITMAP), two);
    RECT box{};
    GetClipBox(context, &box);
    EXPECT_EQ(box.right, 3);
    DeleteDC(context);
    DeleteDC(other);
    DeleteObject(one);
    DeleteObject(two);
}

TEST(GdiContexts, EveryCallRefusesHandlesThatAreNoContexts)
{
    HBRUSH brush = CreateSolidBrush(0);
    HDC gone = CreateCompatibleDC(nullptr);
    DeleteDC(gone);
    RECT box{0, 0, 1, 1};
    for (HDC wrong : {HDC{}, gone, static_cast<HDC>(brush), reinterpret_cast<HDC>(UINT_PTR{12345})})
    {
        const std::function<bool()> calls[] = {
            [&] { return SelectObject(wrong, brush) == nullptr; },
            [&] { return GetCurrentObject(wrong, OBJ_PEN) == nullptr; },
            [&] { return DeleteDC(wrong) == FALSE; },
            [&] { return ReleaseDC(nullptr, wrong) == 0; },
            [&] { return SaveDC(wrong) == 0; },
            [&] { return RestoreDC(wrong, -1) == FALSE; },
            [&] { return GetDeviceCaps(wrong, LOGPIXELSX) == 0; },
            [&] { return SetBkMode(wrong, OPAQUE) == 0; },
            [&] { return GetBkMode(wrong) == 0; },
            [&] { return SetBkColor(wrong, 0) == CLR_INVALID; },
            [&] { return GetBkColor(wrong) == CLR_INVALID; },
            [&] { return SetTextColor(wrong, 0) == CLR_INVALID; },
            [&] { return GetTextColor(wrong) == CLR_INVALID; },
            [&] { return SetTextAlign(wrong, 0) == GDI_ERROR; },
            [&] { return GetClipBox(wrong, &box) == ERRORREGION; },
            [&] { return IntersectClipRect(wrong, 0, 0, 1, 1) == ERRORREGION; },
            [&] { return ExcludeClipRect(wrong, 0, 0, 1, 1) == ERRORREGION; },
            [&] { return RectVisible(wrong, &box) == FALSE; },
            [&] { return CreateCompatibleBitmap(wrong, 1, 1) == nullptr; },
            [&] { return FillRect(wrong, &box, brush) == FALSE; },
            [&] { return InvertRect(wrong, &box) == FALSE; },
            [&] { return DrawFocusRect(wrong, &box) == FALSE; },
            [&] { return SetPixel(wrong, 0, 0, 0) == CLR_INVALID; },
            [&] { return GetPixel(wrong, 0, 0) == CLR_INVALID; },
        };
        for (std::size_t i = 0; i < std::size(calls); ++i)
        {
            EXPECT_EQ(errorOf([&] { EXPECT_TRUE(calls[i]()) << i; }), ERROR_INVALID_HANDLE) << i;
        }
    }
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(CreateCompatibleDC(gone), nullptr); }), ERROR_INVALID_HANDLE);
    DeleteObject(brush);
}

TEST(GdiContexts, ObjectsAreEndedByTheCallOfTheirKindAlone)
{
    DrawingBoard board(1, 1);
    HBRUSH brush = CreateSolidBrush(0);
    HDC screen = GetDC(nullptr);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(CloseHandle(brush)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(CloseHandle(board.context())); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DeleteObject(board.context())); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DeleteDC(screen)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(ReleaseDC(nullptr, board.context()), 0); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    EXPECT_TRUE(DeleteObject(brush));
    HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_EQ(errorOf([&] { EXPECT_FALSE(DeleteObject(event)); }), ERROR_INVALID_HANDLE);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(SelectObject(board.context(), event), nullptr); }), ERROR_INVALID_HANDLE);
    CloseHandle(event);
}

TEST(GdiContexts, ObjectsMayBeMadeAndEndedOnManyThreads)
{
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            [&failures, t]
            {
                for (int i = 0; i < 200; ++i)
                {
                    DrawingBoard board(3, 3, RGB(t, i, 0));
                    failures += GetPixel(board.context(), 2, 2) == RGB(t, i, 0) ? 0 : 1;
                    failures += GetStockObject(BLACK_PEN) == GetCurrentObject(board.context(), OBJ_PEN) ? 0 : 1;
                }
            });
    }
    for (std::thread &thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
}

// --- The screen ----------------------------------------------------------------------------------------------------

class GdiScreenTest : public DeviceTest
{
  protected:
    void setScreen(int width, int height, int dotsPerInch)
    {
        device.options().screen = {width, height, dotsPerInch};
        device.reopen();
    }
};

TEST_F(GdiScreenTest, AllContextsOfTheScreenDrawOnOneSurfaceOfItsSize)
{
    setScreen(240, 320, 131);
    HDC one = GetDC(nullptr);
    HDC other = GetDC(nullptr);
    EXPECT_NE(one, other);
    RECT box{};
    EXPECT_EQ(GetClipBox(one, &box), SIMPLEREGION);
    EXPECT_EQ(box.right, 240);
    EXPECT_EQ(box.bottom, 320);
    SetPixel(one, 239, 319, RGB(1, 2, 3));
    EXPECT_EQ(GetPixel(other, 239, 319), RGB(1, 2, 3));
    EXPECT_EQ(GetDeviceCaps(one, HORZRES), 240);
    EXPECT_EQ(GetDeviceCaps(one, VERTRES), 320);
    EXPECT_EQ(GetDeviceCaps(one, BITSPIXEL), 32);
    EXPECT_EQ(GetDeviceCaps(one, PLANES), 1);
    EXPECT_EQ(GetDeviceCaps(one, LOGPIXELSX), 131);
    EXPECT_EQ(GetDeviceCaps(one, LOGPIXELSY), 131);
    EXPECT_EQ(GetDeviceCaps(one, 9), 0);
    HDC memory = CreateCompatibleDC(one);
    EXPECT_EQ(GetDeviceCaps(memory, HORZRES), 240);
    DeleteDC(memory);
    ReleaseDC(nullptr, one);
    EXPECT_EQ(GetPixel(other, 239, 319), RGB(1, 2, 3));
    ReleaseDC(nullptr, other);
}

TEST_F(GdiScreenTest, AnotherOpeningHasAnotherScreen)
{
    setScreen(100, 100, 96);
    HDC former = GetDC(nullptr);
    SetPixel(former, 5, 5, RGB(7, 7, 7));
    setScreen(100, 100, 96);
    HDC present = GetDC(nullptr);
    EXPECT_EQ(GetPixel(present, 5, 5), RGB(0, 0, 0));
    EXPECT_EQ(GetPixel(former, 5, 5), RGB(7, 7, 7));
    ReleaseDC(nullptr, former);
    ReleaseDC(nullptr, present);
}

TEST_F(GdiScreenTest, ContextsOfHiddenWindowsMeasureAndDrawNothing)
{
    const MessageWindowClass windows;
    Procedure procedure = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    { return DefWindowProcW(window, message, wParam, lParam); };
    HWND window = windows.make(&procedure);
    HDC context = GetDC(window);
    ASSERT_NE(context, nullptr);
    RECT box{9, 9, 9, 9};
    EXPECT_EQ(GetClipBox(context, &box), NULLREGION);
    EXPECT_EQ(box.right, 0);
    EXPECT_EQ(GetDeviceCaps(context, LOGPIXELSX), 96);
    EXPECT_EQ(SetPixel(context, 0, 0, 0), CLR_INVALID);
    EXPECT_EQ(ReleaseDC(window, context), 1);
    DestroyWindow(window);
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(GetDC(window), nullptr); }), ERROR_INVALID_WINDOW_HANDLE);
}

TEST_F(GdiScreenTest, MeasuresFollowTheDensity)
{
    struct Case
    {
        int index;
        int at96;
    };
    const Case cases[] = {{SM_CXVSCROLL, 13},  {SM_CYHSCROLL, 13},  {SM_CYCAPTION, 26}, {SM_CXBORDER, 1},
                          {SM_CYBORDER, 1},    {SM_CXDLGFRAME, 3},  {SM_CYDLGFRAME, 3}, {SM_CXICON, 32},
                          {SM_CYICON, 32},     {SM_CYMENU, 26},     {SM_CYVSCROLL, 13}, {SM_CXHSCROLL, 13},
                          {SM_CXDOUBLECLK, 8}, {SM_CYDOUBLECLK, 8}, {SM_CXEDGE, 2},     {SM_CYEDGE, 2},
                          {SM_CXSMICON, 16},   {SM_CYSMICON, 16}};
    for (const int density : {96, 131, 192, 288})
    {
        setScreen(240, 320, density);
        EXPECT_EQ(GetSystemMetrics(SM_CXSCREEN), 240);
        EXPECT_EQ(GetSystemMetrics(SM_CYSCREEN), 320);
        for (const Case &each : cases)
        {
            EXPECT_EQ(GetSystemMetrics(each.index), (each.at96 * density + 48) / 96) << each.index;
        }
        LOGPEN border{};
        GetObjectW(GetStockObject(BORDERX_PEN), sizeof border, &border);
        EXPECT_EQ(border.lopnWidth.x, GetSystemMetrics(SM_CXBORDER));
        EXPECT_EQ(border.lopnColor, RGB(0, 0, 0));
    }
    for (const int none : {-1, 9, 10, 13, 14, 99})
    {
        EXPECT_EQ(GetSystemMetrics(none), 0) << none;
    }
}

TEST(GdiSystemColours, AreLegibleAndOwnedByTheSystem)
{
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), RGB(255, 255, 255));
    EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), RGB(0, 0, 0));
    EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHTTEXT), RGB(255, 255, 255));
    EXPECT_EQ(GetSysColor(static_cast<int>(SYS_COLOR_INDEX_FLAG) | COLOR_HIGHLIGHT), GetSysColor(COLOR_HIGHLIGHT));
    EXPECT_EQ(GetSysColor(27), 0U);
    EXPECT_EQ(GetSysColor(-1), 0U);
    EXPECT_EQ(errorOf([] { EXPECT_EQ(GetSysColorBrush(27), nullptr); }), ERROR_INVALID_PARAMETER);
    for (int index = 0; index <= COLOR_STATICTEXT; ++index)
    {
        HBRUSH brush = GetSysColorBrush(index);
        EXPECT_EQ(GetSysColorBrush(index | static_cast<int>(SYS_COLOR_INDEX_FLAG)), brush);
        EXPECT_TRUE(DeleteObject(brush));
        LOGBRUSH record{};
        EXPECT_NE(GetObjectW(brush, sizeof record, &record), 0);
        EXPECT_EQ(record.lbColor, GetSysColor(index));
    }
}

/// The ratio of two colours' lightness as people's eyes take it (1 to 21).
double contrast(COLORREF one, COLORREF other)
{
    const auto lightness = [](COLORREF color)
    {
        const auto linear = [](BYTE value)
        {
            const double part = value / 255.0;
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(GetRValue(color)) + 0.7152 * linear(GetGValue(color)) +
               0.0722 * linear(GetBValue(color)) + 0.05;
    };
    return std::max(lightness(one), lightness(other)) / std::min(lightness(one), lightness(other));
}

TEST(GdiSystemColours, TextStandsOutFromItsGround)
{
    const std::pair<int, int> texts[] = {
        {COLOR_WINDOWTEXT, COLOR_WINDOW},       {COLOR_MENUTEXT, COLOR_MENU},
        {COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHT}, {COLOR_CAPTIONTEXT, COLOR_ACTIVECAPTION},
        {COLOR_BTNTEXT, COLOR_BTNFACE},         {COLOR_INFOTEXT, COLOR_INFOBK},
        {COLOR_STATICTEXT, COLOR_STATIC},       {COLOR_INACTIVECAPTIONTEXT, COLOR_INACTIVECAPTION}};
    for (const auto &[text, ground] : texts)
    {
        EXPECT_GE(contrast(GetSysColor(text), GetSysColor(ground)), 7.0) << text << " on " << ground;
    }
    EXPECT_GE(contrast(GetSysColor(COLOR_GRAYTEXT), GetSysColor(COLOR_WINDOW)), 4.0);
    EXPECT_GE(contrast(GetSysColor(COLOR_GRAYTEXT), GetSysColor(COLOR_BTNFACE)), 4.0);
}
} // namespace
