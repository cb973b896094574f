// The order of plain ASCII text, taken once from a collator as two small tables.
//
// Most subjects and names are ASCII, and looking up two ranks a character costs a tenth of a full comparison. The
// tables give the collator's own order, or nothing: they are made only for collators that treat each ASCII character
// for itself (no "ch" or "ll" as one letter, no numbers by value), and a comparison that meets any other character
// before it is decided is handed back to the collator.
#pragma once

#include "platform/types.h"

#include <array>
#include <optional>
#include <string_view>

struct UCollator;

namespace zb::internal
{
class AsciiOrder
{
  public:
    /// Nothing for a collator whose order of ASCII text does not come from its characters one by one.
    static std::optional<AsciiOrder> of(const UCollator *collator);

    /// Below, equal to or above 0; nothing when the texts need the collator. With ignoreCase, letters that differ in
    /// case alone are equal.
    std::optional<int> compare(std::u16string_view a, std::u16string_view b, bool ignoreCase) const;
    /// The same for texts that end with a zero, without looking for their ends first.
    std::optional<int> compare(const WCHAR *a, const WCHAR *b, bool ignoreCase) const;

  private:
    AsciiOrder() = default;
    bool fill(const UCollator *collator, UCollator *primary, UCollator *secondary);
    template <typename Cursor>
    std::optional<int> compareRest(Cursor a, Cursor b, bool variantsCount) const;

    static constexpr std::size_t size = 128;
    /// Rank among all characters, letters of both cases alike; 0 is left out of account.
    std::array<BYTE, size> m_rank{};
    /// Rank among characters of the same m_rank.
    std::array<BYTE, size> m_variant{};
    /// The collator tells variants apart.
    bool m_variantsCount = false;
};
} // namespace zb::internal
