// Pictures of dates and times: the device's ("dddd, MMMM d, yyyy", "h:mm:ss tt") as parts, and made from ICU's
// patterns ("EEEE, MMMM d, y", "h:mm:ss a").
#pragma once

#include "platform/types.h"

#include <string>
#include <string_view>
#include <vector>

namespace zb::internal
{
/// One part of a picture: a run of a letter that stands for a field, or text as it is shown.
struct PicturePart
{
    WCHAR letter = 0; ///< 0 for text
    int count = 0;    ///< letters in the run
    std::u16string text;
};

inline constexpr std::u16string_view dateLetters = u"dMyg";
inline constexpr std::u16string_view timeLetters = u"hHmst";

/// The parts of a picture, of whose letters those in `letters` are fields; quotes are resolved. Text parts are never
/// empty and never stand next to each other.
std::vector<PicturePart> partsOf(std::u16string_view picture, std::u16string_view letters);

/// The device's picture of an ICU pattern. Narrow and no-break blanks become plain ones, since engine and users search
/// for those. Fields that the device has no letter for are left out.
std::u16string pictureOf(std::u16string_view icuPattern);

/// The text between the first two fields of a picture: the separator of dates or times, without
/// marks of direction.
std::u16string separatorOf(std::u16string_view picture, std::u16string_view letters);
} // namespace zb::internal
