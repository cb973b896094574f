#include "interchange/card_roles.h"

#include <algorithm>
#include <array>

namespace zb::interchange
{
namespace
{
struct NamedRole
{
    std::string_view name;
    CardRole role;
};

// In order of the names.
constexpr std::array namedRoles = {
    NamedRole{"ADR", CardRole::Address},
    NamedRole{"AGENT", CardRole::Silent}, // its card is looked at by itself
    NamedRole{"ANNIVERSARY", CardRole::Anniversary},
    NamedRole{"BDAY", CardRole::Birthday},
    NamedRole{"CATEGORIES", CardRole::Categories},
    NamedRole{"CLASS", CardRole::Class},
    NamedRole{"CLIENTPIDMAP", CardRole::Silent},
    NamedRole{"EMAIL", CardRole::Email},
    NamedRole{"FN", CardRole::FormattedName},
    NamedRole{"KIND", CardRole::Kind},
    NamedRole{"LABEL", CardRole::AddressText},
    NamedRole{"MAILER", CardRole::Silent},
    NamedRole{"N", CardRole::Name},
    NamedRole{"NAME", CardRole::Silent},
    NamedRole{"NOTE", CardRole::Note},
    NamedRole{"ORG", CardRole::Organization},
    NamedRole{"PHOTO", CardRole::Photo},
    NamedRole{"PRODID", CardRole::Silent},
    NamedRole{"PROFILE", CardRole::Silent},
    NamedRole{"RELATED", CardRole::Related},
    NamedRole{"REV", CardRole::Silent},
    NamedRole{"ROLE", CardRole::Profession},
    NamedRole{"SOURCE", CardRole::Silent},
    NamedRole{"TEL", CardRole::Phone},
    NamedRole{"TITLE", CardRole::JobTitle},
    NamedRole{"UID", CardRole::Silent},
    NamedRole{"URL", CardRole::WebPage},
    NamedRole{"VERSION", CardRole::Silent},
    NamedRole{"X-ABADR", CardRole::Silent}, // how to lay an address out
    NamedRole{"X-ABDATE", CardRole::LabelledDate},
    NamedRole{"X-ABLABEL", CardRole::Label},
    NamedRole{"X-ABRELATEDNAMES", CardRole::LabelledName},
    NamedRole{"X-ABSHOWAS", CardRole::ShowAs},
    NamedRole{"X-ABUID", CardRole::Silent},
    NamedRole{"X-ADDRESSBOOKSERVER-KIND", CardRole::Kind},
    NamedRole{"X-ANDROID-CUSTOM", CardRole::AndroidCustom},
    NamedRole{"X-ANNIVERSARY", CardRole::Anniversary},
    NamedRole{"X-ASSISTANT", CardRole::Assistant},
    NamedRole{"X-ASSISTANT-PHONE", CardRole::AssistantPhone},
    NamedRole{"X-ASSISTANT-TEL", CardRole::AssistantPhone},
    NamedRole{"X-CHILD", CardRole::Child},
    NamedRole{"X-CHILDREN", CardRole::Child},
    NamedRole{"X-EVOLUTION-ANNIVERSARY", CardRole::Anniversary},
    NamedRole{"X-EVOLUTION-ASSISTANT", CardRole::Assistant},
    NamedRole{"X-EVOLUTION-FILE-AS", CardRole::FileAs},
    NamedRole{"X-EVOLUTION-OFFICE", CardRole::Office},
    NamedRole{"X-EVOLUTION-SPOUSE", CardRole::Spouse},
    NamedRole{"X-FILE-AS", CardRole::FileAs},
    NamedRole{"X-KADDRESSBOOK-X-ANNIVERSARY", CardRole::Anniversary},
    NamedRole{"X-KADDRESSBOOK-X-ASSISTANTSNAME", CardRole::Assistant},
    NamedRole{"X-KADDRESSBOOK-X-OFFICE", CardRole::Office},
    NamedRole{"X-KADDRESSBOOK-X-SPOUSESNAME", CardRole::Spouse},
    NamedRole{"X-MS-ANNIVERSARY", CardRole::Anniversary},
    NamedRole{"X-MS-ASSISTANT", CardRole::Assistant},
    NamedRole{"X-MS-CHILD", CardRole::Child},
    NamedRole{"X-MS-CHILDREN", CardRole::Child},
    NamedRole{"X-MS-OL-DEFAULT-POSTAL-ADDRESS", CardRole::Silent},
    NamedRole{"X-MS-SPOUSE", CardRole::Spouse},
    NamedRole{"X-MS-TEL", CardRole::Phone},
    NamedRole{"X-OFFICE", CardRole::Office},
    NamedRole{"X-SPOUSE", CardRole::Spouse},
    NamedRole{"X-ZB-RECORD", CardRole::Silent}, // what only our records hold
    NamedRole{"XML", CardRole::Lost},
};

constexpr bool isBefore(const NamedRole &a, const NamedRole &b)
{
    return a.name < b.name;
}
static_assert(std::is_sorted(namedRoles.begin(), namedRoles.end(), isBefore));
} // namespace

CardRole cardRoleOf(std::string_view name)
{
    const NamedRole key{name, CardRole::Lost};
    const auto *const found = std::lower_bound(namedRoles.begin(), namedRoles.end(), key, isBefore);
    return found != namedRoles.end() && found->name == name ? found->role : CardRole::Lost;
}

std::string_view plainLabel(std::string_view upperCaseLabel)
{
    constexpr std::string_view head = "_$!<";
    constexpr std::string_view tail = ">!$_";
    const bool own = upperCaseLabel.size() >= head.size() + tail.size() &&
                     upperCaseLabel.substr(0, head.size()) == head &&
                     upperCaseLabel.substr(upperCaseLabel.size() - tail.size()) == tail;
    return own ? upperCaseLabel.substr(head.size(), upperCaseLabel.size() - head.size() - tail.size()) : upperCaseLabel;
}

CardRole relationOf(std::string_view word)
{
    const auto isOne = [&](std::initializer_list<std::string_view> words)
    { return std::find(words.begin(), words.end(), word) != words.end(); };
    if (isOne({"SPOUSE", "PARTNER", "HUSBAND", "WIFE", "DOMESTIC-PARTNER", "DOMESTICPARTNER"}))
    {
        return CardRole::Spouse;
    }
    if (isOne({"CHILD", "CHILDREN", "SON", "DAUGHTER"}))
    {
        return CardRole::Child;
    }
    return isOne({"ASSISTANT", "AGENT"}) ? CardRole::Assistant : CardRole::Lost;
}
} // namespace zb::interchange
