#include "zembrik/remembered.h"

#include "core/CRegistry.h"

#include <array>

namespace zb::screens
{
namespace
{
constexpr const WCHAR *settingsKey = u"Software\\Kelvo\\Zembrik\\Screens";
} // namespace

std::optional<DWORD> rememberedNumber(const WCHAR *name)
{
    CRegistry settings;
    DWORD value = 0;
    if (!settings.Exists(HKEY_CURRENT_USER, settingsKey) || settings.OpenKey(HKEY_CURRENT_USER, settingsKey) != 0 ||
        settings.QueryValue(name, &value) != 0)
    {
        return std::nullopt;
    }
    return value;
}

std::u16string rememberedText(const WCHAR *name)
{
    CRegistry settings;
    std::array<WCHAR, 401> value{};
    if (settings.Exists(HKEY_CURRENT_USER, settingsKey) && settings.OpenKey(HKEY_CURRENT_USER, settingsKey) == 0)
    {
        settings.QueryValue(name, value.data(), static_cast<DWORD>(value.size()));
    }
    return value.data();
}

void rememberNumber(const WCHAR *name, DWORD value)
{
    if (rememberedNumber(name) != value)
    {
        CRegistry settings;
        settings.OpenKey(HKEY_CURRENT_USER, settingsKey);
        settings.SetValue(name, value);
    }
}

void rememberText(const WCHAR *name, const std::u16string &value)
{
    if (rememberedText(name) != value)
    {
        CRegistry settings;
        settings.OpenKey(HKEY_CURRENT_USER, settingsKey);
        settings.SetValue(name, value.c_str());
    }
}
} // namespace zb::screens
