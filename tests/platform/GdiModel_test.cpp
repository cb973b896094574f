// Random fills, transfers and clips on a board, against a plain model that works pixel by pixel.
#include "platform/gdi.h"
#include "support/DrawingBoard.h"

namespace
{
using namespace zb::test;

constexpr int side = 12;
constexpr std::uint32_t keyColor = 0x00FF00;

/// Pixels and which of them may be drawn on.
class Model
{
  public:
    explicit Model(bool mono) : m_pixels(side * side, 0xFFFFFF), m_open(side * side, true), m_mono(mono)
    {
    }
    static bool inside(int x, int y)
    {
        return x >= 0 && x < side && y >= 0 && y < side;
    }
    std::uint32_t at(int x, int y) const
    {
        return m_pixels[index(x, y)];
    }
    bool open(int x, int y) const
    {
        return inside(x, y) && m_open[index(x, y)];
    }
    void put(int x, int y, std::uint32_t pixel)
    {
        if (open(x, y))
        {
            const std::uint32_t sum = (pixel >> 16U) + (pixel >> 8U & 0xFFU) + (pixel & 0xFFU);
            m_pixels[index(x, y)] = !m_mono ? pixel : sum >= 383 ? 0xFFFFFF : 0;
        }
    }
    template <typename Keep>
    void clip(Keep keep)
    {
        for (int i = 0; i < side * side; ++i)
        {
            m_open[static_cast<std::size_t>(i)] = m_open[static_cast<std::size_t>(i)] && keep(i % side, i / side);
        }
    }
    void openAll()
    {
        m_open.assign(m_open.size(), true);
    }
    const std::vector<std::uint32_t> &pixels() const
    {
        return m_pixels;
    }
    bool mono() const
    {
        return m_mono;
    }

  private:
    static std::size_t index(int x, int y)
    {
        return static_cast<std::size_t>(y * side + x);
    }
    std::vector<std::uint32_t> m_pixels;
    std::vector<bool> m_open;
    bool m_mono;
};

COLORREF colorOf(std::uint32_t pixel)
{
    return RGB(static_cast<BYTE>(pixel >> 16U), static_cast<BYTE>(pixel >> 8U), static_cast<BYTE>(pixel));
}

struct Pair
{
    explicit Pair(bool mono) : board(side, side, RGB(255, 255, 255), mono), model(mono)
    {
    }
    DrawingBoard board;
    Model model;
    std::uint32_t ink = 0x000000;
    std::uint32_t paper = 0xFFFFFF;
};

class Walk
{
  public:
    explicit Walk(unsigned seed) : m_random(seed), m_pairs{Pair(false), Pair(false), Pair(true)}
    {
    }

    void step()
    {
        Pair &pair = m_pairs[number(0, 2)];
        switch (number(0, 8))
        {
        case 0:
            return fill(pair);
        case 1:
            return invert(pair);
        case 2:
            return pixel(pair);
        case 3:
            return clip(pair);
        case 4:
            return colors(pair);
        case 5:
            return pattern(pair);
        case 6:
            return transparent(pair, m_pairs[number(0, 2)]);
        default:
            return transfer(pair, m_pairs[number(0, 2)]);
        }
    }
    bool agrees() const
    {
        return std::all_of(m_pairs.begin(), m_pairs.end(),
                           [](const Pair &pair) { return pair.board.pixels() == pair.model.pixels(); });
    }

  private:
    int number(int from, int to)
    {
        return std::uniform_int_distribution<int>(from, to)(m_random);
    }
    std::uint32_t color()
    {
        constexpr std::uint32_t few[] = {0x000000, 0xFFFFFF, keyColor, 0x123456, 0xFEDCBA, 0x7F807F};
        return few[number(0, 5)];
    }
    RECT rectangle()
    {
        const int left = number(-3, side);
        const int top = number(-3, side);
        return {left, top, left + number(-1, 9), top + number(-1, 9)};
    }
    template <typename Do>
    static void forAll(const RECT &rectangle, Do act)
    {
        for (int y = rectangle.top; y < rectangle.bottom; ++y)
        {
            for (int x = rectangle.left; x < rectangle.right; ++x)
            {
                act(x, y);
            }
        }
    }

    void fill(Pair &pair)
    {
        const RECT place = rectangle();
        const std::uint32_t pixel = color();
        HBRUSH brush = CreateSolidBrush(colorOf(pixel));
        FillRect(pair.board.context(), &place, brush);
        DeleteObject(brush);
        forAll(place, [&](int x, int y) { pair.model.put(x, y, pixel); });
    }
    void invert(Pair &pair)
    {
        const RECT place = rectangle();
        InvertRect(pair.board.context(), &place);
        forAll(place, [&](int x, int y) { invertAt(pair.model, x, y); });
    }
    static void invertAt(Model &model, int x, int y)
    {
        if (model.open(x, y))
        {
            model.put(x, y, model.at(x, y) ^ 0xFFFFFFU);
        }
    }
    void pixel(Pair &pair)
    {
        const int x = number(-1, side);
        const int y = number(-1, side);
        const std::uint32_t pixel = color();
        const COLORREF told = SetPixel(pair.board.context(), x, y, colorOf(pixel));
        pair.model.put(x, y, pixel);
        ASSERT_EQ(told, pair.model.open(x, y) ? colorOf(pair.model.at(x, y)) : CLR_INVALID);
        ASSERT_EQ(GetPixel(pair.board.context(), x, y), told);
    }
    void clip(Pair &pair)
    {
        const RECT place = rectangle();
        HDC context = pair.board.context();
        const auto within = [&](int x, int y)
        {
            // The calls put the sides in order.
            return x >= std::min(place.left, place.right) && x < std::max(place.left, place.right) &&
                   y >= std::min(place.top, place.bottom) && y < std::max(place.top, place.bottom);
        };
        switch (number(0, 3))
        {
        case 0:
            IntersectClipRect(context, place.left, place.top, place.right, place.bottom);
            pair.model.clip(within);
            break;
        case 1:
            ExcludeClipRect(context, place.left, place.top, place.right, place.bottom);
            pair.model.clip([&](int x, int y) { return !within(x, y); });
            break;
        default:
            reopen(pair);
        }
    }
    /// Takes all clips away, by a state that was saved before any.
    static void reopen(Pair &pair)
    {
        RestoreDC(pair.board.context(), 1);
        SaveDC(pair.board.context());
        SetTextColor(pair.board.context(), colorOf(pair.ink));
        SetBkColor(pair.board.context(), colorOf(pair.paper));
        pair.model.openAll();
    }
    void colors(Pair &pair)
    {
        pair.ink = color();
        pair.paper = color();
        SetTextColor(pair.board.context(), colorOf(pair.ink));
        SetBkColor(pair.board.context(), colorOf(pair.paper));
    }
    void pattern(Pair &pair)
    {
        const RECT place = rectangle();
        const std::uint32_t pixel = color();
        HBRUSH brush = CreateSolidBrush(colorOf(pixel));
        HGDIOBJ former = SelectObject(pair.board.context(), brush);
        const bool inverts = number(0, 1) == 0;
        PatBlt(pair.board.context(), place.left, place.top, std::max(place.right - place.left, 0),
               std::max(place.bottom - place.top, 0), inverts ? PATINVERT : PATCOPY);
        SelectObject(pair.board.context(), former);
        DeleteObject(brush);
        const std::uint32_t sum = (pixel >> 16U) + (pixel >> 8U & 0xFFU) + (pixel & 0xFFU);
        const std::uint32_t fitted = !pair.model.mono() ? pixel : sum >= 383 ? 0xFFFFFF : 0;
        forAll(place,
               [&](int x, int y)
               {
                   if (pair.model.open(x, y))
                   {
                       pair.model.put(x, y, inverts ? pair.model.at(x, y) ^ fitted : fitted);
                   }
               });
    }
    static std::uint32_t converted(const Pair &to, const Pair &from, std::uint32_t pixel)
    {
        if (from.model.mono() && !to.model.mono())
        {
            return pixel == 0 ? to.ink : to.paper;
        }
        return to.model.mono() && !from.model.mono() ? (pixel == from.paper ? 0xFFFFFF : 0) : pixel;
    }
    static std::uint32_t combined(DWORD operation, std::uint32_t target, std::uint32_t source)
    {
        switch (operation)
        {
        case SRCPAINT:
            return target | source;
        case SRCAND:
            return target & source;
        case SRCINVERT:
            return target ^ source;
        case NOTSRCCOPY:
            return source ^ 0xFFFFFFU;
        default:
            return source;
        }
    }
    void transfer(Pair &to, Pair &from)
    {
        constexpr DWORD operations[] = {SRCCOPY, SRCCOPY, SRCPAINT, SRCAND, SRCINVERT, NOTSRCCOPY};
        const DWORD operation = operations[number(0, 5)];
        const RECT place = rectangle();
        const int sourceX = number(-3, side);
        const int sourceY = number(-3, side);
        // By whole multiples pixels repeat; once is a plain transfer.
        const int times = number(1, 2);
        const int width = std::max(place.right - place.left, 0);
        const int height = std::max(place.bottom - place.top, 0);
        const Model before = from.model;
        if (times == 1)
        {
            BitBlt(to.board.context(), place.left, place.top, width, height, from.board.context(), sourceX, sourceY,
                   operation);
        }
        else if (width > 0 && height > 0)
        {
            StretchBlt(to.board.context(), place.left, place.top, width * 2, height * 2, from.board.context(), sourceX,
                       sourceY, width, height, operation);
        }
        forAll({place.left, place.top, place.left + width * times, place.top + height * times},
               [&](int x, int y)
               {
                   const int fromX = sourceX + (x - place.left) / times;
                   const int fromY = sourceY + (y - place.top) / times;
                   if (to.model.open(x, y) && Model::inside(fromX, fromY))
                   {
                       const std::uint32_t source = converted(to, from, before.at(fromX, fromY));
                       to.model.put(x, y, combined(operation, to.model.at(x, y), source));
                   }
               });
    }
    void transparent(Pair &to, Pair &from)
    {
        const RECT place = rectangle();
        const int sourceX = number(-3, side);
        const int sourceY = number(-3, side);
        const int width = std::max(place.right - place.left, 1);
        const int height = std::max(place.bottom - place.top, 1);
        const Model before = from.model;
        TransparentImage(to.board.context(), place.left, place.top, width, height, from.board.bitmap(), sourceX,
                         sourceY, width, height, colorOf(keyColor));
        forAll({place.left, place.top, place.left + width, place.top + height},
               [&](int x, int y)
               {
                   const int fromX = sourceX + x - place.left;
                   const int fromY = sourceY + y - place.top;
                   if (Model::inside(fromX, fromY) && before.at(fromX, fromY) != keyColor)
                   {
                       to.model.put(x, y, before.at(fromX, fromY));
                   }
               });
    }

    std::mt19937 m_random;
    std::array<Pair, 3> m_pairs;

  public:
    void begin()
    {
        for (const Pair &pair : m_pairs)
        {
            SaveDC(pair.board.context());
        }
    }
};

TEST(GdiModel, ThousandsOfRandomStepsAgreeWithAModelOfPixels)
{
    for (unsigned seed = 1; seed <= 12; ++seed)
    {
        Walk walk(seed);
        walk.begin();
        for (int step = 0; step < 1500; ++step)
        {
            walk.step();
            ASSERT_TRUE(walk.agrees()) << "seed " << seed << ", step " << step;
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    }
}
} // namespace
