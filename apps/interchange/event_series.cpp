#include "interchange/event_series.h"

#include "interchange/series_pattern.h"
#include "interchange/series_unroll.h"
#include "platform/clock.h"
#include "platform/pim_recurrence.h"

#include <algorithm>
#include <optional>

namespace zb::interchange
{
namespace
{
class SeriesReader
{
  public:
    SeriesReader(const CalendarComponent &event, ZoneBook &zones, LONGLONG now, const ItemSink &take)
        : m_event(event), m_series(event, zones, m_reading), m_now(now), m_take(take)
    {
    }

    SeriesReading read(const std::vector<CalendarComponent> &changes)
    {
        if (!m_series.read(changes))
        {
            return std::move(m_reading);
        }
        m_exact = exactRecord();
        if (takeExact())
        {
            return std::move(m_reading);
        }
        const std::optional<SeriesPlan> plan =
            m_series.ruleUnreadable ? std::nullopt : planSeries(m_series, m_now, m_reading.reason);
        if (plan)
        {
            takePlan(*plan);
        }
        else
        {
            unroll();
        }
        for (const std::u16string &identity : m_reading.kept)
        {
            m_reading.covered.erase(identity);
        }
        return std::move(m_reading);
    }

  private:
    void hand(AppointmentItem item, const CalendarComponent &event, const ExactRecord *exact = nullptr)
    {
        if (m_reading.kept.insert(item.interchangeId).second)
        {
            m_take(item, event, exact);
        }
    }

    /// The changed days that the record itself tells; all of them where the pattern is not kept beside the event.
    bool isInPattern(const ChangedDay &change) const
    {
        return !m_pattern || std::any_of(m_pattern->exceptions.begin(), m_pattern->exceptions.end(),
                                         [&](const RecurrenceException &exception)
                                         { return isDayOf(exception.originalStart, change); });
    }
    static bool isDayOf(DWORD minutes, const ChangedDay &change)
    {
        return change.original >= 0 && minutes / 1440 == static_cast<DWORD>(change.original / ticksPerDay);
    }

    /// What is kept beside the event, if the event and the changed days that the record tells say what they said then.
    std::optional<ExactRecord> exactRecord()
    {
        const std::string_view line = exactRecordLine(m_event);
        if (line.empty())
        {
            return std::nullopt;
        }
        // The pattern tells which of the changed days count.
        const std::optional<ExactRecord> unchecked = ExactRecord::readUnchecked(line);
        const std::vector<BYTE> blob = unchecked ? unchecked->blob(appointmentRecurrence) : std::vector<BYTE>();
        m_pattern = decodeRecurrence(blob.data(), blob.size());
        std::string said = saidBy(m_event);
        for (const ChangedDay &change : m_series.changes)
        {
            said += isInPattern(change) ? saidBy(*change.event) : std::string();
        }
        return ExactRecord::read(line, fingerprint(said));
    }

    /// The record as it was exported, where all changed days beside it are days that it does not tell.
    bool takeExact()
    {
        if (!m_exact || !m_pattern)
        {
            return false;
        }
        const auto stands = [this](const ChangedDay &change)
        {
            return isInPattern(change) ||
                   (!change.cancelled && !change.future &&
                    std::any_of(m_pattern->deleted.begin(), m_pattern->deleted.end(),
                                [&](DWORD day) { return isDayOf(day, change); }));
        };
        if (!std::all_of(m_series.changes.begin(), m_series.changes.end(), stands))
        {
            return false;
        }
        m_reading.form = SeriesForm::Pattern;
        AppointmentItem item = m_series.item;
        item.recurrence = m_exact->blob(appointmentRecurrence);
        hand(std::move(item), m_event, &*m_exact);
        for (const ChangedDay &change : m_series.changes)
        {
            if (isInPattern(change))
            {
                ++m_reading.changedDays;
                m_reading.covered.insert(change.identity);
                continue;
            }
            const auto exact = exactRecordOf(*change.event);
            hand(change.item, *change.event, exact ? &*exact : nullptr);
        }
        return true;
    }

    AppointmentItem singleOn(const AppointmentItem &like, LONGLONG wall, LONG minutes) const
    {
        AppointmentItem item = like;
        item.start = fileTimeOf(like.allDay ? wall : m_series.utcOf(wall));
        item.durationMinutes = minutes >= 0 ? minutes : item.durationMinutes;
        item.partOfSeries = true;
        item.interchangeId = m_series.identityOf(wall);
        return item;
    }

    void takePlan(const SeriesPlan &plan)
    {
        m_reading.form = SeriesForm::Pattern;
        m_reading.changedDays = plan.changedDays;
        m_reading.cancelledDays = plan.cancelledDays;
        hand(plan.item, m_event, m_exact ? &*m_exact : nullptr);
        for (const ChangedDay *change : plan.covered)
        {
            m_reading.covered.insert(change->identity);
        }
        for (const ChangedDay *change : plan.ownRecords)
        {
            hand(change->item, *change->event);
        }
        for (const LONGLONG day : plan.singleDays)
        {
            takeSingle(day, -1, plan);
        }
        for (const ListedDay &day : m_series.listed)
        {
            takeSingle(day.wall, day.minutes, plan);
        }
    }

    void takeSingle(LONGLONG wall, LONG minutes, const SeriesPlan &plan)
    {
        const LONGLONG day = wall - wall % ticksPerDay;
        const bool isRuleDay = plan.ruleDays.count(day) != 0 && wall % ticksPerDay == m_series.start % ticksPerDay;
        const bool changed = std::any_of(m_series.changes.begin(), m_series.changes.end(),
                                         [&](const ChangedDay &change) { return change.original == wall; });
        if (!isRuleDay && !changed && !m_series.isDeleted(wall))
        {
            hand(singleOn(m_series.item, wall, minutes), m_event);
        }
    }

    /// The change that tells the texts and times of a day: its own one, or else the latest that holds from then on.
    const ChangedDay *changeOf(LONGLONG wall) const
    {
        const ChangedDay *found = nullptr;
        for (const ChangedDay &change : m_series.changes)
        {
            if (change.original == wall)
            {
                return &change;
            }
            if (change.future && change.original >= 0 && change.original < wall &&
                (found == nullptr || change.original > found->original))
            {
                found = &change;
            }
        }
        return found;
    }

    /// A day behind a change that holds from then on: as much later or earlier, and as long, as that one.
    AppointmentItem likeChange(const ChangedDay &change, LONGLONG wall) const
    {
        const LONGLONG changedUtc = ticksOf(change.item.start);
        const LONGLONG start = change.item.allDay ? changedUtc : m_series.wallOfUtc(changedUtc);
        AppointmentItem item = change.item;
        const LONGLONG moved = std::max<LONGLONG>(0, wall + start - change.original);
        item.start = fileTimeOf(item.allDay ? moved - moved % ticksPerDay : m_series.utcOf(moved));
        item.interchangeId = m_series.identityOf(wall);
        return item;
    }

    /// The appointment of one day; nothing for one that was cancelled.
    std::optional<std::pair<AppointmentItem, const CalendarComponent *>> itemOf(LONGLONG wall, LONG minutes) const
    {
        const ChangedDay *change = changeOf(wall);
        if (change == nullptr)
        {
            return std::pair(singleOn(m_series.item, wall, minutes), &m_event);
        }
        if (change->cancelled)
        {
            return std::nullopt;
        }
        return std::pair(change->original == wall ? change->item : likeChange(*change, wall), change->event);
    }

    void unroll()
    {
        UnrolledDays unrolled = unrolledDays(m_series, m_now);
        m_reading.form = m_series.ruleUnreadable ? SeriesForm::FirstDay : SeriesForm::Unrolled;
        m_reading.windowStart = unrolled.from;
        // The first day carries the identity of the event itself, so that the event is known again as a single one.
        bool first = true;
        for (const auto &[wall, minutes] : unrolled.days)
        {
            auto item = itemOf(wall, minutes);
            if (!item)
            {
                ++m_reading.cancelledDays;
                continue;
            }
            m_reading.covered.insert(item->first.interchangeId);
            if (first)
            {
                item->first.interchangeId = m_reading.identity;
            }
            first = false;
            ++m_reading.singles;
            hand(std::move(item->first), *item->second);
        }
        for (const ChangedDay &change : m_series.changes)
        {
            takeChangeBeside(change, unrolled);
        }
        tell(unrolled);
    }

    /// A changed day that none of the unrolled ones stands for: outside the window, or no day of the series at all.
    void takeChangeBeside(const ChangedDay &change, const UnrolledDays &unrolled)
    {
        if (change.cancelled)
        {
            m_reading.covered.insert(change.identity);
        }
        else if (unrolled.days.count(change.original) == 0)
        {
            ++m_reading.singles;
            hand(change.item, *change.event);
        }
    }

    void tell(const UnrolledDays &unrolled)
    {
        if (m_series.ruleUnreadable)
        {
            return; // the line of the rule has its remark
        }
        if (m_reading.singles == 0)
        {
            m_reading.form = SeriesForm::Refused;
            m_reading.reason = "none of its days is left";
            return;
        }
        std::string text = "a repeating event came in as " + std::to_string(m_reading.singles) +
                           (m_reading.singles == 1 ? " single appointment" : " single appointments");
        text += unrolled.whole
                    ? ", all it has"
                    : ", those from " + dateText(unrolled.from) + " to " + dateText(unrolled.to - ticksPerDay);
        if (!unrolled.whole && unrolled.days.size() >= mostUnrolled)
        {
            text += " (1,000 at most)";
        }
        m_reading.findings.push_back({m_reading.line, text + ": " + m_reading.reason});
    }

    const CalendarComponent &m_event;
    SeriesReading m_reading;
    SeriesCalendar m_series;
    LONGLONG m_now;
    const ItemSink &m_take;
    std::optional<ExactRecord> m_exact;
    std::optional<RecurrencePattern> m_pattern; ///< kept beside the event
};
} // namespace

SeriesReading readSeries(const CalendarComponent &series, const std::vector<CalendarComponent> &changes,
                         ZoneBook &zones, LONGLONG now, const ItemSink &take)
{
    return SeriesReader(series, zones, now, take).read(changes);
}
} // namespace zb::interchange
