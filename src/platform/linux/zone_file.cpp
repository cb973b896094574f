#include "platform/linux/zone_file.h"

#include <algorithm>

namespace zb::internal
{
namespace
{
/// Offsets beyond this are no local time that any place has kept.
constexpr std::int64_t largestOffset = 26 * 3600;

/// Reads numbers from the front; one that does not fit marks the whole as damaged and reads as 0.
class Bytes
{
  public:
    explicit Bytes(std::string_view bytes) : m_rest(bytes)
    {
    }

    std::string_view take(std::size_t count)
    {
        if (count > m_rest.size())
        {
            m_damaged = true;
            m_rest = {};
            return {};
        }
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return taken;
    }

    std::int64_t number(std::size_t size)
    {
        const std::string_view bytes = take(size);
        std::uint64_t value = 0;
        for (const char byte : bytes)
        {
            value = (value << 8U) | static_cast<unsigned char>(byte);
        }
        return size == 4 ? static_cast<std::int32_t>(static_cast<std::uint32_t>(value))
                         : static_cast<std::int64_t>(value);
    }

    unsigned byte()
    {
        const std::string_view one = take(1);
        return one.empty() ? 0 : static_cast<unsigned char>(one.front());
    }

    std::string_view rest() const
    {
        return m_rest;
    }
    bool damaged() const
    {
        return m_damaged;
    }

  private:
    std::string_view m_rest;
    bool m_damaged = false;
};

struct Head
{
    char version = 0;
    std::size_t utcMarks = 0;
    std::size_t standardMarks = 0;
    std::size_t leaps = 0;
    std::size_t changes = 0;
    std::size_t kinds = 0;
    std::size_t characters = 0;

    std::size_t blockSize(std::size_t timeSize) const
    {
        return changes * (timeSize + 1) + kinds * 6 + characters + leaps * (timeSize + 4) + standardMarks + utcMarks;
    }
};

std::optional<Head> readHead(Bytes &bytes)
{
    if (bytes.take(4) != "TZif")
    {
        return std::nullopt;
    }
    Head head;
    head.version = static_cast<char>(bytes.byte());
    bytes.take(15);
    for (std::size_t *count :
         {&head.utcMarks, &head.standardMarks, &head.leaps, &head.changes, &head.kinds, &head.characters})
    {
        *count = static_cast<std::uint32_t>(bytes.number(4));
    }
    return bytes.damaged() ? std::nullopt : std::optional(head);
}

struct Leap
{
    std::int64_t time;
    std::int64_t correction;
};

std::vector<ZoneFile::Change> readChanges(Bytes &bytes, std::size_t count, std::size_t timeSize)
{
    std::vector<ZoneFile::Change> changes(count);
    for (ZoneFile::Change &change : changes)
    {
        change.time = bytes.number(timeSize);
    }
    for (ZoneFile::Change &change : changes)
    {
        change.kind = bytes.byte();
    }
    return changes;
}

/// False for offsets and names that can't be.
bool readKinds(Bytes &bytes, const Head &head, std::vector<ZoneFile::Kind> &kinds)
{
    std::vector<std::size_t> names;
    for (std::size_t i = 0; i < head.kinds; ++i)
    {
        const std::int64_t offset = bytes.number(4);
        const bool daylight = bytes.byte() != 0;
        names.push_back(bytes.byte());
        if (offset < -largestOffset || offset > largestOffset)
        {
            return false;
        }
        kinds.push_back({static_cast<int>(offset), daylight, {}});
    }
    const std::string_view characters = bytes.take(head.characters);
    for (std::size_t i = 0; i < kinds.size(); ++i)
    {
        const std::size_t end = names[i] < characters.size() ? characters.find('\0', names[i]) : std::string_view::npos;
        if (end == std::string_view::npos)
        {
            return false;
        }
        kinds[i].name = characters.substr(names[i], end - names[i]);
    }
    return true;
}

/// Files that count leap seconds hold moments which are later than civil ones by those passed.
void takeLeapsOut(Bytes &bytes, std::size_t count, std::size_t timeSize, std::vector<ZoneFile::Change> &changes)
{
    std::vector<Leap> leaps(count);
    for (Leap &leap : leaps)
    {
        leap.time = bytes.number(timeSize);
        leap.correction = bytes.number(4);
    }
    for (ZoneFile::Change &change : changes)
    {
        const auto behind =
            std::find_if(leaps.rbegin(), leaps.rend(), [&](const Leap &leap) { return leap.time <= change.time; });
        const std::int64_t correction = behind == leaps.rend() ? 0 : behind->correction;
        std::int64_t civil = 0;
        change.time = __builtin_sub_overflow(change.time, correction, &civil) ? change.time : civil;
    }
}

bool isConsistent(const ZoneFile &file)
{
    const auto notAscending = [](const ZoneFile::Change &a, const ZoneFile::Change &b) { return a.time >= b.time; };
    const auto unknownKind = [&](const ZoneFile::Change &change) { return change.kind >= file.kinds.size(); };
    return !file.kinds.empty() &&
           std::adjacent_find(file.changes.begin(), file.changes.end(), notAscending) == file.changes.end() &&
           std::none_of(file.changes.begin(), file.changes.end(), unknownKind);
}

std::optional<ZoneFile> readBlock(Bytes &bytes, const Head &head, std::size_t timeSize)
{
    // Before anything is made as large as the file says.
    if (head.blockSize(timeSize) > bytes.rest().size())
    {
        return std::nullopt;
    }
    ZoneFile file;
    file.changes = readChanges(bytes, head.changes, timeSize);
    if (!readKinds(bytes, head, file.kinds))
    {
        return std::nullopt;
    }
    takeLeapsOut(bytes, head.leaps, timeSize, file.changes);
    bytes.take(head.standardMarks + head.utcMarks);
    return isConsistent(file) && !bytes.damaged() ? std::optional(std::move(file)) : std::nullopt;
}

/// The line at the end; empty when there is none.
std::string_view readRule(std::string_view rest)
{
    if (rest.empty() || rest.front() != '\n')
    {
        return {};
    }
    const std::size_t end = rest.find('\n', 1);
    return end == std::string_view::npos ? std::string_view() : rest.substr(1, end - 1);
}
} // namespace

std::optional<ZoneFile> parseZoneFile(std::string_view bytes)
{
    Bytes reader(bytes);
    std::optional<Head> head = readHead(reader);
    if (!head)
    {
        return std::nullopt;
    }
    if (head->version < '2')
    {
        return readBlock(reader, *head, 4);
    }
    reader.take(head->blockSize(4));
    head = readHead(reader);
    std::optional<ZoneFile> file = head ? readBlock(reader, *head, 8) : std::nullopt;
    if (file)
    {
        file->rule = readRule(reader.rest());
    }
    return file;
}
} // namespace zb::internal
