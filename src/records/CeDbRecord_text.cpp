// Values of every type as text, as property lists and exports show them.
#include "records/CeDbRecord.h"

#include "core/CeString.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr int decimal = 10;
constexpr int placesOfDoubles = 3;
constexpr int dateBufferSize = 32;
constexpr WORD lastPrintedYear = 9999;
constexpr std::size_t charactersPerByte = 3;

void dateText(const FILETIME &time, CeString &target)
{
    SYSTEMTIME fields{};
    target.Empty();
    if (!FileTimeToSystemTime(&time, &fields) || fields.wYear > lastPrintedYear)
    {
        return;
    }
    WCHAR date[dateBufferSize] = {};
    WCHAR hours[dateBufferSize] = {};
    GetDateFormatW(LOCALE_SYSTEM_DEFAULT, DATE_SHORTDATE, &fields, nullptr, date, dateBufferSize);
    GetTimeFormatW(LOCALE_SYSTEM_DEFAULT, TIME_NOSECONDS, &fields, nullptr, hours, dateBufferSize);
    target = date;
    target += u" ";
    target += hours;
}
} // namespace

bool CeDbRecord::GetIndexVal(int index, CeString &target) const
{
    if (!IsPresent(index))
    {
        target.Empty();
        return false;
    }
    const CEPROPVAL &prop = m_pProps[index];
    switch (TypeFromPropID(prop.propid))
    {
    case CEVT_UI2:
        target.SetULong(prop.val.uiVal, decimal);
        return true;
    case CEVT_UI4:
        target.SetULong(prop.val.ulVal, decimal);
        return true;
    case CEVT_I2:
        target.SetLong(prop.val.iVal, decimal);
        return true;
    case CEVT_I4:
        target.SetLong(prop.val.lVal, decimal);
        return true;
    case CEVT_R8:
        target.SetDouble(prop.val.dblVal, placesOfDoubles);
        return true;
    case CEVT_BOOL:
        target = prop.val.boolVal != 0 ? u"true" : u"false";
        return true;
    case CEVT_LPWSTR:
        target = prop.val.lpwstr != nullptr ? prop.val.lpwstr : u"";
        return true;
    case CEVT_FILETIME:
        dateText(prop.val.filetime, target);
        return true;
    case CEVT_BLOB:
        target = GetBlob(prop.val.blob.dwCount, prop.val.blob.lpb);
        return true;
    default:
        return false;
    }
}

CeString CeDbRecord::GetBlob(DWORD size, const BYTE *bytes)
{
    static constexpr WCHAR digits[] = u"0123456789ABCDEF";
    CeString text;
    if (size == 0 || bytes == nullptr)
    {
        return text;
    }
    // More characters than a string can count are refused there, like any that memory has no room for.
    const std::size_t length = std::min<std::size_t>(size * charactersPerByte, std::numeric_limits<int>::max());
    WCHAR *target = text.GetBufferSetLength(static_cast<int>(length));
    for (const BYTE *byte = bytes; byte != bytes + size; ++byte)
    {
        *target++ = digits[*byte >> 4U];
        *target++ = digits[*byte & 0x0FU];
        *target++ = u' ';
    }
    text.ReleaseBuffer();
    return text;
}
