#include "display/HTMLEntities.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace zb
{
namespace
{
using Text = std::u16string_view;

struct Name
{
    Text name;
    int code;
};

constexpr Text markNames[] = {u"quot", u"amp", u"lt", u"gt"};
constexpr int markCodes[] = {34, 38, 60, 62};

/// From 160 to 255.
constexpr Text latinNames[] = {
    u"nbsp",   u"iexcl",  u"cent",   u"pound",  u"curren", u"yen",    u"brvbar", u"sect",   u"uml",    u"copy",
    u"ordf",   u"laquo",  u"not",    u"shy",    u"reg",    u"macr",   u"deg",    u"plusmn", u"sup2",   u"sup3",
    u"acute",  u"micro",  u"para",   u"middot", u"cedil",  u"sup1",   u"ordm",   u"raquo",  u"frac14", u"frac12",
    u"frac34", u"iquest", u"Agrave", u"Aacute", u"Acirc",  u"Atilde", u"Auml",   u"Aring",  u"AElig",  u"Ccedil",
    u"Egrave", u"Eacute", u"Ecirc",  u"Euml",   u"Igrave", u"Iacute", u"Icirc",  u"Iuml",   u"ETH",    u"Ntilde",
    u"Ograve", u"Oacute", u"Ocirc",  u"Otilde", u"Ouml",   u"times",  u"Oslash", u"Ugrave", u"Uacute", u"Ucirc",
    u"Uuml",   u"Yacute", u"THORN",  u"szlig",  u"agrave", u"aacute", u"acirc",  u"atilde", u"auml",   u"aring",
    u"aelig",  u"ccedil", u"egrave", u"eacute", u"ecirc",  u"euml",   u"igrave", u"iacute", u"icirc",  u"iuml",
    u"eth",    u"ntilde", u"ograve", u"oacute", u"ocirc",  u"otilde", u"ouml",   u"divide", u"oslash", u"ugrave",
    u"uacute", u"ucirc",  u"uuml",   u"yacute", u"thorn",  u"yuml"};
constexpr int firstLatin = 160;
static_assert(std::size(latinNames) == 96);

constexpr std::size_t longestName = longestEntity - 2;

constexpr WCHAR asciiLower(WCHAR ch)
{
    return ch >= u'A' && ch <= u'Z' ? static_cast<WCHAR>(ch + 32) : ch;
}

/// Order of the names in small letters.
constexpr bool lessFolded(Text a, Text b)
{
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](WCHAR x, WCHAR y) { return asciiLower(x) < asciiLower(y); });
}

/// All names by their small letters; of equal ones the lower code, which is the one that the list above gives first,
/// stands in front.
constexpr auto sortedNames = []
{
    std::array<Name, std::size(markNames) + std::size(latinNames)> names{};
    std::size_t at = 0;
    for (std::size_t i = 0; i < std::size(markNames); ++i)
    {
        names[at++] = {markNames[i], markCodes[i]};
    }
    for (std::size_t i = 0; i < std::size(latinNames); ++i)
    {
        names[at++] = {latinNames[i], firstLatin + static_cast<int>(i)};
    }
    std::sort(names.begin(), names.end(),
              [](const Name &a, const Name &b)
              { return lessFolded(a.name, b.name) || (!lessFolded(b.name, a.name) && a.code < b.code); });
    return names;
}();

int codeOfName(Text name)
{
    std::array<WCHAR, longestName> folded{};
    std::transform(name.begin(), name.end(), folded.begin(), [](WCHAR ch) { return towlower(ch); });
    const Text wanted(folded.data(), name.size());
    const auto *found = std::lower_bound(sortedNames.begin(), sortedNames.end(), wanted,
                                         [](const Name &entry, Text text) { return lessFolded(entry.name, text); });
    return found != sortedNames.end() && !lessFolded(wanted, found->name) ? found->code : 0;
}

/// The number as the list would write it: no zeros in front, and only of codes that have a name.
int codeOfNumber(Text digits)
{
    if (digits.empty() || digits.size() > 3 || digits.front() == u'0')
    {
        return 0;
    }
    int code = 0;
    for (const WCHAR digit : digits)
    {
        if (digit < u'0' || digit > u'9')
        {
            return 0;
        }
        code = code * 10 + (digit - u'0');
    }
    const bool isMark = std::find(std::begin(markCodes), std::end(markCodes), code) != std::end(markCodes);
    return isMark || (code >= firstLatin && code <= 255) ? code : 0;
}
} // namespace

int entityCode(Text name)
{
    if (name.size() < 3 || name.size() > longestEntity || name.front() != u'&' || name.back() != u';')
    {
        return 0;
    }
    const Text inner = name.substr(1, name.size() - 2);
    return inner.front() == u'#' ? codeOfNumber(inner.substr(1)) : codeOfName(inner);
}
} // namespace zb
