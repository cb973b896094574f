#include "interchange/contact_numbers.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace zb::interchange
{
namespace
{
struct NumberField
{
    std::u16string ContactItem::*text;
    CEPROPID id;
    const char *words;
};

constexpr NumberField business{&ContactItem::businessPhone, contactBusinessPhone, "business number"};
constexpr NumberField business2{&ContactItem::business2Phone, contactBusiness2Phone, "second business number"};
constexpr NumberField businessFax{&ContactItem::businessFax, contactBusinessFax, "business fax"};
constexpr NumberField home{&ContactItem::homePhone, contactHomePhone, "home number"};
constexpr NumberField home2{&ContactItem::home2Phone, contactHome2Phone, "second home number"};
constexpr NumberField homeFax{&ContactItem::homeFax, contactHomeFax, "home fax"};
constexpr NumberField mobile{&ContactItem::mobilePhone, contactMobilePhone, "mobile number"};
constexpr NumberField car{&ContactItem::carPhone, contactCarPhone, "car number"};
constexpr NumberField radio{&ContactItem::radioPhone, contactRadioPhone, "radio number"};
constexpr NumberField pager{&ContactItem::pager, contactPager, "pager"};
constexpr NumberField assistant{&ContactItem::assistantPhone, contactAssistantPhone, "assistant's number"};

using Fields = std::vector<NumberField>;

Fields ownFields(NumberKind kind)
{
    switch (kind)
    {
    case NumberKind::Work:
        return {business, business2};
    case NumberKind::Home:
        return {home, home2};
    case NumberKind::Mobile:
        return {mobile};
    case NumberKind::WorkFax:
        return {businessFax};
    case NumberKind::HomeFax:
        return {homeFax};
    case NumberKind::Fax:
        return {businessFax, homeFax};
    case NumberKind::Pager:
        return {pager};
    case NumberKind::Car:
        return {car};
    case NumberKind::Radio:
        return {radio};
    case NumberKind::Assistant:
        return {assistant};
    case NumberKind::Unknown:
        break;
    }
    return {};
}

/// Where else a number may go. A second mobile is nearest to a car's; faxes stay with faxes.
Fields otherFields(NumberKind kind, const ContactItem &item)
{
    const bool isCompany = item.firstName.empty() && item.lastName.empty() && !item.company.empty();
    switch (kind)
    {
    case NumberKind::WorkFax:
    case NumberKind::HomeFax:
        return {businessFax, homeFax};
    case NumberKind::Mobile:
        return {car, home2, business2, home, business, radio};
    case NumberKind::Work:
    case NumberKind::Assistant:
        return {home2, home, car, radio};
    case NumberKind::Home:
        return {business2, business, car, radio};
    case NumberKind::Unknown:
        return isCompany ? Fields{business, business2, home, home2, mobile, car, radio}
                         : Fields{home, home2, business, business2, mobile, car, radio};
    default:
        return {car, radio, home2, business2};
    }
}

std::string quoted(const CardNumber &number)
{
    constexpr std::size_t longest = 60;
    const std::u16string text = number.text.substr(0, longest);
    const std::u16string label = toUtf16(number.label).substr(0, longest);
    return "\"" + toUtf8(std::u16string_view(text)) + "\"" +
           (label.empty() ? "" : " (" + toUtf8(std::u16string_view(label)) + ")");
}

/// What the field is called where the number has its place now, the first free one or one that it stands in already;
/// null for none.
const char *place(const CardNumber &number, const Fields &fields, ContactItem &item)
{
    for (const NumberField &field : fields)
    {
        std::u16string &text = item.*field.text;
        if (text.empty() || text == number.text)
        {
            text = number.text;
            if (number.preferred && !item.preferredNumber)
            {
                item.preferredNumber = field.id;
            }
            return field.words;
        }
    }
    return nullptr;
}

bool isHeld(const CardNumber &number, const Fields &fields, const ContactItem &item)
{
    return std::any_of(fields.begin(), fields.end(),
                       [&](const NumberField &field) { return item.*field.text == number.text; });
}

bool hasOne(const std::vector<std::string> &types, std::string_view label,
            std::initializer_list<std::string_view> words)
{
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word)
                       { return label == word || std::find(types.begin(), types.end(), word) != types.end(); });
}
} // namespace

NumberKind numberKindOf(const std::vector<std::string> &types, std::string_view label)
{
    const auto has = [&](std::initializer_list<std::string_view> words) { return hasOne(types, label, words); };
    if (has({"FAX", "HOMEFAX", "WORKFAX", "OTHERFAX", "HOME FAX", "WORK FAX", "BUSINESS FAX"}))
    {
        return has({"HOME", "HOMEFAX", "HOME FAX"})                   ? NumberKind::HomeFax
               : has({"WORK", "WORKFAX", "WORK FAX", "BUSINESS FAX"}) ? NumberKind::WorkFax
                                                                      : NumberKind::Fax;
    }
    if (has({"PAGER"}))
    {
        return NumberKind::Pager;
    }
    if (has({"X-EVOLUTION-ASSISTANT", "X-ASSISTANT", "ASSISTANT"}))
    {
        return NumberKind::Assistant;
    }
    if (has({"CAR"}))
    {
        return NumberKind::Car;
    }
    if (has({"X-EVOLUTION-RADIO", "X-RADIO", "RADIO"}))
    {
        return NumberKind::Radio;
    }
    if (has({"CELL", "IPHONE", "MOBILE", "X-MOBILE"}))
    {
        return NumberKind::Mobile;
    }
    if (has({"WORK", "MAIN", "COMPANY", "X-EVOLUTION-COMPANY", "BUSINESS"}))
    {
        return NumberKind::Work;
    }
    return has({"HOME"}) ? NumberKind::Home : NumberKind::Unknown;
}

void placeNumbers(std::vector<CardNumber> numbers, ContactItem &item, std::vector<Finding> &findings)
{
    std::stable_sort(numbers.begin(), numbers.end(), [](const auto &a, const auto &b) { return a.rank < b.rank; });
    std::vector<const CardNumber *> left;
    for (const CardNumber &number : numbers)
    {
        if (place(number, ownFields(number.kind), item) == nullptr)
        {
            left.push_back(&number);
        }
    }
    for (const CardNumber *number : left)
    {
        const Fields fields = otherFields(number->kind, item);
        if (isHeld(*number, fields, item))
        {
            continue;
        }
        const char *const words = place(*number, fields, item);
        findings.push_back({number->line, "the number " + quoted(*number) +
                                              (words != nullptr ? std::string(" came in as ") + words
                                                                : " was left out: no place is left for it")});
    }
}
} // namespace zb::interchange
