// The databases of personal items and their sort orders.
#include "platform/pim.h"

#include "platform/kernel.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zb
{
namespace
{
struct Plan
{
    const WCHAR *name;
    std::vector<SORTORDERSPEC> sorts;
};

/// The first order of each is the one that its loader walks most: appointments by start, the others by their text.
const std::array<Plan, 4> &plans()
{
    constexpr SORTORDERSPEC byInterchangeId{itemInterchangeId, 0};
    static const std::array<Plan, 4> all = {{
        {appointmentsDatabase, {{appointmentStart, 0}, byInterchangeId}},
        {tasksDatabase, {{itemSubject, CEDB_SORT_CASEINSENSITIVE}, {taskDueDate, 0}, byInterchangeId}},
        {contactsDatabase, {{contactFileAs, CEDB_SORT_CASEINSENSITIVE}, byInterchangeId}},
        {categoriesDatabase, {{categoryName, CEDB_SORT_CASEINSENSITIVE}, {categoryId, 0}}},
    }};
    return all;
}

struct Existing
{
    CEOID oid = 0; ///< 0: there is none
    CEDBASEINFO info{};
};

/// What there is of each plan, in their order.
std::array<Existing, 4> existingDatabases()
{
    std::array<Existing, 4> found;
    HANDLE find = CeFindFirstDatabase(0);
    if (find == INVALID_HANDLE_VALUE)
    {
        return found;
    }
    while (const CEOID oid = CeFindNextDatabase(find))
    {
        CEOIDINFO info{};
        if (CeOidGetInfo(oid, &info) == FALSE || info.wObjType != OBJTYPE_DATABASE)
        {
            continue;
        }
        const auto plan =
            std::find_if(plans().begin(), plans().end(),
                         [&](const Plan &each) { return _wcsicmp(info.infDatabase.szDbaseName, each.name) == 0; });
        if (plan != plans().end())
        {
            found[static_cast<std::size_t>(plan - plans().begin())] = {oid, info.infDatabase};
        }
    }
    CloseHandle(find);
    return found;
}

bool hasSort(const CEDBASEINFO &info, const SORTORDERSPEC &wanted)
{
    const auto *end = info.rgSortSpecs + std::min<WORD>(info.wNumSortOrder, CEDB_MAXSORTORDER);
    return std::any_of(info.rgSortSpecs, end, [&](const SORTORDERSPEC &sort) { return sort.propid == wanted.propid; });
}

/// A database with no room for a further order counts as complete: what it has is its owner's choice.
bool isComplete(const Plan &plan, const Existing &existing)
{
    return existing.oid != 0 && (existing.info.wNumSortOrder >= CEDB_MAXSORTORDER ||
                                 std::all_of(plan.sorts.begin(), plan.sorts.end(),
                                             [&](const SORTORDERSPEC &sort) { return hasSort(existing.info, sort); }));
}

/// Makes the database, or adds the orders that are missing behind those that are there.
bool complete(const Plan &plan, const Existing &existing)
{
    if (existing.oid == 0)
    {
        return CeCreateDatabase(plan.name, 0, static_cast<WORD>(plan.sorts.size()), plan.sorts.data()) != 0;
    }
    CEDBASEINFO info = existing.info;
    for (const SORTORDERSPEC &sort : plan.sorts)
    {
        if (!hasSort(info, sort) && info.wNumSortOrder < CEDB_MAXSORTORDER)
        {
            info.rgSortSpecs[info.wNumSortOrder++] = sort;
        }
    }
    constexpr CEGUID systemVolume{};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    return CeSetDatabaseInfoEx(&systemVolume, existing.oid, &info) != FALSE;
}

bool areComplete(const std::array<Existing, 4> &existing)
{
    return std::equal(plans().begin(), plans().end(), existing.begin(), isComplete);
}
} // namespace

bool createPimDatabases()
{
    if (areComplete(existingDatabases()))
    {
        return true;
    }
    // One transaction: a kill leaves all of it or nothing, and of two processes that open a new device at once the
    // second finds what the first has made, as it looks again behind the lock.
    BulkWrite bulk;
    const std::array<Existing, 4> existing = existingDatabases();
    for (std::size_t i = 0; i < existing.size(); ++i)
    {
        if (!isComplete(plans()[i], existing[i]) && !complete(plans()[i], existing[i]))
        {
            return false;
        }
    }
    return bulk.commit();
}
} // namespace zb
