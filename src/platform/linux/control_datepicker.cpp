// The date picker's messages, and how it looks.
#include "platform/linux/control_datepicker.h"

#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
/// A year of one or two digits in the picture gets all four.
std::u16string withCentury(std::u16string picture)
{
    const std::size_t first = picture.find(u'y');
    if (first != std::u16string::npos)
    {
        const std::size_t last = picture.find_first_not_of(u'y', first);
        picture.replace(first, std::min(last, picture.size()) - first, u"yyyy");
    }
    return picture;
}
} // namespace

LRESULT DatePicker::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *moment = reinterpret_cast<SYSTEMTIME *>(lParam);
    switch (message)
    {
    case DTM_GETSYSTEMTIME:
        if (!isDate())
        {
            return static_cast<LRESULT>(GDT_NONE);
        }
        if (moment == nullptr)
        {
            return GDT_ERROR;
        }
        *moment = m_moment;
        return static_cast<LRESULT>(GDT_VALID);
    case DTM_SETSYSTEMTIME:
        return setMoment(wParam, moment) ? 1 : 0;
    case DTM_GETRANGE:
        return moment == nullptr ? 0 : getRange(moment);
    case DTM_SETRANGE:
        return setRange(wParam, moment) ? 1 : 0;
    case DTM_SETFORMATW:
        m_ownPicture = lParam != 0;
        setPicture(reinterpret_cast<const WCHAR *>(lParam));
        return 1;
    case DTM_GETMONTHCAL:
        return reinterpret_cast<LRESULT>(m_month);
    default:
        return takeWindow(message, wParam, lParam);
    }
}

void DatePicker::create()
{
    GetLocalTime(&m_moment);
    m_moment.wMilliseconds = 0;
    m_wantedDay = m_moment.wDay;
    setPicture(nullptr);
}

bool DatePicker::setMoment(WPARAM kind, const SYSTEMTIME *moment)
{
    if (kind == GDT_NONE)
    {
        if (!hasCheckBox())
        {
            return false;
        }
        closeMonth();
        m_digits.clear();
        m_checked = false;
        refresh();
        return true;
    }
    if (kind != GDT_VALID || moment == nullptr || !isPickable(*moment) ||
        (m_hasFirst && compareMoments(*moment, m_first) < 0) || (m_hasLast && compareMoments(*moment, m_last) > 0))
    {
        return false;
    }
    closeMonth();
    m_digits.clear();
    m_moment = onDay(*moment, dayNumberOf(*moment));
    m_wantedDay = m_moment.wDay;
    m_checked = true;
    refresh();
    return true;
}

LRESULT DatePicker::getRange(SYSTEMTIME *both) const
{
    both[0] = m_hasFirst ? m_first : SYSTEMTIME{};
    both[1] = m_hasLast ? m_last : SYSTEMTIME{};
    return (m_hasFirst ? static_cast<LRESULT>(GDTR_MIN) : 0) | (m_hasLast ? static_cast<LRESULT>(GDTR_MAX) : 0);
}

bool DatePicker::setRange(WPARAM which, const SYSTEMTIME *both)
{
    const bool first = (which & GDTR_MIN) != 0;
    const bool last = (which & GDTR_MAX) != 0;
    if ((first || last) && both == nullptr)
    {
        return false;
    }
    if ((first && !isPickable(both[0])) || (last && !isPickable(both[1])))
    {
        return false;
    }
    m_hasFirst = first;
    m_hasLast = last;
    m_first = first ? both[0] : SYSTEMTIME{};
    m_last = last ? both[1] : SYSTEMTIME{};
    if (first && last && compareMoments(m_first, m_last) > 0)
    {
        std::swap(m_first, m_last);
    }
    m_moment = insideRange(m_moment);
    m_wantedDay = m_moment.wDay;
    refresh();
    return true;
}

void DatePicker::setPicture(const WCHAR *picture)
{
    std::u16string shown;
    if (picture != nullptr)
    {
        shown = picture;
    }
    else if ((style() & DTS_TIMEFORMAT) == DTS_TIMEFORMAT)
    {
        shown = localeText(LOCALE_STIMEFORMAT);
    }
    else
    {
        const DWORD kind = style() & DTS_SHORTDATECENTURYFORMAT;
        shown = localeText(kind == DTS_LONGDATEFORMAT ? LOCALE_SLONGDATE : LOCALE_SSHORTDATE);
        shown = kind == DTS_SHORTDATECENTURYFORMAT ? withCentury(shown) : shown;
    }
    m_parts = partsOfPicture(shown);
    m_digits.clear();
    markFirst();
    refresh();
}

LRESULT DatePicker::takeWindow(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        create();
        return 0;
    case WM_DESTROY:
        closeMonth();
        return 0;
    case WM_PAINT:
        paint([this](HDC context) { draw(context); });
        return 0;
    case WM_ENABLE:
        closeMonth();
        return takeCommon(message, wParam, lParam);
    case WM_GETDLGCODE:
        return dialogCode(reinterpret_cast<const MSG *>(lParam));
    case WM_SETTINGCHANGE:
        if (!m_ownPicture)
        {
            setPicture(nullptr);
        }
        return 0;
    default:
        return takeInput(message, wParam, lParam);
    }
}

LRESULT DatePicker::dialogCode(const MSG *about) const
{
    return DLGC_WANTARROWS | DLGC_WANTCHARS | (m_month != nullptr && isEnterOrEscape(about) ? DLGC_WANTALLKEYS : 0);
}

// --- Places ----------------------------------------------------------------------------------------------------------

/// One square button, or two arrows beside each other, each as wide as a finger needs.
RECT DatePicker::buttonsBox() const
{
    const RECT all = client();
    const int side = std::max(scaledPixels(20), std::min<int>(all.bottom, scaledPixels(28)));
    return {std::max<LONG>(all.right - (hasArrows() ? 2 * side - scaledPixels(1) : side), 0), 0, all.right, all.bottom};
}

RECT DatePicker::arrowBox(bool up) const
{
    RECT box = buttonsBox();
    const LONG middle = (box.left + box.right) / 2;
    (up ? box.right : box.left) = up ? middle + scaledPixels(1) : middle;
    return box;
}

/// Empty without one.
RECT DatePicker::checkBox() const
{
    const RECT all = client();
    const int side = scaledPixels(13);
    const int left = scaledPixels(5);
    const LONG top = (all.bottom - side) / 2;
    return hasCheckBox() ? RECT{left, top, left + side, top + side} : RECT{0, 0, 0, 0};
}

std::u16string DatePicker::shownText(std::size_t part) const
{
    return !m_digits.empty() && static_cast<int>(part) == m_marked ? m_digits : textOfPart(m_parts[part], m_moment);
}

/// Where the parts lie; moved to the left when the marked one would not be seen.
std::vector<RECT> DatePicker::partBoxes() const
{
    const TextMeasure measure(font());
    const RECT all = client();
    const int start = hasCheckBox() ? static_cast<int>(checkBox().right) + scaledPixels(4) : scaledPixels(4);
    std::vector<RECT> boxes;
    int x = start;
    int height = 0;
    for (std::size_t part = 0; part < m_parts.size(); ++part)
    {
        const SIZE size = measure.sizeOf(shownText(part));
        boxes.push_back({x, 0, x + size.cx, 0});
        x += size.cx;
        height = std::max<int>(height, size.cy);
    }
    const int room = static_cast<int>(buttonsBox().left) - scaledPixels(3);
    const bool follows = hasFocus() && isField(m_marked);
    const LONG shift = follows ? std::max<LONG>(boxes[static_cast<std::size_t>(m_marked)].right - room, 0) : 0;
    for (RECT &box : boxes)
    {
        box.top = (all.bottom - height) / 2;
        box.bottom = box.top + height;
        OffsetRect(&box, -shift, 0);
    }
    return boxes;
}

// --- Looks -----------------------------------------------------------------------------------------------------------

void DatePicker::draw(HDC context) const
{
    prepare(context, WM_CTLCOLOREDIT, isEnabled() ? COLOR_WINDOW : COLOR_BTNFACE);
    if (!isDate())
    {
        SetTextColor(context, GetSysColor(COLOR_GRAYTEXT));
    }
    drawParts(context);
    const UINT inactive = isEnabled() ? 0 : DFCS_INACTIVE;
    if (hasCheckBox())
    {
        RECT box = checkBox();
        DrawFrameControl(context, &box, DFC_BUTTON, DFCS_BUTTONCHECK | (m_checked ? DFCS_CHECKED : 0) | inactive);
        if (hasFocus() && !isDate())
        {
            InflateRect(&box, scaledPixels(2), scaledPixels(2));
            SetTextColor(context, GetSysColor(COLOR_WINDOWTEXT));
            DrawFocusRect(context, &box);
        }
    }
    drawFieldFrame(context, client());
    if (hasArrows())
    {
        RECT up = arrowBox(true);
        RECT down = arrowBox(false);
        const UINT downPushed = m_pressedArrow < 0 ? DFCS_PUSHED : 0;
        const UINT upPushed = m_pressedArrow > 0 ? DFCS_PUSHED : 0;
        DrawFrameControl(context, &down, DFC_SCROLL, DFCS_SCROLLDOWN | inactive | downPushed);
        DrawFrameControl(context, &up, DFC_SCROLL, DFCS_SCROLLUP | inactive | upPushed);
        return;
    }
    RECT button = buttonsBox();
    DrawFrameControl(context, &button, DFC_SCROLL,
                     DFCS_SCROLLCOMBOBOX | inactive | (m_month != nullptr ? DFCS_PUSHED : 0));
}

void DatePicker::drawParts(HDC context) const
{
    const int saved = SaveDC(context);
    const RECT all = client();
    const int left = hasCheckBox() ? static_cast<int>(checkBox().right) + scaledPixels(2) : scaledPixels(2);
    IntersectClipRect(context, left, 0, buttonsBox().left - scaledPixels(1), all.bottom);
    const std::vector<RECT> boxes = partBoxes();
    const COLORREF ink = GetTextColor(context);
    for (std::size_t part = 0; part < m_parts.size(); ++part)
    {
        const RECT &box = boxes[part];
        const bool marked = static_cast<int>(part) == m_marked && hasFocus() && isDate();
        if (marked)
        {
            const RECT mark{box.left - scaledPixels(1), box.top - scaledPixels(1), box.right + scaledPixels(1),
                            box.bottom + scaledPixels(1)};
            FillRect(context, &mark, GetSysColorBrush(COLOR_HIGHLIGHT));
        }
        SetTextColor(context, marked ? GetSysColor(COLOR_HIGHLIGHTTEXT) : ink);
        const std::u16string text = shownText(part);
        ExtTextOutW(context, box.left, box.top, 0, nullptr, text.c_str(), static_cast<UINT>(text.size()), nullptr);
    }
    RestoreDC(context, saved);
}

void registerDatePicker()
{
    registerControl<DropMonth>(u"DatePickerMonth");
    registerControl<DatePicker>(DATETIMEPICK_CLASSW);
}
} // namespace zb::internal
