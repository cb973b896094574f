#include "platform/linux/text_layout_characters.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace zb::internal
{
namespace
{
constexpr char32_t blank = U' ';
constexpr char32_t replacement = 0xFFFD;

bool isSimpleScript(UScriptCode script)
{
    switch (script)
    {
    case USCRIPT_COMMON:
    case USCRIPT_LATIN:
    case USCRIPT_GREEK:
    case USCRIPT_CYRILLIC:
    case USCRIPT_ARMENIAN:
    case USCRIPT_GEORGIAN:
    case USCRIPT_HAN:
    case USCRIPT_HIRAGANA:
    case USCRIPT_KATAKANA:
    case USCRIPT_BOPOMOFO:
    case USCRIPT_YI:
    case USCRIPT_CHEROKEE:
    case USCRIPT_CANADIAN_ABORIGINAL:
    case USCRIPT_OGHAM:
    case USCRIPT_RUNIC:
    case USCRIPT_BRAILLE:
    case USCRIPT_UNKNOWN:
        return true;
    default:
        return false;
    }
}

bool goesLeftToRight(UChar32 character)
{
    switch (u_charDirection(character))
    {
    case U_LEFT_TO_RIGHT:
    case U_EUROPEAN_NUMBER:
    case U_EUROPEAN_NUMBER_SEPARATOR:
    case U_EUROPEAN_NUMBER_TERMINATOR:
    case U_COMMON_NUMBER_SEPARATOR:
    case U_BLOCK_SEPARATOR:
    case U_SEGMENT_SEPARATOR:
    case U_WHITE_SPACE_NEUTRAL:
    case U_OTHER_NEUTRAL:
    case U_BOUNDARY_NEUTRAL:
        return true;
    default:
        return false;
    }
}

/// Soft hyphen, the blank without width, the word joiner, the byte order mark: of no effect on their neighbours.
bool isHarmlessFormat(char32_t character)
{
    return character == 0xAD || character == 0x200B || character == 0x2060 || character == 0xFEFF;
}

bool isPrecomposedHangul(char32_t character)
{
    return character >= 0xAC00 && character <= 0xD7A3;
}

bool isInvisible(char32_t character)
{
    const bool control = character < 0x20 || (character >= 0x7F && character < 0xA0);
    return (control && drawnCharacter(character) == character) ||
           u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
}

bool isSimple(char32_t character, UScriptCode script)
{
    if (character < 0x300 || isHarmlessFormat(character) || isPrecomposedHangul(character))
    {
        return true;
    }
    const auto code = static_cast<UChar32>(character);
    const auto kind = u_charType(code);
    const bool alone = (U_MASK(kind) & (U_GC_M_MASK | U_GC_CF_MASK | U_GC_CS_MASK)) == 0;
    return alone && isSimpleScript(script) && goesLeftToRight(code);
}

bool continuesCluster(char32_t character)
{
    const auto code = static_cast<UChar32>(character);
    return (U_GET_GC_MASK(code) & U_GC_M_MASK) != 0 || character == 0x200C || character == 0x200D ||
           u_hasBinaryProperty(code, UCHAR_EMOJI_MODIFIER) != 0;
}

bool turnsLine(char32_t character)
{
    const auto kind = u_charDirection(static_cast<UChar32>(character));
    return !goesLeftToRight(static_cast<UChar32>(character)) && kind != U_DIR_NON_SPACING_MARK;
}
} // namespace

CharacterTraits traitsOf(char32_t character)
{
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(character), &error);
    CharacterTraits traits{};
    traits.simple = isSimple(character, script);
    traits.invisible = isInvisible(character);
    traits.continues = continuesCluster(character);
    traits.turns = turnsLine(character);
    const UCharDirection direction = u_charDirection(static_cast<UChar32>(character));
    traits.backward = direction == U_RIGHT_TO_LEFT || direction == U_RIGHT_TO_LEFT_ARABIC;
    traits.clings = direction == U_DIR_NON_SPACING_MARK;
    traits.script = static_cast<std::uint8_t>(script);
    return traits;
}

char32_t drawnCharacter(char32_t character)
{
    const bool separates =
        (character >= 9 && character <= 12) || character == 0x85 || character == 0x2028 || character == 0x2029;
    if (separates)
    {
        return blank;
    }
    return (character >= 0xD800 && character <= 0xDFFF) || character > 0x10FFFF ? replacement : character;
}
} // namespace zb::internal
