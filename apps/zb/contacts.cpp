// zb contacts: the contacts, flat or as trees, searched as a list on the device searches.
#include "common/category_words.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "common/visible_text.h"
#include "contacts/CContactsThread.h"
#include "platform/text.h"
#include "zb/commands.h"
#include "zb/json.h"
#include "zb/property_text.h"
#include "zb/task_list_load.h"
#include "zb/terminal.h"

#include <algorithm>
#include <set>

namespace zb::cli
{
using namespace host;

namespace
{
struct Group
{
    std::string name; ///< empty in a flat list
    std::vector<const DATACONTACTS *> contacts;
};

bool isTree(LONG display)
{
    return display != contactsFirstName && display != contactsLastName && display != contactsFileAs;
}

const char *displayWord(LONG display)
{
    switch (display)
    {
    case contactsFirstName:
        return "first";
    case contactsLastName:
        return "last";
    case contactsFileAs:
        return "name";
    case contactsCategories:
        return "category";
    default:
        return "company";
    }
}

/// The list's settings with the choice on top; the store stays as it is.
ContactListSettings settingsFor(const ContactsArguments &arguments)
{
    ContactListSettings settings = ContactListSettings::read(CContactsThread::SETTINGS_KEY);
    settings.CV_DisplayFormat =
        static_cast<LONG>(arguments.display.value_or(static_cast<DWORD>(settings.CV_DisplayFormat)));
    settings.OpenOnCompare = 1;
    if (arguments.categories.isMade())
    {
        settings.bHideCategories = static_cast<ULONG>(arguments.categories.mode());
        settings.CategoryANDOR = arguments.categories.all ? 1 : 0;
        settings.m_bIncludeNoCat = 0;
    }
    return settings;
}

void load(CContactsThread &loader, const ContactsArguments &arguments)
{
    loader.m_ownSettings = settingsFor(arguments);
    CCategoryFilterInfo *restriction = nullptr;
    loader.GetCategoryRestrict(restriction);
    selectCategories(arguments.categories, *restriction);
    loader.SetCategoryRestrict(false);
    loader.SetCompareString(toUtf16(arguments.text).c_str(), arguments.deep);
    loader.LoadContacts(nullptr);
    // A search has opened what has hits; without one all nodes are closed.
    std::vector<LONG> closed;
    for (int n = 1; n <= loader.GetList().GetDisplayCount(); ++n)
    {
        const DATACONTACTS &row = *loader.GetList().GetAt(n);
        if (row.m_bHeader && !row.m_bOpen)
        {
            closed.push_back(row.m_nSortGroup);
        }
    }
    for (const LONG node : closed)
    {
        loader.ListTreeContacts(node, node, false);
    }
}

std::vector<Group> groupsOf(CContactsThread &loader)
{
    std::vector<Group> groups;
    for (int n = 1; n <= loader.GetList().GetDisplayCount(); ++n)
    {
        const DATACONTACTS *row = loader.GetList().GetAt(n);
        if (row->m_bHeader)
        {
            groups.push_back({toUtf8(row->m_pszName), {}});
            continue;
        }
        if (groups.empty())
        {
            groups.emplace_back();
        }
        groups.back().contacts.push_back(row);
    }
    return groups;
}

// --- JSON --------------------------------------------------------------------------------------------------------

Json asJson(const DATACONTACTS &row)
{
    Json categories = Json::array();
    for (const std::u16string &name : categoryNames(row.m_pszCategories))
    {
        categories.push_back(toUtf8(std::u16string_view(name)));
    }
    return {{"id", row.m_oid},
            {"name", toUtf8(row.m_pszName)},
            {"detail", toUtf8(row.m_pszDetail)},
            {"detailProperty", row.m_propDetail == 0 ? Json() : Json(propertyId(row.m_propDetail))},
            {"notes", row.m_bHasNotes != 0},
            {"links", row.m_bHasLinks != 0},
            {"journal", row.m_bHasJournal != 0},
            {"categories", categories}};
}

Json asJson(const std::vector<Group> &groups, LONG display)
{
    Json json = {{"version", jsonVersion}, {"display", displayWord(display)}, {"groups", Json::array()}};
    for (const Group &group : groups)
    {
        Json contacts = Json::array();
        for (const DATACONTACTS *row : group.contacts)
        {
            contacts.push_back(asJson(*row));
        }
        json["groups"].push_back({{"name", group.name}, {"contacts", contacts}});
    }
    return json;
}

// --- Text --------------------------------------------------------------------------------------------------------

std::string visible(const WCHAR *text)
{
    return text == nullptr ? std::string() : visibleText(text);
}

/// Contacts that are told, each once however many groups it stands in.
std::string countText(const std::vector<Group> &groups)
{
    std::set<CEOID> seen;
    for (const Group &group : groups)
    {
        for (const DATACONTACTS *row : group.contacts)
        {
            seen.insert(row->m_oid);
        }
    }
    return seen.empty() ? "No contacts" : std::to_string(seen.size()) + (seen.size() == 1 ? " contact" : " contacts");
}

class ContactPrinter
{
  public:
    ContactPrinter(bool withIds, Output &output) : m_withIds(withIds), m_output(output), m_terminal(stdout)
    {
    }

    void print(const std::vector<Group> &groups, bool tree)
    {
        m_output.line(countText(groups));
        for (const Group &group : groups)
        {
            for (const DATACONTACTS *row : group.contacts)
            {
                m_idColumns = std::max(m_idColumns, m_withIds ? columnsOf(std::to_string(row->m_oid)) + 2 : 0);
            }
        }
        for (const Group &group : groups)
        {
            m_output.line("");
            if (tree)
            {
                m_output.line(m_terminal.styled(visibleText(toUtf16(group.name)), Style::Heading) +
                              m_terminal.styled(" (" + std::to_string(group.contacts.size()) + ")", Style::Dim));
            }
            printContacts(group.contacts);
        }
    }

  private:
    static constexpr int widestNames = 32;

    void printContacts(const std::vector<const DATACONTACTS *> &contacts)
    {
        int names = 0;
        for (const DATACONTACTS *row : contacts)
        {
            names = std::max(names, std::min(columnsOf(visible(row->m_pszName)), widestNames));
        }
        for (const DATACONTACTS *row : contacts)
        {
            const std::string detail = visible(row->m_pszDetail);
            const std::string categories = visible(row->m_pszCategories);
            const std::string more = categories.empty() ? "" : (detail.empty() ? "" : "  ") + categories;
            const std::string name = visible(row->m_pszName);
            const std::string id = m_idColumns == 0 ? "" : padded(std::to_string(row->m_oid), m_idColumns);
            const std::string head = "  " + m_terminal.styled(id, Style::Dim);
            const int taken = m_idColumns + names + 4;
            if (detail.empty() && more.empty())
            {
                m_output.line(head + fit(name, m_idColumns + 2));
                continue;
            }
            const std::string shownMore = m_terminal.styled(fit(more, taken + columnsOf(detail)), Style::Dim);
            m_output.line(head + padded(name, names) + "  " + fit(detail, taken) + shownMore);
        }
    }
    /// What fits behind the columns that are taken; all of it where there is no terminal.
    std::string fit(const std::string &text, int taken) const
    {
        return m_terminal.width() == 0 ? text : fitted(text, m_terminal.width() - taken);
    }

    bool m_withIds;
    int m_idColumns = 0; ///< with the blanks behind; 0 without ids
    Output &m_output;
    Terminal m_terminal;
};
} // namespace

int runContacts(const ContactsArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    CContactsThread loader;
    load(loader, arguments);
    const std::vector<Group> groups = groupsOf(loader);
    const LONG display = loader.GetSettings().CV_DisplayFormat;
    Output output;
    if (arguments.json)
    {
        output.line(text(asJson(groups, display)));
    }
    else
    {
        ContactPrinter(arguments.ids, output).print(groups, isTree(display));
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
