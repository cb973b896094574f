// The days that a recurrence rule names, by the wall clock of its series, and what a file's rule must fulfil to be
// followed at all.
//
// Wall-clock times are ticks since 1601 as if they were UTC.
#pragma once

#include "platform/types.h"

#include <libical/ical.h>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace zb::interchange
{
icaltimetype icalTimeOf(LONGLONG wall);
LONGLONG wallOf(const icaltimetype &time);

/// `toWall` turns a moment in UTC into the wall clock of the series. Its end, however written, becomes wall clock and
/// takes in the whole day when it is a date. Nothing for a text that is no rule, one that goes by another calendar or
/// names a day that no month has, and for one that counts seconds, minutes or several hours but names only some of
/// them, which could keep a reader busy for hours.
std::optional<icalrecurrencetype> parseRule(std::string_view text, const std::function<LONGLONG(LONGLONG)> &toWall);

/// True for a rule that names several moments of a day one by one.
bool isWithinDay(const icalrecurrencetype &rule);

class RuleDays
{
  public:
    RuleDays(const icalrecurrencetype &rule, LONGLONG wallStart);
    /// False for a rule that names no day whatever.
    bool isValid() const
    {
        return m_iterator != nullptr;
    }
    /// Leaves out what lies before; nothing happens for a rule with a count.
    void skipTo(LONGLONG wall);
    /// Rising; nothing at the end, and behind so many days that no reader waits for more.
    std::optional<LONGLONG> next();
    /// Whether next() ended because of that limit.
    bool gaveUp() const
    {
        return m_gaveUp;
    }

  private:
    std::unique_ptr<icalrecur_iterator, void (*)(icalrecur_iterator *)> m_iterator;
    bool m_counts;
    int m_steps = 0;
    bool m_gaveUp = false;
};
} // namespace zb::interchange
