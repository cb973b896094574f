// Tool tips, and the grid's tip of the scroll bar.
#include "display/CHTMLToolTip.h"
#include "display/GridStage.h"

namespace zb::test
{
namespace
{
using Log = std::vector<std::string>;

/// Letters of 5 by 10: "abcd" is 20 by 10, and what is measured has a pixel more each way.
class HTMLToolTip : public GridTest
{
  protected:
    CHTMLToolTip &make()
    {
        tip = std::make_unique<CHTMLToolTip>();
        EXPECT_TRUE(tip->Create(parent.window));
        return *tip;
    }
    std::string place(POINT anchor, ToolTipCorner corner, bool wide = false)
    {
        tip->ShowToolTip(anchor, corner);
        tip->UpdateToolTip(u"<FONT SIZE=-1>abcd", wide);
        RECT rect{};
        GetWindowRect(*tip, &rect);
        return describe(rect);
    }

    std::unique_ptr<CHTMLToolTip> tip;
};

TEST_F(HTMLToolTip, itsClassIsThereWhileATipIs)
{
    WNDCLASSW type{};
    EXPECT_EQ(GetClassInfoW(nullptr, u"HTMLTOOLTIPCLASS", &type), FALSE);
    make();
    EXPECT_NE(GetClassInfoW(nullptr, u"HTMLTOOLTIPCLASS", &type), FALSE);
    EXPECT_EQ(GetWindowLongW(*tip, GWL_STYLE) & static_cast<LONG_PTR>(WS_CHILD | WS_VISIBLE),
              static_cast<LONG_PTR>(WS_CHILD));
    tip.reset();
    EXPECT_EQ(GetClassInfoW(nullptr, u"HTMLTOOLTIPCLASS", &type), FALSE);
}

TEST_F(HTMLToolTip, eachCornerMayStandAtTheAnchor)
{
    make();
    // 21 and twice 5, 11 and twice 1.
    EXPECT_EQ(place({50, 60}, ToolTipCorner::LeftTop), "50,60 81,73");
    EXPECT_EQ(place({50, 60}, ToolTipCorner::LeftBottom), "50,47 81,60");
    EXPECT_EQ(place({50, 60}, ToolTipCorner::RightTop), "19,60 50,73");
    EXPECT_EQ(place({50, 60}, ToolTipCorner::RightBottom), "19,47 50,60");
    EXPECT_EQ(place({50, 60}, ToolTipCorner::LeftTop, true), "50,60 87,77"); // twice 8 and twice 3
    EXPECT_EQ(static_cast<int>(ToolTipCorner::LeftTop), 1);
    EXPECT_EQ(static_cast<int>(ToolTipCorner::LeftBottom), 2);
    EXPECT_EQ(static_cast<int>(ToolTipCorner::RightTop), 3);
    EXPECT_EQ(static_cast<int>(ToolTipCorner::RightBottom), 4);
}

TEST_F(HTMLToolTip, itStaysInItsParent)
{
    make();
    EXPECT_EQ(place({235, 60}, ToolTipCorner::LeftTop), "209,60 240,73");
    EXPECT_EQ(place({20, 60}, ToolTipCorner::RightTop), "0,60 31,73");
    EXPECT_EQ(place({50, 315}, ToolTipCorner::LeftTop), "50,307 81,320");
    EXPECT_EQ(place({50, 5}, ToolTipCorner::LeftBottom), "50,0 81,13");
    // A parent that is too small shows its right and its bottom.
    MoveWindow(parent.window, 0, 0, 25, 10, TRUE);
    EXPECT_EQ(place({0, 0}, ToolTipCorner::LeftTop), "-6,-3 25,10");
}

TEST_F(HTMLToolTip, aLongTextWrapsAtThreeQuartersOfTheScreen)
{
    make().ShowToolTip({0, 0}, ToolTipCorner::LeftTop);
    // 180 of 240 pixels are 36 letters.
    tip->UpdateToolTip(u"<FONT SIZE=-1>aaaaaaaaaaaaaaaaaa bbbbbbbbbbbbbbbbb cc", false);
    RECT rect{};
    GetWindowRect(*tip, &rect);
    EXPECT_EQ(rect.bottom, 20 + 1 + 2);
    EXPECT_LE(rect.right, 180 + 1 + 10);
    tip->UpdateToolTip(u"<FONT SIZE=-1>aaaaaaaaaaaaaaaaaa bbbbbbbbbbbbbbbb", false);
    GetWindowRect(*tip, &rect);
    EXPECT_EQ(rect.bottom, 10 + 1 + 2);
    EXPECT_EQ(rect.right, 35 * 5 + 1 + 10);
}

TEST_F(HTMLToolTip, threeQuartersAreCutToPixels)
{
    struct Case
    {
        int screen;
        std::size_t letters; // of 5
        int lines;
    };
    for (const Case &one : {Case{246, 36, 1}, Case{246, 37, 2}, Case{247, 37, 1}, Case{247, 38, 2}}) // 184 and 185
    {
        device.options().screen.width = one.screen;
        device.reopen();
        const Scaling scaled;
        const ScreenWindow host(0, WS_POPUP | WS_VISIBLE, 0, 0, one.screen, 100);
        CHTMLToolTip other;
        ASSERT_TRUE(other.Create(host.window));
        other.UpdateToolTip((u"<FONT SIZE=-1>aa " + std::u16string(one.letters - 3, u'b')).c_str(), false);
        RECT rect{};
        GetClientRect(other, &rect);
        EXPECT_EQ(rect.bottom, one.lines * 10 + 3) << one.screen << ' ' << one.letters;
    }
}

TEST_F(HTMLToolTip, noTextHidesItUntilTheNext)
{
    make();
    place({50, 60}, ToolTipCorner::LeftTop);
    EXPECT_TRUE(IsWindowVisible(*tip));
    tip->UpdateToolTip(nullptr, false);
    EXPECT_FALSE(IsWindowVisible(*tip));
    tip->ShowToolTip({50, 60}, ToolTipCorner::LeftTop);
    EXPECT_FALSE(IsWindowVisible(*tip));
    tip->UpdateToolTip(u"a", false);
    EXPECT_TRUE(IsWindowVisible(*tip));
    tip->HideToolTip();
    EXPECT_FALSE(IsWindowVisible(*tip));
    tip->UpdateToolTip(u"b", false);
    EXPECT_FALSE(IsWindowVisible(*tip));
}

TEST_F(HTMLToolTip, itHasAnOutlineItsBackgroundAndItsText)
{
    make().ShowToolTip({50, 60}, ToolTipCorner::LeftTop);
    tip->UpdateToolTip(u"<FONT SIZE=-1><BODY=#FFFF00>abcd", false);
    settle();
    EXPECT_EQ(screenPixel(50, 60), GetSysColor(COLOR_BTNSHADOW));
    EXPECT_EQ(screenPixel(80, 72), GetSysColor(COLOR_BTNSHADOW));
    EXPECT_EQ(screenPixel(51, 61), RGB(255, 255, 0));
    tip->UpdateToolTip(u"<FONT SIZE=-1 BGCOLOR=#00FF00>ab<FONT SIZE=-1>cd", false);
    settle();
    EXPECT_EQ(screenPixel(51, 61), RGB(255, 255, 255)) << "that of the body, not of its first run";
    tip->UpdateToolTip(u"<FONT SIZE=-1><BODY=#FFFF00>abcd", false);
    settle();
    bool ink = false;
    for (int x = 55; x < 75; ++x)
    {
        for (int y = 62; y < 72; ++y)
        {
            ink = ink || screenPixel(x, y) == RGB(0, 0, 0);
        }
    }
    EXPECT_TRUE(ink);
    bool handled = false;
    EXPECT_EQ(tip->OnEraseBkgnd(nullptr, handled), 1);
    EXPECT_TRUE(handled);
}

TEST_F(HTMLToolTip, itsOutlineFollowsTheScreen)
{
    device.options().screen.dotsPerInch = 288;
    device.reopen();
    const Scaling tripled;
    const ScreenWindow host(0, WS_POPUP | WS_VISIBLE, 0, 0, 240, 320);
    CHTMLToolTip other;
    ASSERT_TRUE(other.Create(host.window));
    other.ShowToolTip({20, 20}, ToolTipCorner::LeftTop);
    other.UpdateToolTip(u"<BODY=#FFFF00>outlined", false);
    settle();
    // Three pixels on the edge, of which the outer one lies outside.
    EXPECT_EQ(screenPixel(21, 21), GetSysColor(COLOR_BTNSHADOW));
    EXPECT_EQ(screenPixel(22, 22), RGB(255, 255, 0));
}

TEST_F(HTMLToolTip, aTapTellsItsFirstHotSpotAndThePenGoesUpForTheParent)
{
    make().ShowToolTip({50, 60}, ToolTipCorner::LeftTop);
    tip->UpdateToolTip(u"<FONT SIZE=-1><A=one>ab</A> <A=two>cd</A>", false);
    settle();
    parent.clear();
    draw({{72, 66}});
    EXPECT_EQ(notified, std::vector<int>{1125});
    EXPECT_EQ(lastTarget, u"one");
    EXPECT_EQ(lastNotify.pt.x, 72);
    EXPECT_EQ(lastNotify.pt.y, 66);
    EXPECT_EQ(parent.last(WM_LBUTTONUP).lParam, pair(72, 66));
    tip->UpdateToolTip(u"plain", false);
    settle();
    draw({{60, 66}});
    EXPECT_EQ(lastTarget, u"");
}

TEST_F(HTMLToolTip, itsPicturesAreItsParents)
{
    const PictureWindow pictures;
    CHTMLToolTip other;
    parent.before = [](UINT message, WPARAM, LPARAM lParam, LRESULT &result)
    {
        if (message == WM_NOTIFY)
        {
            auto &record = *reinterpret_cast<NM_HTMLVIEW *>(lParam);
            EXPECT_EQ(record.hdr.code, NM_INLINE_IMAGE);
            static Board picture(30, 40);
            record.dwCookie = reinterpret_cast<DWORD_PTR>(GetCurrentObject(picture.context(), OBJ_BITMAP));
            result = 1;
        }
        return message == WM_NOTIFY;
    };
    ASSERT_TRUE(other.Create(parent.window));
    other.UpdateToolTip(u"<IMG SRC=abcd.bmp>", false);
    RECT rect{};
    GetClientRect(other, &rect);
    EXPECT_EQ(rect.bottom, 40 + 1 + 2);
}

// --- The tip of the scroll bar -----------------------------------------------------------------------------------

class GridScrollTip : public GridTest
{
  protected:
    void prepare(bool tip, bool track)
    {
        makePlain(100, 1, 200, 100); // 1,500 high in 100: a pixel of the bar is many rows
        grid->SetShowScrollBars(true, true, tip);
        grid->SetThumbTrack(track);
        texts[2023] = u"<FONT SIZE=-1>row";
        parent.before = [this, others = parent.before](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        {
            topBeforeUp = message == WM_USER ? grid->GetTopRow() : topBeforeUp;
            return others(message, wParam, lParam, result);
        };
        settle();
        scrolled.clear();
    }
    /// By the pen, from the thumb's middle, on the screen.
    void dragThumb(int by)
    {
        const int x = 200 - GetSystemMetrics(SM_CXVSCROLL) / 2;
        const int y = GetSystemMetrics(SM_CXVSCROLL) + 3;
        penDown(x, y);
        for (int step = 1; step <= 4; ++step)
        {
            penMove(x, y + by * step / 4);
        }
        PostMessageW(parent.window, WM_USER, 0, 0);
        penUp(x, y + by);
        settle();
    }
    USHORT topBeforeUp = 0;
};

TEST_F(GridScrollTip, theThumbUnderARealPenScrolls)
{
    prepare(false, true);
    dragThumb(30);
    EXPECT_EQ(topBeforeUp, grid->GetTopRow());
    EXPECT_GT(grid->GetTopRow(), 20);
    EXPECT_LT(grid->GetTopRow(), 80);
    EXPECT_TRUE(takeLog().empty()) << "no tip, no question";
    EXPECT_EQ(scrolled.back().code, SB_ENDSCROLL);
    const auto position = std::find_if(scrolled.begin(), scrolled.end(),
                                       [](const Scrolled &one) { return one.code == SB_THUMBPOSITION; });
    ASSERT_NE(position, scrolled.end());
    // The top row is the one that holds the position.
    EXPECT_EQ(grid->GetTopRow(), position->position / 15);
    prepare(false, true);
    dragThumb(80);
    EXPECT_EQ(grid->GetBottomRow(), 99);
}

TEST_F(GridScrollTip, withoutTrackingOnlyTheEndOfADragScrolls)
{
    prepare(false, false);
    dragThumb(30);
    EXPECT_EQ(topBeforeUp, 0);
    EXPECT_GT(grid->GetTopRow(), 20);
}

TEST_F(GridScrollTip, theTipTellsTheRowUnderTheThumb)
{
    for (const bool track : {true, false})
    {
        prepare(true, track);
        std::vector<USHORT> tops;
        std::vector<bool> visible;
        RECT place{};
        onAsked = [&](UINT)
        {
            tops.push_back(grid->GetTopRow());
            const HWND tip = GetWindow(*grid, GW_CHILD);
            visible.push_back(IsWindowVisible(tip) != FALSE);
            GetWindowRect(tip, &place);
        };
        dragThumb(30);
        const Log asked = takeLog();
        ASSERT_GE(asked.size(), 4U);
        EXPECT_EQ(asked.back(), "2023 " + std::to_string(grid->GetTopRow()));
        EXPECT_EQ(tops[2] == 0, !track) << "whether the rows follow";
        EXPECT_TRUE(visible[1]);
        // At the right of the client area, 5 down.
        EXPECT_EQ(place.right, 200 - GetSystemMetrics(SM_CXVSCROLL));
        EXPECT_EQ(place.top, 5);
        EXPECT_FALSE(IsWindowVisible(GetWindow(*grid, GW_CHILD))) << "gone with the pen";
    }
}

TEST_F(GridScrollTip, aPlaceOfTheThumbIsARow)
{
    prepare(false, true);
    dragThumb(30);
    const int at = bar(SB_VERT).nTrackPos; // stays
    ASSERT_GT(at, 100);
    struct Case
    {
        int firstRow, range, page;
        USHORT bottom;
    };
    const Case cases[] = {
        {at, 0, 0, 1},          // the sum reaches the place and does not pass it
        {at + 1, 0, 0, 0},      // it passes
        {at + 1, at, 0, 99},    // the place is the maximum: the end
        {at + 1, at + 9, 10, 99},  // the last place that a page leaves
        {at + 1, at + 10, 10, 0},
    };
    for (const Case &one : cases)
    {
        grid->SetRowHeight(0, static_cast<USHORT>(one.firstRow));
        grid->SetTopRow(20);
        if (one.range > 0)
        {
            SCROLLINFO info{};
            info.cbSize = sizeof info;
            info.fMask = SIF_RANGE | SIF_PAGE;
            info.nMax = one.range;
            info.nPage = static_cast<UINT>(one.page);
            SetScrollInfo(*grid, SB_VERT, &info, FALSE);
        }
        SendMessageW(*grid, WM_VSCROLL, SB_THUMBPOSITION, 0);
        EXPECT_EQ(one.bottom == 99 ? grid->GetBottomRow() : grid->GetTopRow(), one.bottom) << &one - cases;
    }
}

TEST_F(GridScrollTip, acrossThereIsNone)
{
    make(false);
    grid->SetDimensions(2, 20);
    for (USHORT col = 0; col < 20; ++col)
    {
        grid->SetColWidth(col, 60);
    }
    grid->SetShowScrollBars(true, true, true);
    SendMessageW(*grid, WM_HSCROLL, MAKELONG(SB_THUMBPOSITION, 0), 0);
    EXPECT_TRUE(takeLog().empty());
}

TEST_F(GridScrollTip, tipsMayLieInAnotherWindow)
{
    makePlain(10, 1, 200, 100);
    MoveWindow(*grid, 20, 30, 200, 100, TRUE);
    grid->SetToolTipParent(parent.window);
    grid->SetMultiSelect(true, true);
    texts[2022] = u"tip";
    draw({{60, 100}, {60, 120}}, false);
    HWND tip = nullptr;
    for (HWND child = GetWindow(parent.window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
    {
        tip = child == grid->GetHwnd() ? tip : child;
    }
    ASSERT_NE(tip, nullptr);
    RECT place{};
    GetWindowRect(tip, &place);
    EXPECT_EQ(place.right, 60);
    EXPECT_EQ(place.bottom, 100);
    penUp(60, 120);
    settle();
}
} // namespace
} // namespace zb::test
