// Walks the property databases of the device, with what is known of each.
//
// An enumeration is built at no place; First starts it, Next goes to each database in turn (also to the first one).
// It owns its find handle. Threads: one object belongs to one thread at a time. Failure: false results, zeros and an
// empty name.
#pragma once

#include "core/api.h"
#include "platform/propdb.h"

class ZBTOOLS_API CeDbEnum
{
  public:
    CeDbEnum();
    ~CeDbEnum();
    CeDbEnum(const CeDbEnum &) = delete;
    CeDbEnum &operator=(const CeDbEnum &) = delete;

    /// Starts over, with the databases of one type, or all of them (0). No database is current until Next.
    bool First(DWORD type = 0);
    /// Goes to the next database; with getInfo its information is read at once. False when there are no more.
    bool Next(bool getInfo = false);

    /// Id of the current database, 0 before the first and behind the last.
    CEOID GetOid() const
    {
        return m_oid;
    }
    /// Reads the information of the current database, once for each position; the calls below do it when needed.
    bool GetInfo();
    /// Copies it out; the target is untouched on failure.
    bool GetInfo(CEDBASEINFO &info);
    /// Valid until the next Next or First.
    const WCHAR *GetName();
    DWORD GetFlags();
    DWORD GetType();
    /// Held at 65,535.
    WORD GetNumRecords();
    WORD GetNumSorts();
    /// Bytes of all records.
    DWORD GetSize();
    FILETIME GetModified();

  private:
    void close();
    const CEDBASEINFO &info();

    HANDLE m_hFind;
    CEOID m_oid;
    bool m_bInfoValid;
    CEOIDINFO m_info;
};
