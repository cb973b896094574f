// Reads the compiled zone files of the system's tzdata (versions 1 to 4, and later ones as far as they are alike).
//
// Layout, all numbers big-endian. A head of 44 bytes: "TZif", version (0 or '2' ...), 15 unused bytes, and six 32-bit
// counts: UTC marks, standard marks, leap seconds, changes, kinds of local time, characters of names. Then, with times
// of 4 bytes:
//
//     changes x time          ascending, seconds since 1970
//     changes x byte          kind that holds from the change on
//     kinds x 6 bytes         offset (4), daylight flag (1), place of the name (1)
//     characters              names, each with a zero
//     leap seconds x (time, 4 bytes of correction)
//     standard marks, UTC marks, a byte each
//
// From version 2 on a second head and block with times of 8 bytes follow, which are used instead, and a last line
// between two line feeds with the rule for later times.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zb::internal
{
struct ZoneFile
{
    struct Kind
    {
        int offset = 0; ///< seconds to add to UTC
        bool daylight = false;
        std::string name;
    };
    struct Change
    {
        std::int64_t time = 0; ///< seconds since 1970
        std::size_t kind = 0;
    };
    std::vector<Kind> kinds; ///< at least one; the first holds before the first change
    std::vector<Change> changes;
    std::string rule;
};

/// Nothing for bytes that are no whole zone file, or whose numbers contradict each other.
std::optional<ZoneFile> parseZoneFile(std::string_view bytes);
} // namespace zb::internal
