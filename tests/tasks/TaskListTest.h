// What the tests of task lists share: records written as a device holds them, a loader, settings, and rows as text.
#pragma once

#include "platform/types.h"
#include "support/LoaderRecords.h"
#include "support/QuickDevice.h"
#include "support/TestDevice.h"
#include "tasks/CTasksThread.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
using Bytes = std::vector<BYTE>;

/// The day on which the tests' clock stands, 2026-03-02, as a whole day; calculated by the standard calendar.
inline constexpr int today = 46083;

/// A task record. What has no value is not in the record. Dates are whole days from `today`.
struct TaskRecord
{
    std::optional<std::u16string> subject = {};
    std::optional<int> due = {};
    std::optional<int> start = {};
    std::optional<SHORT> complete = {};
    std::optional<int> completed = {};
    std::optional<LONG> importance = {};
    std::optional<SHORT> sensitivity = {};
    std::optional<SHORT> recurring = {};
    std::optional<SHORT> reminder = {};
    std::optional<std::u16string> icon = {};
    std::optional<Bytes> notes = {};
    std::optional<Bytes> categories = {};
};

/// Adds it to the tasks of the device; 0 on failure.
CEOID addTask(const TaskRecord &record);
/// Writes it over the record: what it lacks is removed.
bool changeTask(CEOID oid, const TaskRecord &record);
bool removeTask(CEOID oid);
/// A record as AddNewTask takes it.
std::unique_ptr<CeDbRecord> readTask(CEOID oid);
FILETIME dayTime(int day);

/// Bits of the categories that the fixture makes: Work, Home, Garden, Urgent.
inline constexpr int workBit = 1;
inline constexpr int homeBit = 2;
inline constexpr int gardenBit = 3;
inline constexpr int urgentBit = 4;

inline constexpr const WCHAR *listKey = u"Software\\Kelvo\\Zembrik\\TV";
inline constexpr const WCHAR *headingsKey = u"Software\\Kelvo\\Zembrik\\TV\\GroupHeadings";
inline constexpr const WCHAR *groupStateKey = u"Software\\Kelvo\\Zembrik\\TV\\GroupState";
void setSetting(const WCHAR *key, const WCHAR *name, DWORD value);
void setSetting(const WCHAR *key, const WCHAR *name, const WCHAR *value);
std::optional<DWORD> setting(const WCHAR *key, const WCHAR *name);

/// Subject of a row; a header's in brackets, with + when open and - when closed.
std::string describe(const DATATASKS &row);

class TaskListTest : public ::testing::Test
{
  protected:
    TaskListTest();
    CTasksThread &loader();
    /// A whole load on this thread; what shows, joined by ", ".
    std::string load();
    std::string shown();
    /// All rows, hidden ones too.
    std::string rows();
    /// First row of an id, or null; its index, or 0.
    const DATATASKS *row(CEOID oid);
    int indexOf(CEOID oid);
    int rowsOf(CEOID oid);
    /// AddNewTask with the record as it stands in the store; pbShown goes to `passed`.
    LONG live(CEOID oid, int index, bool force = false);
    /// Refreshes the row of a record from the store, and sorts.
    void refresh(CEOID oid);
    void set(const WCHAR *name, DWORD value)
    {
        setSetting(listKey, name, value);
    }
    void groupBy(TaskGrouping grouping)
    {
        set(u"GroupBy", grouping);
    }
    void openGroup(const WCHAR *name)
    {
        setSetting(groupStateKey, name, DWORD{1});
    }

    FaultyFileLayer layer; // none of these tests is about durability
    TestDevice device{quickOptions(layer)};
    bool passed = false;

  private:
    std::unique_ptr<CTasksThread> m_loader;
};
} // namespace zb::test
