// Records, settings and row texts of the task lists' tests.
#include "tasks/TaskListTest.h"

#include "core/CRegistry.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/propdb.h"
#include "support/CategoryRecords.h"

namespace zb::test
{
namespace
{
constexpr CEPROPID subjectId = 0x0037001f;
constexpr CEPROPID dueId = 0x41050040;
constexpr CEPROPID startId = 0x41040040;
constexpr CEPROPID completeId = 0x410f0002;
constexpr CEPROPID completedId = 0x410f0040;
constexpr CEPROPID importanceId = 0x00260003;
constexpr CEPROPID sensitivityId = 0x00040002;
constexpr CEPROPID recurringId = 0x41260002;
constexpr CEPROPID reminderId = 0x45030002;
constexpr CEPROPID iconId = 0x2a08001f;
constexpr CEPROPID notesId = 0x00170041;
constexpr CEPROPID categoriesId = 0x00160041;

template <typename Value>
void put(RecordProperties &properties, CEPROPID id, const std::optional<Value> &value)
{
    if (value)
    {
        properties.set(id, *value);
    }
    else
    {
        properties.remove(id);
    }
}

void putDay(RecordProperties &properties, CEPROPID id, const std::optional<int> &day)
{
    put(properties, id, day ? std::optional(dayTime(today + *day)) : std::nullopt);
}

RecordProperties propertiesOf(const TaskRecord &record)
{
    RecordProperties properties;
    put(properties, subjectId, record.subject);
    putDay(properties, dueId, record.due);
    putDay(properties, startId, record.start);
    put(properties, completeId, record.complete);
    putDay(properties, completedId, record.completed);
    put(properties, importanceId, record.importance);
    put(properties, sensitivityId, record.sensitivity);
    put(properties, recurringId, record.recurring);
    put(properties, reminderId, record.reminder);
    put(properties, iconId, record.icon);
    put(properties, notesId, record.notes);
    put(properties, categoriesId, record.categories);
    return properties;
}

CEOID write(CEOID oid, const RecordProperties &properties)
{
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
    const CEOID written = CeWriteRecordProps(handle, oid, properties.count(), properties.values());
    CloseHandle(handle);
    return written;
}
} // namespace

FILETIME dayTime(int day)
{
    // 1899-12-30 lies 109,205 days behind 1601-01-01.
    const auto ticks = static_cast<ULONGLONG>(day + 109'205) * 864'000'000'000ULL;
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32U)};
}

CEOID addTask(const TaskRecord &record)
{
    return write(0, propertiesOf(record));
}

bool changeTask(CEOID oid, const TaskRecord &record)
{
    return write(oid, propertiesOf(record)) == oid;
}

bool removeTask(CEOID oid)
{
    CEOID database = 0;
    const HANDLE handle = CeOpenDatabase(&database, u"Tasks Database", 0, 0, nullptr);
    const bool removed = CeDeleteRecord(handle, oid) != FALSE;
    CloseHandle(handle);
    return removed;
}

std::unique_ptr<CeDbRecord> readTask(CEOID oid)
{
    CeDb database;
    auto record = std::make_unique<CeDbRecord>();
    ULONG ids[CTasksThread::TASK_PROPERTY_COUNT];
    CTasksThread::SetPropIds(ids);
    EXPECT_TRUE(database.Open(u"Tasks Database", 0, 0, nullptr));
    EXPECT_NE(database.SeekTo(oid), 0U);
    EXPECT_TRUE(database.ReadRec(*record, CTasksThread::TASK_PROPERTY_COUNT, ids));
    return record;
}

void setSetting(const WCHAR *key, const WCHAR *name, DWORD value)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, key);
    EXPECT_EQ(registry.SetValue(name, value), 0);
}

void setSetting(const WCHAR *key, const WCHAR *name, const WCHAR *value)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, key);
    EXPECT_EQ(registry.SetValue(name, value), 0);
}

std::optional<DWORD> setting(const WCHAR *key, const WCHAR *name)
{
    CRegistry registry;
    DWORD value = 0;
    registry.OpenKey(HKEY_CURRENT_USER, key);
    return registry.QueryValue(name, &value) == 0 ? std::optional(value) : std::nullopt;
}

std::string describe(const DATATASKS &row)
{
    const std::string subject = utf8(row.m_pszSubject);
    return row.IsGroupHeader() ? "[" + subject + (row.m_bExpanded ? "+]" : "-]") : subject;
}

TaskListTest::TaskListTest()
{
    BulkWrite bulk;
    addCategoryRecord(u"Work", workBit);
    addCategoryRecord(u"Home", homeBit);
    addCategoryRecord(u"Garden", gardenBit);
    addCategoryRecord(u"Urgent", urgentBit);
    bulk.commit();
}

CTasksThread &TaskListTest::loader()
{
    if (m_loader == nullptr)
    {
        m_loader = std::make_unique<CTasksThread>();
    }
    return *m_loader;
}

std::string TaskListTest::load()
{
    loader().TasksThreadProc(nullptr);
    return shown();
}

namespace
{
std::string joined(CeActiveList<DATATASKS *> &list, int count)
{
    std::string text;
    for (int i = 1; i <= count; ++i)
    {
        text += (i == 1 ? "" : ", ") + describe(*list.GetAt(i));
    }
    return text;
}
} // namespace

std::string TaskListTest::shown()
{
    return joined(loader().GetList(), loader().GetList().GetDisplayCount());
}

std::string TaskListTest::rows()
{
    return joined(loader().GetList(), loader().GetList().GetCount());
}

int TaskListTest::indexOf(CEOID oid)
{
    for (int i = 1; i <= loader().GetList().GetCount(); ++i)
    {
        if (loader().GetList().GetAt(i)->m_oid == oid)
        {
            return i;
        }
    }
    return 0;
}

const DATATASKS *TaskListTest::row(CEOID oid)
{
    return loader().GetList().GetAt(indexOf(oid));
}

int TaskListTest::rowsOf(CEOID oid)
{
    int count = 0;
    for (int i = 1; i <= loader().GetList().GetCount(); ++i)
    {
        count += loader().GetList().GetAt(i)->m_oid == oid ? 1 : 0;
    }
    return count;
}

LONG TaskListTest::live(CEOID oid, int index, bool force)
{
    const std::unique_ptr<CeDbRecord> record = readTask(oid);
    return loader().AddNewTask(record.get(), &passed, index, true, force);
}

void TaskListTest::refresh(CEOID oid)
{
    live(oid, indexOf(oid));
    loader().SortDataList();
}
} // namespace zb::test
