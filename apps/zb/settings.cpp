// zb settings: the text store of settings, read and written.
#include "common/complain.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "common/visible_text.h"
#include "core/CRegistry.h"
#include "platform/text.h"
#include "zb/bad_usage.h"
#include "zb/commands.h"
#include "zb/json.h"
#include "zb/known_settings.h"
#include "zb/recorded.h"
#include "zb/terminal.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <optional>

namespace zb::cli
{
using namespace host;

namespace
{
const std::u16string rootKey = u"Software\\Kelvo\\Zembrik";
/// Characters of a line in the store; what is longer would be cut.
constexpr std::size_t longestLine = 2'050;
constexpr std::size_t lineSigns = 5; // two pairs of quotes and "="

struct Setting
{
    std::u16string key;
    std::u16string name;
    SettingValue value;
    bool stored = false; ///< else the default
    const char *meaning = "";
};

/// "CAV" is below the system's own key; a path that begins with "Software" stands for itself.
std::u16string fullKey(const std::string &key)
{
    std::u16string path = toUtf16(key);
    std::replace(path.begin(), path.end(), u'/', u'\\');
    if (path.empty() || path == u"." || path == rootKey)
    {
        return rootKey;
    }
    return path.starts_with(u"Software\\") ? path : rootKey + u"\\" + path;
}

std::optional<SettingValue> storedValue(const CRegistry &registry, const std::u16string &name)
{
    DWORD number = 0;
    if (registry.QueryValue(name.c_str(), &number) == 0)
    {
        return number;
    }
    std::array<WCHAR, longestLine + 1> text{};
    if (registry.QueryValue(name.c_str(), text.data(), static_cast<DWORD>(text.size())) == 0)
    {
        return std::u16string(text.data());
    }
    return std::nullopt;
}

void addKnown(const std::u16string &key, std::vector<Setting> &settings)
{
    for (const KnownSetting &known : knownSettings())
    {
        if (key == known.key)
        {
            settings.push_back({key, known.name, known.standard, false, known.meaning});
        }
    }
}

void addStored(CRegistry &registry, const std::u16string &key, std::vector<Setting> &settings)
{
    registry.OpenKey(HKEY_CURRENT_USER, key.c_str());
    for (const std::u16string &name : registry.ValueNames())
    {
        const std::optional<SettingValue> value = storedValue(registry, name);
        const auto known =
            std::find_if(settings.begin(), settings.end(),
                         [&](const Setting &setting) { return setting.key == key && setting.name == name; });
        if (known != settings.end())
        {
            // A value of another type is not read; the default goes on to hold.
            known->stored = value && value->index() == known->value.index();
            known->value = known->stored ? *value : known->value;
        }
        else if (value)
        {
            settings.push_back({key, name, *value, true, ""});
        }
    }
}

/// All settings at a key and below it, known ones first.
std::vector<Setting> settingsBelow(const std::u16string &key)
{
    std::vector<Setting> settings;
    CRegistry registry;
    std::vector<std::u16string> keys{key};
    for (const KnownSetting &known : knownSettings())
    {
        const std::u16string path = known.key;
        if (path.starts_with(key + u"\\") && std::find(keys.begin(), keys.end(), path) == keys.end())
        {
            keys.push_back(path);
        }
    }
    for (std::size_t n = 0; n < keys.size(); ++n)
    {
        const std::u16string path = keys[n];
        addKnown(path, settings);
        addStored(registry, path, settings);
        registry.OpenKey(HKEY_CURRENT_USER, path.c_str());
        for (const std::u16string &child : registry.SubKeyNames())
        {
            const std::u16string below = path + u"\\" + child;
            if (std::find(keys.begin(), keys.end(), below) == keys.end())
            {
                keys.push_back(below);
            }
        }
    }
    return settings;
}

std::string valueText(const SettingValue &value)
{
    const auto *const number = std::get_if<DWORD>(&value);
    return number != nullptr ? std::to_string(*number) : visibleText(std::get<std::u16string>(value));
}

Json asJson(const Setting &setting)
{
    const auto *const number = std::get_if<DWORD>(&setting.value);
    Json value = number != nullptr ? Json(*number) : Json(toUtf8(std::get<std::u16string>(setting.value)));
    return {{"key", toUtf8(setting.key)},
            {"name", toUtf8(setting.name)},
            {"value", std::move(value)},
            {"stored", setting.stored},
            {"meaning", setting.meaning}};
}

void printList(const std::vector<Setting> &settings, Output &output)
{
    const Terminal terminal(stdout);
    std::u16string key;
    for (const Setting &setting : settings)
    {
        if (setting.key != key)
        {
            key = setting.key;
            output.line(terminal.styled(visibleText(key), Style::Heading));
        }
        const bool isText = std::holds_alternative<std::u16string>(setting.value);
        const std::string shown = isText ? '"' + valueText(setting.value) + '"' : valueText(setting.value);
        const std::string head = "  " + padded(visibleText(setting.name), 28) + " " + padded(shown, 16);
        output.line(terminal.styled(head, setting.stored ? Style::Plain : Style::Dim) +
                    terminal.styled((setting.stored ? "           " : " (default) ") + std::string(setting.meaning),
                                    Style::Dim));
    }
}

int list(const SettingsArguments &arguments, Output &output)
{
    const std::vector<Setting> settings = settingsBelow(fullKey(arguments.key));
    if (arguments.json)
    {
        Json entries = Json::array();
        std::transform(settings.begin(), settings.end(), std::back_inserter(entries), asJson);
        output.line(text({{"version", jsonVersion}, {"settings", entries}}));
    }
    else
    {
        printList(settings, output);
    }
    return exitOk;
}

std::u16string keyOf(const SettingsArguments &arguments)
{
    return fullKey(arguments.key.empty() ? "CAV" : arguments.key);
}

int get(const SettingsArguments &arguments, Output &output)
{
    const std::u16string key = keyOf(arguments);
    const std::u16string name = toUtf16(arguments.name);
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, key.c_str());
    const KnownSetting *const known = findKnownSetting(key, name);
    std::optional<SettingValue> value = storedValue(registry, name);
    const bool stored = value && (known == nullptr || known->standard.index() == value->index());
    if (!stored && known == nullptr)
    {
        throw BadUsage("there is no setting \"" + arguments.name + "\" under " + toUtf8(key) +
                         "; \"zb settings list\" shows what there is");
    }
    const Setting setting{key, name, stored ? *value : known->standard, stored, known != nullptr ? known->meaning : ""};
    output.line(arguments.json ? text({{"version", jsonVersion}, {"setting", asJson(setting)}})
                               : toUtf8(std::holds_alternative<DWORD>(setting.value)
                                            ? toUtf16(valueText(setting.value))
                                            : std::get<std::u16string>(setting.value)));
    return exitOk;
}

std::optional<DWORD> numberOf(const std::string &text)
{
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const char *const first = text.data() + (hexadecimal ? 2 : 0);
    const char *const last = text.data() + text.size();
    DWORD number = 0;
    const auto [end, error] = std::from_chars(first, last, number, hexadecimal ? 16 : 10);
    return error == std::errc() && end == last && first != last ? std::optional(number) : std::nullopt;
}

/// Refuses what the lines of the store can't carry.
void checkText(const std::u16string &name, const std::u16string &value)
{
    if (value.find_first_of(std::u16string_view(u"\r\n\0", 3)) != std::u16string::npos)
    {
        throw BadUsage("a setting is one line of text");
    }
    std::u16string lower = value;
    _wcslwr(lower.data());
    if (lower.find(u"dword:") != std::u16string::npos)
    {
        throw BadUsage("a text with \"dword:\" in it would be read back as a number");
    }
    if (name.size() + value.size() + lineSigns > longestLine)
    {
        throw BadUsage("the text is too long: name and text have room for 2045 characters");
    }
}

void checkName(const std::u16string &name)
{
    if (name.empty() || name.find_first_of(std::u16string_view(u"=\"\r\n[\0", 6)) != std::u16string::npos)
    {
        throw BadUsage("the name of a setting is not empty and has no =, \", [ or line end");
    }
}

SettingValue parsedValue(const SettingsArguments &arguments, const KnownSetting *known)
{
    const bool isText =
        arguments.asText || (known != nullptr && std::holds_alternative<std::u16string>(known->standard));
    const std::optional<DWORD> number = isText ? std::nullopt : numberOf(arguments.value);
    if (number)
    {
        return *number;
    }
    if (known != nullptr && std::holds_alternative<DWORD>(known->standard))
    {
        throw BadUsage("\"" + arguments.name + "\" is a number from 0 to 4294967295: " + known->meaning);
    }
    return toUtf16(arguments.value);
}

int saved(CRegistry &registry, LONG result)
{
    if (result == 0 && registry.FlushKey() == 0)
    {
        return exitOk;
    }
    complain("the settings could not be written to " + toUtf8(registry.INIFileName()));
    return exitDevice;
}

int set(const SettingsArguments &arguments)
{
    const std::u16string key = keyOf(arguments);
    const std::u16string name = toUtf16(arguments.name);
    checkName(name);
    const SettingValue value = parsedValue(arguments, findKnownSetting(key, name));
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, key.c_str());
    if (const auto *const number = std::get_if<DWORD>(&value); number != nullptr)
    {
        return saved(registry, registry.SetValue(name.c_str(), *number));
    }
    const auto &asText = std::get<std::u16string>(value);
    checkText(name, asText);
    return saved(registry, registry.SetValue(name.c_str(), asText.c_str()));
}

int unset(const SettingsArguments &arguments)
{
    const std::u16string key = keyOf(arguments);
    const std::u16string name = toUtf16(arguments.name);
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, key.c_str());
    if (!storedValue(registry, name))
    {
        return exitOk;
    }
    return saved(registry, registry.DeleteValue(name.c_str()));
}
} // namespace

int runSettings(const SettingsArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    Output output;
    int code = exitOk;
    std::optional<Recorded> recorded;
    if (arguments.action == SettingsAction::Set || arguments.action == SettingsAction::Unset)
    {
        recorded.emplace((arguments.action == SettingsAction::Set ? "set " : "unset ") + arguments.name);
        recorded->announce();
    }
    switch (arguments.action)
    {
    case SettingsAction::List:
        code = list(arguments, output);
        break;
    case SettingsAction::Get:
        code = get(arguments, output);
        break;
    case SettingsAction::Set:
        code = set(arguments);
        break;
    case SettingsAction::Unset:
        code = unset(arguments);
        completeSettings();
        break;
    }
    recorded.reset();
    return output.finish() ? code : exitOutput;
}
} // namespace zb::cli
