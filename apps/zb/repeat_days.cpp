#include "zb/repeat_days.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>

namespace zb::cli
{
namespace
{
struct Word
{
    std::string_view text;
    LONG value;
};

constexpr std::array<Word, 7> dayNames = {{{"sunday", 1},
                                           {"monday", 2},
                                           {"tuesday", 4},
                                           {"wednesday", 8},
                                           {"thursday", 16},
                                           {"friday", 32},
                                           {"saturday", 64}}};
constexpr std::array<Word, 5> groups = {
    {{"weekday", 62}, {"weekdays", 62}, {"weekend", 65}, {"weekends", 65}, {"day", 127}}};
constexpr std::array<Word, 9> instances = {{{"first", 1},
                                            {"second", 2},
                                            {"third", 3},
                                            {"fourth", 4},
                                            {"last", 5},
                                            {"1st", 1},
                                            {"2nd", 2},
                                            {"3rd", 3},
                                            {"4th", 4}}};

/// 0 for a word that is none of them.
template <typename Words>
LONG valueOf(const Words &words, const std::string &text)
{
    const auto found = std::ranges::find(words, text, &Word::text);
    return found == words.end() ? 0 : found->value;
}

LONG maskOf(const std::string &text)
{
    constexpr std::size_t fewestLetters = 3;
    if (const LONG group = valueOf(groups, text))
    {
        return group;
    }
    const std::string name = text.size() > fewestLetters && text.back() == 's' ? text.substr(0, text.size() - 1) : text;
    const auto found = std::ranges::find_if(dayNames, [&](const Word &day)
                                            { return day.text.starts_with(text) || day.text == name; });
    return text.size() < fewestLetters || found == dayNames.end() ? 0 : found->value;
}
} // namespace

std::optional<RepeatDays> repeatDaysFromText(const std::string &text)
{
    std::string words = text;
    std::ranges::transform(words, words.begin(),
                           [](char ch)
                           {
                               const bool capital = ch >= 'A' && ch <= 'Z';
                               return ch == ',' ? ' ' : capital ? static_cast<char>(ch - 'A' + 'a') : ch;
                           });
    std::istringstream stream(words);
    RepeatDays days;
    for (std::string word; stream >> word;)
    {
        const LONG instance = valueOf(instances, word);
        const LONG mask = maskOf(word);
        if ((instance == 0 && mask == 0) || (instance != 0 && (days.instance != 0 || days.mask != 0)))
        {
            return std::nullopt;
        }
        days.instance = instance != 0 ? instance : days.instance;
        days.mask |= mask;
    }
    return days.mask != 0 ? std::optional(days) : std::nullopt;
}
} // namespace zb::cli
