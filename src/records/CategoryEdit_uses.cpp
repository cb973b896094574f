// How many items have each category.
#include "records/CategoryEdit.h"

#include "platform/pim.h"
#include "records/CFullCategory.h"
#include "records/CeDb.h"
#include "records/CeDbRecord.h"

namespace
{
void countIn(const WCHAR *database, std::vector<DWORD> &uses)
{
    constexpr CEPROPID property = zb::itemCategories;
    CeDb db;
    CeDbRecord record;
    CeList<unsigned int> ids;
    if (!db.Open(database, 0, 0, nullptr))
    {
        return;
    }
    for (CEOID oid = db.SeekFirst(); oid != 0; oid = db.SeekNext())
    {
        if (!db.ReadRec(record, 1, &property) || !record.IsPresent(0))
        {
            continue;
        }
        BLOB2Categories(record.GetProps()[0].val.blob, ids);
        for (int i = ids.GetBase(); i <= ids.GetLastIndex(); ++i)
        {
            const unsigned id = ids.GetAt(i);
            if (id < uses.size())
            {
                ++uses[id];
            }
        }
        ids.RemoveAll();
    }
}
} // namespace

std::vector<DWORD> zb::countCategoryUses()
{
    std::vector<DWORD> uses(std::size_t{categoryBlobRoom} * 8);
    for (const WCHAR *database : {appointmentsDatabase, tasksDatabase, contactsDatabase})
    {
        countIn(database, uses);
    }
    return uses;
}
