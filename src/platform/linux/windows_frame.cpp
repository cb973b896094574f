// The frame of a window: border, title, scroll bars, and what the pen does with them.
#include "platform/linux/device_state.h"
#include "platform/linux/menu_state.h"
#include "platform/linux/message_values.h"
#include "platform/linux/scroll_bars.h"
#include "platform/linux/windows_frame.h"

namespace zb::internal
{
namespace
{
RECT rectOf(const Box &box)
{
    return {box.left, box.top, box.right, box.bottom};
}

struct FrameLook
{
    FrameLayout layout;
    ScrollBar bars[2];
    std::u16string title;
    bool active = false;
    bool sunken = false;
};

void paintBorder(HDC context, const FrameLook &look)
{
    RECT edge = rectOf(look.layout.whole);
    if (look.sunken)
    {
        DrawEdge(context, &edge, EDGE_SUNKEN, BF_RECT);
        return;
    }
    for (int line = 0; line < look.layout.border; ++line)
    {
        const RECT sides[] = {{edge.left, edge.top, edge.right, edge.top + 1},
                              {edge.left, edge.bottom - 1, edge.right, edge.bottom},
                              {edge.left, edge.top, edge.left + 1, edge.bottom},
                              {edge.right - 1, edge.top, edge.right, edge.bottom}};
        for (const RECT &side : sides)
        {
            FillRect(context, &side, GetSysColorBrush(COLOR_WINDOWFRAME));
        }
        InflateRect(&edge, -1, -1);
    }
}

HFONT titleFont(int height)
{
    LOGFONTW description{};
    description.lfHeight = height;
    description.lfWeight = FW_BOLD;
    constexpr WCHAR face[] = u"Tahoma";
    std::copy(std::begin(face), std::end(face), description.lfFaceName);
    return CreateFontIndirectW(&description);
}

void paintCaption(HDC context, const FrameLook &look)
{
    const RECT caption = rectOf(look.layout.caption);
    FillRect(context, &caption, GetSysColorBrush(look.active ? COLOR_ACTIVECAPTION : COLOR_INACTIVECAPTION));
    const int margin = look.layout.caption.height() / 5;
    RECT text = caption;
    text.left += margin;
    text.right = look.layout.closeButton.isEmpty() ? caption.right - margin : look.layout.closeButton.left;
    const HFONT font = titleFont(look.layout.caption.height() - 2 * margin);
    const HGDIOBJ former = SelectObject(context, font);
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, GetSysColor(look.active ? COLOR_CAPTIONTEXT : COLOR_INACTIVECAPTIONTEXT));
    DrawTextW(context, look.title.c_str(), -1, &text, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    SelectObject(context, former);
    DeleteObject(font);
    if (!look.layout.closeButton.isEmpty())
    {
        RECT button = rectOf(look.layout.closeButton);
        DrawFrameControl(context, &button, DFC_CAPTION, DFCS_CAPTIONCLOSE);
    }
}

bool coversScreen(const RECT &place)
{
    return place.left <= 0 && place.top <= 0 && place.right >= GetSystemMetrics(SM_CXSCREEN) &&
           place.bottom >= GetSystemMetrics(SM_CYSCREEN);
}

/// Moves a window of the screen with the pen until that is lifted; one that fills the screen stays.
void dragWindow(HWND window, POINT from)
{
    RECT start{};
    GetWindowRect(window, &start);
    if (coversScreen(start))
    {
        return;
    }
    SetCapture(window);
    MSG message{};
    while (GetCapture() == window && GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        if (message.hwnd == window && (message.message == WM_MOUSEMOVE || message.message == WM_LBUTTONUP))
        {
            POINT now{};
            GetCursorPos(&now);
            SetWindowPos(window, nullptr, start.left + now.x - from.x, start.top + now.y - from.y, 0, 0,
                         SWP_NOSIZE | SWP_NOZORDER);
            if (message.message == WM_LBUTTONUP)
            {
                break;
            }
            continue;
        }
        DispatchMessageW(&message);
    }
    if (message.message == WM_QUIT)
    {
        PostQuitMessage(static_cast<int>(message.wParam));
    }
    if (GetCapture() == window)
    {
        ReleaseCapture();
    }
}
} // namespace

void paintFrame(HWND window)
{
    const auto object = peekWindow(window);
    if (object == nullptr)
    {
        return;
    }
    FrameLook look;
    look.title = object->text();
    look.active = GetForegroundWindow() == window;
    look.sunken = (object->exStyle.load() & static_cast<LONG_PTR>(WS_EX_CLIENTEDGE)) != 0;
    {
        const std::lock_guard guard(treeLock());
        look.layout = layoutOf(*object);
        std::copy(std::begin(object->bars), std::end(object->bars), look.bars);
    }
    if ((object->style.load() & static_cast<LONG_PTR>(WS_DISABLED)) != 0)
    {
        for (ScrollBar &bar : look.bars)
        {
            bar.disabled = true;
        }
    }
    const HDC context = GetWindowDC(window);
    if (context == nullptr)
    {
        return;
    }
    paintBorder(context, look);
    if (!look.layout.caption.isEmpty())
    {
        paintCaption(context, look);
    }
    if (!look.layout.verticalBar.isEmpty())
    {
        paintBar(context, look.layout.verticalBar, true, look.bars[SB_VERT]);
    }
    if (!look.layout.horizontalBar.isEmpty())
    {
        paintBar(context, look.layout.horizontalBar, false, look.bars[SB_HORZ]);
    }
    const RECT corner = rectOf(look.layout.corner);
    FillRect(context, &corner, GetSysColorBrush(COLOR_BTNFACE));
    if (!look.layout.menuBar.isEmpty())
    {
        paintMenuBar(window, context, rectOf(look.layout.menuBar));
    }
    ReleaseDC(window, context);
}

void penOnFrame(HWND window, WPARAM part, LPARAM where)
{
    const POINT point = penPlace(where);
    switch (static_cast<FramePart>(part))
    {
    case FramePart::VerticalBar:
        trackBar(window, true, point);
        break;
    case FramePart::HorizontalBar:
        trackBar(window, false, point);
        break;
    case FramePart::MenuBar:
        penOnMenuBar(window, point);
        break;
    case FramePart::CloseButton:
        PostMessageW(window, WM_CLOSE, 0, 0);
        break;
    case FramePart::Caption:
        dragWindow(window, point);
        break;
    default:
        break;
    }
}
} // namespace zb::internal
