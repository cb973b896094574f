// Font files made here, in which every glyph is a box of known place, so that where text lies is exact arithmetic.
//
// The em is 1,000 units, the cell exactly one em: ascent 800, descent 200 (so LOGFONTW's heights n and -n give the same
// font, of n pixels). A glyph's box begins 100 units behind its left end and stops 100 units before its advance. At
// 10 pixels an 'a' is thus 5 wide and paints 3 columns, 1 to 3, of 5 rows above the baseline, which lies 8 rows below
// the top. The underline is 100 thick with its top 100 below the baseline, the strike-out 100 with its top 300 above.
//
// "Test Sans" comes plain and bold (bold advances are 100 wider) and has:
//   letters      advance 500; capitals and digits 700 high, small ones 500, those of "gjpqy" reach 200 below
//   'W', 'm'     advance 1000
//   space, NBSP  advance 500 without a box
//   U+0300-036F  combining marks: advance 0, no box
//   Latin-1, Greek, Cyrillic, U+2010-2027 with the ellipsis: as capitals
//   U+05D0-05EA  Hebrew: advance 500, alef 300 high, bet 400, gimel 500, all others 700
//   Kana, U+4E00-4EFF: advance 1000
//   U+1F600      a character beyond 16 bits, advance 1000
//   .notdef      advance 600, 800 high
// "Test Fallback" has U+0600-06FF (advance 400), U+0E00-0E7F (500), U+2600-26FF (1000) and no Latin letter.
#pragma once

#include "platform/device.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace zb::test
{
/// Characters that share their measures. A box of no height (top equal to bottom) is empty.
struct TestGlyphs
{
    char32_t first;
    char32_t last; ///< inclusive
    int advance;
    int top;
    int bottom = 0;
};

struct TestFaceDescription
{
    std::string family = "Test Sans";
    bool bold = false;
    bool italic = false;
    /// Ascending and without overlaps.
    std::vector<TestGlyphs> glyphs;
    /// The cell's depth below the baseline.
    int descent = 200;
};

std::vector<TestGlyphs> testSansGlyphs();
std::vector<TestGlyphs> testFallbackGlyphs();

/// The bytes of the TrueType file.
std::vector<std::uint8_t> makeTestFace(const TestFaceDescription &description);

/// Writes the file into the folder and returns its path.
std::filesystem::path writeTestFace(const std::filesystem::path &folder, const TestFaceDescription &description);

/// The three faces above, written into the folder: plain, bold, fallback. For DeviceOptions::fonts.
FontOptions testFonts(const std::filesystem::path &folder);
} // namespace zb::test
