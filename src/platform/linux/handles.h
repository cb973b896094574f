// The table behind every HANDLE and HWND: slots that are never freed, each with a generation, so that a stale handle is
// told from a live one by arithmetic alone and nothing is ever followed through a handle's value.
//
// A handle's value is generation << 22 | slot << 2 | 2: never null, never INVALID_HANDLE_VALUE, and different at each
// use of a slot. Threads: any. A look-up keeps the object alive for the caller, so closing under a user is safe.
#pragma once

#include "platform/types.h"

#include <memory>

namespace zb::internal
{
enum class HandleKind : std::uint8_t
{
    Free,
    Thread,
    Event,
    Mutex,
    Semaphore,
    File,
    FindFile,
    Database,
    FindDatabase,
    Window,
    RegistryKey,
    // Of the drawing service, each ended by a call of its own; CloseHandle refuses them.
    DeviceContext,
    Font,
    Bitmap,
    Pen,
    Brush,
    Icon,
    ImageList,
    Menu
};

/// Base of all that a handle can stand for.
class HandleObject
{
  public:
    explicit HandleObject(HandleKind kind) : m_kind(kind)
    {
    }
    virtual ~HandleObject() = default;
    HandleObject(const HandleObject &) = delete;
    HandleObject &operator=(const HandleObject &) = delete;

    HandleKind kind() const
    {
        return m_kind;
    }
    /// Called once when CloseHandle (or the closer of its kind) takes the handle out of the table, before the table
    /// drops its reference: wakes waiters, finishes files. False makes the close report failure (the last error is
    /// set by then); the handle is gone all the same.
    virtual bool onClose()
    {
        return true;
    }

  private:
    HandleKind m_kind;
};

/// Null when the table is full.
HANDLE insertHandle(std::shared_ptr<HandleObject> object);
/// The object when the handle is live and of this kind; otherwise null with last error 6.
std::shared_ptr<HandleObject> findHandle(HANDLE handle, HandleKind kind);
/// The object of any kind; otherwise null with last error 6.
std::shared_ptr<HandleObject> findHandle(HANDLE handle);
/// Takes the handle out and returns its object after onClose; null with last error 6 for a stale handle or another
/// kind (Free: any kind). *closed, when given, gets what onClose returned.
std::shared_ptr<HandleObject> removeHandle(HANDLE handle, HandleKind kind, bool *closed = nullptr);
/// Closes all handles of a kind (files and databases when a device goes away).
void removeAllHandles(HandleKind kind);
/// How many of a kind are open.
std::size_t liveHandles(HandleKind kind);

template <typename T>
std::shared_ptr<T> findAs(HANDLE handle, HandleKind kind)
{
    return std::static_pointer_cast<T>(findHandle(handle, kind));
}
} // namespace zb::internal
