#include "interchange/item_categories.h"

#include "interchange/calendar_text.h"
#include "interchange/color_names.h"
#include "interchange/content_lines.h"
#include "platform/text.h"
#include "records/CategoryEdit.h"

#include <algorithm>

namespace zb::interchange
{
namespace
{
constexpr std::size_t longestShownName = 80;
} // namespace

void readCategories(const PropertyLine &line, std::vector<NamedLine> &names)
{
    for (const std::string_view part : listParts(line.value))
    {
        std::u16string name = oneLine(unescaped(part));
        const bool known =
            std::any_of(names.begin(), names.end(), [&](const NamedLine &each) { return each.name == name; });
        if (!name.empty() && !known)
        {
            names.push_back({std::move(name), line.line});
        }
    }
}

ItemCategories::ItemCategories(ImportReport &report) : m_report(report)
{
}

std::vector<BYTE> ItemCategories::bitsOf(const std::vector<NamedLine> &names)
{
    if (names.empty())
    {
        return {};
    }
    if (!m_book)
    {
        m_book.emplace();
    }
    std::vector<SHORT> ids;
    for (const NamedLine &category : names)
    {
        if (const std::optional<SHORT> id = m_book->find(category.name))
        {
            ids.push_back(*id);
        }
        else
        {
            m_report.find(category.line, "the category \"" +
                                             toUtf8(std::u16string_view(category.name).substr(0, longestShownName)) +
                                             "\" can't be kept: it has no possible name, or there are too many");
        }
    }
    m_report.categories = m_book->added();
    return categoryBits(ids);
}

std::vector<BYTE> ItemCategories::bitsOf(const CalendarComponent &event)
{
    // Asked again for every day of an event that is unrolled.
    if (event.more.empty() || event.line == m_lastEvent)
    {
        return event.more.empty() ? std::vector<BYTE>() : m_lastBits;
    }
    std::vector<NamedLine> names;
    for (const PropertyLine &line : event.more)
    {
        if (line.name == "CATEGORIES")
        {
            readCategories(line, names);
        }
    }
    noteColor(event, names);
    m_lastEvent = event.line;
    m_lastBits = bitsOf(names);
    return m_lastBits;
}

void ItemCategories::noteColor(const CalendarComponent &event, const std::vector<NamedLine> &names)
{
    const auto found = std::find_if(event.more.begin(), event.more.end(),
                                    [](const PropertyLine &line) { return line.name == "COLOR"; });
    if (found == event.more.end())
    {
        return;
    }
    const std::optional<COLORREF> color = colorOf(found->value);
    if (!color)
    {
        m_report.find(found->line, "the colour \"" + shown(found->value, longestShownName) + "\" is none that is known");
    }
    else if (names.empty())
    {
        ++m_report.lostColors;
    }
    else
    {
        m_colors.emplace(names.front().name, *color);
    }
}

void ItemCategories::saveColors()
{
    for (const auto &[name, color] : m_colors)
    {
        if (categoryColor(name.c_str()) == 0)
        {
            setCategoryColor(name.c_str(), color);
        }
    }
}
} // namespace zb::interchange
