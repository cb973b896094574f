// zb categories: the device's categories, listed and changed.
#include "common/complain.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "common/visible_text.h"
#include "platform/text.h"
#include "records/CategoryEdit.h"
#include "records/FullCategories.h"
#include "zb/bad_usage.h"
#include "zb/commands.h"
#include "zb/item_words.h"
#include "zb/json.h"
#include "zb/recorded.h"
#include "zb/terminal.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include <optional>

namespace zb::cli
{
using namespace host;

namespace
{
struct Category
{
    std::u16string name;
    int id = 0;
    COLORREF color = 0; ///< 0: none
    DWORD uses = 0;
    bool active = true;
    bool offered = true;
};

std::vector<Category> categories()
{
    CePtrList<CFullCategory *> all(0, CEOWN_DELETE);
    GetFullCategoryInfo(all, true);
    const std::vector<DWORD> uses = countCategoryUses();
    std::vector<Category> found;
    for (int n = 0; n < all.GetCount(); ++n)
    {
        const CFullCategory &entry = *all.GetAt(n);
        const bool counted = entry.m_nId >= 0 && static_cast<std::size_t>(entry.m_nId) < uses.size();
        const DWORD count = counted ? uses[static_cast<std::size_t>(entry.m_nId)] : 0;
        found.push_back({entry.m_pszName, entry.m_nId, categoryColor(entry.m_pszName), count, entry.m_nActive != 0,
                         entry.m_bShown});
    }
    return found;
}

std::string colorText(COLORREF color)
{
    char text[8];
    std::snprintf(text, sizeof text, "#%02X%02X%02X", color & 0xFFU, color >> 8U & 0xFFU, color >> 16U & 0xFFU);
    return text;
}

/// "#RRGGBB" with red in the low byte; nothing for an empty text or "none".
COLORREF parsedColor(const std::string &text)
{
    if (text.empty() || text == "none")
    {
        return 0;
    }
    const char *const first = text.data() + (text.front() == '#' ? 1 : 0);
    const char *const last = text.data() + text.size();
    DWORD number = 0;
    const auto [end, error] = std::from_chars(first, last, number, 16);
    if (error != std::errc() || end != last || last - first != 6)
    {
        throw BadUsage("a colour is written #RRGGBB, like #2E8B57");
    }
    if (number == 0)
    {
        throw BadUsage("black stands for no colour; #010101 looks the same");
    }
    return (number & 0xFFU) << 16U | (number & 0xFF00U) | number >> 16U;
}

Json asJson(const Category &category)
{
    return {{"id", category.id},
            {"name", toUtf8(category.name)},
            {"color", category.color != 0 ? Json(colorText(category.color)) : Json(nullptr)},
            {"uses", category.uses},
            {"active", category.active},
            {"offered", category.offered}};
}

void printList(const std::vector<Category> &all, Output &output)
{
    const Terminal terminal(stdout);
    if (all.empty())
    {
        complain("there are no categories yet; \"zb categories add NAME\" makes one");
        return;
    }
    output.line(terminal.styled("  id  colour     uses  name", Style::Heading));
    for (const Category &category : all)
    {
        char numbers[64];
        std::snprintf(numbers, sizeof numbers, "%4d  %-7s %8u  ", category.id,
                      category.color != 0 ? colorText(category.color).c_str() : "-", category.uses);
        const std::string remark = !category.active ? " (deleted, number kept)" : category.offered ? "" : " (hidden)";
        output.line(numbers + terminal.styled(visibleText(category.name), category.active ? Style::Plain : Style::Dim) +
                    terminal.styled(remark, Style::Dim));
    }
}

int list(const CategoriesArguments &arguments, Output &output)
{
    const std::vector<Category> all = categories();
    if (arguments.json)
    {
        Json entries = Json::array();
        std::transform(all.begin(), all.end(), std::back_inserter(entries), asJson);
        output.line(text({{"version", jsonVersion}, {"categories", entries}}));
    }
    else
    {
        printList(all, output);
    }
    return exitOk;
}

/// The exit code of a change that was made; what was refused is thrown.
int codeOf(CategoryChange change, const std::string &name)
{
    switch (change)
    {
    case CategoryChange::Done:
        return exitOk;
    case CategoryChange::BadName:
        throw BadUsage("the name of a category is 1 to 900 characters without commas, semicolons and line ends");
    case CategoryChange::Exists:
        throw BadUsage("there is a category \"" + name + "\" already");
    case CategoryChange::NotFound:
        throw BadUsage("there is no category \"" + name + "\"; \"zb categories\" shows what there is");
    case CategoryChange::Full:
        throw BadUsage("all 8192 categories are taken");
    case CategoryChange::Failed:
        break;
    }
    complain("the categories could not be written");
    return exitDevice;
}

int saveColor(const std::u16string &name, COLORREF color)
{
    if (name.find(u'=') != std::u16string::npos)
    {
        throw BadUsage("a category with \"=\" in its name can't have a colour");
    }
    if (setCategoryColor(name.c_str(), color))
    {
        return exitOk;
    }
    complain("the colour could not be written");
    return exitDevice;
}

int add(const CategoriesArguments &arguments, Output &output)
{
    const COLORREF color = parsedColor(arguments.color);
    const std::u16string name = toUtf16(trimmed(arguments.name)); // items take names without the blanks around them
    if (color != 0 && name.find(u'=') != std::u16string::npos)
    {
        return saveColor(name, color); // refused before the category is made
    }
    SHORT id = 0;
    const int code = codeOf(addCategory(name.c_str(), &id), arguments.name);
    if (code == exitOk)
    {
        output.line(std::to_string(id));
    }
    return code == exitOk && color != 0 ? saveColor(name, color) : code;
}

int rename(const CategoriesArguments &arguments)
{
    const std::u16string newName = toUtf16(trimmed(arguments.newName));
    const CategoryChange change = renameCategory(toUtf16(arguments.name).c_str(), newName.c_str());
    return codeOf(change, change == CategoryChange::Exists ? arguments.newName : arguments.name);
}

/// The active category of that name.
Category require(const std::string &name)
{
    const std::vector<Category> all = categories();
    const std::u16string wanted = toUtf16(name);
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const Category &entry) { return entry.active && entry.name == wanted; });
    if (found == all.end())
    {
        codeOf(CategoryChange::NotFound, name);
    }
    return *found;
}

int color(const CategoriesArguments &arguments)
{
    const COLORREF color = parsedColor(arguments.color);
    return saveColor(require(arguments.name).name, color);
}

int remove(const CategoriesArguments &arguments)
{
    const Category category = require(arguments.name);
    if (category.uses != 0 && !arguments.yes && !arguments.retire)
    {
        throw BadUsage("\"" + arguments.name + "\" is used by " + std::to_string(category.uses) +
                          (category.uses == 1 ? " item" : " items") +
                          ": --retire deletes it and keeps its number, --yes frees the number for a new category, "
                          "which these items would then show");
    }
    const UsedCategory answer = arguments.retire ? UsedCategory::Retire : UsedCategory::Delete;
    return codeOf(deleteCategory(
                      category.name.c_str(), [answer] { return answer; }, category.uses),
                  arguments.name);
}

/// What the change is called; null for one that changes nothing.
const char *wordFor(CategoriesAction action)
{
    switch (action)
    {
    case CategoriesAction::Add:
        return "add";
    case CategoriesAction::Rename:
        return "rename";
    case CategoriesAction::Color:
        return "colour";
    case CategoriesAction::Delete:
        return "delete";
    default:
        return nullptr;
    }
}

int changeOrList(const CategoriesArguments &arguments, Output &output)
{
    switch (arguments.action)
    {
    case CategoriesAction::Add:
        return add(arguments, output);
    case CategoriesAction::Rename:
        return rename(arguments);
    case CategoriesAction::Color:
        return color(arguments);
    case CategoriesAction::Delete:
        return remove(arguments);
    default:
        return list(arguments, output);
    }
}
} // namespace

int runCategories(const CategoriesArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    Output output;
    std::optional<Recorded> recorded;
    if (const char *const word = wordFor(arguments.action))
    {
        recorded.emplace(std::string(word) + " category " + quoted(arguments.name));
    }
    const int code = changeOrList(arguments, output);
    recorded.reset();
    return output.finish() ? code : exitOutput;
}
} // namespace zb::cli
