#include "common/category_words.h"

#include "records/CCategoryColor.h"

#include <algorithm>
#include <string_view>

namespace zb::host
{
std::vector<std::u16string> categoryNames(const WCHAR *categories)
{
    std::vector<std::u16string> names;
    std::u16string_view rest = categories == nullptr ? std::u16string_view() : std::u16string_view(categories);
    while (!rest.empty())
    {
        const std::size_t end = std::min(rest.find(u", "), rest.size());
        if (end != 0 && rest.front() != u'~')
        {
            names.emplace_back(rest.substr(0, end));
        }
        rest.remove_prefix(std::min(end + 2, rest.size()));
    }
    return names;
}

std::optional<COLORREF> categoriesColor(const WCHAR *categories)
{
    CCategoryColor::InitCategoryColors();
    const COLORREF color = CCategoryColor::GetCategoryColorCR(categories);
    return color == NO_CATEGORY_COLOR ? std::nullopt : std::optional(color);
}
} // namespace zb::host
