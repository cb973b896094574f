// Walks the volumes that hold property databases (the system volume, and cards that carry some), for hosts.
//
// Threads: one object belongs to one thread at a time. Failure: a false result; the end is one.
#pragma once

#include "core/api.h"
#include "platform/propdb.h"

class ZBTOOLS_API CeDbVolumeEnum
{
  public:
    /// At no volume: the identifier is all ones, the name empty.
    CeDbVolumeEnum();

    /// Goes to the first volume.
    bool First();
    /// Goes to the volume after the current one.
    bool Next();
    const CEGUID &GetVolume() const
    {
        return m_guid;
    }
    const WCHAR *GetName() const
    {
        return m_szName;
    }

  private:
    CEGUID m_guid;
    WCHAR m_szName[260];
};
