// A bitmap to draw marked-up text on, with the test faces: at 10 pixels every letter is 5 wide and 10 high.
#pragma once

#include "display/DrawHTML.h"
#include "display/Markup.h"
#include "framework/MemoryBitmap.h"
#include "support/Picture.h"
#include "support/TestFace.h"

namespace zb::test
{
inline bool operator==(const RECT &a, const RECT &b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

inline std::string describe(const RECT &rect)
{
    return std::to_string(rect.left) + ',' + std::to_string(rect.top) + ' ' + std::to_string(rect.right) + ',' +
           std::to_string(rect.bottom);
}

/// White at first.
class Board
{
  public:
    Board(int width, int height) : m_bitmap(width, height)
    {
        clear();
    }
    void clear()
    {
        BITMAP record{};
        GetObjectW(m_bitmap.bitmap(), sizeof record, &record);
        const RECT all = {0, 0, record.bmWidth, record.bmHeight};
        FillRect(context(), &all, GetStockObject(WHITE_BRUSH));
    }
    HDC context() const
    {
        return m_bitmap.context();
    }
    Picture picture() const
    {
        return pictureOf(m_bitmap.bitmap());
    }
    /// The smallest rectangle around the pixels that pass, as text; "none" without any.
    template <typename Test>
    std::string boxWhere(Test test) const
    {
        const Picture pixels = picture();
        RECT box = {pixels.width, pixels.height, 0, 0};
        for (int y = 0; y < pixels.height; ++y)
        {
            for (int x = 0; x < pixels.width; ++x)
            {
                if (test(pixels.at(x, y)))
                {
                    box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                           std::max(box.bottom, y + 1)};
                }
            }
        }
        return box.right == 0 ? "none" : describe(box);
    }
    /// Of a colour written 0xRRGGBB.
    std::string boxOf(std::uint32_t color) const
    {
        return boxWhere([&](std::uint32_t pixel) { return pixel == color; });
    }
    std::string inkBox() const
    {
        return boxWhere([](std::uint32_t pixel) { return pixel != 0xFFFFFF; });
    }

  private:
    MemoryBitmap m_bitmap;
};

inline DeviceOptions withFonts(const std::filesystem::path &folder, int dotsPerInch = 96)
{
    DeviceOptions options = withDensity(dotsPerInch);
    options.fonts = testFonts(folder);
    return options;
}

/// "key left,top right,bottom" of each.
inline std::vector<std::string> describe(const HotSpotArray &spots)
{
    std::vector<std::string> lines;
    for (const HOTSPOT &spot : spots)
    {
        lines.push_back(utf8(spot.szKey) + ' ' + describe(spot.rcArea));
    }
    return lines;
}

class DrawingTest : public ::testing::Test
{
  protected:
    void parse(const std::u16string &markup)
    {
        parser.SetHTML(markup.c_str());
        parser.ParseHTML(window.handle());
    }
    /// Markup in a font of 10 pixels without a background of its own, painted; its hot spots.
    std::vector<std::string> paint(const std::u16string &markup, RECT rect, USHORT indent = 0, DWORD flags = 0)
    {
        parse(u"<FONT SIZE=-1>" + markup);
        board.clear();
        HotSpotArray spots;
        DrawHTML(board.context(), &rect, indent, &parser, &spots, flags);
        return describe(spots);
    }
    /// What DrawHTML makes of the rectangle when it measures.
    std::string measure(const std::u16string &markup, RECT rect, USHORT indent = 0)
    {
        parse(u"<FONT SIZE=-1>" + markup);
        DrawHTML(board.context(), &rect, indent, &parser, nullptr, DT_CALCRECT);
        return describe(rect);
    }

    using Lines = std::vector<std::string>;

    TemporaryFolder faces;
    TestDevice device{withFonts(faces.path())};
    Scaling scaling;
    PictureWindow window;
    Board board{400, 200};
    CHTMLParser parser;
};
} // namespace zb::test
