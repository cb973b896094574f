// What the tests of the record layer share: properties by name, values to write, a database with two sort orders.
#pragma once

#include "platform/kernel.h"
#include "platform/propdb.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace zb::test
{
inline constexpr CEPROPID keyId = MakePropId(0x4001, CEVT_I4);
inline constexpr CEPROPID rankId = MakePropId(0x4002, CEVT_UI2);
inline constexpr CEPROPID textId = MakePropId(0x4003, CEVT_LPWSTR);
inline constexpr CEPROPID blobId = MakePropId(0x4004, CEVT_BLOB);
inline constexpr CEPROPID noteId = MakePropId(0x4005, CEVT_LPWSTR);
inline constexpr CEPROPID timeId = MakePropId(0x4006, CEVT_FILETIME);

inline CEPROPVAL longProp(CEPROPID id, LONG value)
{
    CEPROPVAL prop{};
    prop.propid = id;
    prop.val.lVal = value;
    return prop;
}

inline CEPROPVAL ushortProp(CEPROPID id, USHORT value)
{
    CEPROPVAL prop{};
    prop.propid = id;
    prop.val.uiVal = value;
    return prop;
}

/// The text must outlive the property.
inline CEPROPVAL textProp(CEPROPID id, const WCHAR *value)
{
    CEPROPVAL prop{};
    prop.propid = id;
    prop.val.lpwstr = const_cast<WCHAR *>(value);
    return prop;
}

/// The bytes must outlive the property.
inline CEPROPVAL blobProp(CEPROPID id, std::vector<BYTE> &bytes)
{
    CEPROPVAL prop{};
    prop.propid = id;
    prop.val.blob = CEBLOB{static_cast<DWORD>(bytes.size()), bytes.data()};
    return prop;
}

inline CEBLOB blobOf(std::vector<BYTE> &bytes)
{
    return CEBLOB{static_cast<DWORD>(bytes.size()), bytes.data()};
}

inline BYTE *localBuffer(std::size_t size)
{
    return static_cast<BYTE *>(LocalAlloc(LMEM_FIXED, size));
}

/// The text at an index; "(miss)" when GetIndexVal refuses it.
inline std::string textAt(const CeDbRecord &record, int index)
{
    std::vector<WCHAR> buffer(4096, u'#');
    WCHAR *target = buffer.data();
    return record.GetIndexVal(index, target) ? utf8(target) : "(miss)";
}

/// The bytes at an index; empty when GetIndexVal refuses it.
inline std::vector<BYTE> bytesAt(const CeDbRecord &record, int index)
{
    CEBLOB blob{};
    record.GetIndexVal(index, blob);
    std::vector<BYTE> bytes(blob.lpb, blob.lpb + blob.dwCount);
    LocalFree(blob.lpb);
    return bytes;
}

/// A device with the database "Things": records in order of a long key, a second order by an unsigned short rank,
/// descending.
class RecordsTest : public DeviceTest
{
  protected:
    void SetUp() override
    {
        const SORTORDERSPEC sorts[] = {{keyId, 0}, {rankId, CEDB_SORT_DESCENDING}};
        CeDb maker;
        ASSERT_TRUE(maker.Create(u"Things", 77, 2, sorts));
        m_databaseId = maker.GetDatabaseOID();
    }

    bool openThings(CeDb &db, CEPROPID sort = keyId) const
    {
        return db.Open(u"Things", sort, 0, nullptr);
    }

    /// Writes a record with the platform's own call and returns its id.
    static CEOID write(CeDb &db, const std::vector<CEPROPVAL> &props)
    {
        return CeWriteRecordProps(db.GetHandle(), 0, static_cast<WORD>(props.size()), props.data());
    }

    CEOID m_databaseId = 0;
};
} // namespace zb::test
