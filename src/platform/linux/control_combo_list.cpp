// The list of a combo box under the pen.
#include "platform/linux/control_combo.h"
#include "platform/linux/scroll_bars.h"

namespace zb::internal
{
ComboBox *ComboList::combo() const
{
    return static_cast<ComboBox *>(reinterpret_cast<Control *>(GetWindowLongW(parent(), 0)));
}

bool ComboList::isDropped() const
{
    return (style() & WS_CHILD) == 0;
}

LRESULT ComboList::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CAPTURECHANGED)
    {
        m_pressed = false;
        followAgain(false);
        if (m_open && !m_onBar && reinterpret_cast<HWND>(lParam) != window())
        {
            combo()->left();
        }
        return 0;
    }
    return ListBox::take(message, wParam, lParam);
}

void ComboList::open(bool pressed)
{
    m_open = true;
    m_armed = false;
    m_pressed = pressed;
    SetCapture(window());
}

void ComboList::close()
{
    m_open = m_armed = m_pressed = false;
    followAgain(false);
    if (GetCapture() == window())
    {
        ReleaseCapture();
    }
}

void ComboList::takePen(UINT message, LPARAM place)
{
    m_at = penPlace(place);
    switch (message)
    {
    case WM_LBUTTONDBLCLK:
        if (!isDropped() && rowAt(m_at).value_or(count()) < count())
        {
            combo()->doubleTapped();
            break;
        }
        [[fallthrough]];
    case WM_LBUTTONDOWN:
        penDown(m_at);
        break;
    case WM_MOUSEMOVE:
        if (m_pressed)
        {
            followPen();
        }
        break;
    default:
        penUp(m_at);
        break;
    }
}

void ComboList::penDown(POINT point)
{
    if (!isDropped())
    {
        const HWND self = window();
        combo()->takeFocusFromPen();
        if (IsWindow(self) != FALSE && rowAt(point).value_or(count()) < count())
        {
            m_pressed = true;
            SetCapture(self);
            followPen();
        }
        return;
    }
    POINT onScreen = point;
    ClientToScreen(window(), &onScreen);
    switch (framePartAt(window(), onScreen))
    {
    case FramePart::Client:
        m_pressed = true;
        followPen();
        break;
    case FramePart::VerticalBar:
        followBar(onScreen);
        break;
    case FramePart::Nowhere:
        combo()->tappedBeside(onScreen);
        break;
    default:
        break;
    }
}

/// The bar has the capture for itself, then the list has it again.
void ComboList::followBar(POINT point)
{
    const HWND self = window();
    m_onBar = true;
    trackBar(self, true, point);
    if (IsWindow(self) == FALSE)
    {
        return;
    }
    m_onBar = false;
    if (m_open)
    {
        SetCapture(self);
    }
}

void ComboList::followPen()
{
    if (!m_pressed || count() == 0)
    {
        followAgain(false);
        return;
    }
    const RECT all = client();
    const auto row = rowAt(m_at);
    // Until it has come to the rows, the pen is still on what has opened them.
    m_armed = m_armed || row.has_value() || !isDropped();
    const bool above = m_at.y < 0;
    const bool outside = m_armed && (above || m_at.y >= all.bottom);
    followAgain(outside);
    if (!m_armed || (!outside && !row.has_value()))
    {
        return;
    }
    const int shown = all.bottom / rowHeight();
    const int wanted = outside ? (above ? top() - 1 : top() + shown) : *row;
    const int target = std::clamp(wanted, 0, count() - 1);
    const bool changed = target != static_cast<int>(SendMessageW(window(), LB_GETCURSEL, 0, 0));
    if (!changed || (!outside && wanted >= count()))
    {
        return;
    }
    chooseOnly(target);
    if (!isDropped())
    {
        tellChange();
    }
}

void ComboList::penUp(POINT point)
{
    followAgain(false);
    const bool armed = std::exchange(m_armed, false);
    const bool pressed = std::exchange(m_pressed, false);
    if (!isDropped())
    {
        if (pressed && GetCapture() == window())
        {
            ReleaseCapture();
        }
        return;
    }
    const auto row = rowAt(point);
    if (m_open && armed && row.has_value() && *row < count())
    {
        chooseOnly(*row);
        combo()->rowChosen();
    }
}

void ComboList::tellChange()
{
    refresh();
    combo()->rowMovedTo();
}
} // namespace zb::internal
