// The debug log.
#include "core/debuglog.h"

#include "core/CeFile.h"
#include "core/synchronization.h"
#include "platform/kernel.h"

#include <atomic>

namespace
{
constexpr const WCHAR *BANNER = u"               --------First Log----------            ";
/// A writer that hangs must not take the others along.
constexpr DWORD LOCK_TIMEOUT = 2000;

void appendLine(const WCHAR *file, const WCHAR *line)
{
    // A mutex of the kernel, since a thread that is terminated in here gives that back.
    CeMutex mutex;
    if (!mutex.Create(u"ZembrikDebugLog", LOCK_TIMEOUT))
    {
        return;
    }
    {
        CeFile log;
        if (log.Open(file) || (!CeFile::Exists(file) && log.Create(file)))
        {
            log.SetPositionEnd();
            log.WriteLine(line, true);
        }
    }
    mutex.Release();
}
} // namespace

void DisplayMemory(const WCHAR *file, const WCHAR *line)
{
    static std::atomic<bool> s_bBegun = false;
    if (file == nullptr || line == nullptr)
    {
        return;
    }
    if (!s_bBegun.exchange(true))
    {
        appendLine(DEBUG_LOG_PATH, BANNER);
        OutputDebugStringW(BANNER);
    }
    appendLine(file, line);
}
