// One open property database: a position in its records, and the reads, writes and seeks there.
//
// A CeDb is built closed, may be opened again and again, and closes itself when destroyed. Threads: one CeDb belongs to
// one thread at a time; different objects on the same database may be used from different threads.
//
// Failure: a false result, id 0, or the handle value -1; GetLastError tells more (see platform/propdb.h). Nothing is
// reported to the user.
#pragma once

#include "core/api.h"
#include "platform/propdb.h"

class CeDbRecord;

class ZBTOOLS_API CeDb
{
  public:
    CeDb();
    ~CeDb();
    CeDb(const CeDb &) = delete;
    CeDb &operator=(const CeDb &) = delete;

    // --- The database ---------------------------------------------------------------------------------------------

    /// Makes a database and keeps its id and name; it is not opened. False when it could not be made.
    bool Create(const WCHAR *name, DWORD type, WORD numSorts, const SORTORDERSPEC *sorts);
    /// Open in the sort order of one property (0: the order in which the records lie), at the first record; what was
    /// open is closed first. `flags` may hold CEDB_AUTOINCREMENT; `notifyWindow`, which may be null, is told of changes
    /// made by others. By name, the id is then known. False when there is no such database or sort order.
    bool Open(CEOID oid, CEPROPID sortProp, DWORD flags, HWND notifyWindow);
    bool Open(const WCHAR *name, CEPROPID sortProp, DWORD flags, HWND notifyWindow);
    bool IsOpen() const
    {
        return m_hDb != INVALID_HANDLE_VALUE;
    }
    /// 0 after Close.
    CEOID GetDatabaseOID() const
    {
        return m_oidDb;
    }
    /// The name given to Create or to Open by name; it stays after Close.
    const WCHAR *GetName() const
    {
        return m_szName;
    }
    HANDLE GetHandle() const
    {
        return m_hDb;
    }
    /// Closes the database and forgets its id; does nothing when it is not open.
    void Close();
    /// Closes the database and deletes it with all its records; false without an id, and while another has it open.
    bool Delete();

    /// Number of records, held at 65,535; 0 when the database is not known.
    unsigned short GetNumRecords() const;
    /// The whole number of records.
    DWORD GetRecordCount() const;
    /// Name of the database that a record lies in, to be freed with FreeBSTR; null when the id is no record's.
    static BSTR GetDatabaseNameFromOID(CEOID oid);

    /// Changes what info->dwFlags names.
    bool SetInfo(const CEDBASEINFO *info);
    bool SetLastModified(FILETIME time);
    /// At most 32 characters are taken. The name kept in this object stays.
    bool SetName(const WCHAR *name);
    bool SetDbaseType(DWORD type);

    // --- Records --------------------------------------------------------------------------------------------------

    /// Adds a record and puts its new id into `record` (0 on failure).
    bool AddRec(CeDbRecord &record);
    /// Writes the record's properties over those of the record with its id; false for a record without id.
    bool UpdateRec(CeDbRecord &record);
    bool DeleteRecord(CEOID oid);

    /// Reads properties of the record at the position (count 0 and null ids: all of them) into a block that the engine
    /// allocates and the record owns; its old block is released first. The record's id is set. False when nothing was
    /// read; the record then holds no property.
    bool ReadRec(CeDbRecord &record, WORD count, const CEPROPID *ids);
    /// The same into the caller's buffer of `size` bytes. The buffer must come from LocalAlloc: the record takes it
    /// over and frees it when it is destroyed. The record's old block is NOT released, so that one buffer can take one
    /// record after the other; who reads into a different buffer frees the old one itself. False also when the buffer
    /// is too small: the record counts as one to skip, and still owns the buffer.
    bool ReadRec(CeDbRecord &record, BYTE *buffer, DWORD size, WORD count, const CEPROPID *ids);

    // --- The position ---------------------------------------------------------------------------------------------
    // All return the id of the record that is then at the position, 0 when there is none. *index, where given, gets the
    // number of records before it; after a seek by id or value that costs a count of keys.

    /// The platform's seek types and values, see CeSeekDatabase.
    CEOID Seek(DWORD type, DWORD_PTR value, DWORD *index = nullptr);
    CEOID SeekTo(CEOID oid, DWORD *index = nullptr);
    /// `offset` records behind the first.
    CEOID SeekBegin(int offset, DWORD *index = nullptr);
    CEOID SeekFirst(DWORD *index = nullptr);
    /// `offset` records before the last.
    CEOID SeekEnd(int offset, DWORD *index = nullptr);
    CEOID SeekLast(DWORD *index = nullptr);
    /// `offset` records on (above 0) or back (below 0).
    CEOID SeekCurrent(int offset, DWORD *index = nullptr);
    CEOID SeekNext(DWORD *index = nullptr);
    CEOID SeekPrev(DWORD *index = nullptr);
    /// By a value of the property of the open sort order: the last record before all those equal to the value, ...
    CEOID SeekSmallerRec(const CEPROPVAL *value, DWORD *index = nullptr);
    /// ... the first record equal to it, ...
    CEOID SeekRec(const CEPROPVAL *value, DWORD *index = nullptr);
    /// ... the first one equal to it or behind it, ...
    CEOID SeekGreaterRec(const CEPROPVAL *value, DWORD *index = nullptr);
    /// ... the next record, if it is equal to the value.
    CEOID SeekNextRec(const CEPROPVAL *value, DWORD *index = nullptr);

    /// The index of the last seek. It is kept when the seek gave it to its caller; otherwise it is asked for here, from
    /// the position as it stands now, so that walks do not pay for an index that nobody reads. 0 when not open.
    DWORD GetSeekIndex();

  private:
    bool openById(CEOID oid, const WCHAR *name, CEPROPID sortProp, DWORD flags, HWND notifyWindow);
    bool readInto(CeDbRecord &record, DWORD flags, WORD count, const CEPROPID *ids);

    HANDLE m_hDb;
    CEOID m_oidDb;
    WCHAR m_szName[256];
    DWORD m_dwSeekIndex;
    bool m_bSeekIndexKnown;
};
