// The open database on the platform's property databases: thin and exact.
#include "records/CeDb.h"

#include "core/bstrtools.h"
#include "platform/kernel.h"
#include "records/CeDbRecord.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace
{
/// Copies as much of a text as fits with its terminator; null counts as empty.
template <std::size_t size>
void copyText(WCHAR (&target)[size], const WCHAR *source)
{
    const std::u16string_view text = source != nullptr ? std::u16string_view(source) : std::u16string_view();
    const std::size_t length = std::min(text.size(), size - 1);
    std::copy_n(text.data(), length, target);
    target[length] = 0;
}

CEOIDINFO infoOf(CEOID oid)
{
    CEOIDINFO info{};
    if (!CeOidGetInfo(oid, &info))
    {
        info = CEOIDINFO{};
    }
    return info;
}

/// A signed offset as a seek takes it.
DWORD_PTR offsetValue(int offset)
{
    return static_cast<DWORD_PTR>(static_cast<LONG_PTR>(offset));
}
} // namespace

CeDb::CeDb() : m_hDb(INVALID_HANDLE_VALUE), m_oidDb(0), m_szName{}, m_dwSeekIndex(0), m_bSeekIndexKnown(true)
{
}

CeDb::~CeDb()
{
    Close();
}

bool CeDb::Create(const WCHAR *name, DWORD type, WORD numSorts, const SORTORDERSPEC *sorts)
{
    m_oidDb = CeCreateDatabase(name, type, numSorts, sorts);
    copyText(m_szName, name);
    return m_oidDb != 0;
}

bool CeDb::Open(CEOID oid, CEPROPID sortProp, DWORD flags, HWND notifyWindow)
{
    Close();
    return openById(oid, nullptr, sortProp, flags, notifyWindow);
}

bool CeDb::Open(const WCHAR *name, CEPROPID sortProp, DWORD flags, HWND notifyWindow)
{
    Close();
    copyText(m_szName, name);
    return openById(0, m_szName, sortProp, flags, notifyWindow);
}

bool CeDb::openById(CEOID oid, const WCHAR *name, CEPROPID sortProp, DWORD flags, HWND notifyWindow)
{
    m_oidDb = oid;
    m_hDb = CeOpenDatabase(&m_oidDb, name, sortProp, flags, notifyWindow);
    m_dwSeekIndex = 0;
    m_bSeekIndexKnown = true;
    return IsOpen();
}

void CeDb::Close()
{
    if (IsOpen())
    {
        m_oidDb = 0;
        CloseHandle(m_hDb);
        m_hDb = INVALID_HANDLE_VALUE;
    }
}

bool CeDb::Delete()
{
    const CEOID oid = m_oidDb;
    if (oid == 0)
    {
        return false;
    }
    Close();
    return CeDeleteDatabase(oid) != FALSE;
}

unsigned short CeDb::GetNumRecords() const
{
    return infoOf(m_oidDb).infDatabase.wNumRecords;
}

DWORD CeDb::GetRecordCount() const
{
    return infoOf(m_oidDb).infDatabase.dwNumRecords;
}

BSTR CeDb::GetDatabaseNameFromOID(CEOID oid)
{
    const CEOIDINFO record = infoOf(oid);
    if (record.wObjType != OBJTYPE_RECORD)
    {
        return nullptr;
    }
    const CEOIDINFO parent = infoOf(record.infRecord.oidParent);
    return parent.wObjType == OBJTYPE_DATABASE ? AllocBSTR(parent.infDatabase.szDbaseName) : nullptr;
}

bool CeDb::SetInfo(const CEDBASEINFO *info)
{
    const CEGUID systemVolume{};
    return info != nullptr && CeSetDatabaseInfoEx(&systemVolume, m_oidDb, info) != FALSE;
}

bool CeDb::SetLastModified(FILETIME time)
{
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDMODTIME;
    info.ftLastModified = time;
    return SetInfo(&info);
}

bool CeDb::SetName(const WCHAR *name)
{
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDNAME;
    copyText(info.szDbaseName, name);
    return SetInfo(&info);
}

bool CeDb::SetDbaseType(DWORD type)
{
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDTYPE;
    info.dwDbaseType = type;
    return SetInfo(&info);
}

bool CeDb::AddRec(CeDbRecord &record)
{
    record.m_oid = CeWriteRecordProps(m_hDb, 0, record.m_wCount, record.m_pProps);
    return record.m_oid != 0;
}

bool CeDb::UpdateRec(CeDbRecord &record)
{
    // Id 0 would make the platform add a record, and its failure would look like success.
    return record.m_oid != 0 &&
           CeWriteRecordProps(m_hDb, record.m_oid, record.m_wCount, record.m_pProps) == record.m_oid;
}

bool CeDb::DeleteRecord(CEOID oid)
{
    return CeDeleteRecord(m_hDb, oid) != FALSE;
}

bool CeDb::ReadRec(CeDbRecord &record, WORD count, const CEPROPID *ids)
{
    record.releaseArray();
    record.m_bLocalFree = true;
    return readInto(record, CEDB_ALLOWREALLOC, count, ids);
}

bool CeDb::ReadRec(CeDbRecord &record, BYTE *buffer, DWORD size, WORD count, const CEPROPID *ids)
{
    auto *props = reinterpret_cast<CEPROPVAL *>(buffer);
    if (props == record.m_pProps)
    {
        record.freeLooseBlobs();
    }
    else if (!record.m_bLocalFree)
    {
        // A block of the record's own making, which nobody else can free. One of LocalAlloc may be the caller's.
        record.releaseArray();
    }
    record.m_pProps = props;
    record.m_dwSize = buffer != nullptr ? size : 0;
    record.m_bLocalFree = true;
    return readInto(record, 0, count, ids);
}

bool CeDb::readInto(CeDbRecord &record, DWORD flags, WORD count, const CEPROPID *ids)
{
    auto *block = reinterpret_cast<BYTE *>(record.m_pProps);
    DWORD size = record.m_dwSize;
    record.m_oid = CeReadRecordProps(m_hDb, flags, &count, ids, &block, &size);
    record.m_pProps = reinterpret_cast<CEPROPVAL *>(block);
    const bool read = record.m_oid != 0 && block != nullptr && count != 0;
    // After a failure the block holds nothing that may be followed. A block that was too small keeps its own size: the
    // platform then tells the size that was needed.
    record.m_wCount = read ? count : WORD{0};
    if (read && flags == CEDB_ALLOWREALLOC)
    {
        record.m_dwSize = size;
    }
    return read;
}

CEOID CeDb::Seek(DWORD type, DWORD_PTR value, DWORD *index)
{
    m_bSeekIndexKnown = index != nullptr;
    if (index == nullptr)
    {
        return CeSeekDatabase(m_hDb, type, value, nullptr);
    }
    m_dwSeekIndex = 0;
    const CEOID found = CeSeekDatabase(m_hDb, type, value, &m_dwSeekIndex);
    *index = m_dwSeekIndex;
    return found;
}

CEOID CeDb::SeekTo(CEOID oid, DWORD *index)
{
    return Seek(CEDB_SEEK_CEOID, oid, index);
}

CEOID CeDb::SeekBegin(int offset, DWORD *index)
{
    return Seek(CEDB_SEEK_BEGINNING, offsetValue(offset), index);
}

CEOID CeDb::SeekFirst(DWORD *index)
{
    return SeekBegin(0, index);
}

CEOID CeDb::SeekEnd(int offset, DWORD *index)
{
    return Seek(CEDB_SEEK_END, offsetValue(offset), index);
}

CEOID CeDb::SeekLast(DWORD *index)
{
    return SeekEnd(0, index);
}

CEOID CeDb::SeekCurrent(int offset, DWORD *index)
{
    return Seek(CEDB_SEEK_CURRENT, offsetValue(offset), index);
}

CEOID CeDb::SeekNext(DWORD *index)
{
    return SeekCurrent(1, index);
}

CEOID CeDb::SeekPrev(DWORD *index)
{
    return SeekCurrent(-1, index);
}

CEOID CeDb::SeekSmallerRec(const CEPROPVAL *value, DWORD *index)
{
    return Seek(CEDB_SEEK_VALUESMALLER, reinterpret_cast<DWORD_PTR>(value), index);
}

CEOID CeDb::SeekRec(const CEPROPVAL *value, DWORD *index)
{
    return Seek(CEDB_SEEK_VALUEFIRSTEQUAL, reinterpret_cast<DWORD_PTR>(value), index);
}

CEOID CeDb::SeekGreaterRec(const CEPROPVAL *value, DWORD *index)
{
    return Seek(CEDB_SEEK_VALUEGREATER, reinterpret_cast<DWORD_PTR>(value), index);
}

CEOID CeDb::SeekNextRec(const CEPROPVAL *value, DWORD *index)
{
    return Seek(CEDB_SEEK_VALUENEXTEQUAL, reinterpret_cast<DWORD_PTR>(value), index);
}

DWORD CeDb::GetSeekIndex()
{
    if (!m_bSeekIndexKnown && IsOpen())
    {
        Seek(CEDB_SEEK_CURRENT, 0, &m_dwSeekIndex);
    }
    return IsOpen() ? m_dwSeekIndex : 0;
}
