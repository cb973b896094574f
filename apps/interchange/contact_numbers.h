// Where the telephone numbers of a card go in a contact.
#pragma once

#include "interchange/import_report.h"
#include "platform/pim.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zb::interchange
{
enum class NumberKind
{
    Work,
    Home,
    Mobile,
    WorkFax,
    HomeFax,
    Fax,
    Pager,
    Car,
    Radio,
    Assistant,
    Unknown
};

struct CardNumber
{
    NumberKind kind = NumberKind::Unknown;
    std::u16string text;
    std::string label;      ///< what the card calls its kind, for messages
    std::size_t rank = 0;   ///< lower ones are preferred
    bool preferred = false; ///< the card says so
    std::size_t line = 0;
};

/// The kind that types ("WORK", "FAX") or the label of a number tell, in upper case.
NumberKind numberKindOf(const std::vector<std::string> &types, std::string_view label);

/// Fills the number fields of `item`. First each kind its own fields, preferred numbers first; what is left goes where
/// there is room, and what finds none is left out; both have a finding. Tells the preferred number.
void placeNumbers(std::vector<CardNumber> numbers, ContactItem &item, std::vector<Finding> &findings);
} // namespace zb::interchange
