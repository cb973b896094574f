// Strings that are made to be slow: they take little more work than harmless ones of their length.
#include "display/DrawHTML.h"
#include "display/NM_HTMLVIEW.h"
#include "support/TextStage.h"

#include <gtest/gtest.h>

using namespace zb::test;

namespace
{
/// Gives every picture that is asked for.
class HostileDrawing : public TextTest
{
  protected:
    HostileDrawing()
    {
        WNDCLASSW type{};
        type.lpfnWndProc = answer;
        type.lpszClassName = u"HostilePictures";
        RegisterClassW(&type);
        window = CreateWindowExW(0, u"HostilePictures", nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        const HDC screen = GetDC(nullptr);
        picture = CreateCompatibleBitmap(screen, 16, 12);
        ReleaseDC(nullptr, screen);
        SetWindowLongW(window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(picture));
    }
    ~HostileDrawing() override
    {
        DestroyWindow(window);
        DeleteObject(picture);
    }
    static LRESULT answer(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message != WM_NOTIFY)
        {
            return DefWindowProcW(window, message, wParam, lParam);
        }
        reinterpret_cast<NM_HTMLVIEW *>(lParam)->dwCookie =
            static_cast<DWORD_PTR>(GetWindowLongW(window, GWL_USERDATA));
        return 1;
    }
    RECT measure(const std::u16string &markup, int width)
    {
        CHTMLParser parser;
        parser.SetHTML(markup.c_str());
        parser.ParseHTML(window);
        RECT box{0, 0, width, 0};
        MeasureHTML(board.context(), &box, 0, &parser);
        return box;
    }

    DrawingBoard board{40, 24};
    HWND window = nullptr;
    HBITMAP picture = nullptr;
};
} // namespace

TEST_F(HostileDrawing, picturesInARowTakeOneStepALine)
{
    // Three of 16 stand on a line of 50; the row that follows is known, not measured again.
    constexpr int count = 30'000;
    std::u16string markup = u"<BODY BGCOLOR=#FFFFFF>";
    for (int n = 0; n < count; ++n)
    {
        markup += u"<IMG SRC=5>";
    }
    const RECT box = measure(markup, 50);
    EXPECT_EQ(box.bottom, count / 3 * 12 + 1);
    EXPECT_EQ(box.right, 51) << "a row that goes on past the line counts as wide as that";
}

TEST_F(HostileDrawing, rowsOfPicturesEndAtTextBreaksAndAlignments)
{
    EXPECT_EQ(measure(u"<IMG SRC=1><IMG SRC=1><BR><IMG SRC=1>", 100).right, 33);
    EXPECT_EQ(measure(u"<IMG SRC=1><IMG SRC=1><BR><IMG SRC=1>", 100).bottom, 25);
    EXPECT_EQ(measure(u"<IMG SRC=1><P ALIGN=RIGHT><IMG SRC=1>", 100).right, 101);
    EXPECT_EQ(measure(u"<IMG SRC=1 SIZE=6><IMG SRC=1>", 100).right, 25);
}

TEST_F(HostileDrawing, charactersWithoutRoomAreNotTriedOneByOne)
{
    const SelectedFont font(board.context(), plainFont(10));
    std::u16string marks = u"W";
    marks.append(20'000, u'\u0301');
    RECT box{0, 0, 5, 20};
    DrawTextEndEllipsis(board.context(), marks.c_str(), box, DT_NOPREFIX | DT_SINGLELINE);
    SUCCEED() << "a step for each mark would not come to its end";
}

TEST_F(HostileDrawing, anEllipsisNeverHalvesACharacter)
{
    DrawingBoard wide(60, 12);
    const SelectedFont font(wide.context(), plainFont(10));
    SetBkMode(wide.context(), TRANSPARENT);
    RECT none{0, 0, 0, 12};
    DrawTextEndEllipsis(wide.context(), u"\U0001F600ab", none, DT_NOPREFIX | DT_SINGLELINE | DT_NOCLIP);
    const std::string pair = wide.picture();
    DrawingBoard expected(60, 12);
    const SelectedFont same(expected.context(), plainFont(10));
    SetBkMode(expected.context(), TRANSPARENT);
    textOut(expected.context(), 0, 0, u"\U0001F600\u2026");
    EXPECT_EQ(pair, expected.picture());

    DrawingBoard alone(60, 12);
    const SelectedFont third(alone.context(), plainFont(10));
    SetBkMode(alone.context(), TRANSPARENT);
    RECT box{0, 0, 0, 12};
    DrawTextEndEllipsis(alone.context(), u"\U0001F600a", box, DT_NOPREFIX | DT_SINGLELINE | DT_NOCLIP);
    DrawingBoard dots(60, 12);
    const SelectedFont fourth(dots.context(), plainFont(10));
    SetBkMode(dots.context(), TRANSPARENT);
    textOut(dots.context(), 0, 0, u"\u2026");
    EXPECT_EQ(alone.picture(), dots.picture());
}
