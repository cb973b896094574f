#include "platform/linux/pim_pattern_object.h"

#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_item.h"

#include <cmath>

namespace zb::internal
{
namespace
{
constexpr int noDay = -1;

/// The whole day of a date; below 0 for what is none.
int dayOfDate(DATE date)
{
    const LONGLONG ticks = ticksOfDate(date);
    return ticks == badTime ? noDay : dayOfTicks(ticks);
}

/// Minutes after midnight of a fraction; below 0 for what is no time.
LONG minuteOfDate(DATE time)
{
    if (!std::isfinite(time))
    {
        return noDay;
    }
    const double fraction = std::fabs(time) - std::trunc(std::fabs(time));
    return static_cast<LONG>(std::round(fraction * minutesOfDay)) % minutesOfDay;
}

class PatternObject final : public CountedObject<IRecurrencePattern>
{
  public:
    explicit PatternObject(PatternOwner &owner) : m_owner(owner)
    {
        m_owner.patternItem().AddRef();
    }

    HRESULT get_RecurrenceType(LONG *type) override
    {
        return give(rule().type, type);
    }
    HRESULT put_RecurrenceType(LONG type) override
    {
        if (!m_owner.patternRule() || type != rule().type)
        {
            SeriesRule &changed = change();
            const SeriesRule before = changed;
            changed = SeriesRule();
            changed.type = type;
            changed.end = before.end;
            changed.occurrences = before.occurrences;
            changed.lastDay = before.lastDay;
        }
        const bool known =
            (type >= olRecursDaily && type <= olRecursMonthNth) || type == olRecursYearly || type == olRecursYearNth;
        return known ? S_OK : PIM_E_RECURRENCE;
    }
    HRESULT get_PatternStartDate(DATE *date) override
    {
        const int day = m_owner.patternStartDay();
        return give(day < 0 ? PIM_NO_DATE : dateOfTicks(ticksOfDay(day)), date);
    }
    HRESULT put_PatternStartDate(DATE date) override
    {
        change();
        m_owner.setPatternStartDay(dayOfDate(date));
        return dayOfDate(date) < 0 ? PIM_E_DATE : S_OK;
    }
    HRESULT get_StartTime(DATE *time) override
    {
        return give(timeOf(m_owner.patternTimes().startMinute), time);
    }
    HRESULT put_StartTime(DATE time) override
    {
        const LONG minute = minuteOfDate(time);
        if (minute < 0)
        {
            return PIM_E_DATE;
        }
        change();
        m_owner.setPatternStartMinute(minute);
        return S_OK;
    }
    HRESULT get_EndTime(DATE *time) override
    {
        const OccurrenceTimes times = m_owner.patternTimes();
        return give(times.allDay ? 0.0 : timeOf((times.startMinute + times.minutes) % minutesOfDay), time);
    }
    HRESULT put_EndTime(DATE time) override
    {
        const LONG minute = minuteOfDate(time);
        if (minute < 0)
        {
            return PIM_E_DATE;
        }
        change();
        const OccurrenceTimes times = m_owner.patternTimes();
        if (!times.allDay)
        {
            const LONG minutes = minute - times.startMinute;
            m_owner.setPatternMinutes(minutes > 0 ? minutes : minutes + minutesOfDay);
        }
        return S_OK;
    }
    HRESULT get_Duration(LONG *minutes) override
    {
        return give(m_owner.patternTimes().minutes, minutes);
    }
    HRESULT put_Duration(LONG minutes) override
    {
        change();
        m_owner.setPatternMinutes(minutes);
        return minutes < 0 ? PIM_E_END_BEFORE_START : S_OK;
    }
    HRESULT get_PatternEndDate(DATE *date) override;
    HRESULT put_PatternEndDate(DATE date) override;
    HRESULT get_NoEndDate(VARIANT_BOOL *none) override
    {
        return giveFlag(rule().end == RecurrenceEnd::Never, none);
    }
    HRESULT put_NoEndDate(VARIANT_BOOL none) override
    {
        if (none != VARIANT_FALSE)
        {
            endNever(change());
        }
        return S_OK;
    }
    HRESULT get_Occurrences(LONG *count) override
    {
        const SeriesRule current = rule();
        return give(current.end == RecurrenceEnd::AfterCount ? current.occurrences : -1, count);
    }
    HRESULT put_Occurrences(LONG count) override;
    HRESULT get_Interval(LONG *interval) override
    {
        return give(rule().interval, interval);
    }
    HRESULT put_Interval(LONG interval) override
    {
        change().interval = interval;
        return interval >= 1 ? S_OK : PIM_E_RECURRENCE;
    }
    HRESULT get_DayOfWeekMask(LONG *mask) override
    {
        return give(weekdaysOf(rule(), startDay()), mask);
    }
    HRESULT put_DayOfWeekMask(LONG mask) override
    {
        change().weekdays = mask;
        return mask >= 1 && mask <= 127 ? S_OK : PIM_E_RECURRENCE;
    }
    HRESULT get_DayOfMonth(LONG *day) override
    {
        return give(dayOfMonthOf(rule(), startDay()), day);
    }
    HRESULT put_DayOfMonth(LONG day) override
    {
        change().dayOfMonth = day;
        return day >= 1 && day <= 31 ? S_OK : PIM_E_RECURRENCE;
    }
    HRESULT get_Instance(LONG *instance) override
    {
        return give(instanceOf(rule(), startDay()), instance);
    }
    HRESULT put_Instance(LONG instance) override
    {
        change().instance = instance;
        return instance >= 1 && instance <= 5 ? S_OK : PIM_E_RECURRENCE;
    }
    HRESULT get_MonthOfYear(LONG *month) override
    {
        return give(monthOf(rule(), startDay()), month);
    }
    HRESULT put_MonthOfYear(LONG month) override
    {
        change().month = month;
        return month >= 1 && month <= 12 ? S_OK : PIM_E_RECURRENCE;
    }
    HRESULT GetOccurrence(DATE date, IAppointment **occurrence) override
    {
        if (occurrence == nullptr)
        {
            return E_POINTER;
        }
        *occurrence = nullptr;
        return m_owner.patternOccurrence(date, occurrence);
    }

  private:
    ~PatternObject() override
    {
        m_owner.patternItem().Release();
    }

    static DATE timeOf(LONG minute)
    {
        return static_cast<double>(minute) / minutesOfDay;
    }
    static void endNever(SeriesRule &rule)
    {
        rule.end = RecurrenceEnd::Never;
        rule.occurrences = -1;
        rule.lastDay = 0;
    }
    SeriesRule rule() const
    {
        return m_owner.patternRule().value_or(SeriesRule());
    }
    /// The item repeats from here on.
    SeriesRule &change()
    {
        std::optional<SeriesRule> &rule = m_owner.patternRule();
        if (!rule)
        {
            rule.emplace();
        }
        return *rule;
    }
    int startDay() const
    {
        return std::max(m_owner.patternStartDay(), 0);
    }

    PatternOwner &m_owner;
};

HRESULT PatternObject::get_PatternEndDate(DATE *date)
{
    const SeriesRule current = rule();
    DATE end = PIM_NO_DATE;
    if (current.end == RecurrenceEnd::OnDate && current.lastDay >= 0)
    {
        end = dateOfTicks(ticksOfDay(current.lastDay));
    }
    else if (current.end == RecurrenceEnd::AfterCount)
    {
        RecurrencePattern pattern;
        if (SUCCEEDED(patternOf(current, startDay(), m_owner.patternTimes(), pattern)))
        {
            end = dateOfTicks(LONGLONG{pattern.lastDate} * ticksPerMinute);
        }
    }
    return give(end, date);
}

HRESULT PatternObject::put_PatternEndDate(DATE date)
{
    SeriesRule &changed = change();
    if (date == PIM_NO_DATE)
    {
        endNever(changed);
        return S_OK;
    }
    changed.end = RecurrenceEnd::OnDate;
    changed.occurrences = -1;
    changed.lastDay = dayOfDate(date);
    if (changed.lastDay < 0)
    {
        return PIM_E_DATE;
    }
    return changed.lastDay < m_owner.patternStartDay() ? PIM_E_SERIES_END : S_OK;
}

HRESULT PatternObject::put_Occurrences(LONG count)
{
    SeriesRule &changed = change();
    if (count < 0)
    {
        if (changed.end == RecurrenceEnd::AfterCount)
        {
            endNever(changed);
        }
        return S_OK;
    }
    changed.end = RecurrenceEnd::AfterCount;
    changed.occurrences = count;
    changed.lastDay = 0;
    return count > 0 ? S_OK : PIM_E_RECURRENCE;
}
} // namespace

IRecurrencePattern *newPattern(PatternOwner &owner)
{
    return new PatternObject(owner);
}
} // namespace zb::internal
