// Categories as text, in and out.
#include "records/CategoryNames.h"

#include "core/CRegistry.h"
#include "core/bstrtools.h"
#include "core/xstrtok.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/pim_objects.h"
#include "platform/text.h"
#include "records/COutlook.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"
#include "records/FullCategories.h"

#include <algorithm>
#include <string>
#include <vector>

namespace
{
constexpr const WCHAR *customViewStore = u"%s\\Kelvo\\ZBCustomViews.reg";
constexpr DWORD choiceReadLength = 7900;

using Tokens = std::vector<std::u16string>;

Tokens split(std::u16string text, WCHAR delimiter)
{
    const WCHAR delimiters[] = {delimiter, 0};
    XSTRTOK state;
    state.m_pszStart = text.data();
    state.m_pszDelimiter = delimiters;
    Tokens tokens;
    while (const WCHAR *token = xstrtok(&state))
    {
        tokens.emplace_back(token);
    }
    return tokens;
}

bool comesBefore(const std::u16string &a, const std::u16string &b)
{
    return lstrcmpW(a.c_str(), b.c_str()) < 0;
}

/// Fills the list with the categories of these names, in the order of the full list.
void takeNamed(CePtrList<CFullCategory *> &list, Tokens names)
{
    GetFullCategoryInfo(list, false);
    std::sort(names.begin(), names.end(), comesBefore);
    for (int i = list.GetLastIndex(); i >= list.GetBase(); --i)
    {
        const WCHAR *name = list.GetAt(i)->m_pszName;
        if (name == nullptr || !std::binary_search(names.begin(), names.end(), std::u16string(name), comesBefore))
        {
            list.RemoveAt(i);
        }
    }
}

bool categoriesCanBeRead()
{
    CeDb db;
    return db.Open(zb::categoriesDatabase, 0, 0, nullptr);
}

/// An item object must not hold what is rewritten beside it. The kind of an item is told by its database's first
/// letter.
void releaseItem(IDispatch **item, WCHAR kind)
{
    if (item == nullptr)
    {
        return;
    }
    if (*item != nullptr && (kind == u'A' || kind == u'C' || kind == u'T'))
    {
        (*item)->Release();
    }
    *item = nullptr;
}

bool writeCategories(const WCHAR *database, CEOID oid, CEBLOB blob)
{
    constexpr CEPROPID property = zb::itemCategories;
    CeDb db;
    CeDbRecord record;
    return db.Open(database, 0, 0, nullptr) && db.SeekTo(oid) == oid && db.ReadRec(record, 1, &property) &&
           record.SetIndexVal(0, blob) && db.UpdateRec(record);
}
} // namespace

void ReadCategory(CePtrList<CFullCategory *> &list, const WCHAR *names)
{
    if (names == nullptr || *names == 0)
    {
        return;
    }
    Tokens tokens = split(names, u',');
    for (std::size_t i = 1; i < tokens.size(); ++i)
    {
        tokens[i].erase(0, 1);
    }
    takeNamed(list, std::move(tokens));
}

bool SaveCategoriesToPIMRecord(const WCHAR *names, IDispatch **item, CEOID oid, bool reload)
{
    const BSTR database = CeDb::GetDatabaseNameFromOID(oid);
    if (database == nullptr || names == nullptr || *names == 0)
    {
        FreeBSTR(database);
        return false;
    }
    releaseItem(item, *database);
    CePtrList<CFullCategory *> list(1, CEOWN_DELETE);
    ReadCategory(list, names);
    CEBLOB blob{};
    Categories2BLOB(&blob, list);
    // No category at all is what a list that could not be read looks like: that must not clear the record.
    const bool known = !list.IsEmpty() || categoriesCanBeRead();
    const bool whole = blob.dwCount == 0 || blob.lpb != nullptr;
    const bool written = known && whole && writeCategories(database, oid, blob);
    LocalFree(blob.lpb);
    FreeBSTR(database);
    if (reload && item != nullptr)
    {
        COutlook().GetItemFromOid(oid, item);
    }
    return written;
}

void ReadCategoryFromRegistry(const WCHAR *key, const WCHAR *value, CePtrList<CFullCategory *> &list, bool customViews)
{
    list.RemoveAll();
    CRegistry store(customViews ? customViewStore : CRegistry::DefaultFile);
    std::vector<WCHAR> text(choiceReadLength + 1);
    if (store.OpenKey(HKEY_CURRENT_USER, key) == 0 &&
        store.QueryValue(value, text.data(), static_cast<DWORD>(text.size())) == 0 && text[0] != 0)
    {
        takeNamed(list, split(text.data(), CATEGORY_CHOICE_SEPARATOR));
    }
}

void SaveCategoryFromRegistry(const WCHAR *key, const WCHAR *value, CePtrList<CFullCategory *> &list)
{
    std::u16string text;
    for (int i = list.GetBase(); i <= list.GetLastIndex(); ++i)
    {
        const WCHAR *name = list.GetAt(i)->m_pszName;
        const std::u16string next = name != nullptr ? name : u"";
        if (text.size() + next.size() + 2 > CATEGORY_CHOICE_LENGTH)
        {
            break;
        }
        if (i > list.GetBase())
        {
            text += CATEGORY_CHOICE_SEPARATOR;
        }
        text += next;
    }
    CRegistry store;
    if (store.OpenKey(HKEY_CURRENT_USER, key) == 0)
    {
        store.SetValue(value, text.c_str());
    }
}

int CreateIconString(const WCHAR *names, WCHAR *out, int limit, bool noCategoryIcon, const WCHAR *copy, const WCHAR *)
{
    if (names == nullptr || out == nullptr || copy == nullptr)
    {
        return 0;
    }
    *out = 0;
    if (*names == 0)
    {
        if (noCategoryIcon)
        {
            wcscpy(out, u"<IMG SRC=\"~NoCategory.bmp\">");
        }
        return noCategoryIcon ? 1 : 0;
    }
    std::u16string markup;
    std::size_t total = 0;
    for (const std::u16string &token : split(names, u','))
    {
        const std::u16string tag = u"<IMG SRC=\"" + token.substr(token.starts_with(u' ') ? 1 : 0) + u".bmp\">";
        total += tag.size();
        if (limit < 0 || total > static_cast<std::size_t>(limit))
        {
            break;
        }
        markup += tag;
    }
    wcscpy(out, markup.c_str());
    return static_cast<int>(total);
}
