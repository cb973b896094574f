// The edit control as a window: text, font, size, scroll bars, caret, paint.
#include "platform/linux/control_edit.h"

#include <algorithm>
#include <cstring>

namespace zb::internal
{
Edit::Edit(HWND window) : Control(window), m_layout(m_text)
{
}

LRESULT Edit::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message >= EM_GETSEL && message <= EM_CHARFROMPOS)
    {
        return takeEdit(message, wParam, lParam);
    }
    switch (message)
    {
    case WM_CREATE:
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
    case WM_CUT:
    case WM_COPY:
    case WM_PASTE:
    case WM_CLEAR:
    case WM_UNDO:
        return takeText(message, wParam, lParam);
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        takePen(message, lParam);
        return 0;
    case WM_KEYDOWN:
        m_answered = 0;
        takeKey(static_cast<int>(wParam));
        return 0;
    case WM_KEYUP:
        m_answered = 0;
        return 0;
    case WM_CHAR:
        takeCharacter(static_cast<WCHAR>(wParam));
        return 0;
    default:
        return takeWindow(message, wParam, lParam);
    }
}

LRESULT Edit::takeText(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        create(reinterpret_cast<const CREATESTRUCTW *>(lParam)->lpszName);
        return 0;
    case WM_SETTEXT:
        return setText(reinterpret_cast<const WCHAR *>(lParam));
    case WM_GETTEXT:
        return copyText(reinterpret_cast<WCHAR *>(lParam), wParam);
    case WM_GETTEXTLENGTH:
        return static_cast<LRESULT>(m_text.length());
    case WM_CUT:
        cut();
        return 0;
    case WM_COPY:
        copy();
        return 0;
    case WM_PASTE:
        paste();
        return 0;
    case WM_CLEAR:
        if (m_text.hasSelection() && !isReadOnly())
        {
            erase(m_text.first(), m_text.last(), EditStep::Whole);
        }
        return 0;
    default:
        return takeEdit(EM_UNDO, wParam, lParam);
    }
}

LRESULT Edit::takeWindow(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_PAINT:
        paint([this](HDC context) { draw(context); });
        return 0;
    case WM_GETDLGCODE:
        return dialogCode(reinterpret_cast<const MSG *>(lParam));
    case WM_SETFONT:
        takeCommon(message, wParam, lParam);
        m_layout.setFont(font());
        setShape();
        return 0;
    case WM_SIZE:
        setShape();
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        takeFocus(message == WM_SETFOCUS);
        return 0;
    case WM_TIMER:
        if (wParam == blinkTimer)
        {
            showCaret(!m_caretShown);
        }
        else if (wParam == penTimer)
        {
            followPen();
        }
        return 0;
    case WM_VSCROLL:
    case WM_HSCROLL:
        scrolled(message == WM_VSCROLL, wParam);
        return 0;
    case WM_MOUSEWHEEL:
        if (!isMultiLine() || m_layout.highestTop() == 0)
        {
            return takeCommon(message, wParam, lParam);
        }
        scrollBy(wheelRows(wParam), 0);
        return 0;
    case WM_CANCELMODE:
        releasePen();
        return 0;
    default:
        return takeCommon(message, wParam, lParam);
    }
}

void Edit::create(const WCHAR *text)
{
    // From here on bars are kept even when there is nothing to scroll, so that the width of lines never depends on how
    // many there are.
    m_vertical = isMultiLine() && (style() & WS_VSCROLL) != 0;
    m_horizontal = isMultiLine() && (style() & WS_HSCROLL) != 0;
    m_leftMargin = scaledPixels(3);
    m_rightMargin = scaledPixels(3);
    m_text.setText(text == nullptr ? std::u16string_view() : std::u16string_view(text));
    m_layout.setFont(font());
    setShape();
}

void Edit::setShape()
{
    RECT box = client();
    box.left += m_leftMargin;
    box.right = std::max(box.right - m_rightMargin, box.left);
    const int height = box.bottom - box.top;
    if (isMultiLine())
    {
        box.top += std::min(scaledPixels(1), height / 2);
    }
    else
    {
        box.top += std::max((height - m_layout.lineHeight()) / 2, 0);
        box.bottom = std::min<LONG>(box.top + m_layout.lineHeight(), box.bottom);
    }
    const bool wraps = isMultiLine() && (style() & (ES_AUTOHSCROLL | WS_HSCROLL)) == 0;
    m_layout.setShape(box, !isMultiLine(), wraps, style() & (ES_CENTER | ES_RIGHT));
    updateBars();
    refresh();
}

LRESULT Edit::dialogCode(const MSG *about) const
{
    const bool isReturn = about != nullptr && ((about->message == WM_KEYDOWN && about->wParam == VK_RETURN) ||
                                               (about->message == WM_CHAR && about->wParam == u'\r'));
    const bool wants = isReturn && isMultiLine() && (style() & ES_WANTRETURN) != 0;
    // A long text is not selected as a whole by coming to it: the next key would put an end to it.
    return DLGC_WANTCHARS | DLGC_WANTARROWS | (isMultiLine() ? 0 : DLGC_HASSETSEL) | (wants ? DLGC_WANTALLKEYS : 0);
}

LRESULT Edit::setText(const WCHAR *text)
{
    m_text.setText(text == nullptr ? std::u16string_view() : std::u16string_view(text));
    m_modified = false;
    m_atLineEnd = false;
    m_goal.reset();
    m_layout.layOut();
    m_layout.scrollTo(0, 0);
    updateBars();
    if (!isMultiLine() && !tellAlive(EN_UPDATE))
    {
        return TRUE;
    }
    refresh();
    if (!isMultiLine())
    {
        tell(EN_CHANGE);
    }
    return TRUE;
}

LRESULT Edit::copyText(WCHAR *buffer, std::size_t size) const
{
    if (size == 0 || buffer == nullptr)
    {
        return 0;
    }
    const std::size_t count = std::min(m_text.length(), size - 1);
    std::memcpy(buffer, m_text.text().data(), count * sizeof(WCHAR));
    buffer[count] = 0;
    return static_cast<LRESULT>(count);
}

void Edit::draw(HDC context)
{
    const bool quiet = isReadOnly() || !isEnabled();
    prepare(context, quiet ? WM_CTLCOLORSTATIC : WM_CTLCOLOREDIT, quiet ? COLOR_BTNFACE : COLOR_WINDOW);
    const bool showsSelection = hasFocus() || (style() & ES_NOHIDESEL) != 0;
    const std::size_t first = showsSelection ? m_text.first() : 0;
    m_layout.paint(context, first, showsSelection ? m_text.last() : 0);
    if (m_caretShown && !m_text.hasSelection())
    {
        const RECT box = caretBox();
        const HBRUSH brush = CreateSolidBrush(GetTextColor(context));
        FillRect(context, &box, brush);
        DeleteObject(brush);
    }
}

RECT Edit::caretBox()
{
    const POINT top = m_layout.pointOf(caret());
    const int width = scaledPixels(1);
    // At the very end of a full line it would lie outside.
    const LONG left = std::min<LONG>(top.x, std::max<LONG>(m_layout.box().right + m_rightMargin - width, 0));
    return {left, top.y, left + width, top.y + m_layout.lineHeight()};
}

void Edit::showCaret(bool shown)
{
    m_caretShown = shown;
    const RECT box = caretBox();
    InvalidateRect(window(), &box, FALSE);
}

void Edit::takeFocus(bool gained)
{
    m_caretShown = gained;
    m_answered = 0;
    if (gained)
    {
        SetTimer(window(), blinkTimer, blinkTime, nullptr);
    }
    else
    {
        KillTimer(window(), blinkTimer);
        releasePen();
    }
    refresh();
    tell(gained ? EN_SETFOCUS : EN_KILLFOCUS);
}

void Edit::updateBars()
{
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    if (m_vertical)
    {
        info.nMax = static_cast<int>(m_layout.lines().count()) - 1;
        info.nPage = static_cast<UINT>(m_layout.visibleLines());
        info.nPos = static_cast<int>(m_layout.topLine());
        SetScrollInfo(window(), SB_VERT, &info, TRUE);
    }
    if (m_horizontal)
    {
        info.nPage = static_cast<UINT>(std::max<int>(m_layout.box().right - m_layout.box().left, 1));
        info.nMax = std::max(m_layout.widest(), m_layout.left() + static_cast<int>(info.nPage) - 1);
        info.nPos = m_layout.left();
        SetScrollInfo(window(), SB_HORZ, &info, TRUE);
    }
}

void Edit::scrollBy(LONGLONG lines, int pixels)
{
    const LONGLONG top = std::max<LONGLONG>(static_cast<LONGLONG>(m_layout.topLine()) + lines, 0);
    const std::size_t former = m_layout.topLine();
    if (!m_layout.scrollTo(static_cast<std::size_t>(top), m_layout.left() + pixels))
    {
        return;
    }
    updateBars();
    refresh();
    tell(m_layout.topLine() != former ? EN_VSCROLL : EN_HSCROLL);
}

void Edit::scrolled(bool vertical, WPARAM wParam)
{
    if (vertical)
    {
        const auto top = static_cast<LONGLONG>(m_layout.topLine());
        const auto page = static_cast<LONGLONG>(m_layout.visibleLines());
        const auto count = static_cast<LONGLONG>(m_layout.lines().count());
        scrollBy(scrollTarget(SB_VERT, wParam, {top, 1, page, count}) - top, 0);
        return;
    }
    const int left = m_layout.left();
    const int page = m_layout.box().right - m_layout.box().left;
    const Scrolled columns{left, m_layout.averageWidth(), page, left + m_layout.widest()};
    scrollBy(0, static_cast<int>(scrollTarget(SB_HORZ, wParam, columns) - left));
}

void registerEdit()
{
    registerControl<Edit>(u"EDIT");
}
} // namespace zb::internal
