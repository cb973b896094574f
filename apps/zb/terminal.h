// The terminal that a stream leads to: its width, whether it takes colours, and text that fits.
//
// Text from items may hold anything; visibleText() makes it harmless before it is printed (a subject must not be able
// to move the cursor or recolour the screen).
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace zb::cli
{
enum class Style
{
    Plain,
    Heading,
    Today,
    Time,
    AllDay,
    Task,
    Overdue,
    Dim
};

class Terminal
{
  public:
    explicit Terminal(std::FILE *stream);

    bool isTerminal() const
    {
        return m_isTerminal;
    }
    bool hasColours() const
    {
        return m_colours;
    }
    /// Columns; 0 when the stream is no terminal, text is then never cut.
    int width() const
    {
        return m_width;
    }
    /// The text in a style; as it is where colours are off (no terminal, NO_COLOR set and not empty, TERM=dumb).
    std::string styled(std::string_view text, Style style) const;
    /// In a colour of its own, low byte red; as it is where colours are off.
    std::string coloured(std::string_view text, std::uint32_t color) const;

  private:
    bool m_isTerminal;
    bool m_colours;
    int m_width;
};

/// Columns that a text takes: two for wide characters, none for combining ones.
int columnsOf(std::string_view text);
/// The text, or its beginning with "…" when it takes more than `columns`; below 1 column nothing.
std::string fitted(std::string_view text, int columns);
/// With blanks behind it up to `columns`.
std::string padded(std::string_view text, int columns);

/// Prints to standard output and remembers failure.
class Output
{
  public:
    void write(std::string_view text);
    void line(std::string_view text);
    /// Flushes; false when anything was lost. The message is then printed.
    bool finish();

  private:
    bool m_failed = false;
};

/// A bar on standard error for work that takes long enough to wonder; only on a terminal.
class ProgressBar
{
  public:
    explicit ProgressBar(std::string label);
    ~ProgressBar();
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;

    void show(double fraction);
    /// Takes the bar off the screen.
    void clear();

  private:
    Terminal m_terminal;
    std::string m_label;
    int m_shown = -1; ///< percent on the screen
};
} // namespace zb::cli
