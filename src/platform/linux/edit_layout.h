// Where the text of an edit control lies in its window: lines, places of characters, scrolling. And how it is painted.
//
// Line and point are those of what is laid out; the first visible line and the pixels scrolled to the left are kept
// here.
#pragma once

#include "platform/gdi.h"
#include "platform/linux/edit_lines.h"

#include <vector>

namespace zb::internal
{
/// A place and on which of two lines it counts, where one line goes on in the next without a line end.
struct CaretPlace
{
    std::size_t place = 0;
    bool atLineEnd = false;
    bool operator==(const CaretPlace &) const = default;
};

class EditLayout
{
  public:
    explicit EditLayout(const EditText &text);
    ~EditLayout();
    EditLayout(const EditLayout &) = delete;
    EditLayout &operator=(const EditLayout &) = delete;

    /// These lay the text out anew.
    void setFont(HFONT font);
    void setShape(const RECT &box, bool single, bool wraps, DWORD align);
    void layOut();
    void follow(const TextChange &change);

    const EditLines &lines() const
    {
        return m_lines;
    }
    const RECT &box() const
    {
        return m_box;
    }
    int lineHeight() const
    {
        return m_lineHeight;
    }
    int averageWidth() const
    {
        return m_averageWidth;
    }
    std::size_t lineOf(const CaretPlace &caret) const;
    /// Pixels from the line's left end.
    int offsetOf(std::size_t line, std::size_t place);
    /// The place whose left edge is nearest to so many pixels from the line's left end.
    CaretPlace placeInLine(std::size_t line, int offset);
    /// In the window's client area, scrolled: the upper end of a caret there.
    POINT pointOf(const CaretPlace &caret);
    /// The nearest place, of visible lines and those one step beyond.
    CaretPlace placeAt(POINT point);

    std::size_t topLine() const
    {
        return m_top;
    }
    int left() const
    {
        return m_left;
    }
    /// At least 1.
    std::size_t visibleLines() const;
    std::size_t highestTop() const;
    /// Whether anything moved.
    bool scrollTo(std::size_t top, int left);
    bool show(const CaretPlace &caret);
    /// The widest line that was measured yet.
    int widest() const
    {
        return m_widest;
    }

    /// Text in the context's font and colours; what lies between the two places in those of the selection.
    void paint(HDC context, std::size_t first, std::size_t last);

  private:
    /// The width from the line's start behind each of its characters.
    const std::vector<int> &extentsOf(std::size_t line);
    int widthOf(std::size_t line);
    /// Where the line's left end lies in the client area.
    int leftOf(std::size_t line);
    void paintLine(HDC context, std::size_t line, int y, std::size_t first, std::size_t last);

    const EditText &m_text;
    EditLines m_lines;
    HDC m_measure;
    HFONT m_font = nullptr;
    RECT m_box{};
    bool m_single = true;
    bool m_wraps = false;
    DWORD m_align = 0;
    int m_lineHeight = 1;
    int m_averageWidth = 1;
    std::size_t m_top = 0;
    int m_left = 0;
    int m_widest = 0;
    std::vector<int> m_extents; ///< of the line below
    std::size_t m_measured = static_cast<std::size_t>(-1);
};
} // namespace zb::internal
