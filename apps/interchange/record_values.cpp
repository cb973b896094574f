#include "interchange/record_values.h"

#include "platform/text.h"

#include <algorithm>
#include <cstring>

namespace zb::interchange
{
namespace
{
std::size_t padded(std::size_t bytes)
{
    return bytes + bytes % 2;
}

bool sameText(const CEPROPVAL &a, const CEPROPVAL &b)
{
    static const WCHAR empty[] = u"";
    const WCHAR *const left = a.val.lpwstr != nullptr ? a.val.lpwstr : empty;
    const WCHAR *const right = b.val.lpwstr != nullptr ? b.val.lpwstr : empty;
    return wcscmp(left, right) == 0;
}

bool sameValue(const CEPROPVAL &a, const CEPROPVAL &b)
{
    switch (TypeFromPropID(a.propid))
    {
    case CEVT_I2:
    case CEVT_UI2:
        return a.val.iVal == b.val.iVal;
    case CEVT_I4:
    case CEVT_UI4:
        return a.val.lVal == b.val.lVal;
    case CEVT_BOOL:
        return (a.val.boolVal != FALSE) == (b.val.boolVal != FALSE);
    case CEVT_R8:
        return a.val.dblVal == b.val.dblVal;
    case CEVT_FILETIME:
        return a.val.filetime.dwLowDateTime == b.val.filetime.dwLowDateTime &&
               a.val.filetime.dwHighDateTime == b.val.filetime.dwHighDateTime;
    case CEVT_LPWSTR:
        return sameText(a, b);
    case CEVT_BLOB:
        return a.val.blob.dwCount == b.val.blob.dwCount &&
               (a.val.blob.dwCount == 0 || std::memcmp(a.val.blob.lpb, b.val.blob.lpb, a.val.blob.dwCount) == 0);
    default:
        return false;
    }
}
} // namespace

std::size_t readSize(const RecordProperties &properties, WORD loaderProperties)
{
    std::size_t size = loaderProperties * sizeof(CEPROPVAL);
    for (WORD n = 0; n < properties.count(); ++n)
    {
        const CEPROPVAL &value = properties.values()[n];
        const bool removed = (value.wFlags & CEDB_PROPDELETE) != 0;
        const WORD type = TypeFromPropID(value.propid);
        if (!removed && type == CEVT_LPWSTR && value.val.lpwstr != nullptr)
        {
            size += (wcslen(value.val.lpwstr) + 1) * sizeof(WCHAR);
        }
        else if (!removed && type == CEVT_BLOB)
        {
            size += padded(value.val.blob.dwCount);
        }
    }
    return size;
}

void dropFromEnd(std::u16string &text, std::size_t count)
{
    text.resize(text.size() - std::min(text.size(), count));
    if (!text.empty() && text.back() >= 0xD800 && text.back() < 0xDC00)
    {
        text.pop_back();
    }
}

const CEPROPVAL *valueOf(const CEPROPVAL *values, WORD count, CEPROPID id)
{
    const auto *const found =
        std::find_if(values, values + count, [&](const CEPROPVAL &value) { return value.propid == id; });
    return found == values + count ? nullptr : found;
}

bool saysAlready(const CEPROPVAL *stored, WORD count, const RecordProperties &properties)
{
    const CEPROPVAL *const wanted = properties.values();
    return std::all_of(wanted, wanted + properties.count(),
                       [&](const CEPROPVAL &value)
                       {
                           const CEPROPVAL *const found = valueOf(stored, count, value.propid);
                           const bool removed = (value.wFlags & CEDB_PROPDELETE) != 0;
                           return removed ? found == nullptr : found != nullptr && sameValue(value, *found);
                       });
}

CEOID findIdentity(HANDLE database, const std::u16string &identity)
{
    CEPROPVAL key{};
    key.propid = itemInterchangeId;
    std::u16string text = identity;
    key.val.lpwstr = text.data();
    return CeSeekDatabase(database, CEDB_SEEK_VALUEFIRSTEQUAL, reinterpret_cast<DWORD_PTR>(&key), nullptr);
}

bool cutToSize(std::u16string &text, std::size_t limit, const std::function<std::size_t()> &size)
{
    const std::size_t before = text.size();
    std::size_t now = size();
    while (now > limit && !text.empty())
    {
        dropFromEnd(text, (now - limit + 1) / 2);
        now = size();
    }
    return text.size() != before;
}
} // namespace zb::interchange
