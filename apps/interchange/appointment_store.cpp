#include "interchange/appointment_store.h"

#include "interchange/record_values.h"
#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>
#include <cstring>

namespace zb::interchange
{
namespace
{
constexpr WORD loaderProperties = 15;

std::string wordsFor(DWORD code)
{
    switch (code)
    {
    case ERROR_DISK_FULL:
        return "the disk is full";
    case ERROR_ACCESS_DENIED:
        return "the store can't be written";
    default:
        return "the store failed with error " + std::to_string(code);
    }
}
} // namespace

StoreError::StoreError(DWORD code) : std::runtime_error(wordsFor(code)), m_code(code)
{
}

std::vector<Shortening> shortenToRecord(AppointmentItem &item)
{
    constexpr std::size_t limit = largestReadableRecord - roomForChanges;
    std::vector<Shortening> done;
    const std::size_t written = item.notes.size() + item.location.size() + item.subject.size();
    if (written + item.recurrence.size() < limit / 8)
    {
        return done; // fits whatever the encoding
    }
    for (const auto &[text, what] :
         {std::pair(&item.notes, "notes"), std::pair(&item.location, "location"), std::pair(&item.subject, "subject")})
    {
        if (cutToSize(*text, limit, [&item] { return readSize(encodeAppointment(item), loaderProperties); }))
        {
            done.push_back({what, text->size()});
        }
    }
    return done;
}

AppointmentStore::AppointmentStore()
{
    CEOID id = 0;
    m_database = CeOpenDatabase(&id, appointmentsDatabase, itemInterchangeId, 0, nullptr);
    if (m_database == INVALID_HANDLE_VALUE)
    {
        throw StoreError(GetLastError());
    }
}

AppointmentStore::~AppointmentStore()
{
    LocalFree(m_buffer);
    CloseHandle(m_database);
}

AppointmentStore::Outcome AppointmentStore::store(const AppointmentItem &item, const ExactRecord *exact)
{
    const CEOID id = findIdentity(m_database, item.interchangeId);
    m_properties = encodeAppointment(item);
    if (id != 0 && !item.categories.empty())
    {
        m_properties.set(itemCategories, withStoredCategories(item.categories));
    }
    if (exact != nullptr)
    {
        exact->applyTo(m_properties);
    }
    m_wasSeries = false;
    if (id != 0 && isSame(m_properties))
    {
        return Outcome::Unchanged;
    }
    if (CeWriteRecordProps(m_database, id, m_properties.count(), m_properties.values()) == 0)
    {
        throw StoreError(GetLastError());
    }
    return id == 0 ? Outcome::Added : Outcome::Updated;
}

/// The bits together with those of the record at the position: what its owner added stays.
std::vector<BYTE> AppointmentStore::withStoredCategories(std::vector<BYTE> bits)
{
    WORD count = 0;
    const CEPROPVAL *const values = read(count);
    const CEPROPVAL *const stored = valueOf(values, count, itemCategories);
    if (stored != nullptr)
    {
        const CEBLOB &blob = stored->val.blob;
        bits.resize(std::max<std::size_t>(bits.size(), blob.dwCount));
        for (DWORD n = 0; n < blob.dwCount; ++n)
        {
            bits[n] = static_cast<BYTE>(bits[n] | blob.lpb[n]);
        }
    }
    return bits;
}

/// All properties of the record at the position.
const CEPROPVAL *AppointmentStore::read(WORD &count)
{
    if (CeReadRecordProps(m_database, CEDB_ALLOWREALLOC, &count, nullptr, &m_buffer, &m_bufferSize) == 0)
    {
        throw StoreError(GetLastError());
    }
    return reinterpret_cast<const CEPROPVAL *>(m_buffer);
}

bool AppointmentStore::isLeftover(const CEPROPVAL *values, WORD count, const Leftovers &leftovers) const
{
    const CEPROPVAL *const identity = valueOf(values, count, itemInterchangeId);
    const CEPROPVAL *const flag = valueOf(values, count, appointmentRecurringFlag);
    const CEPROPVAL *const start = valueOf(values, count, appointmentStart);
    const std::u16string name = identity->val.lpwstr;
    if (leftovers.kept.count(name) != 0)
    {
        return false;
    }
    const bool ours = flag != nullptr && flag->val.iVal != 0;
    const bool past = start != nullptr && ticksOf(start->val.filetime) < leftovers.keepBefore;
    return leftovers.covered.count(name) != 0 || (ours && !past);
}

std::size_t AppointmentStore::removeLeftovers(const Leftovers &leftovers)
{
    const std::u16string prefix = leftovers.series + u'\n';
    std::vector<CEOID> gone;
    std::u16string text = prefix;
    CEPROPVAL key{};
    key.propid = itemInterchangeId;
    key.val.lpwstr = text.data();
    // The days of a series lie together behind the series itself.
    CEOID id = CeSeekDatabase(m_database, CEDB_SEEK_VALUEGREATER, reinterpret_cast<DWORD_PTR>(&key), nullptr);
    while (id != 0)
    {
        WORD count = 0;
        const CEPROPVAL *const values = read(count);
        const CEPROPVAL *const identity = valueOf(values, count, itemInterchangeId);
        if (identity == nullptr || std::u16string_view(identity->val.lpwstr).substr(0, prefix.size()) != prefix)
        {
            break;
        }
        if (isLeftover(values, count, leftovers))
        {
            gone.push_back(id);
        }
        id = CeSeekDatabase(m_database, CEDB_SEEK_CURRENT, 1, nullptr);
    }
    for (const CEOID each : gone)
    {
        if (CeDeleteRecord(m_database, each) == FALSE)
        {
            throw StoreError(GetLastError());
        }
    }
    return gone.size();
}

/// Whether the record at the position says just what `properties` would write.
bool AppointmentStore::isSame(const RecordProperties &properties)
{
    WORD count = 0;
    const auto *const stored = read(count);
    const auto *const flag = valueOf(stored, count, appointmentRecurringFlag);
    m_wasSeries = flag != nullptr && flag->val.iVal != 0;
    return saysAlready(stored, count, properties);
}
} // namespace zb::interchange
