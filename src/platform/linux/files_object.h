// What a file handle stands for: an open file, or a new one on its way.
#pragma once

#include "platform/linux/device_state.h"
#include "platform/linux/files_temporary.h"
#include "platform/linux/handles.h"
#include "platform/linux/unique_fd.h"

#include <memory>

namespace zb::internal
{
class FileObject final : public HandleObject
{
  public:
    /// A file that is changed in place.
    FileObject(UniqueFd file, DWORD access);
    /// A file that appears when the handle is closed; without `replace` only if the name is still free then.
    FileObject(std::unique_ptr<NewFile> file, DWORD access, bool replace);

    bool onClose() override;

    int fd() const
    {
        return m_new != nullptr ? m_new->fd() : m_file.get();
    }
    bool mayRead() const;
    bool mayWrite() const;
    /// After a write that failed a new file would appear cut, so it doesn't appear at all.
    void noteFailure(int error);

  private:
    UniqueFd m_file;
    std::unique_ptr<NewFile> m_new;
    std::weak_ptr<const DeviceState> m_device;
    DWORD m_access;
    bool m_replace = true;
    int m_failure = 0;
};

/// Null with last error 6 for anything but an open file.
std::shared_ptr<FileObject> fileOf(HANDLE handle);
} // namespace zb::internal
