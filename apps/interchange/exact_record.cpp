#include "interchange/exact_record.h"

#include "interchange/base64.h"
#include "interchange/record_values.h"
#include "platform/locale.h"
#include "platform/pim_recurrence.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zb::interchange
{
namespace
{
constexpr std::size_t zoneBytes = 48;
constexpr std::size_t fingerprintDigits = 32;
constexpr DWORD removedSize = 0xFFFFFFFF;
constexpr std::size_t mostBytes = 0x20000;
/// The handle of the notification that is set for a record.
constexpr CEPROPID notificationHandle = MakePropId(0x0002, CEVT_I4);
constexpr std::array ownOfDevice = {itemInterchangeId, itemCategories, notificationHandle, contactPictureStamp};

bool isOwnOfDevice(CEPROPID id)
{
    return std::find(ownOfDevice.begin(), ownOfDevice.end(), id) != ownOfDevice.end();
}

std::size_t scalarSize(WORD type)
{
    switch (type)
    {
    case CEVT_I2:
    case CEVT_UI2:
    case CEVT_BOOL:
        return 2;
    case CEVT_I4:
    case CEVT_UI4:
        return 4;
    case CEVT_FILETIME:
    case CEVT_R8:
        return 8;
    default:
        return 0;
    }
}

template <typename Value>
std::vector<BYTE> bytesOfNumber(Value value, std::size_t size)
{
    std::vector<BYTE> bytes(size);
    for (std::size_t n = 0; n < size; ++n)
    {
        bytes[n] = static_cast<BYTE>(value >> 8 * n);
    }
    return bytes;
}

std::uint64_t numberIn(const BYTE *bytes, std::size_t size)
{
    std::uint64_t value = 0;
    for (std::size_t n = size; n > 0; --n)
    {
        value = value << 8U | bytes[n - 1];
    }
    return value;
}

std::vector<BYTE> bytesOf(const CEPROPVAL &value)
{
    switch (TypeFromPropID(value.propid))
    {
    case CEVT_LPWSTR:
    {
        std::vector<BYTE> bytes;
        for (const WCHAR *at = value.val.lpwstr; at != nullptr && *at != 0; ++at)
        {
            bytes.push_back(static_cast<BYTE>(*at));
            bytes.push_back(static_cast<BYTE>(*at >> 8U));
        }
        return bytes;
    }
    case CEVT_BLOB:
        return {value.val.blob.lpb, value.val.blob.lpb + value.val.blob.dwCount};
    case CEVT_FILETIME:
        return bytesOfNumber(std::uint64_t{value.val.filetime.dwHighDateTime} << 32U |
                                 value.val.filetime.dwLowDateTime,
                             8);
    case CEVT_I2:
        return bytesOfNumber(static_cast<std::uint16_t>(value.val.iVal), 2);
    default:
        return bytesOfNumber(static_cast<std::uint32_t>(value.val.lVal), 4);
    }
}

std::u16string textIn(const std::vector<BYTE> &bytes)
{
    std::u16string text;
    for (std::size_t n = 0; n + 1 < bytes.size(); n += 2)
    {
        text.push_back(static_cast<char16_t>(numberIn(&bytes[n], 2)));
    }
    return text;
}

/// Types that record properties here are made of.
bool isKept(CEPROPID id)
{
    const WORD type = TypeFromPropID(id);
    const bool known = type == CEVT_I2 || type == CEVT_I4 || type == CEVT_FILETIME || type == CEVT_LPWSTR ||
                       type == CEVT_BLOB;
    return known && !isOwnOfDevice(id);
}
} // namespace

std::optional<ExactRecord> ExactRecord::between(const CEPROPVAL *stored, WORD count, const RecordProperties &told)
{
    ExactRecord record;
    const CEPROPVAL *const values = told.values();
    for (const CEPROPVAL *value = values; value != values + told.count(); ++value)
    {
        const bool set = (value->wFlags & CEDB_PROPDELETE) == 0;
        if (set && isKept(value->propid) && valueOf(stored, count, value->propid) == nullptr)
        {
            record.m_entries.push_back({value->propid, true, {}});
        }
    }
    for (const CEPROPVAL *value = stored; value != stored + count; ++value)
    {
        if (!isKept(value->propid))
        {
            continue;
        }
        const CEPROPVAL *const same = valueOf(values, told.count(), value->propid);
        std::vector<BYTE> bytes = bytesOf(*value);
        if (same == nullptr || (same->wFlags & CEDB_PROPDELETE) != 0 || bytesOf(*same) != bytes)
        {
            record.m_entries.push_back({value->propid, false, std::move(bytes)});
        }
    }
    return record.m_entries.empty() ? std::nullopt : std::optional(std::move(record));
}

std::string ExactRecord::value(const Fingerprint &said) const
{
    std::vector<BYTE> packed;
    const auto add = [&packed](const std::vector<BYTE> &bytes)
    { packed.insert(packed.end(), bytes.begin(), bytes.end()); };
    for (const Entry &entry : m_entries)
    {
        add(bytesOfNumber(entry.id, 4));
        add(bytesOfNumber(entry.removed ? removedSize : static_cast<DWORD>(entry.bytes.size()), 4));
        add(entry.bytes);
    }
    const std::string_view bytes(reinterpret_cast<const char *>(packed.data()), packed.size());
    return said.hex() + "." + base64(deviceZoneName()) + "." + base64(bytes);
}

bool ExactRecord::mayBeRead(const Entry &entry)
{
    const WORD type = TypeFromPropID(entry.id);
    const std::size_t scalar = scalarSize(type);
    if (!isKept(entry.id) || entry.removed)
    {
        return isKept(entry.id);
    }
    if (entry.id == appointmentRecurrence)
    {
        return decodeRecurrence(entry.bytes.data(), entry.bytes.size()).has_value();
    }
    if (entry.id == appointmentZone)
    {
        return entry.bytes.size() == zoneBytes;
    }
    if (type == CEVT_LPWSTR)
    {
        return entry.bytes.size() % 2 == 0 && textIn(entry.bytes).find(u'\0') == std::u16string::npos;
    }
    return type == CEVT_BLOB || entry.bytes.size() == scalar;
}

std::optional<ExactRecord> ExactRecord::read(std::string_view value, const Fingerprint &said)
{
    return value.substr(0, fingerprintDigits) == said.hex() ? readUnchecked(value) : std::nullopt;
}

std::optional<ExactRecord> ExactRecord::readUnchecked(std::string_view value)
{
    const std::size_t zoneEnd = value.find('.', fingerprintDigits + 1);
    if (zoneEnd == std::string_view::npos || value[fingerprintDigits] != '.')
    {
        return std::nullopt;
    }
    const std::string_view zoneDigits = value.substr(fingerprintDigits + 1, zoneEnd - fingerprintDigits - 1);
    const std::optional<std::string> zone = wholeBase64(zoneDigits);
    const std::optional<std::string> packed = wholeBase64(value.substr(zoneEnd + 1));
    if (!zone || !packed || packed->size() > mostBytes)
    {
        return std::nullopt;
    }
    ExactRecord record;
    const auto *const bytes = reinterpret_cast<const BYTE *>(packed->data());
    for (std::size_t at = 0; at < packed->size();)
    {
        if (packed->size() - at < 8)
        {
            return std::nullopt;
        }
        Entry entry;
        entry.id = static_cast<CEPROPID>(numberIn(bytes + at, 4));
        const auto size = static_cast<DWORD>(numberIn(bytes + at + 4, 4));
        at += 8;
        entry.removed = size == removedSize;
        if (!entry.removed && size > packed->size() - at)
        {
            return std::nullopt;
        }
        entry.bytes.assign(bytes + at, bytes + at + (entry.removed ? 0 : size));
        at += entry.bytes.size();
        if (!mayBeRead(entry))
        {
            return std::nullopt;
        }
        record.m_entries.push_back(std::move(entry));
    }
    const bool byDevice = record.has(appointmentRecurrence) && !record.has(appointmentZone);
    return byDevice && *zone != deviceZoneName() ? std::nullopt : std::optional(std::move(record));
}

void ExactRecord::applyTo(RecordProperties &properties) const
{
    for (const Entry &entry : m_entries)
    {
        switch (entry.removed ? WORD{0} : TypeFromPropID(entry.id))
        {
        case 0:
            properties.remove(entry.id);
            break;
        case CEVT_LPWSTR:
            properties.set(entry.id, textIn(entry.bytes));
            break;
        case CEVT_BLOB:
            properties.set(entry.id, entry.bytes);
            break;
        case CEVT_FILETIME:
            properties.set(entry.id, FILETIME{static_cast<DWORD>(numberIn(entry.bytes.data(), 4)),
                                              static_cast<DWORD>(numberIn(entry.bytes.data() + 4, 4))});
            break;
        case CEVT_I2:
            properties.set(entry.id, static_cast<SHORT>(numberIn(entry.bytes.data(), 2)));
            break;
        default:
            properties.set(entry.id, static_cast<LONG>(numberIn(entry.bytes.data(), 4)));
            break;
        }
    }
}

const ExactRecord::Entry *ExactRecord::find(CEPROPID id) const
{
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(), [id](const Entry &entry) { return entry.id == id; });
    return found == m_entries.end() || found->removed ? nullptr : &*found;
}

std::vector<BYTE> ExactRecord::blob(CEPROPID id) const
{
    const Entry *const entry = find(id);
    return entry == nullptr ? std::vector<BYTE>() : entry->bytes;
}

std::u16string ExactRecord::text(CEPROPID id) const
{
    return textIn(blob(id));
}

bool ExactRecord::has(CEPROPID id) const
{
    return find(id) != nullptr;
}

std::string_view exactRecordLine(const CalendarComponent &component)
{
    for (const PropertyLine &line : component.more)
    {
        if (line.name == exactRecordName && !line.cut)
        {
            return line.value;
        }
    }
    return {};
}

std::string_view exactRecordLine(const Card &card)
{
    const CardProperty *const line = card.find(exactRecordName);
    return line == nullptr || line->cut ? std::string_view() : std::string_view(line->value);
}

std::optional<ExactRecord> exactRecordOf(const CalendarComponent &component)
{
    const std::string_view line = exactRecordLine(component);
    return line.empty() ? std::nullopt : ExactRecord::read(line, fingerprint(saidBy(component)));
}

std::optional<ExactRecord> exactRecordOf(const Card &card)
{
    const std::string_view line = exactRecordLine(card);
    return line.empty() ? std::nullopt : ExactRecord::read(line, saidBy(card));
}

std::string saidBy(const CalendarComponent &component)
{
    std::string said = component.text;
    for (const RepetitionLine &line : component.repetition)
    {
        said.append(line.parameters).append(1, ':').append(line.value).append(1, '\n');
    }
    for (const PropertyLine &line : component.more)
    {
        if (line.name != exactRecordName)
        {
            said.append(line.name).append(line.parameters).append(1, ':').append(line.value).append(1, '\n');
        }
    }
    said.append(component.hasAlarm ? "alarm" : "").append(component.alarmParameters);
    return said.append(1, ':').append(component.alarmTrigger).append(1, '\n');
}

Fingerprint saidBy(const Card &card)
{
    std::string text;
    for (const CardProperty &property : card.properties)
    {
        if (property.name == "REV" || property.name == "PRODID" || property.name == exactRecordName)
        {
            continue;
        }
        text.append(property.group).append(1, '.').append(property.name);
        for (const CardParameter &parameter : property.parameters)
        {
            text.append(1, ';').append(parameter.name);
            for (const std::string &value : parameter.values)
            {
                text.append(1, '=').append(value);
            }
        }
        text.append(1, ':').append(property.value).append(1, '\n');
    }
    for (const Card &agent : card.agents)
    {
        text.append(saidBy(agent).hex()).append(1, '\n');
    }
    return fingerprint(text);
}
} // namespace zb::interchange
