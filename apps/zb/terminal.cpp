#include "zb/terminal.h"

#include "common/complain.h"
#include "platform/text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include <sys/ioctl.h>
#include <unistd.h>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr int usualWidth = 80;
constexpr int narrowest = 20;

int terminalWidth(int descriptor)
{
    winsize size{};
    if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col != 0)
    {
        return std::max<int>(size.ws_col, narrowest);
    }
    const char *const columns = std::getenv("COLUMNS");
    const int width = columns == nullptr ? 0 : std::atoi(columns);
    return width > 0 ? std::max(width, narrowest) : usualWidth;
}

bool wantsColours()
{
    const char *const off = std::getenv("NO_COLOR");
    const char *const term = std::getenv("TERM");
    return (off == nullptr || *off == '\0') && term != nullptr && std::strcmp(term, "dumb") != 0;
}

std::string_view codeOf(Style style)
{
    switch (style)
    {
    case Style::Heading:
        return "\x1b[1m";
    case Style::Today:
        return "\x1b[1;32m";
    case Style::Time:
        return "\x1b[36m";
    case Style::AllDay:
        return "\x1b[33m";
    case Style::Task:
        return "\x1b[35m";
    case Style::Overdue:
        return "\x1b[1;31m";
    case Style::Dim:
        return "\x1b[2m";
    case Style::Plain:
        break;
    }
    return {};
}

/// Code point at `at`, which moves behind it. The text is well-formed, or each bad byte stands for itself.
char32_t decode(std::string_view text, std::size_t &at)
{
    const auto lead = static_cast<unsigned char>(text[at++]);
    const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    if (more == 0 || at + more > text.size())
    {
        return lead;
    }
    char32_t value = lead & (0x3FU >> more);
    for (std::size_t n = 0; n < more; ++n)
    {
        value = value << 6U | (static_cast<unsigned char>(text[at++]) & 0x3FU);
    }
    return value;
}

int columnsOf(char32_t character)
{
    return character < 0x7F ? 1 : std::max(0, ::wcwidth(static_cast<wchar_t>(character)));
}
} // namespace

Terminal::Terminal(std::FILE *stream)
    : m_isTerminal(::isatty(::fileno(stream)) != 0), m_colours(m_isTerminal && wantsColours()),
      m_width(m_isTerminal ? terminalWidth(::fileno(stream)) : 0)
{
}

std::string Terminal::styled(std::string_view text, Style style) const
{
    if (!m_colours || style == Style::Plain || text.empty())
    {
        return std::string(text);
    }
    return std::string(codeOf(style)) + std::string(text) + "\x1b[0m";
}

std::string Terminal::coloured(std::string_view text, std::uint32_t color) const
{
    if (!m_colours)
    {
        return std::string(text);
    }
    char code[32];
    std::snprintf(code, sizeof code, "\x1b[38;2;%u;%u;%um", color & 0xFFU, color >> 8U & 0xFFU, color >> 16U & 0xFFU);
    return code + std::string(text) + "\x1b[0m";
}

int columnsOf(std::string_view text)
{
    int columns = 0;
    for (std::size_t at = 0; at < text.size();)
    {
        columns += columnsOf(decode(text, at));
    }
    return columns;
}

std::string fitted(std::string_view text, int columns)
{
    if (columnsOf(text) <= columns)
    {
        return std::string(text);
    }
    std::size_t end = 0;
    int taken = 1; // the ellipsis
    for (std::size_t at = 0; at < text.size();)
    {
        taken += columnsOf(decode(text, at));
        if (taken > columns)
        {
            break;
        }
        end = at;
    }
    return columns < 1 ? std::string() : std::string(text.substr(0, end)) + "…";
}

std::string padded(std::string_view text, int columns)
{
    const int missing = columns - columnsOf(text);
    return std::string(text) + std::string(static_cast<std::size_t>(std::max(missing, 0)), ' ');
}

void Output::write(std::string_view text)
{
    m_failed = m_failed || std::fwrite(text.data(), 1, text.size(), stdout) != text.size();
}

void Output::line(std::string_view text)
{
    write(text);
    write("\n");
}

bool Output::finish()
{
    m_failed = std::fflush(stdout) != 0 || m_failed;
    if (m_failed)
    {
        complain(std::string("the output could not be written: ") + std::strerror(errno));
    }
    return !m_failed;
}

ProgressBar::ProgressBar(std::string label) : m_terminal(stderr), m_label(std::move(label))
{
}

ProgressBar::~ProgressBar()
{
    clear();
}

void ProgressBar::show(double fraction)
{
    const int percent = std::clamp(static_cast<int>(fraction * 100), 0, 100);
    if (!m_terminal.isTerminal() || percent == m_shown)
    {
        return;
    }
    m_shown = percent;
    constexpr int barColumns = 20;
    const auto full = static_cast<std::size_t>(percent * barColumns / 100);
    const std::string bar = std::string(full, '#') + std::string(barColumns - full, '.');
    const std::string label = fitted(m_label, m_terminal.width() - barColumns - 10);
    std::fprintf(stderr, "\r%s [%s] %3d%%", label.c_str(), bar.c_str(), percent);
    std::fflush(stderr);
}

void ProgressBar::clear()
{
    if (m_shown >= 0)
    {
        std::fputs("\r\x1b[K", stderr);
        std::fflush(stderr);
        m_shown = -1;
    }
}
} // namespace zb::cli
