#include "records/CPassKey.h"

#include "core/CRegistry.h"
#include "platform/kernel.h"
#include "platform/user.h"

namespace
{
constexpr const WCHAR *settingsKey = u"Software\\Kelvo\\Zembrik";
/// Export of the shell's library that takes care of the input panel behind a prompt.
constexpr const WCHAR *shellExport = u"65";
constexpr UINT shellArgument = 21;

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
    if (const HMODULE shell = LoadLibraryW(u"AYGSHELL.dll"))
    {
        using Panel = void (*)(HWND, UINT);
        if (void *const panel = GetProcAddressW(shell, shellExport))
        {
            reinterpret_cast<Panel>(panel)(GetForegroundWindow(), shellArgument);
        }
        FreeLibrary(shell);
    }
    FreeLibrary(module);
    return given;
}
