#include "support/KCalendarMonth.h"

#include <KCalendarCore/Event>
#include <KCalendarCore/ICalFormat>
#include <KCalendarCore/MemoryCalendar>
#include <KCalendarCore/OccurrenceIterator>

#include <QTimeZone>

#include <stdexcept>

namespace zb::bench
{
namespace
{
constexpr int minutesPerDay = 1440;

QDateTime momentOf(LONGLONG minute, const QTimeZone &zone)
{
    const QDate date = QDate(1601, 1, 1).addDays(minute / minutesPerDay);
    const int rest = static_cast<int>(minute % minutesPerDay);
    return {date, QTime(rest / 60, rest % 60), zone};
}

LONGLONG minuteOf(const QDateTime &moment)
{
    const QTime time = moment.time();
    return QDate(1601, 1, 1).daysTo(moment.date()) * minutesPerDay + time.hour() * 60 + time.minute();
}

QString idOf(std::size_t event)
{
    return QString::number(static_cast<qulonglong>(event));
}

void addRule(KCalendarCore::Event &event, const Series &series, const QTimeZone &zone)
{
    auto *const rule = new KCalendarCore::RecurrenceRule;
    if (!KCalendarCore::ICalFormat().fromString(rule, QString::fromStdString(series.rule)))
    {
        throw std::runtime_error("KCalendarCore refuses " + series.rule);
    }
    rule->setStartDt(event.dtStart());
    rule->setAllDay(event.allDay());
    event.recurrence()->addRRule(rule);
    for (const int day : series.deletedDays)
    {
        const QDateTime moment = momentOf(LONGLONG{day} * minutesPerDay + series.startMinute, zone);
        if (event.allDay())
        {
            event.recurrence()->addExDate(moment.date());
        }
        else
        {
            event.recurrence()->addExDateTime(moment);
        }
    }
}
} // namespace

struct KCalendarMonth::Held
{
    QTimeZone zone{calendarZone};
    KCalendarCore::MemoryCalendar::Ptr calendar{new KCalendarCore::MemoryCalendar(zone)};

    KCalendarCore::Event::Ptr newEvent(const MixedEvent &event, std::size_t number) const
    {
        KCalendarCore::Event::Ptr made(new KCalendarCore::Event);
        made->setUid(idOf(number));
        made->setSummary(QString::fromStdString(event.subject));
        made->setDtStart(momentOf(event.startMinute, zone));
        // The end of all-day events is their last day.
        const LONGLONG end = event.startMinute + event.durationMinutes - (event.allDay ? minutesPerDay : 0);
        made->setDtEnd(momentOf(end, zone));
        made->setAllDay(event.allDay);
        return made;
    }

    void add(const MixedEvent &event, std::size_t number)
    {
        const KCalendarCore::Event::Ptr made = newEvent(event, number);
        if (event.series)
        {
            addRule(*made, *event.series, zone);
        }
        calendar->addEvent(made);
        if (event.series && event.series->changed)
        {
            addChanged(event, number);
        }
    }

    void addChanged(const MixedEvent &event, std::size_t number)
    {
        const ChangedOccurrence &changed = *event.series->changed;
        const KCalendarCore::Event::Ptr made = newEvent(event, number);
        made->setRecurrenceId(
            momentOf(LONGLONG{changed.originalDay} * minutesPerDay + event.series->startMinute, zone));
        made->setDtStart(momentOf(changed.startMinute, zone));
        made->setDtEnd(momentOf(changed.startMinute + changed.durationMinutes, zone));
        calendar->addEvent(made);
    }
};

KCalendarMonth::KCalendarMonth(const MixedCalendar &calendar) : m_held(std::make_unique<Held>())
{
    for (std::size_t n = 0; n < calendar.events.size(); ++n)
    {
        m_held->add(calendar.events[n], n);
    }
}

KCalendarMonth::~KCalendarMonth() = default;

std::vector<DayEntry> KCalendarMonth::load(int from, int to) const
{
    std::vector<DayEntry> entries;
    KCalendarCore::OccurrenceIterator iterator(
        *m_held->calendar, momentOf(LONGLONG{from} * minutesPerDay, m_held->zone),
        momentOf(LONGLONG{to} * minutesPerDay + minutesPerDay - 1, m_held->zone));
    while (iterator.hasNext())
    {
        iterator.next();
        const auto event = iterator.incidence().staticCast<KCalendarCore::Event>();
        const LONGLONG start = minuteOf(iterator.occurrenceStartDate());
        const LONGLONG length =
            minuteOf(event->dtEnd()) - minuteOf(event->dtStart()) + (event->allDay() ? minutesPerDay : 0);
        addDays(entries, from, to, start, start + length, event->uid().toULongLong());
    }
    sortEntries(entries);
    return entries;
}
} // namespace zb::bench
