// A card of a vCard file as its reader hands it out: every property with its group, parameters and value, in the order
// of the file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zb::interchange
{
struct CardParameter
{
    std::string name;                ///< upper case; TYPE, ENCODING or VALUE for one that was written without a name
    std::vector<std::string> values; ///< without quotes
};

enum class TransferEncoding
{
    None,
    QuotedPrintable,
    Base64
};

struct CardProperty
{
    std::string group; ///< "item1" of "item1.TEL"; empty for none
    std::string name;  ///< upper case
    std::vector<CardParameter> parameters;
    std::vector<std::string> types; ///< all values of TYPE parameters, upper case
    /// UTF-8, quoted-printable undone, with the escapes of the format. Of a binary value (see isBinary) its base64
    /// digits, blanks taken out.
    std::string value;
    bool isBinary = false;
    bool cut = false; ///< longer than is read
    std::size_t line = 0;

    bool hasType(std::string_view type) const;
    /// First value of a parameter; empty when there is none.
    std::string_view parameter(std::string_view parameterName) const;
};

struct Card
{
    std::string version;    ///< as written: "2.1", "3.0", "4.0"; empty when the card does not say
    std::size_t line = 0;   ///< of its BEGIN
    bool unended = false;   ///< its END is missing; another card follows
    bool oversized = false; ///< has more properties or text than are read
    std::vector<CardProperty> properties;
    std::vector<Card> agents;        ///< cards inside it
    std::size_t otherComponents = 0; ///< things inside it that are no cards, passed over

    /// 2.1 has no escapes but that of the semicolon.
    bool isVersion21() const
    {
        return !version.empty() && version.front() == '2';
    }
    /// The first property of this name; null when there is none.
    const CardProperty *find(std::string_view name) const;
};

/// Upper case by ASCII.
std::string upperCase(std::string_view text);
} // namespace zb::interchange
