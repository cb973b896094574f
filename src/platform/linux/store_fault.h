// How the store's inner parts fail: one exception that carries the last error for the caller of a Ce call.
#pragma once

#include "platform/types.h"

#include <exception>

struct sqlite3;

namespace zb::internal
{
class StoreFault : public std::exception
{
  public:
    explicit StoreFault(DWORD code) : m_code(code)
    {
    }
    DWORD code() const
    {
        return m_code;
    }
    const char *what() const noexcept override
    {
        return "store fault";
    }

  private:
    DWORD m_code;
};

/// The last error that stands for a SQLite result on this connection (which may be null).
DWORD lastErrorOf(int result, sqlite3 *connection);

/// Puts the code of the exception being handled into the last error. Only for use inside a catch block; an exception
/// that ends the thread is passed on.
void reportStoreFault();

/// Runs the body of a Ce call; what it throws becomes the last error and `failure`.
template <typename Result, typename Body>
Result storeCall(Result failure, Body &&body)
{
    try
    {
        return body();
    }
    catch (...)
    {
        reportStoreFault();
        return failure;
    }
}
} // namespace zb::internal
