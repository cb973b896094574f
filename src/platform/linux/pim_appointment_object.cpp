// Appointments as objects: single ones, series, and single days of series.
#include "platform/linux/pim_appointment_object.h"

#include "platform/linux/pim_appointment_record.h"
#include "platform/linux/pim_dates.h"
#include "platform/linux/pim_item.h"
#include "platform/linux/pim_outbox.h"
#include "platform/linux/pim_pattern_object.h"
#include "platform/linux/pim_recipients.h"

#include <algorithm>
#include <functional>

namespace zb::internal
{
namespace
{
constexpr LONG usualReminder = 15;

class AppointmentObject final : public ItemObject<IAppointment, AppointmentValues>,
                                private PatternOwner,
                                private RecipientsOwner
{
  public:
    AppointmentObject(std::shared_ptr<PimStore> store, CEOID oid, AppointmentValues values)
        : ItemObject(std::move(store), oid, std::move(values))
    {
    }
    AppointmentObject(std::shared_ptr<PimStore> store, CEOID oid, const SeriesRecord &series, int day)
        : ItemObject(std::move(store), oid, series.valuesOf(day)), m_day(day)
    {
    }

    HRESULT Copy(IPOutlookItem **copy) override;
    HRESULT get_Subject(BSTR *text) override
    {
        return giveText(m_mine.subject, text);
    }
    HRESULT put_Subject(BSTR text) override
    {
        return takeText(&AppointmentValues::subject, text);
    }
    HRESULT get_Location(BSTR *text) override
    {
        return giveText(m_mine.location, text);
    }
    HRESULT put_Location(BSTR text) override
    {
        return takeText(&AppointmentValues::location, text);
    }
    HRESULT get_Start(DATE *date) override
    {
        return give(times().start == badTime ? PIM_NO_DATE : dateOfTicks(times().firstMoment()), date);
    }
    HRESULT put_Start(DATE date) override;
    HRESULT get_End(DATE *date) override
    {
        const bool none = times().start == badTime || times().badEnd;
        return give(none ? PIM_NO_DATE : dateOfTicks(end()), date);
    }
    HRESULT put_End(DATE date) override;
    HRESULT get_Duration(LONG *minutes) override
    {
        const bool goneBy = isSingle() && times().start != badTime;
        return give(goneBy ? static_cast<LONG>(times().minutesGoneBy(WallClock::ofDevice())) : times().storedMinutes(),
                    minutes);
    }
    HRESULT put_Duration(LONG minutes) override
    {
        setPatternMinutes(minutes);
        return minutes < 0 ? PIM_E_END_BEFORE_START : S_OK;
    }
    HRESULT get_AllDayEvent(VARIANT_BOOL *allDay) override
    {
        return giveFlag(times().allDay, allDay);
    }
    HRESULT put_AllDayEvent(VARIANT_BOOL allDay) override;
    HRESULT get_BusyStatus(LONG *status) override
    {
        return give(m_mine.busy, status);
    }
    HRESULT put_BusyStatus(LONG status) override
    {
        m_mine.busy = status;
        return status >= olFree && status <= olOutOfOffice ? S_OK : E_INVALIDARG;
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
    HRESULT get_ReminderMinutesBeforeStart(LONG *minutes) override
    {
        return give(m_mine.reminderMinutes.value_or(usualReminder), minutes);
    }
    HRESULT put_ReminderMinutesBeforeStart(LONG minutes) override
    {
        m_mine.reminderMinutes = minutes;
        return minutes >= 0 && minutes <= PIM_LONGEST_REMINDER ? S_OK : PIM_E_REMINDER;
    }
    HRESULT get_IsRecurring(VARIANT_BOOL *recurring) override
    {
        return giveFlag(m_mine.rule.has_value(), recurring);
    }
    HRESULT GetRecurrencePattern(IRecurrencePattern **pattern) override;
    HRESULT ClearRecurrencePattern() override
    {
        times().byClock = times().byClock || m_mine.rule;
        m_mine.rule.reset();
        return m_day ? PIM_E_SERIES : S_OK;
    }
    HRESULT get_MeetingStatus(LONG *status) override
    {
        const LONG active = hasAttendees() ? olMeeting : olNonMeeting;
        return give(m_mine.cancelled ? olMeetingCanceled : active, status);
    }
    HRESULT get_Recipients(IRecipients **recipients) override
    {
        if (recipients == nullptr)
        {
            return E_POINTER;
        }
        *recipients = newRecipients(*this);
        return S_OK;
    }
    HRESULT Send() override
    {
        return tellRecipients(false);
    }
    HRESULT Cancel() override
    {
        return tellRecipients(true);
    }

  protected:
    PimKind kind() const override
    {
        return PimKind::Appointment;
    }
    const GUID &ownInterface() const override
    {
        return IID_IAppointment;
    }
    HRESULT check(const AppointmentValues &values) const override
    {
        return checkAppointment(values);
    }
    AppointmentValues decode(const StoredItem &record) const override
    {
        return decodeAppointmentValues(record);
    }
    void merge(AppointmentValues &fresh) const override
    {
        takeChanges(fresh, m_base, m_mine);
    }
    HRESULT encode(const AppointmentValues &values, const AppointmentValues &before, const StoredItem &record,
                   RecordProperties &properties) override
    {
        return encodeAppointmentValues(values, before, record, m_copied, properties);
    }
    HRESULT saveExisting() override
    {
        return m_day ? saveDay() : ItemObject::saveExisting();
    }
    void takeOver(const StoredItem &record) override;
    HRESULT deleteStored() override
    {
        return m_day ? deleteDay() : ItemObject::deleteStored();
    }

  private:
    /// What happens to the record of a series, and to an appointment that leaves it.
    struct SeriesStep
    {
        StoredItem record;
        std::optional<SeriesRecord> series;
        RecordProperties own; ///< empty: none leaves
    };
    /// What has the day after that: an appointment of its own (0: the series), and how its record reads.
    struct SavedDay
    {
        CEOID own = 0;
        StoredItem record;
    };
    HRESULT onSeries(const std::function<HRESULT(SeriesStep &)> &change, SavedDay *saved);
    static HRESULT setBlob(const SeriesRecord &series, RecordProperties &properties);
    HRESULT checkDay() const;
    HRESULT saveDay();
    HRESULT deleteDay();
    HRESULT takeOut(SeriesStep &step, const AppointmentValues &values) const;
    HRESULT tellRecipients(bool cancelled);
    bool hasAttendees() const
    {
        return !m_mine.recipients.empty() || (m_mine.recipients == m_base.recipients && m_mine.otherAttendees);
    }
    AppointmentTimes &times()
    {
        return m_mine.times;
    }
    void makeWholeDays();
    /// Neither whole days nor of a series, whose times go by the clock alone.
    bool isSingle() const
    {
        return !m_mine.times.allDay && !m_mine.rule && !m_day;
    }
    LONGLONG end() const
    {
        return isSingle() ? m_mine.times.shownEnd(WallClock::ofDevice()) : m_mine.times.lastMoment();
    }

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
        return m_mine.times.start == badTime ? -1 : dayOfTicks(m_mine.times.firstMoment());
    }
    void setPatternStartDay(int day) override;
    OccurrenceTimes patternTimes() const override;
    void setPatternStartMinute(LONG minute) override;
    void setPatternMinutes(LONGLONG minutes) override;
    HRESULT patternOccurrence(DATE date, IAppointment **occurrence) override;

    IDispatch &recipientsItem() override
    {
        return *this;
    }
    std::vector<Recipient> &recipientsOfItem() override
    {
        return m_mine.recipients;
    }

    std::optional<int> m_day;                  ///< one occurrence: its day in the series
    std::optional<RecurrencePattern> m_copied; ///< a copy that was not saved yet: of whose changed days
};

// --- Times -------------------------------------------------------------------------------------------------------

/// Whole days have one form, so that equal ones compare as equal.
void AppointmentObject::makeWholeDays()
{
    if (times().allDay && times().start != badTime && times().minutes >= 0)
    {
        const LONG minutes = times().storedMinutes();
        times().start = times().firstMoment();
        times().minutes = minutes;
    }
}

HRESULT AppointmentObject::put_Start(DATE date)
{
    const LONGLONG before = times().start;
    times().start = ticksOfDate(date);
    makeWholeDays();
    if (times().start == badTime)
    {
        return PIM_E_DATE;
    }
    if (m_mine.rule && before != badTime)
    {
        followStart(*m_mine.rule, dayOfTicks(before), dayOfTicks(times().start));
    }
    return S_OK;
}

HRESULT AppointmentObject::put_End(DATE date)
{
    const LONGLONG put = ticksOfDate(date);
    times().badEnd = put == badTime;
    if (times().badEnd || times().start == badTime)
    {
        return PIM_E_DATE;
    }
    if (times().minutes >= 0 && put == end())
    {
        return S_OK;
    }
    const LONGLONG from = times().firstMoment();
    const LONGLONG to = times().allDay ? ticksOfDay(dayOfTicks(put) + 1) - ticksPerMinute : put;
    times().byClock = isSingle();
    // Rounded down, so that an end some seconds before the start is before it.
    const LONGLONG length = to - from;
    times().minutes = length >= 0 ? length / ticksPerMinute : -((-length + ticksPerMinute - 1) / ticksPerMinute);
    return times().minutes < 0 ? PIM_E_END_BEFORE_START : S_OK;
}

HRESULT AppointmentObject::put_AllDayEvent(VARIANT_BOOL allDay)
{
    const bool wanted = allDay != VARIANT_FALSE;
    if (wanted && isSingle() && times().start != badTime)
    {
        times().minutes = (end() - times().start) / ticksPerMinute;
    }
    if (wanted && !times().allDay && times().start != badTime && times().minutes > 0 &&
        times().lastMoment() % ticksPerDay == 0)
    {
        --times().minutes; // midnight belongs to the day that ends there
    }
    times().allDay = wanted;
    makeWholeDays();
    return S_OK;
}

void AppointmentObject::setPatternMinutes(LONGLONG minutes)
{
    times().badEnd = false;
    times().byClock = false;
    times().minutes = minutes;
    if (times().allDay && minutes >= 0)
    {
        times().minutes = std::max<LONGLONG>(1, (minutes + minutesOfDay - 1) / minutesOfDay) * minutesOfDay - 1;
    }
}

void AppointmentObject::setPatternStartDay(int day)
{
    const LONGLONG inDay = times().start == badTime ? 0 : times().start % ticksPerDay;
    times().start = day < 0 ? badTime : ticksOfDay(day) + inDay;
}

OccurrenceTimes AppointmentObject::patternTimes() const
{
    const AppointmentTimes &own = m_mine.times;
    if (own.allDay)
    {
        return {0, own.storedMinutes(), true};
    }
    return {own.start == badTime ? 0 : minuteOfTicks(own.start), static_cast<LONG>(own.minutes), false};
}

void AppointmentObject::setPatternStartMinute(LONG minute)
{
    if (!times().allDay && times().start != badTime)
    {
        times().start = ticksOfDay(dayOfTicks(times().start)) + minute * ticksPerMinute;
    }
}

// --- Series ------------------------------------------------------------------------------------------------------

HRESULT AppointmentObject::GetRecurrencePattern(IRecurrencePattern **pattern)
{
    if (pattern == nullptr)
    {
        return E_POINTER;
    }
    *pattern = m_day ? nullptr : newPattern(*this);
    return m_day ? PIM_E_SERIES : S_OK;
}

HRESULT AppointmentObject::patternOccurrence(DATE date, IAppointment **occurrence)
{
    const LONGLONG wall = ticksOfDate(date);
    StoredItem record;
    if (wall == badTime || m_oid == 0)
    {
        return PIM_E_NO_OCCURRENCE;
    }
    if (const HRESULT result = m_store->read(kind(), m_oid, record); FAILED(result))
    {
        return result;
    }
    const std::optional<SeriesRecord> series = SeriesRecord::of(record);
    const std::optional<int> day = series ? series->find(wall) : std::nullopt;
    if (!day)
    {
        return PIM_E_NO_OCCURRENCE;
    }
    *occurrence = new AppointmentObject(m_store, m_oid, *series, *day);
    return S_OK;
}

void AppointmentObject::takeOver(const StoredItem &record)
{
    m_copied.reset();
    if (!m_day)
    {
        ItemObject::takeOver(record);
    }
    else if (const std::optional<SeriesRecord> series = SeriesRecord::of(record))
    {
        m_base = m_mine = series->valuesOf(*m_day);
        m_names.reset();
    }
}

/// Nothing is written when it fails.
HRESULT AppointmentObject::setBlob(const SeriesRecord &series, RecordProperties &properties)
{
    std::optional<std::vector<BYTE>> blob = series.blob();
    if (!blob)
    {
        return PIM_E_RECURRENCE;
    }
    properties.set(appointmentRecurrence, std::move(*blob));
    return checkSize(properties);
}

/// One step on the series' record as it is by now, in a transaction of its own: what others change about other days
/// meanwhile stays.
HRESULT AppointmentObject::onSeries(const std::function<HRESULT(SeriesStep &)> &change, SavedDay *saved)
{
    BulkWrite bulk;
    SeriesStep step;
    HRESULT result = m_store->read(kind(), m_oid, step.record);
    step.series = SUCCEEDED(result) ? SeriesRecord::of(step.record) : std::nullopt;
    if (SUCCEEDED(result) && (!step.series || !step.series->has(*m_day)))
    {
        result = PIM_E_NO_OCCURRENCE;
    }
    result = SUCCEEDED(result) ? change(step) : result;
    RecordProperties blob;
    result = SUCCEEDED(result) ? setBlob(*step.series, blob) : result;
    if (FAILED(result))
    {
        bulk.commit(); // nothing was written; a bulk of the caller's goes on
        return result;
    }
    result = m_store->write(kind(), blob, m_oid);
    if (SUCCEEDED(result) && step.own.count() != 0)
    {
        result = m_store->write(kind(), step.own, saved->own);
    }
    if (SUCCEEDED(result) && saved != nullptr)
    {
        result = m_store->read(kind(), saved->own != 0 ? saved->own : m_oid, saved->record);
    }
    if (FAILED(result))
    {
        return result;
    }
    return bulk.commit() ? S_OK : lastResult();
}

/// Whether the day is still one of the series.
HRESULT AppointmentObject::checkDay() const
{
    StoredItem record;
    if (const HRESULT result = m_store->read(kind(), m_oid, record); FAILED(result))
    {
        return result;
    }
    const std::optional<SeriesRecord> series = SeriesRecord::of(record);
    return series && series->has(*m_day) ? S_OK : PIM_E_NO_OCCURRENCE;
}

HRESULT AppointmentObject::saveDay()
{
    if (m_mine == m_base)
    {
        return checkDay();
    }
    SavedDay saved;
    const HRESULT result = onSeries(
        [&](SeriesStep &step)
        {
            AppointmentValues values = step.series->valuesOf(*m_day);
            merge(values);
            HRESULT valid = check(values);
            valid = SUCCEEDED(valid) ? step.series->checkNeighbours(*m_day, values.times) : valid;
            if (SUCCEEDED(valid) && step.series->canChange(*m_day, values))
            {
                step.series->change(*m_day, values);
                return valid;
            }
            return SUCCEEDED(valid) ? takeOut(step, values) : valid;
        },
        &saved);
    if (FAILED(result))
    {
        return result;
    }
    if (saved.own != 0)
    {
        m_oid = saved.own;
        m_day.reset();
    }
    takeOver(saved.record);
    return result;
}

/// An appointment of its own in place of a day of the series.
HRESULT AppointmentObject::takeOut(SeriesStep &step, const AppointmentValues &values) const
{
    const StoredItem nothing;
    AppointmentValues single = values;
    single.times.byClock = true; // as it did in the series
    const HRESULT result = encodeAppointmentValues(single, AppointmentValues(), nothing, std::nullopt, step.own);
    if (FAILED(result))
    {
        return result;
    }
    const AppointmentValues &series = step.series->series();
    step.own.set(appointmentRecurringFlag, SHORT{1});
    const std::u16string icon = step.record.text(itemExtraText);
    const std::u16string identity = step.record.text(itemInterchangeId);
    if (!icon.empty())
    {
        step.own.set(itemExtraText, icon);
    }
    if (!identity.empty())
    {
        const LONGLONG original = step.series->originalStart(*m_day);
        step.own.set(itemInterchangeId, identity + u'\n' + dayIdentity(original, series.times.allDay));
    }
    if (values.recipients == series.recipients && step.record.has(appointmentAttendees))
    {
        step.own.set(appointmentAttendees, step.record.blob(appointmentAttendees));
    }
    step.series->deleteDay(*m_day);
    return S_OK;
}

HRESULT AppointmentObject::deleteDay()
{
    return onSeries(
        [&](SeriesStep &step)
        {
            step.series->deleteDay(*m_day);
            return S_OK;
        },
        nullptr);
}

// --- Copies and messages -----------------------------------------------------------------------------------------

HRESULT AppointmentObject::Copy(IPOutlookItem **copy)
{
    if (copy == nullptr)
    {
        return E_POINTER;
    }
    *copy = nullptr;
    if (m_day)
    {
        return PIM_E_SERIES;
    }
    Counted<AppointmentObject> made(new AppointmentObject(m_store, 0, AppointmentValues()));
    if (const HRESULT result = fillCopy(*made.get()); FAILED(result))
    {
        return result;
    }
    made->m_copied = m_copied;
    const std::optional<SeriesRecord> series = made->m_original ? SeriesRecord::of(*made->m_original) : std::nullopt;
    if (series)
    {
        made->m_copied = series->devicePattern();
    }
    *copy = given(made);
    return S_OK;
}

HRESULT AppointmentObject::tellRecipients(bool cancelled)
{
    if (!hasAttendees())
    {
        return E_INVALIDARG;
    }
    m_mine.cancelled = cancelled;
    const HRESULT result = Save();
    if (FAILED(result) || m_mine.recipients.empty())
    {
        return result; // nobody knows where another program's attendees are reached
    }
    OutboxItem item;
    if (const HRESULT made = outboxAppointment(*this, cancelled ? OutboxMethod::Cancel : OutboxMethod::Request, item);
        FAILED(made))
    {
        return made;
    }
    return writeOutbox(item);
}
} // namespace

IPOutlookItem *newAppointment(const std::shared_ptr<PimStore> &store)
{
    AppointmentValues values;
    // The next full hour.
    const WallClock device = WallClock::ofDevice();
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    const LONGLONG wall = device.wallOf(ticksOf(now));
    values.times.start = wall - wall % ticksPerHour + ticksPerHour;
    values.times.minutes = 30;
    return new AppointmentObject(store, 0, values);
}

IPOutlookItem *appointmentOf(const std::shared_ptr<PimStore> &store, CEOID oid, const StoredItem &record)
{
    return new AppointmentObject(store, oid, decodeAppointmentValues(record));
}
} // namespace zb::internal
