#include "platform/linux/pim_category_names.h"

#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

namespace zb::internal
{
namespace
{
constexpr CEPROPID activeFlag = MakePropId(0x4003, CEVT_I4);
constexpr int mostCategories = 8192;
constexpr std::size_t bytesOfWord = 4;

using Names = std::map<int, std::u16string>;

void readCategory(HANDLE database, BYTE *&buffer, DWORD &size, Names &names)
{
    constexpr std::array<CEPROPID, 3> ids{categoryName, categoryId, activeFlag};
    WORD count = ids.size();
    if (CeReadRecordProps(database, CEDB_ALLOWREALLOC, &count, ids.data(), &buffer, &size) == 0)
    {
        return;
    }
    const auto *const values = reinterpret_cast<const CEPROPVAL *>(buffer);
    const bool active = (values[2].wFlags & CEDB_PROPNOTFOUND) != 0 || values[2].val.lVal != 0;
    const int id = values[1].val.iVal;
    if (active && (values[0].wFlags & CEDB_PROPNOTFOUND) == 0 && id >= 0 && id < mostCategories)
    {
        names.emplace(id, values[0].val.lpwstr); // of several with one id the first counts
    }
}

Names readNames()
{
    Names names;
    CEOID oid = 0;
    const HANDLE database = CeOpenDatabase(&oid, categoriesDatabase, 0, 0, nullptr);
    if (database == INVALID_HANDLE_VALUE)
    {
        return names;
    }
    BYTE *buffer = nullptr;
    DWORD size = 0;
    for (CEOID id = CeSeekDatabase(database, CEDB_SEEK_BEGINNING, 0, nullptr); id != 0;
         id = CeSeekDatabase(database, CEDB_SEEK_CURRENT, 1, nullptr))
    {
        readCategory(database, buffer, size, names);
    }
    LocalFree(buffer);
    CloseHandle(database);
    return names;
}

bool isSet(const std::vector<BYTE> &bits, int id)
{
    const auto at = static_cast<std::size_t>(id / 8);
    return at < bits.size() && (bits[at] >> static_cast<unsigned>(id % 8) & 1U) != 0;
}

void setBit(std::vector<BYTE> &bits, int id)
{
    const auto bit = static_cast<std::size_t>(id);
    bits.resize(std::max(bits.size(), (bit / 32 + 1) * bytesOfWord));
    bits[bit / 8] = static_cast<BYTE>(bits[bit / 8] | (1U << bit % 8));
}

std::u16string trimmed(std::u16string_view text)
{
    const std::size_t first = text.find_first_not_of(u' ');
    const std::size_t last = text.find_last_not_of(u' ');
    return first == std::u16string_view::npos ? std::u16string() : std::u16string(text.substr(first, last - first + 1));
}

std::vector<std::u16string> partsOf(std::u16string_view names)
{
    std::vector<std::u16string> parts;
    for (std::size_t from = 0; from <= names.size();)
    {
        const std::size_t comma = std::min(names.find(u',', from), names.size());
        parts.push_back(trimmed(names.substr(from, comma - from)));
        from = comma + 1;
    }
    return parts;
}
} // namespace

std::u16string categoryNamesOf(const std::vector<BYTE> &bits)
{
    std::u16string text;
    if (std::all_of(bits.begin(), bits.end(), [](BYTE each) { return each == 0; }))
    {
        return text;
    }
    for (const auto &[id, name] : readNames())
    {
        if (isSet(bits, id))
        {
            text += text.empty() ? u"" : u", ";
            text += name;
        }
    }
    return text;
}

std::vector<BYTE> categoryBitsOf(const std::u16string &names, const std::vector<BYTE> &before)
{
    const Names known = readNames();
    const std::vector<std::u16string> parts = partsOf(names);
    std::vector<BYTE> bits;
    for (int id = 0; id < static_cast<int>(before.size() * 8); ++id)
    {
        if (isSet(before, id) && known.count(id) == 0)
        {
            setBit(bits, id);
        }
    }
    for (const auto &[id, name] : known)
    {
        const bool named = std::any_of(parts.begin(), parts.end(),
                                       [&name = name](const std::u16string &part)
                                       { return lstrcmpW(part.c_str(), name.c_str()) == 0; });
        if (named && !name.empty())
        {
            setBit(bits, id);
        }
    }
    return bits;
}
} // namespace zb::internal
