// The month that a date picker drops down.
#include "platform/linux/civil_date.h"
#include "platform/linux/control_datepicker.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR stepTimer = 0xFFD3;
constexpr UINT firstRepeat = 400; // milliseconds
constexpr UINT nextRepeat = 120;
constexpr int daysShown = 42;

int headerHeight()
{
    return scaledPixels(28);
}
int weekdaysHeight()
{
    return scaledPixels(20);
}
int cellHeight()
{
    return scaledPixels(22);
}
int todayHeight()
{
    return scaledPixels(26);
}

int widthOf(HDC context, const std::u16string &text)
{
    SIZE size{};
    GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
    return size.cx;
}

void drawText(HDC context, RECT box, const std::u16string &text, UINT align = DT_CENTER)
{
    DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &box,
              align | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}

void drawRing(HDC context, const RECT &box, int color)
{
    const int line = scaledPixels(1);
    const HPEN pen = CreatePen(PS_SOLID, line, GetSysColor(color));
    const HGDIOBJ formerPen = SelectObject(context, pen);
    const HGDIOBJ formerBrush = SelectObject(context, GetStockObject(NULL_BRUSH));
    const int inset = line / 2;
    Rectangle(context, box.left + inset, box.top + inset, box.right - inset, box.bottom - inset);
    SelectObject(context, formerBrush);
    SelectObject(context, formerPen);
    DeleteObject(pen);
}

/// 0 Monday to 6 Sunday.
int weekdayFromMonday(int day)
{
    return (day % 7 + 7) % 7; // the first day of 1601 was a Monday
}
} // namespace

SIZE DropMonth::sizeFor(HFONT)
{
    const int cell = std::min(scaledPixels(30), (GetSystemMetrics(SM_CXSCREEN) - 2 * scaledPixels(1)) / 7);
    return {7 * cell, headerHeight() + weekdaysHeight() + 6 * cellHeight() + todayHeight()};
}

LRESULT DropMonth::take(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
    {
        const auto *start = static_cast<const MonthStart *>(reinterpret_cast<CREATESTRUCTW *>(lParam)->lpCreateParams);
        if (start == nullptr)
        {
            return -1;
        }
        create(*start);
        return 0;
    }
    case WM_PAINT:
        paint([this](HDC context) { draw(context); });
        return 0;
    case WM_KEYDOWN:
        return takeKey(static_cast<int>(wParam)) ? 1 : 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        penDown(penPlace(lParam));
        return 0;
    case WM_MOUSEMOVE:
        penMoved(penPlace(lParam));
        return 0;
    case WM_LBUTTONUP:
        penUp(penPlace(lParam));
        return 0;
    case WM_MOUSEWHEEL:
        moveMonths(static_cast<SHORT>(HIWORD(wParam)) > 0 ? -1 : 1);
        return 0;
    case WM_TIMER:
        SetTimer(window(), stepTimer, nextRepeat, nullptr);
        press(m_pressed.part);
        return 0;
    case WM_CAPTURECHANGED:
        KillTimer(window(), stepTimer);
        if (reinterpret_cast<HWND>(lParam) != window())
        {
            PostMessageW(parent(), monthGivenUp, reinterpret_cast<WPARAM>(window()), 0);
        }
        return 0;
    default:
        return takeCommon(message, wParam, lParam);
    }
}

void DropMonth::create(const MonthStart &start)
{
    m_moment = start.moment;
    m_wantedDay = m_moment.wDay;
    m_first = start.first.wYear == 0 ? 0 : dayNumberOf(start.first);
    m_last = start.last.wYear == 0 ? dayNumber(lastPickedYear, 12, 31) : dayNumberOf(start.last);
    SYSTEMTIME now{};
    GetLocalTime(&now);
    m_today = dayNumberOf(now);
    const std::u16string first = localeText(LOCALE_IFIRSTDAYOFWEEK);
    m_weekStart = first.empty() ? 0 : std::clamp(first[0] - u'0', 0, 6);
    takeCommon(WM_SETFONT, reinterpret_cast<WPARAM>(start.font), 0);
}

bool DropMonth::isInRange(int day) const
{
    return day >= m_first && day <= m_last;
}

void DropMonth::moveTo(int day)
{
    m_moment = onDay(m_moment, std::clamp(day, m_first, m_last));
    m_wantedDay = m_moment.wDay;
    refresh();
}

void DropMonth::moveMonths(int months)
{
    const int number = m_moment.wYear * 12 + m_moment.wMonth - 1 + months;
    const SYSTEMTIME moved = inMonth(m_moment, number / 12, number % 12 + 1, m_wantedDay);
    m_moment = onDay(m_moment, std::clamp(dayNumberOf(moved), m_first, m_last));
    refresh();
}

bool DropMonth::takeKey(int key)
{
    const int day = dayNumberOf(m_moment);
    const int months = isKeyHeld(VK_CONTROL) ? 12 : 1;
    switch (key)
    {
    case VK_LEFT:
        moveTo(day - 1);
        return true;
    case VK_RIGHT:
        moveTo(day + 1);
        return true;
    case VK_UP:
        isKeyHeld(VK_MENU) ? takeDay(day) : moveTo(day - 7);
        return true;
    case VK_DOWN:
        isKeyHeld(VK_MENU) ? takeDay(day) : moveTo(day + 7);
        return true;
    case VK_PRIOR:
        moveMonths(-months);
        return true;
    case VK_NEXT:
        moveMonths(months);
        return true;
    case VK_HOME:
        moveTo(dayNumber(m_moment.wYear, m_moment.wMonth, 1));
        return true;
    case VK_END:
        moveTo(dayNumber(m_moment.wYear, m_moment.wMonth, daysInMonth(m_moment.wYear, m_moment.wMonth)));
        return true;
    case VK_RETURN:
    case VK_SPACE:
    case VK_F4:
        takeDay(day);
        return true;
    case VK_ESCAPE:
        SendMessageW(parent(), monthGivenUp, reinterpret_cast<WPARAM>(window()), 0);
        return true;
    default:
        return false;
    }
}

void DropMonth::takeDay(int day)
{
    if (isInRange(day))
    {
        SendMessageW(parent(), monthTaken, static_cast<WPARAM>(day), 0);
    }
}

// --- Places ----------------------------------------------------------------------------------------------------------

/// Of the first cell: the week's first day on or before the first of the month.
int DropMonth::firstShown() const
{
    const int first = dayNumber(m_moment.wYear, m_moment.wMonth, 1);
    return first - (weekdayFromMonday(first) - m_weekStart + 7) % 7;
}

RECT DropMonth::dayBox(int place) const
{
    const LONG width = client().right;
    const LONG top = headerHeight() + weekdaysHeight() + place / 7 * cellHeight();
    const LONG column = place % 7;
    return {width * column / 7, top, width * (column + 1) / 7, top + cellHeight()};
}

/// Month and year each have an arrow on both sides; the year takes as much as its digits need.
RECT DropMonth::partBox(Part part) const
{
    const LONG width = client().right;
    const LONG arrow = scaledPixels(26);
    const LONG year = 2 * arrow + scaledPixels(36);
    const bool yearFirst = localeText(LOCALE_IDATE) == u"2";
    const LONG split = yearFirst ? year : width - year;
    const LONG monthLeft = yearFirst ? split : 0;
    const LONG monthRight = yearFirst ? width : split;
    const LONG yearLeft = yearFirst ? 0 : split;
    const LONG yearRight = yearFirst ? split : width;
    switch (part)
    {
    case Part::EarlierMonth:
        return {monthLeft, 0, monthLeft + arrow, headerHeight()};
    case Part::LaterMonth:
        return {monthRight - arrow, 0, monthRight, headerHeight()};
    case Part::EarlierYear:
        return {yearLeft, 0, yearLeft + arrow, headerHeight()};
    case Part::LaterYear:
        return {yearRight - arrow, 0, yearRight, headerHeight()};
    case Part::Today:
        return {0, client().bottom - todayHeight(), width, client().bottom};
    default:
        return {0, 0, 0, 0};
    }
}

DropMonth::Hit DropMonth::hitTest(POINT point) const
{
    const RECT all = client();
    if (PtInRect(&all, point) == FALSE)
    {
        return {};
    }
    for (const Part part : {Part::EarlierMonth, Part::LaterMonth, Part::EarlierYear, Part::LaterYear, Part::Today})
    {
        const RECT box = partBox(part);
        if (PtInRect(&box, point) != FALSE)
        {
            return {part, 0};
        }
    }
    for (int place = 0; place < daysShown; ++place)
    {
        const RECT box = dayBox(place);
        if (PtInRect(&box, point) != FALSE)
        {
            return {Part::Day, firstShown() + place};
        }
    }
    return {Part::Inside, 0};
}

// --- Pen -------------------------------------------------------------------------------------------------------------

void DropMonth::penDown(POINT point)
{
    m_pressed = hitTest(point);
    if (m_pressed.part == Part::Beside)
    {
        SendMessageW(parent(), monthGivenUp, reinterpret_cast<WPARAM>(window()), 0);
        return;
    }
    m_held = m_armed = true;
    if (m_pressed.part >= Part::EarlierMonth && m_pressed.part <= Part::LaterYear)
    {
        SetTimer(window(), stepTimer, firstRepeat, nullptr);
        press(m_pressed.part);
    }
    refresh();
}

void DropMonth::penMoved(POINT point)
{
    const Hit hit = hitTest(point);
    // A pen that has opened the month may be drawn to a day.
    m_armed = m_armed || hit.part != Part::Beside;
    if (m_armed && hit != m_pressed && m_pressed.part != Part::EarlierMonth && m_pressed.part != Part::LaterMonth &&
        m_pressed.part != Part::EarlierYear && m_pressed.part != Part::LaterYear)
    {
        m_pressed = hit;
        refresh();
    }
}

void DropMonth::penUp(POINT point)
{
    KillTimer(window(), stepTimer);
    const Hit hit = hitTest(point);
    const bool armed = std::exchange(m_armed, false);
    m_held = false;
    m_pressed = {};
    refresh();
    if (!armed)
    {
        return;
    }
    if (hit.part == Part::Day)
    {
        takeDay(hit.day);
    }
    else if (hit.part == Part::Today)
    {
        takeDay(m_today);
    }
}

void DropMonth::press(Part part)
{
    switch (part)
    {
    case Part::EarlierMonth:
        return moveMonths(-1);
    case Part::LaterMonth:
        return moveMonths(1);
    case Part::EarlierYear:
        return moveMonths(-12);
    case Part::LaterYear:
        return moveMonths(12);
    default:
        KillTimer(window(), stepTimer);
    }
}

// --- Looks -----------------------------------------------------------------------------------------------------------

void DropMonth::draw(HDC context) const
{
    const RECT all = client();
    FillRect(context, &all, GetSysColorBrush(COLOR_WINDOW));
    SelectObject(context, font());
    SetBkMode(context, TRANSPARENT);
    drawHeader(context);
    drawWeekdays(context);
    for (int place = 0; place < daysShown; ++place)
    {
        drawDay(context, place);
    }
    drawToday(context);
}

void DropMonth::drawHeader(HDC context) const
{
    const RECT header{0, 0, client().right, headerHeight()};
    FillRect(context, &header, GetSysColorBrush(COLOR_BTNFACE));
    const RECT line{0, header.bottom - scaledPixels(1), header.right, header.bottom};
    FillRect(context, &line, GetSysColorBrush(COLOR_BTNSHADOW));
    const auto month = static_cast<LCTYPE>(m_moment.wMonth - 1);
    std::u16string name = localeText(LOCALE_SMONTHNAME1 + month);
    const LONG room = partBox(Part::LaterMonth).left - partBox(Part::EarlierMonth).right;
    if (widthOf(context, name) > room)
    {
        name = localeText(LOCALE_SABBREVMONTHNAME1 + month);
    }
    drawStepper(context, Part::EarlierMonth, Part::LaterMonth, name);
    const DatePart year{DateField::Year, u"yyyy"};
    drawStepper(context, Part::EarlierYear, Part::LaterYear, textOfPart(year, m_moment));
}

void DropMonth::drawStepper(HDC context, Part earlier, Part later, const std::u16string &text) const
{
    const RECT left = partBox(earlier);
    const RECT right = partBox(later);
    SetTextColor(context, GetSysColor(COLOR_BTNTEXT));
    drawText(context, {left.right, left.top, right.left, left.bottom}, text);
    for (const Part part : {earlier, later})
    {
        const RECT box = part == earlier ? left : right;
        if (m_held && m_pressed.part == part)
        {
            FillRect(context, &box, GetSysColorBrush(COLOR_APPWORKSPACE));
        }
        const LONG x = (box.left + box.right) / 2;
        const LONG y = (box.top + box.bottom) / 2;
        const LONG tall = scaledPixels(5);
        const LONG wide = part == earlier ? -tall : tall;
        const std::array<POINT, 3> corners{
            {{x - wide / 2, y - tall}, {x - wide / 2, y + tall}, {x - wide / 2 + wide, y}}};
        const HGDIOBJ pen = SelectObject(context, GetStockObject(NULL_PEN));
        const HGDIOBJ brush = SelectObject(context, GetSysColorBrush(COLOR_BTNTEXT));
        Polygon(context, corners.data(), 3);
        SelectObject(context, brush);
        SelectObject(context, pen);
    }
}

void DropMonth::drawWeekdays(HDC context) const
{
    SetTextColor(context, GetSysColor(COLOR_GRAYTEXT));
    for (int column = 0; column < 7; ++column)
    {
        RECT box = dayBox(column);
        box.top = headerHeight();
        box.bottom = box.top + weekdaysHeight();
        std::u16string name = localeText(LOCALE_SABBREVDAYNAME1 + static_cast<LCTYPE>((m_weekStart + column) % 7));
        while (name.size() > 1 && widthOf(context, name) > box.right - box.left - scaledPixels(2))
        {
            name.pop_back();
        }
        drawText(context, box, name);
    }
}

void DropMonth::drawDay(HDC context, int place) const
{
    const int day = firstShown() + place;
    if (day < 0 || day > dayNumber(lastPickedYear, 12, 31))
    {
        return;
    }
    const CivilDate date = civilDate(day);
    RECT box = dayBox(place);
    InflateRect(&box, -scaledPixels(1), -scaledPixels(1));
    const bool chosen = day == dayNumberOf(m_moment);
    const bool pressed = m_armed && m_pressed == Hit{Part::Day, day} && isInRange(day);
    if (chosen || pressed)
    {
        FillRect(context, &box, GetSysColorBrush(chosen ? COLOR_HIGHLIGHT : COLOR_APPWORKSPACE));
    }
    if (day == m_today)
    {
        InflateRect(&box, chosen ? -scaledPixels(1) : 0, chosen ? -scaledPixels(1) : 0);
        drawRing(context, box, chosen ? COLOR_HIGHLIGHTTEXT : COLOR_HIGHLIGHT);
    }
    const bool isOther = date.month != m_moment.wMonth || !isInRange(day);
    SetTextColor(context, GetSysColor(chosen ? COLOR_HIGHLIGHTTEXT : isOther ? COLOR_GRAYTEXT : COLOR_WINDOWTEXT));
    std::u16string text;
    if (date.day >= 10)
    {
        text += static_cast<WCHAR>(u'0' + date.day / 10);
    }
    text += static_cast<WCHAR>(u'0' + date.day % 10);
    drawText(context, box, text);
    if (!isInRange(day))
    {
        const LONG middle = (box.top + box.bottom) / 2;
        const RECT strike{box.left + scaledPixels(5), middle, box.right - scaledPixels(5), middle + scaledPixels(1)};
        FillRect(context, &strike, GetSysColorBrush(COLOR_GRAYTEXT));
    }
}

void DropMonth::drawToday(HDC context) const
{
    RECT box = partBox(Part::Today);
    const RECT line{box.left, box.top, box.right, box.top + scaledPixels(1)};
    if (m_armed && m_pressed.part == Part::Today)
    {
        FillRect(context, &box, GetSysColorBrush(COLOR_APPWORKSPACE));
    }
    FillRect(context, &line, GetSysColorBrush(COLOR_SCROLLBAR));
    // The day as it stands among the others, then its date: no words, so no language.
    RECT day = dayBox(0);
    OffsetRect(&day, 0, (box.top + box.bottom - day.top - day.bottom) / 2 + scaledPixels(1) / 2);
    InflateRect(&day, -scaledPixels(1), -scaledPixels(1));
    drawRing(context, day, COLOR_HIGHLIGHT);
    const SYSTEMTIME today = onDay(m_moment, m_today);
    SetTextColor(context, GetSysColor(isInRange(m_today) ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT));
    drawText(context, day, textOfPart({DateField::Day, u"d"}, today));
    WCHAR date[128] = {};
    GetDateFormatW(LOCALE_USER_DEFAULT, DATE_LONGDATE, &today, nullptr, date, 128);
    box.left = day.right + scaledPixels(6);
    if (widthOf(context, date) > box.right - box.left)
    {
        GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &today, nullptr, date, 128);
    }
    drawText(context, box, date, DT_LEFT);
}
} // namespace zb::internal
