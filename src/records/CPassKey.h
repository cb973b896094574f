// Asks for the device's password before a private item opens.
#pragma once

#include "core/api.h"

class ZBTOOLS_API CPassKey
{
  public:
    CPassKey() = default;
    virtual ~CPassKey() = default;
    CPassKey(const CPassKey &) = default;
    CPassKey &operator=(const CPassKey &) = default;

    /// True when the item may be shown: no password is wanted (the setting RequirePassword is 0, as it is at first),
    /// the device has no library that could ask ("cplmain.cpl"), or the right one was given. The host's thread alone.
    bool CheckPass();
};
