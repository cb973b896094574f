// What the properties of cards mean to a contact, the forms of the big exporters among them.
#pragma once

#include <string_view>

namespace zb::interchange
{
enum class CardRole
{
    Lost,   ///< no record has a place for it
    Silent, ///< says nothing about the contact
    Name,
    FormattedName,
    FileAs,
    Organization,
    JobTitle,
    Profession,
    Office,
    Phone,
    AssistantPhone,
    Email,
    Address,
    AddressText,
    WebPage,
    Birthday,
    Anniversary,
    LabelledDate,
    Spouse,
    Child,
    Assistant,
    Related,
    LabelledName,
    AndroidCustom,
    Categories,
    Note,
    Photo,
    Label,
    Kind,
    Class,
    ShowAs
};

/// By the upper-case name of a property.
CardRole cardRoleOf(std::string_view name);

/// "_$!<Anniversary>!$_" is "ANNIVERSARY"; labels that somebody wrote are as they are, in upper case.
std::string_view plainLabel(std::string_view upperCaseLabel);
/// Who somebody is by such a label or the type of a relation: Spouse, Child, Assistant, else Lost.
CardRole relationOf(std::string_view word);
} // namespace zb::interchange
