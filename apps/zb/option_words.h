// Options whose values are words that stand for numbers, and flags with an opposite.
#pragma once

#include "platform/types.h"

#include <CLI/CLI.hpp>

#include <limits>
#include <map>
#include <optional>
#include <string>

namespace zb::cli
{
using Words = std::map<std::string, DWORD>;

/// Turns the words of a map, which has to outlive the command line, into its numbers.
inline CLI::Validator words(const Words &map)
{
    const auto translate = [&map](std::string &word)
    {
        if (const auto found = map.find(word); found != map.end())
        {
            word = std::to_string(found->second);
            return std::string();
        }
        std::string known;
        for (const auto &[name, number] : map)
        {
            known += (known.empty() ? "" : ", ") + name;
        }
        return "\"" + word + "\" is none of " + known;
    };
    return CLI::Validator(translate, "");
}

/// The ids of items and records: whole numbers from 1.
inline CLI::Validator itemId()
{
    const auto check = [](const std::string &word)
    {
        constexpr std::size_t mostDigits = 10;
        const bool digits = !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
        const bool fits = digits && word.size() <= mostDigits && std::stoull(word) <= std::numeric_limits<CEOID>::max();
        return fits ? std::string() : "\"" + word + "\" is no id; the lists tell them with --ids";
    };
    return CLI::Validator(check, "");
}

/// A flag and its opposite that leave the choice open when neither is given; of several the last counts.
inline CLI::Option *addChoice(CLI::App &command, const std::string &names, std::optional<bool> &choice,
                              const std::string &help)
{
    return command
        .add_flag_function(
            names, [&choice](std::int64_t count) { choice = count > 0; }, help)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}
} // namespace zb::cli
