#include "platform/linux/control.h"

#include "platform/linux/device_state.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// What a control writes with until somebody gives it a font; made once a density and kept.
HFONT defaultFont()
{
    static std::mutex lock;
    static std::map<int, HFONT> fonts;
    const int dotsPerInch = currentScreen().dotsPerInch;
    const std::lock_guard guard(lock);
    HFONT &font = fonts[dotsPerInch];
    if (font == nullptr)
    {
        LOGFONTW description{};
        description.lfHeight = (13 * dotsPerInch + 48) / 96;
        description.lfWeight = FW_NORMAL;
        constexpr WCHAR face[] = u"Tahoma";
        std::copy(std::begin(face), std::end(face), description.lfFaceName);
        font = CreateFontIndirectW(&description);
    }
    return font;
}
} // namespace

HFONT systemFont()
{
    return defaultFont();
}

std::u16string Control::text() const
{
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(m_window)) + 1, u'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(m_window, text.data(), static_cast<int>(text.size()))));
    return text;
}

HFONT Control::font() const
{
    return m_font != nullptr ? m_font : defaultFont();
}

void Control::tell(WORD code) const
{
    SendMessageW(parent(), WM_COMMAND, MAKELONG(static_cast<WORD>(GetDlgCtrlID(m_window)), code),
                 reinterpret_cast<LPARAM>(m_window));
}

void Control::prepare(HDC context, UINT colorMessage, int backColor) const
{
    SelectObject(context, font());
    SetTextColor(context, GetSysColor(isEnabled() ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT));
    SetBkColor(context, GetSysColor(backColor));
    SetBkMode(context, TRANSPARENT);
    const auto brush = reinterpret_cast<HBRUSH>(SendMessageW(
        parent(), colorMessage, reinterpret_cast<WPARAM>(context), reinterpret_cast<LPARAM>(m_window)));
    const RECT all = client();
    FillRect(context, &all, brush != nullptr ? brush : GetSysColorBrush(backColor));
}

LRESULT Control::takeCommon(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_SETFONT:
        m_font = reinterpret_cast<HFONT>(wParam);
        refresh();
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(m_font);
    case WM_ERASEBKGND:
        return 1; // its paint covers all
    case WM_SETTEXT:
    {
        const LRESULT result = DefWindowProcW(m_window, message, wParam, lParam);
        refresh();
        return result;
    }
    case WM_ENABLE:
        SendMessageW(m_window, WM_NCPAINT, 1, 0); // its scroll bars
        [[fallthrough]];
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_SIZE:
        refresh();
        return 0;
    default:
        return DefWindowProcW(m_window, message, wParam, lParam);
    }
}

BufferedPaint::BufferedPaint(HWND window) : m_window(window)
{
    const HDC screen = BeginPaint(window, &m_paint);
    RECT all{};
    GetClientRect(window, &all);
    m_memory = CreateCompatibleDC(screen);
    m_bitmap = CreateCompatibleBitmap(screen, std::max<int>(all.right, 1), std::max<int>(all.bottom, 1));
    m_former = SelectObject(m_memory, m_bitmap);
}

BufferedPaint::~BufferedPaint()
{
    const RECT &box = m_paint.rcPaint;
    BitBlt(m_paint.hdc, box.left, box.top, box.right - box.left, box.bottom - box.top, m_memory, box.left, box.top,
           SRCCOPY);
    SelectObject(m_memory, m_former);
    DeleteObject(m_bitmap);
    DeleteDC(m_memory);
    EndPaint(m_window, &m_paint);
}

int scaledPixels(int pixels)
{
    return std::max((pixels * currentScreen().dotsPerInch + 48) / 96, 1);
}

int rowHeightOf(HFONT font)
{
    const HDC context = CreateCompatibleDC(nullptr);
    SelectObject(context, font);
    TEXTMETRICW metrics{};
    GetTextMetricsW(context, &metrics);
    DeleteDC(context);
    return std::max<int>(metrics.tmHeight + 2 * scaledPixels(3), scaledPixels(20));
}

void registerDialogClass();

void registerSystemClasses()
{
    static std::once_flag once;
    std::call_once(once,
                   []
                   {
                       registerDialogClass();
                       registerStatic();
                       registerButton();
                       registerEdit();
                       registerListBox();
                       registerListView();
                       registerDatePicker();
                       registerTreeView();
                       registerComboBox();
                       registerScrollBar();
                       registerTabControl();
                   });
}
} // namespace zb::internal
