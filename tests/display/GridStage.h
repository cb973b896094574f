// A grid in a parent that answers its requests and writes down what it is told, with the test faces: at 10 pixels
// (<FONT SIZE=-1>) every letter is 5 wide and a line 10 high, in the plain font 11.
#pragma once

#include "display/Board.h"
#include "display/CHTMLGrid.h"
#include "platform/screen.h"
#include "support/ScreenWindow.h"

#include <cstdlib>
#include <cstring>

namespace zb::test
{
class TestGrid : public CHTMLGrid
{
  public:
    using CHTMLGrid::CHTMLGrid;
    using CHTMLGrid::FindCell;
    using CHTMLGrid::GetCell;
    using CHTMLGrid::GetCellHeight;
    using CHTMLGrid::MoveFloater;
};

/// A text on the heap, as requests want it.
inline WCHAR *heapText(const std::u16string &text)
{
    auto *copy = static_cast<WCHAR *>(std::malloc((text.size() + 1) * sizeof(WCHAR)));
    std::memcpy(copy, text.c_str(), (text.size() + 1) * sizeof(WCHAR));
    return copy;
}

inline DeviceOptions gridOptions(const std::filesystem::path &folder)
{
    DeviceOptions options = withFonts(folder);
    options.screen.width = 240;
    options.screen.height = 320;
    return options;
}

class GridTest : public ::testing::Test
{
  protected:
    struct Scrolled
    {
        UINT code;
        LPARAM position;
        bool operator==(const Scrolled &) const = default;
    };

    GridTest()
    {
        parent.before = [this](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        { return answer(message, wParam, lParam, result); };
    }
    ~GridTest() override
    {
        grid.reset();
    }

    /// In the parent's left top corner.
    TestGrid &make(bool onDemand, int width = 200, int height = 100)
    {
        grid = std::make_unique<TestGrid>(parent.window, RECT{0, 0, width, height}, onDemand);
        return *grid;
    }
    TestGrid &makePlain(USHORT rows, USHORT cols, int width = 200, int height = 100)
    {
        make(false, width, height).SetDimensions(rows, cols);
        return *grid;
    }
    TestGrid &makeOnDemand(USHORT rows, USHORT cols, int width = 200, int height = 100)
    {
        make(true, width, height).SetDimensions(rows, cols);
        return *grid;
    }
    SCROLLINFO bar(int which)
    {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_ALL;
        GetScrollInfo(*grid, which, &info);
        return info;
    }
    std::string rectOf(USHORT col, USHORT row)
    {
        RECT rect{};
        const bool isShown = grid->GetCellRect(col, row, rect);
        return (isShown ? "" : "no ") + describe(rect);
    }
    Picture shown()
    {
        const HBITMAP screen = captureScreen();
        Picture picture = pictureOf(screen);
        DeleteObject(screen);
        return picture;
    }
    /// Of a window's WM_NOTIFY records, their codes.
    std::vector<int> notified;
    std::vector<GRIDCELLREQUEST> asked;
    std::vector<Scrolled> scrolled;
    std::vector<DWORD> askedFloaters;
    std::function<void(GRIDCELLREQUEST &)> onCell;
    std::u16string floaterText = u"floater";
    bool floaterHasText = true;
    bool testHotSpots = false;
    std::u16string lastTarget;
    tagNM_GRIDVIEW lastNotify{};

    TemporaryFolder faces;
    TestDevice device{gridOptions(faces.path())};
    Scaling scaling;
    ScreenWindow parent{RGB(10, 200, 30), WS_POPUP | WS_VISIBLE, 0, 0, 240, 320};
    std::unique_ptr<TestGrid> grid;

  private:
    bool answer(UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
    {
        switch (message)
        {
        case GRID_GETCELL:
        {
            auto &request = *reinterpret_cast<GRIDCELLREQUEST *>(lParam);
            asked.push_back(request);
            if (onCell)
            {
                onCell(request);
            }
            return true;
        }
        case GRID_GETFLOATERTEXT:
            askedFloaters.push_back(static_cast<DWORD>(reinterpret_cast<NMHDR *>(lParam)->idFrom));
            if (floaterHasText)
            {
                *reinterpret_cast<WCHAR **>(wParam) = heapText(floaterText);
            }
            return true;
        case GRID_SCROLLED:
            scrolled.push_back({static_cast<UINT>(wParam), lParam});
            return true;
        case WM_NOTIFY:
            lastNotify = *reinterpret_cast<tagNM_GRIDVIEW *>(lParam);
            lastTarget = lastNotify.szTarget == nullptr ? u"" : lastNotify.szTarget;
            notified.push_back(static_cast<int>(lastNotify.hdr.code));
            result = testHotSpots ? 1 : 0;
            return true;
        default:
            return false;
        }
    }
};
} // namespace zb::test
