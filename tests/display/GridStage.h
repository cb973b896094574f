// A grid in a parent that answers its requests and writes down what it is told, with the test faces: at 10 pixels
// (<FONT SIZE=-1>) every letter is 5 wide and a line 10 high, in the plain font 11.
#pragma once

#include "display/Board.h"
#include "display/CHTMLGrid.h"
#include "platform/gesture.h"
#include "platform/screen.h"
#include "support/ScreenWindow.h"

#include <cstdlib>
#include <cstring>
#include <map>

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

inline DeviceOptions gridOptions(const std::filesystem::path &folder, int dotsPerInch)
{
    DeviceOptions options = withFonts(folder, dotsPerInch);
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

    explicit GridTest(int dotsPerInch = 96) : device(gridOptions(faces.path(), dotsPerInch))
    {
        parent.before = [this](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        { return answer(message, wParam, lParam, result); };
    }
    /// What a test has put before the parent knows of things that are gone with its body.
    void TearDown() override
    {
        parent.before = [this](UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
        { return answer(message, wParam, lParam, result); };
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
    DWORD floaterAt(int x, int y)
    {
        USHORT col = 0;
        USHORT row = 0;
        POINT offset{};
        bool strip = false;
        return grid->GetFloaterFromPoint(x, y, col, row, offset, strip);
    }
    /// "0101": how many floaters each row of the first column has.
    std::string floatersByRow()
    {
        std::string counts;
        for (USHORT row = 0; row < grid->GetRowCount(); ++row)
        {
            counts += std::to_string(grid->FloaterCount(0, row));
        }
        return counts;
    }
    std::vector<std::string> takeLog()
    {
        return std::exchange(log, {});
    }
    std::string selection()
    {
        USHORT left = 0;
        USHORT top = 0;
        USHORT right = 0;
        USHORT bottom = 0;
        grid->GetSelection(left, top, right, bottom);
        return top == GRID_NONE ? "none" : cell(left, top) + ' ' + cell(right, bottom);
    }
    std::string current()
    {
        return grid->GetCol() == GRID_NONE ? "none" : cell(grid->GetCol(), grid->GetRow());
    }
    /// Down, over the other points, and up at the last of them, everything dispatched on the way.
    void draw(const std::vector<POINT> &points, bool up = true)
    {
        zb::penDown(points.front().x, points.front().y);
        settle();
        for (std::size_t i = 1; i < points.size(); ++i)
        {
            zb::penMove(points[i].x, points[i].y);
            settle();
        }
        if (up)
        {
            zb::penUp(points.back().x, points.back().y);
            settle();
        }
    }
    void tick(UINT_PTR timer)
    {
        SendMessageW(*grid, WM_TIMER, timer, 0);
        settle();
    }
    void press(int key)
    {
        SendMessageW(*grid, WM_KEYDOWN, static_cast<WPARAM>(key), 1);
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
    /// Everything else that the grid told or asked since the last takeLog(): number and cells, columns first.
    std::vector<std::string> log;
    /// Answers to requests of the pen, and texts that they get; without one, 0 and none.
    std::map<UINT, LRESULT> answers;
    std::map<UINT, std::u16string> texts;
    std::function<void(UINT)> onAsked;
    std::u16string editedText;
    /// Else each pen that stays down is one that is held.
    bool skipsHold = true;
    int holdsAsked = 0;
    NMRGINFO lastHold{};
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
    TestDevice device;
    Scaling scaling;
    ScreenWindow parent{RGB(10, 200, 30), WS_POPUP | WS_VISIBLE, 0, 0, 240, 320};
    std::unique_ptr<TestGrid> grid;

  private:
    static std::string cell(unsigned col, unsigned row)
    {
        return std::to_string(col) + ',' + std::to_string(row);
    }
    /// col << 16 | row
    static std::string word(DWORD packed)
    {
        return cell(HIWORD(packed), LOWORD(packed));
    }
    /// Records begin with who asks and, but for those that go with a drag or a click, with the message.
    void checkHeader(UINT message, const NMHDR &header)
    {
        const bool named = message != GRID_QUERYDROP && message != GRID_CANDROP && message != GRID_GETDRAGTIP;
        EXPECT_EQ(header.code, named ? message : header.code);
        EXPECT_EQ(header.hwndFrom, grid == nullptr ? header.hwndFrom : grid->GetHwnd()) << message;
    }
    std::string describeRequest(UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message != GRID_CANDRAG && message != GRID_CANEDIT && message != GRID_CELLMOVED)
        {
            checkHeader(message, *reinterpret_cast<NMHDR *>(lParam));
        }
        const std::string number = std::to_string(message) + ' ';
        const auto *span = reinterpret_cast<GRIDSPANREQUEST *>(lParam); // of those that have it
        switch (message)
        {
        case GRID_GETSELECTIONTIP:
        case GRID_GETFLOATERTIP:
            return number + word(span->dwFirst) + ' ' + word(span->dwSecond);
        case GRID_CANMOVEFLOATER:
            EXPECT_EQ(wParam, span->hdr.idFrom);
            return number + std::to_string(wParam) + ' ' + word(span->dwFirst) + ' ' + word(span->dwSecond);
        case GRID_FLOATERMOVED:
            EXPECT_EQ(wParam, span->hdr.idFrom);
            return number + std::to_string(wParam) + ' ' + word(span->dwFirst);
        case GRID_GETSCROLLTIP:
            return number + std::to_string(span->hdr.idFrom);
        case GRID_CANDRAG:
        {
            EXPECT_EQ(reinterpret_cast<HWND>(wParam), grid->GetHwnd());
            const auto &at = *reinterpret_cast<POINT *>(lParam);
            return number + cell(static_cast<unsigned>(at.x), static_cast<unsigned>(at.y));
        }
        case GRID_GETDRAGIMAGES:
        {
            const auto &at = *reinterpret_cast<POINT *>(span->hdr.idFrom);
            return number + cell(static_cast<unsigned>(at.x), static_cast<unsigned>(at.y));
        }
        case GRID_CANDROP:
            EXPECT_TRUE(IsWindow(reinterpret_cast<HWND>(wParam)));
            [[fallthrough]];
        case GRID_GETDRAGTIP:
        case GRID_DROP:
        {
            const auto &drag = *reinterpret_cast<tagGRIDDRAG *>(lParam);
            return number + cell(drag.nCol, drag.nRow) + (message == GRID_DROP && wParam == 0 ? " refused" : "");
        }
        case GRID_CANEDIT:
        {
            const auto &record = *reinterpret_cast<tagNM_GRIDVIEW *>(wParam);
            EXPECT_EQ(lParam, 0);
            return number + cell(record.nCol, record.nRow) + ' ' + std::to_string(static_cast<int>(record.hdr.code));
        }
        case GRID_EDITED:
        {
            const auto &record = *reinterpret_cast<tagNM_GRIDVIEW *>(lParam);
            EXPECT_EQ(wParam, record.dwCookie);
            editedText = record.szData;
            return number + cell(record.nCol, record.nRow) + ' ' + std::to_string(wParam);
        }
        case GRID_CELLMOVED:
            return number + cell(static_cast<unsigned>(wParam), static_cast<unsigned>(lParam));
        default:
            return number;
        }
    }
    bool answerPen(UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
    {
        log.push_back(describeRequest(message, wParam, lParam));
        if (const auto text = texts.find(message); text != texts.end())
        {
            *reinterpret_cast<WCHAR **>(wParam) = heapText(text->second);
        }
        if (onAsked)
        {
            onAsked(message);
        }
        const auto found = answers.find(message);
        result = found == answers.end() ? 0 : found->second;
        return true;
    }
    bool answer(UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
    {
        switch (message)
        {
        case GRID_GETCELL:
        {
            auto &request = *reinterpret_cast<GRIDCELLREQUEST *>(lParam);
            EXPECT_EQ(wParam, 0U);
            asked.push_back(request);
            if (onCell)
            {
                onCell(request);
            }
            return true;
        }
        case GRID_GETFLOATERTEXT:
            checkHeader(message, *reinterpret_cast<NMHDR *>(lParam));
            askedFloaters.push_back(static_cast<DWORD>(reinterpret_cast<NMHDR *>(lParam)->idFrom));
            if (floaterHasText)
            {
                *reinterpret_cast<WCHAR **>(wParam) = heapText(floaterText);
            }
            return true;
        case GRID_SCROLLED:
            scrolled.push_back({static_cast<UINT>(wParam), lParam});
            return true;
        case GRID_SKIPHOLD:
            EXPECT_EQ(reinterpret_cast<HWND>(wParam), grid->GetHwnd());
            EXPECT_EQ(lParam, 0);
            ++holdsAsked;
            result = skipsHold ? 1 : 0;
            return true;
        case WM_NOTIFY:
            EXPECT_EQ(wParam, 0U);
            if (reinterpret_cast<NMHDR *>(lParam)->code == NM_CONTEXTMENU)
            {
                lastHold = *reinterpret_cast<NMRGINFO *>(lParam);
                notified.push_back(NM_CONTEXTMENU);
                return true;
            }
            lastNotify = *reinterpret_cast<tagNM_GRIDVIEW *>(lParam);
            lastTarget = lastNotify.szTarget == nullptr ? u"" : lastNotify.szTarget;
            notified.push_back(static_cast<int>(lastNotify.hdr.code));
            result = testHotSpots ? 1 : 0;
            return true;
        default:
            return (message > GRID_GETCELL && message <= GRID_EDITED) || message == GRID_CELLMOVED
                       ? answerPen(message, wParam, lParam, result)
                       : false;
        }
    }
};

/// A grid of four columns of 45 and rows of 15 pixels, of which six and a part show.
class FourColumnTest : public GridTest
{
  protected:
    TestGrid &four(USHORT rows = 6)
    {
        TestGrid &made = makePlain(rows, 4);
        for (USHORT col = 0; col < 4; ++col)
        {
            made.SetColWidth(col, 45);
        }
        settle();
        return made;
    }
    /// The middle of a cell of the unscrolled grid.
    static POINT at(int col, int row)
    {
        return {col * 45 + 22, row * 15 + 7};
    }
    void tap(POINT point)
    {
        draw({point});
    }
};
} // namespace zb::test
