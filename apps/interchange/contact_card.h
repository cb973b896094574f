// One card of a vCard file as the contact that the device keeps.
#pragma once

#include "interchange/card.h"
#include "interchange/contact_size.h"
#include "interchange/import_report.h"
#include "interchange/named_line.h"
#include "platform/pim.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zb::interchange
{
struct ContactReading
{
    ContactItem item;                    ///< without interchangeId
    bool isGroup = false;                ///< the card stands for a list of others, not for somebody
    std::vector<NamedLine> categories;   ///< each once
    const CardProperty *photo = nullptr; ///< in the card
    std::vector<Finding> findings;       ///< what was read otherwise than it was meant, or had no place left
    std::vector<std::string> lost;       ///< properties that no record holds, each once
    std::vector<Shortening> shortened;   ///< texts that were cut

    /// Nothing that a list could show.
    bool isEmpty() const
    {
        return fileAsOf(item).empty();
    }
};

/// Names in parts come from N, else from FN; what has only a company is filed under it. Numbers go where their kind
/// belongs, preferred ones first, then where there is room, with a finding.
ContactReading readContact(const Card &card);

/// The identity that a card gives itself; empty for none.
std::u16string identityOf(const Card &card);
/// The person that a contact stands for, by name and company, where there is neither by mail address or number. Equal
/// for the same in other letter case.
std::u16string personOf(const ContactItem &item);
} // namespace zb::interchange
