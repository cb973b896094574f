// The fields of a date picker: which one is marked, and how typing and stepping changes the moment.
#include "platform/linux/control_datepicker.h"

#include "platform/linux/type_ahead.h"

#include <utility>

namespace zb::internal
{
namespace
{
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

SYSTEMTIME DatePicker::insideRange(const SYSTEMTIME &moment) const
{
    SYSTEMTIME inside = moment;
    if (m_hasFirst && compareMoments(inside, m_first) < 0)
    {
        inside = onDay(m_first, dayNumberOf(m_first));
    }
    if (m_hasLast && compareMoments(inside, m_last) > 0)
    {
        inside = onDay(m_last, dayNumberOf(m_last));
    }
    return inside;
}

/// What the user has changed to.
void DatePicker::changeTo(const SYSTEMTIME &moment)
{
    const SYSTEMTIME inside = insideRange(moment);
    const bool changes = compareMoments(inside, m_moment) != 0;
    m_moment = inside;
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
} // namespace zb::internal
