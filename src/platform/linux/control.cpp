#include "platform/linux/control.h"

#include "platform/linux/device_state.h"

#include <algorithm>
#include <map>
#include <mutex>

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

std::size_t putText(std::u16string_view text, WCHAR *buffer, std::size_t size)
{
    if (buffer == nullptr || size == 0)
    {
        return 0;
    }
    const std::size_t count = std::min(text.size(), size - 1);
    *std::copy_n(text.begin(), count, buffer) = 0;
    return count;
}

std::u16string textOfWindow(HWND window)
{
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, u'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::u16string Control::text() const
{
    return textOfWindow(m_window);
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

void Control::drawFieldFrame(HDC context, const RECT &field) const
{
    const int line = GetSystemMetrics(SM_CXBORDER);
    const RECT sides[] = {{field.left, field.top, field.right, field.top + line},
                          {field.left, field.bottom - line, field.right, field.bottom},
                          {field.left, field.top, field.left + line, field.bottom},
                          {field.right - line, field.top, field.right, field.bottom}};
    for (const RECT &side : sides)
    {
        FillRect(context, &side, GetSysColorBrush(isEnabled() ? COLOR_WINDOWFRAME : COLOR_INACTIVEBORDER));
    }
}

LONGLONG Control::scrollTarget(int bar, WPARAM wParam, const Scrolled &scrolled) const
{
    // The message has 16 bits for a thumb's place; the bar knows it in full.
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_TRACKPOS, 0, 0, 0, 0, 0};
    GetScrollInfo(m_window, bar, &info);
    const LONGLONG held = (info.nTrackPos & 0xFFFF) == HIWORD(wParam) ? info.nTrackPos : HIWORD(wParam);
    const LONGLONG now = scrolled.now;
    // In the order of the codes, from SB_LINEUP to SB_BOTTOM.
    const LONGLONG targets[] = {now - scrolled.line, now + scrolled.line, now - scrolled.page, now + scrolled.page,
                                held,                held,                0,                   scrolled.most};
    const WORD code = LOWORD(wParam);
    return code < std::size(targets) ? targets[code] : now;
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

TextMeasure::TextMeasure(HFONT font) : m_context(CreateCompatibleDC(nullptr))
{
    SelectObject(m_context, font);
}

TextMeasure::~TextMeasure()
{
    DeleteDC(m_context);
}

SIZE TextMeasure::sizeOf(std::u16string_view text) const
{
    SIZE size{};
    GetTextExtentPoint32W(m_context, text.data(), static_cast<int>(text.size()), &size);
    return size;
}

int TextMeasure::heightOfLine() const
{
    TEXTMETRICW metrics{};
    GetTextMetricsW(m_context, &metrics);
    return static_cast<int>(metrics.tmHeight);
}

SIZE imageSizeOf(HIMAGELIST images)
{
    int width = 0;
    int height = 0;
    if (images != nullptr)
    {
        ImageList_GetIconSize(images, &width, &height);
    }
    return {width, height};
}

int rowHeightOf(HFONT font)
{
    return std::max(TextMeasure(font).heightOfLine() + 2 * scaledPixels(3), scaledPixels(20));
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
