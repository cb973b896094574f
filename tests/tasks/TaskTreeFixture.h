// What the tests of task trees share: tasks as records, links as the file keeps them, and a tree as text.
#pragma once

#include "core/CRegistry.h"
#include "platform/pim.h"
#include "support/DeviceFiles.h"
#include "support/QuickDevice.h"
#include "tasks/CTasksThread.h"
#include "tasks/TaskHierarchy.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zb::test
{
/// Tasks by subject. Complete ones do not pass the filter of the list.
class TaskTreeTest : public QuickDeviceTest
{
  protected:
    void SetUp() override
    {
        set(u"GroupBy", taskGroupTree);
    }

    void set(const WCHAR *name, DWORD value)
    {
        CRegistry key;
        key.OpenKey(HKEY_CURRENT_USER, CTasksThread::DEFAULT_SETTINGS_KEY);
        key.SetValue(name, value);
    }

    /// Returns the id of its record.
    CEOID add(const std::string &subject, bool complete = false)
    {
        const CEOID oid = write(0, subject, complete);
        m_ids[subject] = oid;
        return oid;
    }
    void change(const std::string &subject, bool complete)
    {
        write(id(subject), subject, complete);
    }
    void erase(const std::string &subject)
    {
        withTasks([&](HANDLE tasks) { return static_cast<CEOID>(CeDeleteRecord(tasks, id(subject))); });
    }
    CEOID id(const std::string &subject) const
    {
        return m_ids.at(subject);
    }

    /// "child<parent+" hangs child under parent, which is open; "-" closed. Written to the file as it stands.
    struct Link
    {
        std::string child;
        std::string parent;
        bool open;
    };
    void link(const std::vector<Link> &links)
    {
        TaskHierarchy hierarchy;
        for (const Link &each : links)
        {
            hierarchy.Add({id(each.child), id(each.parent), static_cast<BYTE>(each.open ? 1 : 0), {}});
        }
        ASSERT_EQ(hierarchy.Save(TaskHierarchy::FilePath().c_str()), CELIST_OK);
    }
    bool fileExists() const
    {
        return std::filesystem::exists(file());
    }
    std::filesystem::path file() const
    {
        return device.files() / "My Documents" / "Kelvo" / "TaskHierarchy.bin";
    }
    /// The links of the file in their order, "B<A+ C<B-"; ids that no task has as numbers.
    std::string linksOfFile()
    {
        TaskHierarchy hierarchy;
        EXPECT_EQ(hierarchy.Load(TaskHierarchy::FilePath().c_str()), CELIST_OK);
        std::string text;
        for (const _HIERSTRUCT &each : hierarchy.Links())
        {
            text += (text.empty() ? "" : " ") + name(each.m_oid) + "<" + name(each.m_oidParent) +
                    (each.m_bExpanded != 0 ? "+" : "-");
        }
        return text;
    }

    CTasksThread &list()
    {
        if (m_list == nullptr)
        {
            m_list = std::make_unique<CTasksThread>();
        }
        return *m_list;
    }
    std::string load()
    {
        list().TasksThreadProc(nullptr);
        return tree(list());
    }
    /// As a list made now would show it.
    static std::string freshTree()
    {
        CTasksThread fresh;
        fresh.TasksThreadProc(nullptr);
        return tree(fresh);
    }
    /// Rows that show, then, behind "|", those that wait: "A+ .B ..C | .D". A dot for each level; of nodes + open,
    /// - closed; * only there for its children.
    static std::string tree(CTasksThread &list)
    {
        CeActiveList<DATATASKS *> &rows = list.GetList();
        std::string text;
        for (int i = 1; i <= rows.GetCount(); ++i)
        {
            const DATATASKS *row = rows.GetAt(i);
            text += (i == 1 ? "" : " ") + std::string(i == rows.GetDisplayCount() + 1 ? "| " : "");
            text += std::string(static_cast<std::size_t>(std::max<SHORT>(row->m_nDepth, 0)), '.');
            text += utf8(row->m_pszSubject) + (row->IsParentNode() ? (row->m_bExpanded ? "+" : "-") : "") +
                    (row->m_bParentOnly ? "*" : "");
        }
        return text;
    }

    /// Index of a task's row, 0 when it has none.
    int at(const std::string &subject)
    {
        CeActiveList<DATATASKS *> &rows = list().GetList();
        for (int i = 1; i <= rows.GetCount(); ++i)
        {
            if (rows.GetAt(i)->m_oid == id(subject))
            {
                return i;
            }
        }
        return 0;
    }
    DATATASKS *row(const std::string &subject)
    {
        return list().GetList().GetAt(at(subject));
    }
    /// Hangs a task under another as hosts do, and sorts.
    std::string hang(const std::string &child, const std::string &parent, bool open = true)
    {
        _HIERSTRUCT node{id(child), id(parent), static_cast<BYTE>(open ? 1 : 0), {}};
        list().AddTreeNode(&node, at(child), at(parent));
        list().SortDataList();
        return tree(list());
    }
    std::string unhang(const std::string &child, bool promote)
    {
        _HIERSTRUCT node{};
        list().RemoveTreeNode(&node, at(child), promote);
        list().SortDataList();
        return tree(list());
    }
    std::string remove(const std::string &subject)
    {
        list().DeleteTaskFromThread(at(subject));
        list().SortDataList();
        return tree(list());
    }
    /// Live, as after an edit of the record.
    LONG place(const std::string &subject, int index, bool force = false)
    {
        CeDb tasks;
        CeDbRecord record;
        std::array<CEPROPID, CTasksThread::TASK_PROPERTY_COUNT> ids{};
        CTasksThread::SetPropIds(ids.data());
        EXPECT_TRUE(tasks.Open(zb::tasksDatabase, 0, 0, nullptr) && tasks.SeekTo(id(subject)) != 0 &&
                    tasks.ReadRec(record, static_cast<WORD>(ids.size()), ids.data()));
        bool shown = false;
        return list().AddNewTask(&record, &shown, index, true, force);
    }

    std::string name(CEOID oid) const
    {
        for (const auto &[subject, each] : m_ids)
        {
            if (each == oid)
            {
                return subject;
            }
        }
        return std::to_string(oid);
    }

  private:
    static CEOID withTasks(const std::function<CEOID(HANDLE)> &use)
    {
        CEOID database = 0;
        const HANDLE tasks = CeOpenDatabase(&database, zb::tasksDatabase, 0, 0, nullptr);
        const CEOID result = use(tasks);
        CloseHandle(tasks);
        return result;
    }
    static CEOID write(CEOID oid, const std::string &subject, bool complete)
    {
        TaskItem task;
        task.subject = utf16(subject);
        task.complete = complete;
        const RecordProperties properties = encodeTask(task);
        return withTasks(
            [&](HANDLE tasks) {
                return CeWriteRecordProps(tasks, oid, properties.count(), const_cast<CEPROPVAL *>(properties.values()));
            });
    }

    std::map<std::string, CEOID> m_ids;
    std::unique_ptr<CTasksThread> m_list;
};
} // namespace zb::test
