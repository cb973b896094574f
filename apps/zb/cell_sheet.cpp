#include "zb/cell_sheet.h"

#include "common/markup_text.h"
#include "display/DrawHTML.h"
#include "display/HTMLText.h"
#include "framework/HIDPI.h"
#include "platform/image.h"
#include "platform/kernel.h"

#include <algorithm>
#include <array>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr int margin = 8;
constexpr int gap = 6;
constexpr int stripWidth = 4;
constexpr COLORREF ruleColor = RGB(0xDD, 0xE2, 0xE8);
constexpr int tallest = 32000;

/// A context in memory with a bitmap, for as long as it lives.
class Canvas
{
  public:
    Canvas(int width, int height) : m_context(CreateCompatibleDC(nullptr))
    {
        const HDC screen = GetDC(nullptr);
        m_bitmap = CreateCompatibleBitmap(screen, width, height);
        ReleaseDC(nullptr, screen);
        m_former = m_bitmap == nullptr ? nullptr : SelectObject(m_context, m_bitmap);
    }
    ~Canvas()
    {
        release();
        DeleteDC(m_context);
        DeleteObject(m_bitmap);
    }
    Canvas(const Canvas &) = delete;
    Canvas &operator=(const Canvas &) = delete;

    HDC context() const
    {
        return m_context;
    }
    HBITMAP bitmap() const
    {
        return m_bitmap;
    }
    /// Takes the bitmap out of the context, so that others can read it.
    void release()
    {
        if (m_former != nullptr)
        {
            SelectObject(m_context, std::exchange(m_former, nullptr));
        }
    }

  private:
    HDC m_context;
    HBITMAP m_bitmap = nullptr;
    HGDIOBJ m_former = nullptr;
};

void fill(HDC context, const RECT &box, COLORREF color)
{
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(context, &box, brush);
    DeleteObject(brush);
}

/// What the parser's text takes in that width.
SIZE measured(HDC context, CHTMLParser &parser, int width)
{
    RECT box{0, 0, std::max(width, 1), tallest};
    MeasureHTML(context, &box, 0, &parser);
    return {box.right, box.bottom};
}
} // namespace

CellSheet::CellSheet(int width) : m_width(width)
{
    HIDPI_InitScaling();
}

void CellSheet::add(SheetRow row)
{
    m_rows.push_back(std::move(row));
}

std::unique_ptr<CHTMLParser> CellSheet::parsed(const SheetRow &row, const std::u16string &markup) const
{
    const std::u16string whole = u"<BODY BGCOLOR=" + colorMarkup(row.back) + u">" + markup;
    auto parser = std::make_unique<CHTMLParser>();
    parser->SetFontQuality(ANTIALIASED_QUALITY);
    parser->SetHTML(whole.c_str());
    parser->ParseHTML(m_pictures.handle());
    return parser;
}

int CellSheet::sideWidth(HDC context) const
{
    // Set to the right they would be as wide as their room, so they are measured as they stand.
    int widest = 0;
    for (const SheetRow &row : m_rows)
    {
        if (!row.side.empty())
        {
            widest = std::max<int>(widest, measured(context, *parsed(row, row.side), m_width / 2).cx);
        }
    }
    return widest;
}

std::vector<CellSheet::Placed> CellSheet::place(HDC context, int textLeft) const
{
    std::vector<Placed> all;
    int top = 0;
    for (const SheetRow &row : m_rows)
    {
        const int left = row.spread ? HIDPI_SCALEX(margin) : textLeft;
        auto text = parsed(row, row.text);
        const int textHeight = measured(context, *text, m_width - HIDPI_SCALEX(margin) - left).cy;
        const int sideHeight = row.side.empty() ? 0 : measured(context, *parsed(row, row.side), textLeft).cy;
        const int height = std::max(textHeight, sideHeight) + 2 * HIDPI_SCALEY(row.padding);
        all.push_back({&row, std::move(text), top, height});
        top += height;
    }
    return all;
}

void CellSheet::draw(HDC context, const Placed &placed, int side, int textLeft) const
{
    const SheetRow &row = *placed.row;
    const int top = placed.top + HIDPI_SCALEY(row.padding);
    const int bottom = placed.top + placed.height;
    // Markup may name a background of its own: it is that of the whole row.
    fill(context, {0, placed.top, m_width, bottom}, placed.text->GetBackColor(true));
    RECT text{row.spread ? HIDPI_SCALEX(margin) : textLeft, top, m_width - HIDPI_SCALEX(margin), bottom};
    DrawHTML(context, &text, 0, placed.text.get(), nullptr, 0);
    if (!row.side.empty())
    {
        RECT box{HIDPI_SCALEX(margin), top, HIDPI_SCALEX(margin) + side, bottom};
        DrawHTML(context, &box, 0, parsed(row, u"<P ALIGN=RIGHT>" + row.side).get(), nullptr, 0);
    }
    if (row.strip.has_value())
    {
        const int right = textLeft - HIDPI_SCALEX(gap);
        fill(context, {right - HIDPI_SCALEX(stripWidth), placed.top + HIDPI_SCALEY(2), right, bottom - HIDPI_SCALEY(2)},
             *row.strip);
    }
    if (row.ruled)
    {
        fill(context, {textLeft, bottom - g_HIDPI_BorderPixels, m_width, bottom}, ruleColor);
    }
}

bool CellSheet::write(const std::filesystem::path &file) const
{
    const Canvas scratch(1, 1);
    const int side = sideWidth(scratch.context());
    const int textLeft =
        HIDPI_SCALEX(margin) + (side == 0 ? 0 : side + HIDPI_SCALEX(2 * gap + stripWidth));
    const std::vector<Placed> places = place(scratch.context(), textLeft);
    const int height = places.empty() ? 1 : places.back().top + places.back().height;
    if (height > tallest)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
    Canvas canvas(m_width, height);
    if (canvas.bitmap() == nullptr)
    {
        return false;
    }
    for (const Placed &placed : places)
    {
        draw(canvas.context(), placed, side, textLeft);
    }
    canvas.release();
    return writePng(canvas.bitmap(), file);
}
} // namespace zb::cli
