// Values of cards as texts, lists, dates and pictures.
#pragma once

#include "interchange/card.h"
#include "platform/types.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zb::interchange
{
/// Without its escapes. In 2.1 only separators are escaped, so a backslash in front of anything else (a path) stays.
std::u16string cardText(const Card &card, std::string_view raw);
/// The same on one line, without blanks around it.
std::u16string cardLine(const Card &card, std::string_view raw);
/// Parts of a value, escapes and all, split where the separator is not escaped; at least one, and at most 1,000, the
/// last with all that is left.
std::vector<std::string_view> cardParts(const Card &card, std::string_view raw, char separator);

/// A day of a year, or of every year.
struct CardDate
{
    FILETIME day{}; ///< midnight in no zone; without a year in host::yearOfNoYear
    bool hasYear = true;
    bool hasTime = false; ///< a time of day other than midnight was told too
};

/// "1980-03-22", "19800322", with a time of day behind it, "--0412" and "--04-12". `omittedYear` is the year that
/// stands for none, empty for no such year. Nothing for what has no month and day, or is no date.
std::optional<CardDate> readCardDate(std::string_view value, std::string_view omittedYear);

/// Bytes of a picture and the extension of its file with the dot.
struct CardPicture
{
    std::string bytes;
    std::u16string extension;
};

enum class PictureFault
{
    None,
    Link,   ///< lies somewhere else
    Unknown ///< no kind of picture that the device shows, or broken
};

/// The extension stands empty when `fault` is set. Kinds are known by their first bytes.
CardPicture readCardPicture(const CardProperty &property, PictureFault &fault);
} // namespace zb::interchange
