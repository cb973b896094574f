#include "platform/linux/store_fault.h"

#include "platform/kernel.h"

#include <cerrno>
#include <new>
#include <sqlite3.h>
#include <stdexcept>

namespace zb::internal
{
namespace
{
bool isDiskFull(sqlite3 *connection)
{
    const int error = connection == nullptr ? 0 : sqlite3_system_errno(connection);
    return error == ENOSPC || error == EDQUOT;
}
} // namespace

DWORD lastErrorOf(int result, sqlite3 *connection)
{
    switch (result & 0xFF)
    {
    case SQLITE_FULL:
        return ERROR_DISK_FULL;
    case SQLITE_NOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return ERROR_ACCESS_DENIED;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL: // so SQLite calls a lock of the log that it could not get in many tries
        return ERROR_SHARING_VIOLATION;
    case SQLITE_TOOBIG:
    case SQLITE_RANGE:
        return ERROR_INVALID_PARAMETER;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_CONSTRAINT:
    case SQLITE_SCHEMA:
    case SQLITE_ERROR:
    case SQLITE_MISMATCH:
        return ERROR_FILE_CORRUPT;
    default:
        // Some file systems tell of a full disk only at a sync or when a file is made longer.
        return isDiskFull(connection) ? ERROR_DISK_FULL : ERROR_WRITE_FAULT;
    }
}

void reportStoreFault()
{
    try
    {
        throw;
    }
    catch (const StoreFault &fault)
    {
        SetLastError(fault.code());
    }
    catch (const std::bad_alloc &)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    catch (const std::length_error &)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    catch (...)
    {
        rethrowThreadExit();
        SetLastError(ERROR_WRITE_FAULT);
    }
}
} // namespace zb::internal
