#include "interchange/task_store.h"

#include "interchange/record_values.h"
#include "platform/file_turn.h"
#include "platform/kernel.h"
#include "platform/text.h"
#include "tasks/TaskHierarchy.h"

#include <unordered_map>
#include <unordered_set>

namespace zb::interchange
{
namespace
{
constexpr WORD loaderProperties = 12;

/// Whether the links lead from a task up to another.
bool leadsTo(TaskHierarchy &links, CEOID from, CEOID target)
{
    std::unordered_set<CEOID> seen;
    _HIERSTRUCT link;
    while (from != target && seen.insert(from).second && links.Find(from, &link))
    {
        from = link.m_oidParent;
    }
    return from == target;
}
} // namespace

std::vector<Shortening> shortenToRecord(TaskItem &item)
{
    constexpr std::size_t limit = largestReadableRecord - roomForChanges;
    std::vector<Shortening> done;
    for (const auto &[text, what] : {std::pair(&item.notes, "notes"), std::pair(&item.subject, "subject")})
    {
        if (item.notes.size() + item.subject.size() < limit / 8)
        {
            break; // fits whatever the encoding
        }
        if (cutToSize(*text, limit, [&item] { return readSize(encodeTask(item), loaderProperties); }))
        {
            done.push_back({what, text->size()});
        }
    }
    return done;
}

TaskStore::TaskStore()
{
    CEOID id = 0;
    m_database = CeOpenDatabase(&id, tasksDatabase, itemInterchangeId, 0, nullptr);
    if (m_database == INVALID_HANDLE_VALUE)
    {
        throw StoreError(GetLastError());
    }
}

TaskStore::~TaskStore()
{
    LocalFree(m_buffer);
    CloseHandle(m_database);
}

TaskStore::Outcome TaskStore::store(const TaskItem &item, const std::vector<BYTE> &categories,
                                    bool repeats, const ExactRecord *exact)
{
    const CEOID id = find(item.interchangeId);
    RecordProperties properties = encodeTask(item);
    if (!categories.empty())
    {
        properties.set(itemCategories, categories);
    }
    if (repeats)
    {
        properties.set(taskRecurringFlag, SHORT{1});
    }
    else
    {
        properties.remove(taskRecurringFlag);
    }
    if (exact != nullptr)
    {
        exact->applyTo(properties);
    }
    if (id != 0 && isSame(properties))
    {
        return Outcome::Unchanged;
    }
    if (CeWriteRecordProps(m_database, id, properties.count(), properties.values()) == 0)
    {
        throw StoreError(GetLastError());
    }
    return id == 0 ? Outcome::Added : Outcome::Updated;
}

/// The record at the position.
bool TaskStore::isSame(const RecordProperties &properties)
{
    WORD count = 0;
    if (CeReadRecordProps(m_database, CEDB_ALLOWREALLOC, &count, nullptr, &m_buffer, &m_bufferSize) == 0)
    {
        throw StoreError(GetLastError());
    }
    return saysAlready(reinterpret_cast<const CEPROPVAL *>(m_buffer), count, properties);
}

LinkResult saveTaskLinks(const std::vector<TaskLink> &links, bool write)
{
    LinkResult result;
    TaskHierarchy hierarchy;
    const std::u16string path = TaskHierarchy::FilePath();
    const FileTurn turn;
    result.readable = links.empty() || hierarchy.Load(path.c_str()) == CELIST_OK;
    if (!result.readable)
    {
        return result;
    }
    std::unordered_map<CEOID, BYTE> states;
    for (const _HIERSTRUCT &link : hierarchy.Links())
    {
        states.try_emplace(link.m_oidParent, link.m_bExpanded);
    }
    for (const TaskLink &link : links)
    {
        _HIERSTRUCT before;
        if (hierarchy.Find(link.child, &before) && before.m_oidParent == link.parent)
        {
            continue;
        }
        if (leadsTo(hierarchy, link.parent, link.child))
        {
            result.circles.push_back(link.line);
            continue;
        }
        while (hierarchy.Remove(link.child))
        {
        }
        hierarchy.Add({link.child, link.parent, states.try_emplace(link.parent, BYTE{1}).first->second, {}});
        ++result.changed;
    }
    result.saved = !write || result.changed == 0 || hierarchy.Save(path.c_str()) == CELIST_OK;
    return result;
}
} // namespace zb::interchange
