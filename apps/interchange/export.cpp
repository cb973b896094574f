#include "interchange/export.h"

#include "interchange/appointment_store.h"
#include "interchange/calendar_writer.h"
#include "interchange/card_writer.h"
#include "interchange/contact_pictures.h"
#include "platform/clock.h"
#include "platform/item_identity.h"
#include "platform/kernel.h"
#include "platform/locale.h"
#include "platform/pim_recurrence.h"
#include "platform/text.h"
#include "records/FullCategories.h"
#include "tasks/TaskHierarchy.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <tuple>
#include <unordered_map>

namespace zb::interchange
{
namespace
{
/// One database, read record by record.
class Records
{
  public:
    explicit Records(const WCHAR *name)
    {
        CEOID id = 0;
        m_database = CeOpenDatabase(&id, name, 0, 0, nullptr);
        if (m_database == INVALID_HANDLE_VALUE)
        {
            throw StoreError(GetLastError());
        }
    }
    ~Records()
    {
        LocalFree(m_buffer);
        CloseHandle(m_database);
    }
    Records(const Records &) = delete;
    Records &operator=(const Records &) = delete;

    CEOID first()
    {
        return CeSeekDatabase(m_database, CEDB_SEEK_BEGINNING, 0, nullptr);
    }
    CEOID next()
    {
        return CeSeekDatabase(m_database, CEDB_SEEK_CURRENT, 1, nullptr);
    }
    /// Of the record at the position, until the next call.
    RecordView read()
    {
        WORD count = 0;
        if (CeReadRecordProps(m_database, CEDB_ALLOWREALLOC, &count, nullptr, &m_buffer, &m_size) == 0)
        {
            throw StoreError(GetLastError());
        }
        return {reinterpret_cast<const CEPROPVAL *>(m_buffer), count};
    }
    /// False for a record that has gone meanwhile.
    bool seek(CEOID id)
    {
        return CeSeekDatabase(m_database, CEDB_SEEK_CEOID, id, nullptr) != 0;
    }
    void giveIdentity(CEOID id, std::u16string identity)
    {
        CEPROPVAL value{};
        value.propid = itemInterchangeId;
        value.val.lpwstr = identity.data();
        if (CeWriteRecordProps(m_database, id, 1, &value) == 0)
        {
            throw StoreError(GetLastError());
        }
    }

  private:
    HANDLE m_database;
    BYTE *m_buffer = nullptr;
    DWORD m_size = 0;
};

/// A record's properties in memory of their own.
class KeptRecord
{
  public:
    explicit KeptRecord(const RecordView &view) : m_values(view.values(), view.values() + view.count())
    {
        m_texts.reserve(m_values.size());
        for (CEPROPVAL &value : m_values)
        {
            if (TypeFromPropID(value.propid) == CEVT_LPWSTR)
            {
                const std::u16string text = value.val.lpwstr == nullptr ? u"" : value.val.lpwstr;
                m_texts.emplace_back((text.size() + 1) * sizeof(WCHAR));
                std::copy(text.c_str(), text.c_str() + text.size() + 1,
                          reinterpret_cast<WCHAR *>(m_texts.back().data()));
                value.val.lpwstr = reinterpret_cast<WCHAR *>(m_texts.back().data());
            }
            else if (TypeFromPropID(value.propid) == CEVT_BLOB)
            {
                const CEBLOB &blob = value.val.blob;
                m_texts.emplace_back(blob.lpb, blob.lpb + blob.dwCount);
                value.val.blob.lpb = m_texts.back().data();
            }
        }
    }
    RecordView view() const
    {
        return {m_values.data(), static_cast<WORD>(m_values.size())};
    }

  private:
    std::vector<CEPROPVAL> m_values;
    std::vector<std::vector<BYTE>> m_texts;
};

/// What is chosen of a database, before it is read whole.
struct Chosen
{
    CEOID id = 0;
    LONGLONG day = 0;
    std::u16string name; ///< of a contact
    std::u16string identity;
    bool isSeries = false;
    bool wanted = true; ///< chosen itself, not only as a part of what may be
};

std::u16string categoryNames(const RecordView &record)
{
    const CEPROPVAL *const value = record.find(itemCategories);
    CeList<unsigned int> ids;
    if (value == nullptr)
    {
        return {};
    }
    BLOB2Categories(value->val.blob, ids);
    const std::unique_ptr<WCHAR, decltype(&std::free)> text(CategoryAssembler(ids), std::free);
    std::u16string names = text == nullptr ? std::u16string() : std::u16string(text.get());
    while (!names.empty() && (names.back() == u' ' || names.back() == u','))
    {
        names.pop_back(); // of an id that no category has
    }
    return names;
}

class Choice
{
  public:
    explicit Choice(const ExportChoice &choice) : m_choice(choice), m_zones(deviceZoneName())
    {
    }

    bool hasCategory(const RecordView &record) const
    {
        const CEPROPVAL *const value = record.find(itemCategories);
        if (m_choice.categories.empty())
        {
            return true;
        }
        CeList<unsigned int> ids;
        if (value != nullptr)
        {
            BLOB2Categories(value->val.blob, ids);
        }
        for (int n = 0; n < ids.GetCount(); ++n)
        {
            if (m_choice.categories.count(ids.GetAt(n)) != 0)
            {
                return true;
            }
        }
        return false;
    }
    /// Both are local ticks.
    bool touches(LONGLONG first, LONGLONG last) const
    {
        return (!m_choice.firstDay || last >= *m_choice.firstDay) &&
               (!m_choice.lastDay || first < *m_choice.lastDay + ticksPerDay);
    }
    bool takesEvent(const RecordView &record)
    {
        const bool allDay = record.number(appointmentDurationType, 0) == durationTypeAllDay;
        const LONGLONG start = record.ticks(appointmentStart).value_or(0);
        const std::vector<BYTE> blob = record.blob(appointmentRecurrence);
        if (const auto pattern = decodeRecurrence(blob.data(), blob.size()))
        {
            return hasCategory(record) && touches(LONGLONG{pattern->firstDate} * ticksPerMinute,
                                                  LONGLONG{pattern->lastDate} * ticksPerMinute + ticksPerDay - 1);
        }
        const LONGLONG length = std::max<LONGLONG>(0, record.number(appointmentDuration, 0)) * ticksPerMinute;
        const LONGLONG first = allDay ? start : wallOf(start);
        return hasCategory(record) && touches(first, first + std::max<LONGLONG>(0, length - 1));
    }
    bool takesTask(const RecordView &record) const
    {
        const auto due = record.ticks(taskDueDate);
        const auto day = due ? due : record.ticks(taskStartDate);
        const bool anyDay = !m_choice.firstDay && !m_choice.lastDay;
        return hasCategory(record) && (anyDay || (day && touches(*day, *day)));
    }

  private:
    LONGLONG wallOf(LONGLONG utc)
    {
        return std::max<LONGLONG>(0, utc + m_zones.device().offsetMinutes(fileTimeOf(utc)) * ticksPerMinute);
    }

    const ExportChoice &m_choice;
    ZoneBook m_zones;
};

template <typename Take, typename Key>
std::vector<Chosen> choose(Records &records, const Take &take, const Key &key)
{
    std::vector<Chosen> chosen;
    for (CEOID id = records.first(); id != 0; id = records.next())
    {
        const RecordView record = records.read();
        Chosen one;
        one.id = id;
        one.identity = record.text(itemInterchangeId);
        key(record, one);
        if (take(record, one))
        {
            chosen.push_back(std::move(one));
        }
    }
    return chosen;
}

/// One that another program has given it since it was looked at stands.
void giveIdentity(Records &records, Chosen &one)
{
    if (one.identity.empty() && records.seek(one.id))
    {
        one.identity = records.read().text(itemInterchangeId);
        if (one.identity.empty())
        {
            one.identity = newItemIdentity();
            records.giveIdentity(one.id, one.identity);
        }
    }
}

/// All in one transaction. Records that have gone meanwhile are not chosen any more.
void giveIdentities(Records &records, std::vector<Chosen> &chosen)
{
    const auto lacksOne = [](const Chosen &one) { return one.identity.empty(); };
    if (std::any_of(chosen.begin(), chosen.end(), lacksOne))
    {
        BulkWrite writing;
        std::for_each(chosen.begin(), chosen.end(), [&records](Chosen &one) { giveIdentity(records, one); });
        if (!writing.commit())
        {
            throw StoreError(GetLastError());
        }
        chosen.erase(std::remove_if(chosen.begin(), chosen.end(), lacksOne), chosen.end());
    }
    std::sort(chosen.begin(), chosen.end(),
              [](const Chosen &a, const Chosen &b)
              { return std::tie(a.day, a.name, a.identity) < std::tie(b.day, b.name, b.identity); });
}

std::u16string seriesOf(const std::u16string &identity)
{
    return identity.substr(0, identity.find(u'\n'));
}

LONGLONG now()
{
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    return ticksOf(time);
}

class CalendarExport
{
  public:
    explicit CalendarExport(const ExportChoice &choice) : m_choice(choice), m_filter(choice), m_writer(now())
    {
    }

    ExportResult run()
    {
        ResetFullCategoryList();
        if (m_choice.events)
        {
            writeEvents();
        }
        if (m_choice.tasks)
        {
            writeTasks();
        }
        m_result.text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//ZBTools//EN\r\n" + m_writer.zones() + m_items +
                        "END:VCALENDAR\r\n";
        return std::move(m_result);
    }

  private:
    void writeEvents()
    {
        Records records(appointmentsDatabase);
        std::vector<Chosen> chosen = choose(
            records,
            [this](const RecordView &record, Chosen &one)
            {
                one.wanted = m_filter.takesEvent(record);
                return one.wanted || isDay(one);
            },
            [](const RecordView &record, Chosen &one)
            {
                one.day = record.ticks(appointmentStart).value_or(0);
                const std::vector<BYTE> blob = record.blob(appointmentRecurrence);
                one.isSeries = decodeRecurrence(blob.data(), blob.size()).has_value();
            });
        giveIdentities(records, chosen);
        // The days of a series that goes out all go with it: an import of the file takes those away which it lacks.
        std::unordered_map<std::u16string, std::vector<CEOID>> days;
        std::set<std::u16string> series;
        for (const Chosen &one : chosen)
        {
            one.isSeries ? void(series.insert(one.identity)) : void();
        }
        for (const Chosen &one : chosen)
        {
            if (isDayOf(one, series))
            {
                days[seriesOf(one.identity)].push_back(one.id);
            }
        }
        for (const Chosen &one : chosen)
        {
            if (one.wanted && !isDayOf(one, series) && records.seek(one.id))
            {
                writeEvent(records, one, days[one.identity]);
            }
        }
    }
    static bool isDayOf(const Chosen &one, const std::set<std::u16string> &series)
    {
        return isDay(one) && series.count(seriesOf(one.identity)) != 0;
    }
    static bool isDay(const Chosen &one)
    {
        return !one.isSeries && one.identity.find(u'\n') != std::u16string::npos;
    }
    void writeEvent(Records &records, const Chosen &one, const std::vector<CEOID> &days)
    {
        const KeptRecord record(records.read());
        const ExportedRecord event{record.view(), categoryNames(record.view()), {}};
        ++m_result.appointments;
        if (!one.isSeries)
        {
            m_items += m_writer.event(event);
            return;
        }
        std::vector<KeptRecord> kept;
        for (const CEOID day : days)
        {
            if (records.seek(day))
            {
                kept.emplace_back(records.read());
            }
        }
        std::vector<ExportedRecord> parts;
        for (const KeptRecord &day : kept)
        {
            parts.push_back({day.view(), categoryNames(day.view()), {}});
        }
        m_result.appointments += parts.size();
        m_items += m_writer.series(event, parts);
    }

    void writeTasks()
    {
        Records records(tasksDatabase);
        std::vector<Chosen> chosen = choose(
            records, [this](const RecordView &record, Chosen &) { return m_filter.takesTask(record); },
            [](const RecordView &record, Chosen &one)
            { one.day = record.ticks(taskDueDate).value_or(std::numeric_limits<LONGLONG>::max()); });
        giveIdentities(records, chosen);
        std::unordered_map<CEOID, std::u16string> identities;
        for (const Chosen &one : chosen)
        {
            identities.emplace(one.id, one.identity);
        }
        TaskHierarchy links;
        const bool linked = links.Load(TaskHierarchy::FilePath().c_str()) == CELIST_OK;
        for (const Chosen &one : chosen)
        {
            if (!records.seek(one.id))
            {
                continue;
            }
            const RecordView record = records.read();
            ExportedRecord task{record, categoryNames(record), {}};
            _HIERSTRUCT link;
            if (linked && links.Find(one.id, &link))
            {
                const auto parent = identities.find(link.m_oidParent);
                task.parent = parent == identities.end() ? std::u16string() : parent->second;
            }
            ++m_result.tasks;
            m_items += m_writer.task(task);
        }
    }

    const ExportChoice &m_choice;
    Choice m_filter;
    CalendarWriter m_writer;
    std::string m_items;
    ExportResult m_result;
};
} // namespace

ExportResult exportCalendar(const ExportChoice &choice)
{
    return CalendarExport(choice).run();
}

ExportResult exportContacts(const ExportChoice &choice)
{
    ResetFullCategoryList();
    const Choice filter(choice);
    Records records(contactsDatabase);
    std::vector<Chosen> chosen = choose(
        records, [&](const RecordView &record, Chosen &) { return filter.hasCategory(record); },
        [](const RecordView &record, Chosen &one) { one.name = record.text(contactFileAs); });
    giveIdentities(records, chosen);
    ExportResult result;
    for (const Chosen &one : chosen)
    {
        if (records.seek(one.id))
        {
            const RecordView record = records.read();
            std::string picture = readPicture(one.name);
            result.text += contactCard({record, categoryNames(record), std::move(picture)}, now());
            ++result.contacts;
        }
    }
    return result;
}
} // namespace zb::interchange
