#include "records/CPassKey.h"

#include "core/CRegistry.h"
#include "platform/kernel.h"
#include "platform/shell.h"
#include "platform/user.h"

namespace
{
constexpr const WCHAR *settingsKey = u"Software\\Kelvo\\Zembrik";
/// A prompt may take the shell's parts off the screen; they come back behind it.
constexpr DWORD allOfTheShell = SHFS_SHOWTASKBAR | SHFS_SHOWSIPBUTTON | SHFS_SHOWSTARTICON;
static_assert(allOfTheShell == 21);

bool isPasswordWanted()
{
    CRegistry settings;
    DWORD wanted = 0;
    return settings.OpenKey(HKEY_CURRENT_USER, settingsKey) == 0 &&
           settings.QueryValue(u"RequirePassword", &wanted) == 0 && wanted != 0;
}
} // namespace

bool CPassKey::CheckPass()
{
    if (!isPasswordWanted())
    {
        return true;
    }
    const HMODULE module = LoadLibraryW(u"cplmain.cpl");
    if (module == nullptr)
    {
        return true;
    }
    bool given = true;
    using Prompt = int (*)(HWND);
    if (void *const prompt = GetProcAddressW(module, u"PromptForPasswd"))
    {
        given = reinterpret_cast<Prompt>(prompt)(GetForegroundWindow()) != 0;
    }
    SHFullScreen(GetForegroundWindow(), allOfTheShell);
    FreeLibrary(module);
    return given;
}
