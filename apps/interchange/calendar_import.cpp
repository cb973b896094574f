#include "interchange/calendar_import.h"

#include "interchange/appointment_store.h"
#include "interchange/calendar_survey.h"
#include "interchange/event_item.h"
#include "interchange/event_series.h"
#include "interchange/import_frame.h"
#include "interchange/item_categories.h"
#include "interchange/task_import.h"
#include "interchange/zone_book.h"
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/locale.h"
#include "platform/propdb.h"

#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

namespace zb::interchange
{
namespace
{
constexpr std::size_t eventsBetweenReports = 64;
// A file of nothing but oddly named components must not fill the memory with their names.
constexpr std::size_t mostComponentNames = 100;

class CalendarImport
{
  public:
    CalendarImport(ByteSource &bytes, const ImportOptions &options, ImportReport &report)
        : m_reader(bytes), m_zones(deviceZoneName()), m_survey(m_reader, m_zones), m_options(options), m_report(report),
          m_categories(report), m_tasks(m_survey, m_zones, m_categories, report, [this](const auto &name, auto line) { tellUnknownZone(name, line); })
    {
    }

    void run()
    {
        BulkWrite writing;
        CalendarComponent component;
        while (m_reader.next(component))
        {
            take(component);
            if (m_options.progress && ++m_seen % eventsBetweenReports == 0 && m_reader.size() != 0)
            {
                m_options.progress(static_cast<double>(m_reader.position()) / static_cast<double>(m_reader.size()));
            }
        }
        takeStraySeries();
        m_tasks.findParents();
        addNotes();
        const TaskCounts &tasks = m_report.tasks;
        const bool changed = m_report.added != 0 || m_report.updated != 0 || m_report.removed != 0 ||
                             tasks.added != 0 || tasks.updated != 0;
        if (changed && !m_options.dryRun && !writing.commit())
        {
            throw StoreError(GetLastError());
        }
        m_tasks.saveLinks(!m_options.dryRun);
        if (!m_options.dryRun)
        {
            m_categories.saveColors();
        }
    }

  private:
    void take(const CalendarComponent &component)
    {
        if (component.kind == ComponentKind::Event)
        {
            ++m_report.events;
            takeEvent(component);
        }
        else if (component.kind == ComponentKind::Task)
        {
            m_tasks.take(component);
        }
        else if (component.kind == ComponentKind::Other)
        {
            const bool room = m_report.otherComponents.size() < mostComponentNames;
            ++m_report.otherComponents[room ? component.name : "other"];
        }
        else if (component.oversized)
        {
            m_report.find(component.line, "the time zone has more rules than any real one and was not read");
        }
    }

    void takeEvent(const CalendarComponent &event)
    {
        if (event.unended)
        {
            refuse(event.line, "it has no end (END:VEVENT)");
            return;
        }
        const bool older = m_survey.lineThatCounts(event) != event.line;
        m_report.superseded += older ? 1 : 0;
        const bool change = event.has(EventField::RecurrenceId);
        const auto changes = change || event.repeats() ? m_survey.changesOfSeries(event) : std::optional<std::size_t>();
        if (changes && *changes != 0)
        {
            collect(event, change, *changes, older);
        }
        else if (older)
        {
            return;
        }
        else if (changes && event.repeats() && !change)
        {
            takeSeries(event, {});
        }
        else
        {
            takeSingle(event);
        }
    }

    void takeSingle(const CalendarComponent &event)
    {
        if (isLeftOutOnPurpose(event))
        {
            return;
        }
        EventReading reading = readEvent(event, m_zones);
        if (!reading.unknownZone.empty())
        {
            tellUnknownZone(reading.unknownZone, reading.unknownZoneLine);
        }
        if (!reading.item)
        {
            refuse(reading.line, reading.reason);
            return;
        }
        shorten(event, *reading.item);
        reading.item->categories = m_categories.bitsOf(event);
        const auto exact = exactRecordOf(event);
        const auto outcome = m_store.store(*reading.item, exact ? &*exact : nullptr);
        count(outcome);
        // The days of a series that was exported as single appointments come in one by one.
        if (!exact && outcome == AppointmentStore::Outcome::Updated && m_store.wasSeries() &&
            !event.has(EventField::RecurrenceId))
        {
            m_report.removed += m_store.removeLeftovers({reading.item->interchangeId, {}, {}, 0});
        }
    }

    /// A repeating event waits for the changed days that the file tells of it, and they for it.
    struct WaitingSeries
    {
        std::optional<CalendarComponent> series;
        std::vector<CalendarComponent> changes;
        std::size_t seen = 0; ///< changes, older versions included
    };

    void collect(const CalendarComponent &event, bool change, std::size_t changes, bool older)
    {
        const Fingerprint key = seriesKey(event);
        WaitingSeries &waiting = m_waiting[key];
        waiting.seen += change ? 1 : 0;
        if (change && !older)
        {
            waiting.changes.push_back(event);
        }
        else if (!older)
        {
            waiting.series = event;
        }
        if (waiting.series && waiting.seen == changes)
        {
            const WaitingSeries whole = std::move(waiting);
            m_waiting.erase(key);
            takeSeries(*whole.series, whole.changes);
        }
    }

    /// Changed days whose series did not come in the version that counts: each by itself.
    void takeStraySeries()
    {
        for (const auto &[key, waiting] : m_waiting)
        {
            if (waiting.series)
            {
                takeSeries(*waiting.series, waiting.changes);
                continue;
            }
            for (const CalendarComponent &change : waiting.changes)
            {
                takeSingle(change);
            }
        }
        m_waiting.clear();
    }

    void takeSeries(const CalendarComponent &series, const std::vector<CalendarComponent> &changes)
    {
        if (series.says(EventField::Status, "CANCELLED"))
        {
            m_report.cancelled += 1 + changes.size();
            return;
        }
        FILETIME now{};
        GetSystemTimeAsFileTime(&now);
        const auto take = [this](AppointmentItem &item, const CalendarComponent &event, const ExactRecord *exact)
        {
            shorten(event, item);
            item.categories = m_categories.bitsOf(event);
            count(m_store.store(item, exact));
        };
        SeriesReading reading = readSeries(series, changes, m_zones, ticksOf(now), take);
        for (const UnknownZone &zone : reading.unknownZones)
        {
            tellUnknownZone(zone.name, zone.line);
        }
        for (Finding &finding : reading.findings)
        {
            m_report.find(finding.line, std::move(finding.text));
        }
        m_report.refused += reading.refusedDays;
        m_report.cancelledDays += reading.cancelledDays;
        m_report.changedDays += reading.changedDays;
        countForm(reading);
        if (reading.form != SeriesForm::Refused)
        {
            m_report.removed += m_store.removeLeftovers(
                {reading.identity, std::move(reading.kept), std::move(reading.covered), reading.windowStart});
            return;
        }
        // Without their series the changed days stand by themselves.
        for (const CalendarComponent &change : changes)
        {
            takeSingle(change);
        }
    }

    void countForm(const SeriesReading &reading)
    {
        switch (reading.form)
        {
        case SeriesForm::Refused:
            refuse(reading.line, reading.reason);
            break;
        case SeriesForm::Pattern:
            ++m_report.series;
            break;
        case SeriesForm::Unrolled:
            ++m_report.unrolled;
            m_report.unrolledAppointments += reading.singles;
            break;
        case SeriesForm::FirstDay:
            ++m_report.repeating;
            break;
        }
    }

    bool isLeftOutOnPurpose(const CalendarComponent &event)
    {
        std::size_t *kind = nullptr;
        if (event.says(EventField::Status, "CANCELLED"))
        {
            kind = &m_report.cancelled;
        }
        else if (m_survey.hasChangedFirstDay(event))
        {
            kind = &m_report.changedFirstDays;
        }
        if (kind != nullptr)
        {
            ++*kind;
        }
        return kind != nullptr;
    }

    void refuse(std::size_t line, const std::string &reason)
    {
        ++m_report.refused;
        m_report.find(line, "an event was left out: " + reason);
    }

    void tellUnknownZone(const std::string &name, std::size_t line)
    {
        if (m_unknownZones.size() < mostComponentNames && m_unknownZones.insert(name).second)
        {
            m_report.find(line, "the time zone \"" + name + "\" is unknown; its times were taken as the device's own");
        }
    }

    void shorten(const CalendarComponent &event, AppointmentItem &item)
    {
        for (const Shortening &cut : shortenToRecord(item))
        {
            const EventField field = cut.what == "notes"      ? EventField::Description
                                     : cut.what == "location" ? EventField::Location
                                                              : EventField::Summary;
            ++m_report.shortened;
            m_report.find(event.lineOf(field), "the " + cut.what + " of an event was cut to " +
                                                   std::to_string(cut.characters) + " characters, all a record holds");
        }
    }

    void count(AppointmentStore::Outcome outcome)
    {
        switch (outcome)
        {
        case AppointmentStore::Outcome::Added:
            ++m_report.added;
            break;
        case AppointmentStore::Outcome::Updated:
            ++m_report.updated;
            break;
        case AppointmentStore::Outcome::Unchanged:
            ++m_report.unchanged;
            break;
        }
    }

    void addNotes()
    {
        const ReaderNotes &notes = m_reader.notes();
        tellEncoding(m_report, notes.encoding);
        tellStrayLines(m_report, notes.strayLines, notes.strayFirst);
        tellAlike(m_report, notes.unendedCalendars, notes.unendedCalendarFirst,
                  "the calendar that begins here has no end", " calendars from here on have no end");
    }

    CalendarReader m_reader;
    ZoneBook m_zones;
    CalendarSurvey m_survey;
    AppointmentStore m_store;
    const ImportOptions &m_options;
    ImportReport &m_report;
    ItemCategories m_categories;
    TaskImport m_tasks;
    std::set<std::string> m_unknownZones;
    std::unordered_map<Fingerprint, WaitingSeries> m_waiting;
    std::size_t m_seen = 0;
};
} // namespace

ImportReport importCalendar(ByteSource &bytes, const std::string &name, const ImportOptions &options)
{
    return reportOf(name, [&](ImportReport &report) { CalendarImport(bytes, options, report).run(); });
}

ImportReport importCalendar(const std::filesystem::path &file, const ImportOptions &options)
{
    const std::string name = file == "-" ? "standard input" : file.string();
    return reportOf(name, [&](ImportReport &report) { report = importCalendar(*openFile(file), name, options); });
}
} // namespace zb::interchange
