// The date picker in use: its fields under keys and pen, and its month coming and going.
#include "platform/linux/control_datepicker.h"

#include "platform/linux/type_ahead.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
constexpr UINT_PTR arrowTimer = 0xFFD3;
constexpr UINT firstRepeat = 400; // milliseconds
constexpr UINT nextRepeat = 100;

/// A number moved along between two others, around at the ends.
int around(int value, int low, int high)
{
    const int count = high - low + 1;
    return low + (value - low + count) % count;
}

bool beginsWithLetter(const std::u16string &text, WCHAR letter)
{
    return !text.empty() && isSameText(std::u16string_view(text).substr(0, 1), std::u16string_view(&letter, 1));
}
} // namespace

LRESULT DatePicker::takeInput(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_KEYDOWN:
        takeKey(static_cast<int>(wParam));
        return 0;
    case WM_CHAR:
        typed(static_cast<WCHAR>(wParam));
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        penDown(penPlace(lParam));
        return 0;
    case WM_LBUTTONUP:
        penUp(penPlace(lParam));
        return 0;
    case WM_CAPTURECHANGED:
        if (std::exchange(m_pressedArrow, 0) != 0)
        {
            KillTimer(window(), arrowTimer);
            refresh();
        }
        return 0;
    case WM_TIMER:
        SetTimer(window(), arrowTimer, nextRepeat, nullptr);
        step(m_pressedArrow);
        return 0;
    case WM_MOUSEWHEEL:
        if (!hasFocus())
        {
            return takeCommon(message, wParam, lParam);
        }
        step(static_cast<SHORT>(HIWORD(wParam)) > 0 ? 1 : -1);
        return 0;
    case WM_SETFOCUS:
        refresh();
        notify(NM_SETFOCUS);
        return 0;
    case WM_KILLFOCUS:
        closeMonth();
        endDigits();
        refresh();
        notify(NM_KILLFOCUS);
        return 0;
    case monthTaken:
        closeMonth();
        changeTo(onDay(m_moment, static_cast<int>(wParam)));
        m_wantedDay = m_moment.wDay;
        return 0;
    case monthGivenUp:
        // One that is gone already may say so late.
        if (reinterpret_cast<HWND>(wParam) == m_month)
        {
            closeMonth();
        }
        return 0;
    default:
        return takeCommon(message, wParam, lParam);
    }
}

// --- Fields ------------------------------------------------------------------------------------------------------------

void DatePicker::markFirst()
{
    m_marked = -1;
    moveMark(1);
}

void DatePicker::moveMark(int direction)
{
    endDigits();
    const int count = static_cast<int>(m_parts.size());
    for (int part = m_marked + direction; part >= 0 && part < count; part += direction)
    {
        if (isField(part))
        {
            m_marked = part;
            break;
        }
    }
    refresh();
}

void DatePicker::tellChange()
{
    refresh();
    NMDATETIMECHANGE record{};
    record.dwFlags = static_cast<DWORD>(isDate() ? GDT_VALID : GDT_NONE);
    record.st = isDate() ? m_moment : SYSTEMTIME{};
    notify(DTN_DATETIMECHANGE, record.nmhdr);
}

/// What the user has changed to, held inside of the range.
void DatePicker::changeTo(SYSTEMTIME moment)
{
    if (m_hasFirst && compareMoments(moment, m_first) < 0)
    {
        moment = onDay(m_first, dayNumberOf(m_first));
    }
    if (m_hasLast && compareMoments(moment, m_last) > 0)
    {
        moment = onDay(m_last, dayNumberOf(m_last));
    }
    const bool changes = compareMoments(moment, m_moment) != 0;
    m_moment = moment;
    refresh();
    if (changes)
    {
        tellChange();
    }
}

void DatePicker::turnCheck()
{
    m_digits.clear();
    m_checked = !m_checked;
    tellChange();
}

/// What was typed counts from now on, when it can.
void DatePicker::endDigits()
{
    const std::u16string digits = std::exchange(m_digits, {});
    if (digits.empty() || !isField(m_marked))
    {
        return;
    }
    int value = 0;
    for (const WCHAR digit : digits)
    {
        value = value * 10 + (digit - u'0');
    }
    const DatePart part = m_parts[static_cast<std::size_t>(m_marked)];
    if (value >= lowestOf(part) && value <= highestOf(part))
    {
        setField(part, part.field == DateField::Year && value < 100 ? yearOfTwoDigits(value) : value);
    }
    refresh();
}

/// Years whole, hours as the picture counts them.
void DatePicker::setField(const DatePart &part, int value)
{
    SYSTEMTIME moment = m_moment;
    const bool twelve = part.field == DateField::Hour && part.picture.front() == u'h';
    switch (part.field)
    {
    case DateField::Day:
        m_wantedDay = value;
        moment = inMonth(moment, moment.wYear, moment.wMonth, value);
        break;
    case DateField::Month:
        moment = inMonth(moment, moment.wYear, value, m_wantedDay);
        break;
    case DateField::Year:
        if (value < firstPickedYear)
        {
            return;
        }
        moment = inMonth(moment, value, moment.wMonth, m_wantedDay);
        break;
    case DateField::Hour:
        moment.wHour = static_cast<WORD>(twelve ? value % 12 + (moment.wHour >= 12 ? 12 : 0) : value);
        break;
    case DateField::Minute:
        moment.wMinute = static_cast<WORD>(value);
        break;
    case DateField::Second:
        moment.wSecond = static_cast<WORD>(value);
        break;
    default:
        return;
    }
    changeTo(moment);
}

void DatePicker::step(int by)
{
    endDigits();
    if (!isField(m_marked) || !isDate())
    {
        return;
    }
    SYSTEMTIME moment = m_moment;
    switch (m_parts[static_cast<std::size_t>(m_marked)].field)
    {
    case DateField::Day:
    {
        const SYSTEMTIME last = inMonth(moment, moment.wYear, moment.wMonth, 31);
        m_wantedDay = around(moment.wDay + by, 1, last.wDay);
        moment = inMonth(moment, moment.wYear, moment.wMonth, m_wantedDay);
        break;
    }
    case DateField::Weekday:
        moment = onDay(moment, dayNumberOf(moment) + by);
        m_wantedDay = moment.wDay;
        break;
    case DateField::Month:
        moment = inMonth(moment, moment.wYear, around(moment.wMonth + by, 1, 12), m_wantedDay);
        break;
    case DateField::Year:
        moment = inMonth(moment, moment.wYear + by, moment.wMonth, m_wantedDay);
        break;
    case DateField::Hour:
        moment.wHour = static_cast<WORD>(around(moment.wHour + by, 0, 23));
        break;
    case DateField::Minute:
        moment.wMinute = static_cast<WORD>(around(moment.wMinute + by, 0, 59));
        break;
    case DateField::Second:
        moment.wSecond = static_cast<WORD>(around(moment.wSecond + by, 0, 59));
        break;
    default:
        moment.wHour = static_cast<WORD>((moment.wHour + 12) % 24);
        break;
    }
    changeTo(moment);
}

/// Home and End: the lowest and the highest that the field can be.
void DatePicker::toEnd(bool highest)
{
    endDigits();
    if (!isField(m_marked) || !isDate())
    {
        return;
    }
    const DatePart part = m_parts[static_cast<std::size_t>(m_marked)];
    const SYSTEMTIME last = inMonth(m_moment, m_moment.wYear, m_moment.wMonth, 31);
    switch (part.field)
    {
    case DateField::Day:
        return setField(part, highest ? last.wDay : 1);
    case DateField::Year:
        return setField(part, highest ? (m_hasLast ? m_last.wYear : lastPickedYear)
                                      : (m_hasFirst ? m_first.wYear : firstPickedYear));
    case DateField::Hour:
    {
        SYSTEMTIME moment = m_moment;
        moment.wHour = highest ? 23 : 0;
        return changeTo(moment);
    }
    case DateField::Weekday:
    case DateField::Half:
        return;
    default:
        return setField(part, highest ? highestOf(part) : lowestOf(part));
    }
}

// --- Keys --------------------------------------------------------------------------------------------------------------

void DatePicker::takeKey(int key)
{
    if (m_month != nullptr)
    {
        SendMessageW(m_month, WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        return;
    }
    const bool opens = key == VK_F4 || ((key == VK_DOWN || key == VK_UP) && isKeyHeld(VK_MENU));
    if (opens)
    {
        openMonth();
        return;
    }
    switch (key)
    {
    case VK_LEFT:
        return moveMark(-1);
    case VK_RIGHT:
        return moveMark(1);
    case VK_UP:
        return step(1);
    case VK_DOWN:
        return step(-1);
    case VK_HOME:
        return toEnd(false);
    case VK_END:
        return toEnd(true);
    case VK_RETURN:
        return endDigits();
    default:
        return;
    }
}

void DatePicker::typed(WCHAR character)
{
    constexpr WCHAR backspace = 8;
    if (m_month != nullptr)
    {
        return;
    }
    if (character == u' ')
    {
        hasCheckBox() ? turnCheck() : openMonth();
        return;
    }
    if (!isDate() || !isField(m_marked))
    {
        return;
    }
    if (character == backspace && !m_digits.empty())
    {
        m_digits.pop_back();
        refresh();
    }
    else if (character >= u'0' && character <= u'9')
    {
        typedDigit(character);
    }
    else if (character == u'+' || (character == u'-' && m_digits.empty()))
    {
        step(character == u'+' ? 1 : -1);
    }
    else if (character == u'/' || character == u'.' || character == u':' || character == u',' || character == u'-')
    {
        moveMark(1); // as a date is written
    }
    else if (character > u' ')
    {
        typedLetter(character);
    }
}

void DatePicker::typedDigit(WCHAR digit)
{
    const DatePart part = m_parts[static_cast<std::size_t>(m_marked)];
    const auto most = static_cast<std::size_t>(digitsOf(part));
    if (most == 0)
    {
        return;
    }
    const int first = m_digits.empty() ? 0 : m_digits[0] - u'0';
    if (most == 2 && m_digits.size() == 1 && first * 10 + (digit - u'0') > highestOf(part))
    {
        m_digits.clear(); // what can't follow begins anew
    }
    m_digits += digit;
    const int value = digit - u'0';
    const bool isFull = m_digits.size() == most ||
                        (most == 2 && m_digits.size() == 1 && value * 10 > highestOf(part));
    refresh();
    if (isFull)
    {
        moveMark(1);
        endDigits(); // of the last field, which keeps the mark
    }
}

/// The next month, weekday or half of the day that begins with it.
void DatePicker::typedLetter(WCHAR letter)
{
    endDigits();
    const DatePart part = m_parts[static_cast<std::size_t>(m_marked)];
    const bool isMonth = part.field == DateField::Month;
    const int count = isMonth ? 12 : part.field == DateField::Weekday ? 7 : part.field == DateField::Half ? 1 : 0;
    for (int by = 1; by <= count; ++by)
    {
        SYSTEMTIME moment = m_moment;
        if (isMonth)
        {
            moment = inMonth(moment, moment.wYear, around(moment.wMonth + by, 1, 12), m_wantedDay);
        }
        else if (part.field == DateField::Weekday)
        {
            moment = onDay(moment, dayNumberOf(moment) + by);
        }
        else
        {
            moment.wHour = static_cast<WORD>((moment.wHour + 12) % 24);
        }
        const DatePart named{part.field, isMonth ? u"MMMM" : part.picture};
        if (beginsWithLetter(textOfPart(named, moment), letter))
        {
            changeTo(moment);
            m_wantedDay = isMonth ? m_wantedDay : m_moment.wDay;
            return;
        }
    }
}

// --- Pen ---------------------------------------------------------------------------------------------------------------

void DatePicker::penDown(POINT point)
{
    SetFocus(window());
    if (isGone())
    {
        return;
    }
    const RECT buttons = buttonsBox();
    if (PtInRect(&buttons, point) != FALSE)
    {
        if (!hasArrows())
        {
            openMonth();
            return;
        }
        const RECT up = arrowBox(true);
        m_pressedArrow = PtInRect(&up, point) != FALSE ? 1 : -1;
        SetCapture(window());
        SetTimer(window(), arrowTimer, firstRepeat, nullptr);
        step(m_pressedArrow);
        refresh();
        return;
    }
    if (hasCheckBox() && point.x < checkBox().right + scaledPixels(2))
    {
        turnCheck();
        return;
    }
    if (!isDate())
    {
        return;
    }
    endDigits();
    const std::vector<RECT> boxes = partBoxes();
    for (std::size_t part = 0; part < boxes.size(); ++part)
    {
        // A tap between fields goes to the one in front.
        if (isField(static_cast<int>(part)) && (point.x >= boxes[part].left || part == 0))
        {
            m_marked = static_cast<int>(part);
        }
    }
    refresh();
}

void DatePicker::penUp(POINT point)
{
    if (m_pressedArrow != 0)
    {
        ReleaseCapture();
        return;
    }
    if (m_month != nullptr)
    {
        // It was lifted before the month had the capture.
        MapWindowPoints(window(), m_month, &point, 1);
        SendMessageW(m_month, WM_LBUTTONUP, 0,
                     static_cast<LPARAM>(MAKELONG(static_cast<WORD>(point.x), static_cast<WORD>(point.y))));
    }
}

// --- The month ---------------------------------------------------------------------------------------------------------

void DatePicker::openMonth()
{
    endDigits();
    if (m_month != nullptr || hasArrows() || !isEnabled() || isGone())
    {
        return;
    }
    if (!isDate())
    {
        m_checked = true; // who asks for the month wants a date
        tellChange();
    }
    notify(DTN_DROPDOWN);
    if (isGone() || !hasFocus())
    {
        return;
    }
    MonthStart start{m_moment, m_hasFirst ? m_first : SYSTEMTIME{}, m_hasLast ? m_last : SYSTEMTIME{}, font()};
    const SIZE inside = DropMonth::sizeFor(font());
    const int line = std::max(GetSystemMetrics(SM_CXBORDER), 1);
    const int width = inside.cx + 2 * line;
    const int height = inside.cy + 2 * line;
    RECT field{};
    GetWindowRect(window(), &field);
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = GetSystemMetrics(SM_CYSCREEN);
    const int wanted = (style() & DTS_RIGHTALIGN) != 0 ? field.right - width : field.left;
    const int left = std::max(std::min(wanted, screenWidth - width), 0);
    const bool fitsBelow = field.bottom - line + height <= screenHeight;
    const int top = fitsBelow ? field.bottom - line : std::max(field.top + line - height, 0);
    m_month = CreateWindowExW(WS_EX_TOPMOST | WS_EX_NOACTIVATE, u"DatePickerMonth", u"", WS_POPUP | WS_BORDER, left,
                              std::min(top, std::max(screenHeight - height, 0)), width, height, window(), nullptr,
                              nullptr, &start);
    SetWindowPos(m_month, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    SetCapture(m_month);
    refresh();
}

void DatePicker::closeMonth()
{
    if (const HWND month = std::exchange(m_month, nullptr); month != nullptr)
    {
        DestroyWindow(month);
        refresh();
        notify(DTN_CLOSEUP);
    }
}
} // namespace zb::internal
