// Where the lines of a text begin: at its line ends, and where words don't fit a width.
//
// A line end is a carriage return, a line feed, or both together. A change lays out anew only the lines that it can
// touch, so a key costs the same at the start of a long text as in a short one, but for shifting numbers.
#pragma once

#include "platform/linux/edit_text.h"

#include <functional>
#include <string_view>
#include <vector>

namespace zb::internal
{
class ZBPLATFORM_API EditLines
{
  public:
    /// How many leading characters of a text are at most so wide.
    using Fit = std::function<std::size_t(std::u16string_view text, int width)>;

    EditLines();
    /// One line whatever it holds, or lines; a width of 0 breaks no words. Takes effect with the next layOut.
    void setRules(bool single, int width, Fit fit);
    void layOut(std::u16string_view text);
    /// After a change: `text` is the one that it has led to. The change must be told exactly.
    void follow(std::u16string_view text, const TextChange &change);

    /// At least 1.
    std::size_t count() const
    {
        return m_starts.size();
    }
    std::size_t startOf(std::size_t line) const
    {
        return m_starts[line];
    }
    /// Before the line end; blanks that hang over belong to the line.
    std::size_t endOf(std::u16string_view text, std::size_t line) const;
    /// Whether the line goes on in the next one without a line end between them.
    bool isBroken(std::u16string_view text, std::size_t line) const;
    /// The line that the place lies in: of two, the later.
    std::size_t lineOf(std::size_t place) const;

  private:
    /// The start of the line after that at `start`, of a paragraph whose line end stands at `end`; npos at the last.
    std::size_t breakLine(std::u16string_view text, std::size_t start, std::size_t end) const;
    /// Adds the starts behind `start` up to one that is known, which it returns; npos at the end of the text.
    std::size_t layOutFrom(std::u16string_view text, std::size_t start, std::vector<std::size_t> &starts,
                           const std::function<bool(std::size_t)> &isKnown) const;

    bool m_single = false;
    int m_width = 0;
    Fit m_fit;
    std::vector<std::size_t> m_starts;
};
} // namespace zb::internal
