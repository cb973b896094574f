// The messages of the edit control that hosts send: places, lines, selection, limits.
#include "platform/linux/control_edit.h"
#include "platform/linux/edit_boundaries.h"

#include <algorithm>
#include <cstring>

namespace zb::internal
{
LRESULT Edit::takeEdit(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case EM_GETSEL:
        return getSelection(wParam, lParam);
    case EM_SETSEL:
        setSelection(wParam, lParam);
        return 1;
    case EM_GETRECT:
        *reinterpret_cast<RECT *>(lParam) = m_layout.box();
        return 0;
    case EM_GETMODIFY:
        return m_modified ? TRUE : FALSE;
    case EM_SETMODIFY:
        m_modified = wParam != 0;
        return 0;
    case EM_REPLACESEL:
    {
        const auto *text = reinterpret_cast<const WCHAR *>(lParam);
        if (insert(text == nullptr ? std::u16string() : std::u16string(text), EditStep::Whole) && wParam == 0)
        {
            m_text.emptyUndo();
        }
        return 0;
    }
    case EM_LIMITTEXT:
        m_limit = wParam == 0 ? unlimited : std::min<std::size_t>(wParam, unlimited);
        return 0;
    case EM_GETLIMITTEXT:
        return static_cast<LRESULT>(m_limit);
    case EM_CANUNDO:
        return m_text.canUndo() ? TRUE : FALSE;
    case EM_UNDO:
    {
        const auto change = isReadOnly() ? std::nullopt : m_text.undo();
        if (change.has_value())
        {
            changed(change);
        }
        return change.has_value() || !isMultiLine() ? TRUE : FALSE;
    }
    case EM_EMPTYUNDOBUFFER:
        m_text.emptyUndo();
        return 0;
    case EM_SETREADONLY:
        SetWindowLongW(window(), GWL_STYLE,
                       static_cast<LONG_PTR>((style() & ~ES_READONLY) | (wParam != 0 ? ES_READONLY : 0)));
        refresh();
        return 1;
    case EM_SETMARGINS:
        setMargins(wParam, lParam);
        return 0;
    case EM_GETMARGINS:
        return static_cast<LRESULT>(MAKELONG(static_cast<WORD>(m_leftMargin), static_cast<WORD>(m_rightMargin)));
    default:
        return takeLines(message, wParam, lParam);
    }
}

LRESULT Edit::takeLines(UINT message, WPARAM wParam, LPARAM lParam)
{
    const EditLines &lines = m_layout.lines();
    const auto count = static_cast<LONGLONG>(lines.count());
    const int number = numberOf(wParam);
    switch (message)
    {
    case EM_GETLINECOUNT:
        return static_cast<LRESULT>(count);
    case EM_LINEINDEX:
        return number >= count ? -1
                               : static_cast<LRESULT>(lines.startOf(
                                     number < 0 ? m_layout.lineOf(caret()) : static_cast<std::size_t>(number)));
    case EM_LINELENGTH:
        return lineLength(number);
    case EM_GETLINE:
        return number < 0 || number >= count
                   ? 0
                   : copyLine(static_cast<std::size_t>(number), reinterpret_cast<WCHAR *>(lParam));
    case EM_LINEFROMCHAR:
        return static_cast<LRESULT>(
            lines.lineOf(number < 0 ? m_text.first() : std::min(static_cast<std::size_t>(number), m_text.length())));
    case EM_GETFIRSTVISIBLELINE:
        return static_cast<LRESULT>(isMultiLine() ? m_layout.topLine()
                                                  : m_layout.placeInLine(0, m_layout.left()).place);
    case EM_SCROLL:
        return scroll(LOWORD(wParam));
    case EM_LINESCROLL:
        if (isMultiLine())
        {
            scrollBy(lParam, static_cast<int>(wParam) * m_layout.averageWidth());
        }
        return isMultiLine() ? TRUE : FALSE;
    case EM_SCROLLCARET:
        if (m_layout.show(caret()))
        {
            updateBars();
            refresh();
        }
        return 1;
    case EM_POSFROMCHAR:
        return pointOf(static_cast<std::size_t>(static_cast<DWORD>(wParam)));
    case EM_CHARFROMPOS:
        return placeAt(lParam);
    default:
        return takeCommon(message, wParam, lParam);
    }
}

LRESULT Edit::getSelection(WPARAM wParam, LPARAM lParam) const
{
    const auto first = static_cast<DWORD>(m_text.first());
    const auto last = static_cast<DWORD>(m_text.last());
    if (wParam != 0)
    {
        *reinterpret_cast<DWORD *>(wParam) = first;
    }
    if (lParam != 0)
    {
        *reinterpret_cast<DWORD *>(lParam) = last;
    }
    return last > 0xFFFF ? -1 : static_cast<LRESULT>(MAKELONG(static_cast<WORD>(first), static_cast<WORD>(last)));
}

void Edit::setSelection(WPARAM wParam, LPARAM lParam)
{
    const int from = numberOf(wParam);
    const int to = numberOf(static_cast<WPARAM>(lParam));
    const auto place = [this](int number)
    {
        return number < 0 ? m_text.length() : characterStart(m_text.text(), static_cast<std::size_t>(number));
    };
    if (from < 0)
    {
        m_text.select(m_text.caret(), m_text.caret());
    }
    else
    {
        m_text.select(place(from), place(to));
    }
    m_atLineEnd = false;
    m_goal.reset();
    refresh();
}

LRESULT Edit::lineLength(LONGLONG place) const
{
    const EditLines &lines = m_layout.lines();
    const auto length = [&](std::size_t line)
    { return lines.endOf(m_text.text(), line) - lines.startOf(line); };
    if (place >= 0)
    {
        const auto at = static_cast<std::size_t>(place);
        return at > m_text.length() ? 0 : static_cast<LRESULT>(length(lines.lineOf(at)));
    }
    const std::size_t first = lines.lineOf(m_text.first());
    const std::size_t last = lines.lineOf(m_text.last());
    const std::size_t before = m_text.first() - lines.startOf(first);
    const std::size_t end = lines.endOf(m_text.text(), last);
    return static_cast<LRESULT>(before + (end > m_text.last() ? end - m_text.last() : 0));
}

LRESULT Edit::copyLine(std::size_t line, WCHAR *buffer) const
{
    const std::size_t start = m_layout.lines().startOf(line);
    const std::size_t size = *reinterpret_cast<const WORD *>(buffer);
    const std::size_t length = m_layout.lines().endOf(m_text.text(), line) - start;
    const std::size_t count = std::min(size, length);
    std::memcpy(buffer, m_text.text().data() + start, count * sizeof(WCHAR));
    if (count < size)
    {
        buffer[count] = 0;
    }
    return static_cast<LRESULT>(count);
}

LRESULT Edit::scroll(WORD code)
{
    const auto before = static_cast<LONGLONG>(m_layout.topLine());
    if (!isMultiLine() || code > SB_PAGEDOWN)
    {
        return FALSE;
    }
    const auto page = static_cast<LONGLONG>(m_layout.visibleLines());
    const LONGLONG by[] = {-1, 1, -page, page};
    const HWND self = window();
    scrollBy(by[code], 0);
    if (IsWindow(self) == FALSE)
    {
        return FALSE;
    }
    const auto moved = static_cast<LONGLONG>(m_layout.topLine()) - before;
    return static_cast<LRESULT>(MAKELONG(static_cast<WORD>(moved), 1));
}

LRESULT Edit::pointOf(std::size_t place)
{
    if (place > m_text.length())
    {
        return -1;
    }
    const POINT point = m_layout.pointOf({place, false});
    return static_cast<LRESULT>(MAKELONG(static_cast<WORD>(point.x), static_cast<WORD>(point.y)));
}

LRESULT Edit::placeAt(LPARAM point)
{
    const CaretPlace found = m_layout.placeAt({static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(point))),
                                               static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(point)))});
    return static_cast<LRESULT>(
        MAKELONG(static_cast<WORD>(found.place), static_cast<WORD>(m_layout.lineOf(found))));
}

void Edit::setMargins(WPARAM which, LPARAM pixels)
{
    constexpr WORD byFont = 0xFFFF;
    const auto wanted = [](WORD value) { return value == byFont ? scaledPixels(3) : static_cast<int>(value); };
    if ((which & EC_LEFTMARGIN) != 0)
    {
        m_leftMargin = wanted(LOWORD(static_cast<DWORD_PTR>(pixels)));
    }
    if ((which & EC_RIGHTMARGIN) != 0)
    {
        m_rightMargin = wanted(HIWORD(static_cast<DWORD_PTR>(pixels)));
    }
    setShape();
}
} // namespace zb::internal
