// The recurrence pattern of an item, as an object that speaks about its item.
#pragma once

#include "platform/linux/pim_series_rule.h"
#include "platform/pim_objects.h"

#include <optional>

namespace zb::internal
{
/// What a pattern asks of the item that it belongs to.
class PatternOwner
{
  public:
    /// The item itself, whose count the pattern holds.
    virtual IDispatch &patternItem() = 0;
    /// Nothing while the item does not repeat.
    virtual std::optional<SeriesRule> &patternRule() = 0;
    /// The day with which the pattern begins; below 0 for what was put and is no date.
    virtual int patternStartDay() const = 0;
    virtual void setPatternStartDay(int day) = 0;
    virtual OccurrenceTimes patternTimes() const = 0;
    virtual void setPatternStartMinute(LONG minute) = 0;
    virtual void setPatternMinutes(LONGLONG minutes) = 0;
    virtual HRESULT patternOccurrence(DATE date, IAppointment **occurrence) = 0;

  protected:
    ~PatternOwner() = default;
};

/// With one count.
IRecurrencePattern *newPattern(PatternOwner &owner);
} // namespace zb::internal
