// Changes to the records of categories; CategoryEdit_looks.cpp has colours and icons.
//
// Each change reads and writes inside one bulk write, which keeps other writers out: no two categories get one id or
// one name because two programs looked at the same time.
#include "records/CategoryEdit.h"

#include "core/CRegistry.h"
#include "platform/pim.h"
#include "platform/text.h"
#include "records/CCategoryColor.h"
#include "records/CategoryIcon.h"
#include "records/CategoryRecord.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace
{
using zb::CategoryChange;

constexpr int idCount = 8192;
constexpr const WCHAR *separators = u",;";

enum RowProperty : int
{
    NAME,
    ACTIVE,
    ACTIVE_NEW,
    REFS_A,
    REFS_B,
    REFS_CONTACTS,
    PROPERTY_COUNT
};
constexpr std::array<CEPROPID, PROPERTY_COUNT> rowProperties = {
    CATEGORY_NAME, CATEGORY_ACTIVE, CATEGORY_ACTIVE_NEW, CATEGORY_REFS_A, CATEGORY_REFS_B, CATEGORY_REFS_CONTACTS};

bool isGoodName(const WCHAR *name)
{
    if (name == nullptr || *name == 0 || wcspbrk(name, separators) != nullptr)
    {
        return false;
    }
    const std::u16string_view text(name);
    return text.size() <= CATEGORY_NAME_LENGTH &&
           std::none_of(text.begin(), text.end(), [](WCHAR ch) { return iswctype(ch, C1_CNTRL) != 0; });
}

bool isActive(const CeDbRecord &row)
{
    LONG active = 1;
    row.GetIndexVal(ACTIVE, active);
    return active != 0;
}

/// The active category of a name, read into `row` and left at the position; 0 when there is none.
CEOID findRow(CeDb &db, CeDbRecord &row, const WCHAR *name)
{
    for (CEOID oid = db.SeekFirst(); oid != 0; oid = db.SeekNext())
    {
        if (db.ReadRec(row, PROPERTY_COUNT, rowProperties.data()) && row.IsPresent(NAME) && isActive(row) &&
            lstrcmpW(row.GetProps()[NAME].val.lpwstr, name) == 0)
        {
            return oid;
        }
    }
    return 0;
}

/// The lowest id from 0 on that no record has; db is open in the order of ids.
int lowestFreeId(CeDb &db)
{
    constexpr CEPROPID property = CATEGORY_ID;
    CeDbRecord record;
    int expected = 0;
    for (CEOID oid = db.SeekFirst(); oid != 0; oid = db.SeekNext())
    {
        SHORT id = -1;
        if (db.ReadRec(record, 1, &property))
        {
            record.GetIndexVal(0, id);
        }
        if (id > expected)
        {
            break;
        }
        expected += id == expected ? 1 : 0;
    }
    return expected;
}

CEPROPVAL shortValue(CEPROPID id, SHORT value)
{
    CEPROPVAL property{};
    property.propid = id;
    property.val.iVal = value;
    return property;
}

CEPROPVAL nameValue(const WCHAR *name)
{
    CEPROPVAL property{};
    property.propid = CATEGORY_NAME;
    property.val.lpwstr = const_cast<WCHAR *>(name);
    return property;
}

CategoryChange writeNew(CeDb &db, const WCHAR *name, SHORT id)
{
    const std::array<CEPROPVAL, 6> values = {
        nameValue(name),
        shortValue(CATEGORY_ID, id),
        shortValue(CATEGORY_ACTIVE_NEW, 1),
        shortValue(CATEGORY_REFS_A, 0),
        shortValue(CATEGORY_REFS_B, 0),
        shortValue(CATEGORY_REFS_CONTACTS, 0),
    };
    const CEOID oid = CeWriteRecordProps(db.GetHandle(), 0, static_cast<WORD>(values.size()), values.data());
    return oid != 0 ? CategoryChange::Done : CategoryChange::Failed;
}

/// Both forms of the flag, where the record has both: readers go by the long.
bool retire(CeDb &db, CEOID oid, const CeDbRecord &row)
{
    std::array<CEPROPVAL, 2> values = {CEPROPVAL{}, shortValue(CATEGORY_ACTIVE_NEW, 0)};
    values[0].propid = CATEGORY_ACTIVE;
    const WORD count = row.IsPresent(ACTIVE_NEW) ? 2 : 1;
    return CeWriteRecordProps(db.GetHandle(), oid, count, values.data()) == oid;
}

int usesOf(const CeDbRecord &row)
{
    int uses = 0;
    for (const int property : {REFS_A, REFS_B, REFS_CONTACTS})
    {
        SHORT count = 0;
        row.GetIndexVal(property, count);
        uses += count;
    }
    return uses;
}

bool removeRow(CeDb &db, CEOID oid, const CeDbRecord &row, zb::UsedCategory answer)
{
    switch (answer)
    {
    case zb::UsedCategory::Delete:
        return db.DeleteRecord(oid);
    case zb::UsedCategory::Retire:
        return retire(db, oid, row);
    default:
        return true;
    }
}

CategoryChange committed(zb::BulkWrite &bulk, bool written)
{
    return written && bulk.commit() ? CategoryChange::Done : CategoryChange::Failed;
}

/// Nothing was written, so a bulk of the caller's that this one joined must not lose what it holds.
CategoryChange unchanged(zb::BulkWrite &bulk, CategoryChange why)
{
    bulk.commit();
    return why;
}

bool setShown(CeDb &db, CEOID oid, bool keep, bool shown)
{
    CEPROPVAL value{};
    value.propid = CATEGORY_SHOWN;
    value.wFlags = keep ? WORD{0} : CEDB_PROPDELETE;
    value.val.boolVal = shown ? TRUE : FALSE;
    return CeWriteRecordProps(db.GetHandle(), oid, 1, &value) == oid;
}

bool shownPropertyIsForbidden()
{
    CRegistry settings;
    DWORD forbidden = 0;
    return settings.OpenKey(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik") == 0 &&
           settings.QueryValue(u"IntellisyncCompat", &forbidden) == 0 && forbidden != 0;
}
} // namespace

namespace zb
{
CategoryChange addCategory(const WCHAR *name, SHORT *id)
{
    if (!isGoodName(name))
    {
        return CategoryChange::BadName;
    }
    BulkWrite bulk;
    CeDb db;
    CeDbRecord row;
    if (!db.Open(categoriesDatabase, CATEGORY_ID, 0, nullptr))
    {
        return unchanged(bulk, CategoryChange::Failed);
    }
    if (findRow(db, row, name) != 0)
    {
        return unchanged(bulk, CategoryChange::Exists);
    }
    const int free = lowestFreeId(db);
    if (free >= idCount)
    {
        return unchanged(bulk, CategoryChange::Full);
    }
    const CategoryChange change = committed(bulk, writeNew(db, name, static_cast<SHORT>(free)) == CategoryChange::Done);
    if (change == CategoryChange::Done)
    {
        CCategoryColor::ClearInit();
        if (id != nullptr)
        {
            *id = static_cast<SHORT>(free);
        }
    }
    return change;
}

CategoryChange renameCategory(const WCHAR *name, const WCHAR *newName)
{
    if (!isGoodName(newName))
    {
        return CategoryChange::BadName;
    }
    BulkWrite bulk;
    CeDb db;
    CeDbRecord row;
    if (!db.Open(categoriesDatabase, 0, 0, nullptr))
    {
        return unchanged(bulk, CategoryChange::Failed);
    }
    const CEOID other = findRow(db, row, newName);
    const CEOID oid = name != nullptr ? findRow(db, row, name) : 0;
    if (oid == 0)
    {
        return unchanged(bulk, CategoryChange::NotFound);
    }
    if (other != 0 && other != oid)
    {
        return unchanged(bulk, CategoryChange::Exists);
    }
    const CEPROPVAL value = nameValue(newName);
    const CategoryChange change = committed(bulk, CeWriteRecordProps(db.GetHandle(), oid, 1, &value) == oid);
    if (change == CategoryChange::Done && std::u16string(name) != newName)
    {
        copyCategoryIcon(name, newName);
        const COLORREF color = categoryColor(name);
        setCategoryColor(name, 0);
        setCategoryColor(newName, color);
    }
    return change;
}

CategoryChange deleteCategory(const WCHAR *name, const std::function<UsedCategory()> &inUse, DWORD knownUses)
{
    CeDb db;
    CeDbRecord row;
    if (!db.Open(categoriesDatabase, 0, 0, nullptr))
    {
        return CategoryChange::Failed;
    }
    if (name == nullptr || findRow(db, row, name) == 0)
    {
        return CategoryChange::NotFound;
    }
    // Asked before the store is kept from other writers, since the answer may take its time.
    const UsedCategory answer = usesOf(row) > 0 || knownUses != 0 ? inUse() : UsedCategory::Delete;
    BulkWrite bulk;
    const CEOID oid = findRow(db, row, name);
    const CategoryChange change = committed(bulk, oid == 0 || removeRow(db, oid, row, answer));
    if (change == CategoryChange::Done)
    {
        setCategoryColor(name, 0);
    }
    return change;
}

bool setHiddenCategories(const std::vector<std::u16string> &hidden)
{
    const bool keep = !hidden.empty() && !shownPropertyIsForbidden();
    BulkWrite bulk;
    CeDb db;
    CeDbRecord row;
    if (!db.Open(categoriesDatabase, 0, 0, nullptr))
    {
        return false;
    }
    for (CEOID oid = db.SeekFirst(); oid != 0; oid = db.SeekNext())
    {
        const bool read = db.ReadRec(row, PROPERTY_COUNT, rowProperties.data()) && row.IsPresent(NAME);
        const bool isRow = read && isActive(row);
        if (keep && !isRow)
        {
            continue;
        }
        const bool shown =
            !isRow || std::none_of(hidden.begin(), hidden.end(),
                                   [&row](const std::u16string &name)
                                   { return lstrcmpW(name.c_str(), row.GetProps()[NAME].val.lpwstr) == 0; });
        if (!setShown(db, oid, keep, shown))
        {
            return false;
        }
    }
    return bulk.commit();
}
} // namespace zb
