// Short ways to write, find and read records of property databases.
#pragma once

#include "platform/kernel.h"
#include "platform/propdb.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace zb::test
{
inline CEPROPVAL shortValue(CEPROPID id, SHORT value)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.val.iVal = value;
    return property;
}

inline CEPROPVAL longValue(CEPROPID id, LONG value)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.val.lVal = value;
    return property;
}

inline CEPROPVAL unsignedValue(CEPROPID id, ULONG value)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.val.ulVal = value;
    return property;
}

inline CEPROPVAL doubleValue(CEPROPID id, double value)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.val.dblVal = value;
    return property;
}

inline CEPROPVAL timeValue(CEPROPID id, ULONGLONG ticks)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.val.filetime = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32U)};
    return property;
}

/// Points into `text`, which has to outlive the property.
inline CEPROPVAL textValue(CEPROPID id, const std::u16string &text)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.val.lpwstr = const_cast<WCHAR *>(text.c_str());
    return property;
}

inline CEPROPVAL blobValue(CEPROPID id, const std::vector<BYTE> &bytes)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.val.blob = {static_cast<DWORD>(bytes.size()), const_cast<BYTE *>(bytes.data())};
    return property;
}

inline CEPROPVAL removal(CEPROPID id)
{
    CEPROPVAL property = {};
    property.propid = id;
    property.wFlags = CEDB_PROPDELETE;
    return property;
}

/// An open database that closes itself.
class OpenedDatabase
{
  public:
    explicit OpenedDatabase(CEOID oid, CEPROPID sort = 0, DWORD flags = 0, HWND notify = nullptr)
        : m_oid(oid), m_handle(CeOpenDatabase(&m_oid, nullptr, sort, flags, notify))
    {
    }
    ~OpenedDatabase()
    {
        close();
    }
    OpenedDatabase(OpenedDatabase &&other) noexcept
        : m_oid(other.m_oid), m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE))
    {
    }
    OpenedDatabase(const OpenedDatabase &) = delete;
    OpenedDatabase &operator=(const OpenedDatabase &) = delete;
    OpenedDatabase &operator=(OpenedDatabase &&) = delete;

    void close()
    {
        if (m_handle != INVALID_HANDLE_VALUE)
        {
            CloseHandle(std::exchange(m_handle, INVALID_HANDLE_VALUE));
        }
    }
    HANDLE handle() const
    {
        return m_handle;
    }
    bool isOpen() const
    {
        return m_handle != INVALID_HANDLE_VALUE;
    }

    CEOID write(CEOID oid, const std::vector<CEPROPVAL> &properties) const
    {
        return CeWriteRecordProps(m_handle, oid, static_cast<WORD>(properties.size()), properties.data());
    }
    CEOID add(const std::vector<CEPROPVAL> &properties) const
    {
        return write(0, properties);
    }
    bool remove(CEOID oid) const
    {
        return CeDeleteRecord(m_handle, oid) != FALSE;
    }
    CEOID seek(DWORD type, LONG value, DWORD *index = nullptr) const
    {
        return CeSeekDatabase(m_handle, type, static_cast<DWORD_PTR>(static_cast<LONG_PTR>(value)), index);
    }
    CEOID seek(DWORD type, const CEPROPVAL &value, DWORD *index = nullptr) const
    {
        return CeSeekDatabase(m_handle, type, reinterpret_cast<DWORD_PTR>(&value), index);
    }
    CEOID first() const
    {
        return seek(CEDB_SEEK_BEGINNING, 0);
    }
    CEOID last() const
    {
        return seek(CEDB_SEEK_END, 0);
    }
    CEOID next() const
    {
        return seek(CEDB_SEEK_CURRENT, 1);
    }
    CEOID previous() const
    {
        return seek(CEDB_SEEK_CURRENT, -1);
    }
    /// All ids from the first record to the last.
    std::vector<CEOID> walk() const
    {
        std::vector<CEOID> found;
        for (CEOID oid = first(); oid != 0; oid = next())
        {
            found.push_back(oid);
        }
        return found;
    }
    std::vector<CEOID> walkBack() const
    {
        std::vector<CEOID> found;
        for (CEOID oid = last(); oid != 0; oid = previous())
        {
            found.push_back(oid);
        }
        return found;
    }

  private:
    CEOID m_oid;
    HANDLE m_handle;
};

/// The record at the position, read into a block of its own.
class ReadRecord
{
  public:
    explicit ReadRecord(const OpenedDatabase &database, const std::vector<CEPROPID> &ids = {})
        : m_count(static_cast<WORD>(ids.size()))
    {
        m_oid = CeReadRecordProps(database.handle(), CEDB_ALLOWREALLOC, &m_count, ids.empty() ? nullptr : ids.data(),
                                  &m_block, &m_size);
    }
    ~ReadRecord()
    {
        LocalFree(m_block);
    }
    ReadRecord(const ReadRecord &) = delete;
    ReadRecord &operator=(const ReadRecord &) = delete;

    CEOID oid() const
    {
        return m_oid;
    }
    WORD count() const
    {
        return m_oid == 0 ? 0 : m_count;
    }
    DWORD size() const
    {
        return m_size;
    }
    const BYTE *block() const
    {
        return m_block;
    }
    const CEPROPVAL &operator[](std::size_t at) const
    {
        return reinterpret_cast<const CEPROPVAL *>(m_block)[at];
    }
    /// Null when the record has no such property, or it was not asked for.
    const CEPROPVAL *find(CEPROPID id) const
    {
        for (std::size_t at = 0; at < count(); ++at)
        {
            if ((*this)[at].propid == id && ((*this)[at].wFlags & CEDB_PROPNOTFOUND) == 0)
            {
                return &(*this)[at];
            }
        }
        return nullptr;
    }
    LONG number(CEPROPID id) const
    {
        const CEPROPVAL *found = find(id);
        return found == nullptr ? -1 : found->val.lVal;
    }
    std::u16string text(CEPROPID id) const
    {
        const CEPROPVAL *found = find(id);
        return found == nullptr ? u"<none>" : found->val.lpwstr;
    }
    std::vector<BYTE> bytes(CEPROPID id) const
    {
        const CEPROPVAL *found = find(id);
        return found == nullptr ? std::vector<BYTE>()
                                : std::vector<BYTE>(found->val.blob.lpb, found->val.blob.lpb + found->val.blob.dwCount);
    }

  private:
    WORD m_count;
    BYTE *m_block = nullptr;
    DWORD m_size = 0;
    CEOID m_oid;
};

inline CEOID makeDatabase(const WCHAR *name, const std::vector<SORTORDERSPEC> &orders = {}, DWORD type = 0)
{
    return CeCreateDatabase(name, type, static_cast<WORD>(orders.size()), orders.data());
}

inline CEOIDINFO infoOf(CEOID oid)
{
    CEOIDINFO info = {};
    CeOidGetInfo(oid, &info);
    return info;
}
} // namespace zb::test
