// Tasks as objects, single ones and such that roll on.
#include "platform/linux/pim_task_object.h"

#include "platform/linux/pim_appointment_values.h"
#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_item.h"
#include "platform/linux/pim_item_fields.h"
#include "platform/linux/pim_merge.h"
#include "platform/linux/pim_pattern_object.h"
#include "platform/linux/pim_series_days.h"

#include <optional>

namespace zb::internal
{
namespace
{
constexpr int noDay = -2;
constexpr int badDay = -1;

/// Days are counted since 1601; noDay and badDay beside them.
struct TaskValues
{
    std::u16string subject;
    int start = noDay;
    int due = noDay;
    bool complete = false;
    int completed = noDay;
    LONG importance = olImportanceNormal;
    LONG sensitivity = olNormal;
    bool reminder = false;
    bool team = false;
    std::vector<BYTE> notes;
    std::vector<BYTE> categories;
    std::optional<SeriesRule> rule;
    int patternStart = noDay;
    bool operator==(const TaskValues &) const = default;

    /// The date that the pattern names.
    int anchor() const
    {
        return due != noDay ? due : start;
    }
};

int dayOfDate(DATE date)
{
    if (date == PIM_NO_DATE)
    {
        return noDay;
    }
    const LONGLONG ticks = ticksOfDate(date);
    return ticks == badTime ? badDay : dayOfTicks(ticks);
}

DATE dateOfDay(int day)
{
    return day < 0 ? PIM_NO_DATE : dateOfTicks(ticksOfDay(day));
}

int storedDay(const StoredItem &record, CEPROPID id)
{
    const std::optional<LONGLONG> ticks = record.ticks(id);
    return ticks && *ticks >= 0 ? dayOfTicks(*ticks) : noDay;
}

std::optional<FILETIME> toStore(int day)
{
    return day < 0 ? std::nullopt : std::optional(fileTimeOf(ticksOfDay(day)));
}

LONG importanceOf(LONG stored)
{
    switch (static_cast<TaskImportance>(stored))
    {
    case TaskImportance::High:
        return olImportanceHigh;
    case TaskImportance::Low:
        return olImportanceLow;
    default:
        return olImportanceNormal;
    }
}

TaskImportance storedImportance(LONG importance)
{
    return importance == olImportanceHigh  ? TaskImportance::High
           : importance == olImportanceLow ? TaskImportance::Low
                                           : TaskImportance::Normal;
}

int today()
{
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return dayOfTicks(WallClock::ofDevice().wallOf(ticksOf(now)));
}

std::optional<RecurrencePattern> patternOf(const StoredItem &record)
{
    const std::vector<BYTE> blob = record.blob(taskRecurrence);
    return decodeRecurrence(blob.data(), blob.size());
}

TaskValues valuesOf(const StoredItem &record)
{
    TaskValues values;
    values.subject = record.text(itemSubject);
    values.start = storedDay(record, taskStartDate);
    values.due = storedDay(record, taskDueDate);
    values.complete = record.shortNumber(taskCompleteFlag, 0) != 0;
    values.completed = values.complete ? storedDay(record, taskDateCompleted) : noDay;
    values.importance = importanceOf(record.number(taskImportance, static_cast<LONG>(TaskImportance::Normal)));
    values.sensitivity = record.shortNumber(itemSensitivity, 0) != 0 ? olPrivate : olNormal;
    values.reminder = record.shortNumber(taskReminderSet, 0) != 0;
    values.team = record.shortNumber(taskOfTeam, 0) != 0;
    values.notes = record.blob(itemNotes);
    values.categories = record.blob(itemCategories);
    if (const std::optional<RecurrencePattern> pattern = patternOf(record))
    {
        values.rule = ruleOf(*pattern);
        values.patternStart = static_cast<int>(pattern->firstDate / minutesOfDay);
    }
    return values;
}

void move(TaskValues &values, int days)
{
    values.start += values.start >= 0 ? days : 0;
    values.due += values.due >= 0 ? days : 0;
}

/// On to the next day of the series; false behind its last.
bool rollOn(TaskValues &values, const RecurrencePattern &pattern)
{
    const std::optional<int> next = SeriesDays(pattern).onOrAfter(values.anchor() + 1);
    if (next)
    {
        move(values, *next - values.anchor());
    }
    return next.has_value();
}

class TaskObject final : public ItemObject<ITask, TaskValues>, private PatternOwner
{
  public:
    TaskObject(std::shared_ptr<PimStore> store, CEOID oid, TaskValues values)
        : ItemObject(std::move(store), oid, std::move(values))
    {
    }

    HRESULT Copy(IPOutlookItem **copy) override
    {
        if (copy == nullptr)
        {
            return E_POINTER;
        }
        Counted<TaskObject> made(new TaskObject(m_store, 0, TaskValues()));
        const HRESULT result = fillCopy(*made.get());
        made->m_copied = m_oid != 0 ? std::optional(m_base) : m_copied;
        *copy = FAILED(result) ? nullptr : given(made);
        return result;
    }
    HRESULT get_Subject(BSTR *text) override
    {
        return giveText(m_mine.subject, text);
    }
    HRESULT put_Subject(BSTR text) override
    {
        return takeText(&TaskValues::subject, text);
    }
    HRESULT get_StartDate(DATE *date) override
    {
        return give(dateOfDay(m_mine.start), date);
    }
    HRESULT put_StartDate(DATE date) override
    {
        m_mine.start = dayOfDate(date);
        return m_mine.start == badDay ? PIM_E_DATE : S_OK;
    }
    HRESULT get_DueDate(DATE *date) override
    {
        return give(dateOfDay(m_mine.due), date);
    }
    HRESULT put_DueDate(DATE date) override
    {
        m_mine.due = dayOfDate(date);
        return m_mine.due == badDay ? PIM_E_DATE : S_OK;
    }
    HRESULT get_Complete(VARIANT_BOOL *complete) override
    {
        return giveFlag(m_mine.complete, complete);
    }
    HRESULT put_Complete(VARIANT_BOOL complete) override
    {
        m_mine.complete = complete != VARIANT_FALSE;
        return S_OK;
    }
    HRESULT get_DateCompleted(DATE *date) override
    {
        return give(dateOfDay(m_mine.completed), date);
    }
    HRESULT get_Importance(LONG *importance) override
    {
        return give(m_mine.importance, importance);
    }
    HRESULT put_Importance(LONG importance) override
    {
        m_mine.importance = importance;
        return importance >= olImportanceLow && importance <= olImportanceHigh ? S_OK : E_INVALIDARG;
    }
    HRESULT get_Sensitivity(LONG *sensitivity) override
    {
        return give(m_mine.sensitivity, sensitivity);
    }
    HRESULT put_Sensitivity(LONG sensitivity) override
    {
        m_mine.sensitivity = sensitivity;
        return sensitivity == olNormal || sensitivity == olPrivate ? S_OK : E_INVALIDARG;
    }
    HRESULT get_ReminderSet(VARIANT_BOOL *set) override
    {
        return giveFlag(m_mine.reminder, set);
    }
    HRESULT put_ReminderSet(VARIANT_BOOL set) override
    {
        m_mine.reminder = set != VARIANT_FALSE;
        return S_OK;
    }
    HRESULT get_TeamTask(VARIANT_BOOL *team) override
    {
        return giveFlag(m_mine.team, team);
    }
    HRESULT put_TeamTask(VARIANT_BOOL team) override
    {
        m_mine.team = team != VARIANT_FALSE;
        return S_OK;
    }
    HRESULT get_IsRecurring(VARIANT_BOOL *recurring) override
    {
        return giveFlag(m_mine.rule.has_value(), recurring);
    }
    HRESULT GetRecurrencePattern(IRecurrencePattern **pattern) override
    {
        if (pattern == nullptr)
        {
            return E_POINTER;
        }
        *pattern = newPattern(*this);
        return S_OK;
    }
    HRESULT ClearRecurrencePattern() override
    {
        m_mine.rule.reset();
        m_mine.patternStart = noDay;
        return S_OK;
    }
    HRESULT SkipRecurrence() override;

  protected:
    PimKind kind() const override
    {
        return PimKind::Task;
    }
    const GUID &ownInterface() const override
    {
        return IID_ITask;
    }
    HRESULT check(const TaskValues &values) const override;
    TaskValues decode(const StoredItem &record) const override
    {
        return valuesOf(record);
    }
    void merge(TaskValues &fresh) const override
    {
        const bool wasComplete = fresh.complete;
        const bool movedOn = hasMovedOn(fresh);
        using V = TaskValues;
        takeChanged(fresh, m_base, m_mine, &V::subject, &V::start, &V::due, &V::complete, &V::importance,
                    &V::sensitivity, &V::reminder, &V::team, &V::notes, &V::categories, &V::rule, &V::patternStart);
        fresh.complete = movedOn ? wasComplete : fresh.complete; // the day that this object means is done already
    }
    HRESULT encode(const TaskValues &values, const TaskValues &before, const StoredItem &record,
                   RecordProperties &properties) override;

  private:
    bool hasMovedOn(const TaskValues &fresh) const;
    static HRESULT alignedPattern(TaskValues &values, const TaskValues &before,
                                  std::optional<RecurrencePattern> &pattern);
    static void complete(TaskValues &values, const TaskValues &before, const std::optional<RecurrencePattern> &pattern);

    IDispatch &patternItem() override
    {
        return *this;
    }
    std::optional<SeriesRule> &patternRule() override
    {
        return m_mine.rule;
    }
    int patternStartDay() const override
    {
        if (m_mine.patternStart != noDay)
        {
            return m_mine.patternStart;
        }
        return m_mine.anchor() != noDay ? m_mine.anchor() : today();
    }
    void setPatternStartDay(int day) override
    {
        m_mine.patternStart = day < 0 ? badDay : day;
    }
    OccurrenceTimes patternTimes() const override
    {
        return {0, 0, true};
    }
    void setPatternStartMinute(LONG) override
    {
        // Tasks have no times.
    }
    void setPatternMinutes(LONGLONG) override
    {
        // Tasks have no length.
    }
    HRESULT patternOccurrence(DATE, IAppointment **) override
    {
        return E_NOTIMPL;
    }

    std::optional<TaskValues> m_copied; ///< a copy that was not saved yet: what the record of its original said
};

HRESULT TaskObject::check(const TaskValues &values) const
{
    if (values.start == badDay || values.due == badDay || values.patternStart == badDay)
    {
        return PIM_E_DATE;
    }
    if (values.start >= 0 && values.due >= 0 && values.due < values.start)
    {
        return PIM_E_END_BEFORE_START;
    }
    const bool known = values.importance >= olImportanceLow && values.importance <= olImportanceHigh &&
                       (values.sensitivity == olNormal || values.sensitivity == olPrivate);
    return known ? S_OK : E_INVALIDARG;
}

/// Whether another object has taken the task on to a later day of its series since this one read it.
bool TaskObject::hasMovedOn(const TaskValues &fresh) const
{
    RecurrencePattern pattern;
    if (!m_base.rule || fresh.rule != m_base.rule || fresh.patternStart != m_base.patternStart ||
        m_base.anchor() == noDay || fresh.anchor() <= m_base.anchor() ||
        FAILED(internal::patternOf(*fresh.rule, fresh.patternStart, {0, 0, true}, pattern)))
    {
        return false;
    }
    const SeriesDays days(pattern);
    return days.contains(m_base.anchor()) && days.contains(fresh.anchor());
}

/// The pattern of a new or changed rule; the task's date moves to the first day that it names.
HRESULT TaskObject::alignedPattern(TaskValues &values, const TaskValues &before,
                                   std::optional<RecurrencePattern> &pattern)
{
    const int anchor = values.anchor() != noDay ? values.anchor() : today();
    const int from = values.patternStart != noDay ? values.patternStart : anchor;
    pattern.emplace();
    const HRESULT result = internal::patternOf(*values.rule, from, {0, 0, true}, *pattern);
    if (FAILED(result))
    {
        return result;
    }
    const auto first = static_cast<int>(pattern->firstDate / minutesOfDay);
    // A task that has rolled on stays where it is in its series.
    const bool goesOn = before.rule && values.patternStart == before.patternStart;
    const int wanted = goesOn ? SeriesDays(*pattern).onOrAfter(anchor).value_or(first) : first;
    if (values.anchor() == noDay)
    {
        values.due = wanted;
    }
    else
    {
        move(values, wanted - values.anchor());
    }
    values.patternStart = first;
    return S_OK;
}

/// What happens when a task is completed or opened again.
void TaskObject::complete(TaskValues &values, const TaskValues &before, const std::optional<RecurrencePattern> &pattern)
{
    if (values.complete == before.complete)
    {
        return;
    }
    if (values.complete && pattern && values.anchor() != noDay && rollOn(values, *pattern))
    {
        values.complete = false;
    }
    values.completed = values.complete ? today() : noDay;
}

HRESULT TaskObject::encode(const TaskValues &values, const TaskValues &before, const StoredItem &record,
                           RecordProperties &properties)
{
    TaskValues saved = values;
    // A copy is where its original is: neither back on the first day of its series nor completed today.
    const TaskValues &known = m_copied && record.count() == 0 ? *m_copied : before;
    std::optional<RecurrencePattern> pattern = patternOf(record);
    const bool newRule =
        saved.rule && (record.count() == 0 || saved.rule != before.rule || saved.patternStart != before.patternStart);
    if (newRule)
    {
        if (const HRESULT result = alignedPattern(saved, known, pattern); FAILED(result))
        {
            return result;
        }
    }
    complete(saved, known, saved.rule ? pattern : std::nullopt);
    TaskItem item;
    item.subject = saved.subject;
    item.interchangeId = record.text(itemInterchangeId);
    item.start = toStore(saved.start);
    item.due = toStore(saved.due);
    item.complete = saved.complete;
    item.completed = toStore(saved.completed);
    item.importance = storedImportance(saved.importance);
    item.isPrivate = saved.sensitivity != olNormal;
    item.reminder = saved.reminder;
    properties = encodeTask(item);
    setBlob(properties, itemNotes, saved.notes);
    if (saved.categories != before.categories)
    {
        setBlob(properties, itemCategories, saved.categories);
    }
    // Only by this change: whoever else keeps an alarm there knows why.
    const bool silenced = (saved.complete && !before.complete) || (before.reminder && !saved.reminder);
    if (silenced && record.number(taskNotification, 0) != 0)
    {
        clearNotificationOf(record);
        properties.set(taskNotification, LONG{0});
    }
    if (saved.team != before.team)
    {
        properties.set(taskOfTeam, static_cast<SHORT>(saved.team ? 1 : 0));
    }
    if (newRule || (before.rule && !saved.rule))
    {
        std::optional<std::vector<BYTE>> blob =
            saved.rule ? encodeRecurrence(*pattern) : std::optional(std::vector<BYTE>());
        if (!blob)
        {
            return PIM_E_RECURRENCE;
        }
        setBlob(properties, taskRecurrence, std::move(*blob));
        properties.set(taskRecurringFlag, static_cast<SHORT>(saved.rule ? 1 : 0));
    }
    return S_OK;
}

HRESULT TaskObject::SkipRecurrence()
{
    if (m_oid == 0)
    {
        return PIM_E_NO_OCCURRENCE;
    }
    BulkWrite bulk;
    StoredItem record;
    HRESULT result = m_store->read(kind(), m_oid, record);
    const std::optional<RecurrencePattern> pattern = SUCCEEDED(result) ? patternOf(record) : std::nullopt;
    TaskValues values = SUCCEEDED(result) ? valuesOf(record) : TaskValues();
    const TaskValues before = values;
    if (SUCCEEDED(result) && pattern && hasMovedOn(values))
    {
        bulk.commit();
        return reload(); // the day that this object means is passed over already
    }
    if (SUCCEEDED(result) && (!pattern || values.anchor() == noDay || !rollOn(values, *pattern)))
    {
        result = PIM_E_NO_OCCURRENCE;
    }
    RecordProperties properties;
    result = SUCCEEDED(result) ? encode(values, before, record, properties) : result;
    return finish(bulk, result, properties);
}
} // namespace

IPOutlookItem *newTask(const std::shared_ptr<PimStore> &store)
{
    return new TaskObject(store, 0, TaskValues());
}

IPOutlookItem *taskOf(const std::shared_ptr<PimStore> &store, CEOID oid, const StoredItem &record)
{
    return new TaskObject(store, oid, valuesOf(record));
}
} // namespace zb::internal
