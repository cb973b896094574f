#include "zembrik/script_keys.h"

#include "platform/user.h"

#include <algorithm>
#include <map>

namespace zb::screens
{
namespace
{
struct Plain
{
    int key;
    char16_t character;
};

const std::map<std::string, Plain, std::less<>> &plainKeys()
{
    static const std::map<std::string, Plain, std::less<>> keys = {
        {"enter", {VK_RETURN, u'\r'}},   {"escape", {VK_ESCAPE, 0x1B}}, {"tab", {VK_TAB, u'\t'}},
        {"backspace", {VK_BACK, u'\b'}}, {"space", {VK_SPACE, u' '}},   {"delete", {VK_DELETE, 0}},
        {"left", {VK_LEFT, 0}},          {"right", {VK_RIGHT, 0}},      {"up", {VK_UP, 0}},
        {"down", {VK_DOWN, 0}},          {"pageup", {VK_PRIOR, 0}},     {"pagedown", {VK_NEXT, 0}},
        {"home", {VK_HOME, 0}},          {"end", {VK_END, 0}}};
    return keys;
}

std::string lower(std::string_view text)
{
    std::string small(text);
    std::ranges::transform(small, small.begin(), [](char ch) { return ch >= 'A' && ch <= 'Z' ? ch - 'A' + 'a' : ch; });
    return small;
}

std::optional<int> modifierNamed(const std::string &name)
{
    static const std::map<std::string, int> modifiers = {{"ctrl", VK_CONTROL}, {"shift", VK_SHIFT}, {"alt", VK_MENU}};
    const auto found = modifiers.find(name);
    return found == modifiers.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Plain> plainNamed(const std::string &name, bool capital)
{
    constexpr int functionKeys = 24;
    if (const auto found = plainKeys().find(name); found != plainKeys().end())
    {
        return found->second;
    }
    if (name.size() == 1 && name[0] >= 'a' && name[0] <= 'z')
    {
        const int letter = name[0] - 'a' + 'A';
        return Plain{letter, static_cast<char16_t>(capital ? letter : name[0])};
    }
    if (name.size() == 1 && name[0] >= '0' && name[0] <= '9')
    {
        return Plain{name[0], capital ? u'\0' : static_cast<char16_t>(name[0])};
    }
    for (int number = 1; number <= functionKeys; ++number)
    {
        if (name == "f" + std::to_string(number))
        {
            return Plain{VK_F1 + number - 1, 0};
        }
    }
    return std::nullopt;
}
} // namespace

std::optional<NamedKey> keyNamed(std::string_view name)
{
    NamedKey named{{}, 0, 0};
    std::string rest = lower(name);
    for (std::size_t plus = rest.find('+'); plus != std::string::npos; plus = rest.find('+'))
    {
        const auto modifier = modifierNamed(rest.substr(0, plus));
        if (!modifier || std::ranges::count(named.modifiers, *modifier) > 0)
        {
            return std::nullopt;
        }
        named.modifiers.push_back(*modifier);
        rest.erase(0, plus + 1);
    }
    const bool capital = std::ranges::count(named.modifiers, VK_SHIFT) > 0;
    const auto plain = plainNamed(rest, capital);
    if (!plain)
    {
        return std::nullopt;
    }
    const bool types = std::ranges::all_of(named.modifiers, [](int modifier) { return modifier == VK_SHIFT; });
    named.key = plain->key;
    named.character = types ? plain->character : u'\0';
    return named;
}
} // namespace zb::screens
