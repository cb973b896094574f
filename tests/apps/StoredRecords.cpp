#include "apps/StoredRecords.h"

#include "platform/kernel.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

namespace zb::test
{
namespace
{
std::string valueOf(const CEPROPVAL &property)
{
    switch (TypeFromPropID(property.propid))
    {
    case CEVT_I2:
        return std::to_string(property.val.iVal);
    case CEVT_I4:
        return std::to_string(property.val.lVal);
    case CEVT_FILETIME:
        return describe(property.val.filetime);
    case CEVT_LPWSTR:
        return utf8(property.val.lpwstr);
    case CEVT_BLOB:
        return {reinterpret_cast<const char *>(property.val.blob.lpb), property.val.blob.dwCount};
    default:
        return "?";
    }
}
} // namespace

std::vector<StoredRecord> storedRecords(const WCHAR *database)
{
    std::vector<StoredRecord> records;
    CEOID id = 0;
    const HANDLE handle = CeOpenDatabase(&id, database, 0, CEDB_AUTOINCREMENT, nullptr);
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    BYTE *buffer = nullptr;
    DWORD size = 0;
    for (;;)
    {
        WORD count = 0;
        StoredRecord record;
        record.id = CeReadRecordProps(handle, CEDB_ALLOWREALLOC, &count, nullptr, &buffer, &size);
        if (record.id == 0)
        {
            break;
        }
        const auto *const properties = reinterpret_cast<const CEPROPVAL *>(buffer);
        for (WORD n = 0; n < count; ++n)
        {
            record.values[properties[n].propid] = valueOf(properties[n]);
        }
        records.push_back(std::move(record));
    }
    LocalFree(buffer);
    CloseHandle(handle);
    return records;
}

StoredRecord recordWithSubject(const std::string &subject)
{
    StoredRecord found;
    std::size_t count = 0;
    for (StoredRecord &record : storedRecords())
    {
        if (record.value(itemSubject) == subject)
        {
            found = std::move(record);
            ++count;
        }
    }
    EXPECT_EQ(count, 1U) << subject;
    return count == 1 ? found : StoredRecord();
}
} // namespace zb::test
