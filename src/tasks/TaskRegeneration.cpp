#include "tasks/TaskRegeneration.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "platform/text.h"
#include "tasks/TaskSubject.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace zb
{
namespace
{
/// The handle of the notification that is set for a record: it speaks of that one record.
constexpr CEPROPID notificationHandle = MakePropId(0x0002, CEVT_I4);
constexpr HRESULT gone = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);

HRESULT lastError()
{
    const DWORD error = GetLastError();
    return error == 0 ? E_FAIL : HRESULT_FROM_WIN32(error);
}

/// The visible subject, and the days.
std::u16string withoutPriority(const WCHAR *subject, int &days)
{
    WCHAR letter[5] = {};
    WCHAR number[5] = {};
    const std::unique_ptr<WCHAR, decltype(&std::free)> rest(
        CTask::ParseExtraFromSubjectInt(subject, letter, number, days), std::free);
    return rest == nullptr ? std::u16string() : std::u16string(rest.get());
}

std::u16string subjectOf(ITask &task)
{
    BSTR text = nullptr;
    task.get_Subject(&text);
    std::u16string subject = text == nullptr ? std::u16string() : std::u16string(text, SysStringLen(text));
    SysFreeString(text);
    return subject;
}

/// Midnight of the device's day.
FILETIME today()
{
    SYSTEMTIME now{};
    GetLocalTime(&now);
    now.wHour = now.wMinute = now.wSecond = now.wMilliseconds = 0;
    FILETIME midnight{};
    SystemTimeToFileTime(&now, &midnight);
    return midnight;
}

DATE dateOf(const FILETIME &time)
{
    SYSTEMTIME fields{};
    DATE date = 0.0;
    FileTimeToSystemTime(&time, &fields);
    SystemTimeToVariantTime(&fields, &date);
    return date;
}

class OpenTasks
{
  public:
    OpenTasks()
    {
        CEOID database = 0;
        m_handle = CeOpenDatabase(&database, tasksDatabase, 0, 0, nullptr);
    }
    ~OpenTasks()
    {
        if (m_handle != INVALID_HANDLE_VALUE)
        {
            CloseHandle(m_handle);
        }
        LocalFree(m_block);
    }
    OpenTasks(const OpenTasks &) = delete;
    OpenTasks &operator=(const OpenTasks &) = delete;

    /// All that the record holds; its texts live as long as this.
    HRESULT read(CEOID oid, std::vector<CEPROPVAL> &properties)
    {
        WORD count = 0;
        DWORD size = 0;
        if (m_handle == INVALID_HANDLE_VALUE || CeSeekDatabase(m_handle, CEDB_SEEK_CEOID, oid, nullptr) == 0 ||
            CeReadRecordProps(m_handle, CEDB_ALLOWREALLOC, &count, nullptr, &m_block, &size) == 0)
        {
            return lastError();
        }
        const auto *const values = reinterpret_cast<const CEPROPVAL *>(m_block);
        properties.assign(values, values + count);
        return S_OK;
    }
    HRESULT add(const std::vector<CEPROPVAL> &properties, CEOID *oid)
    {
        *oid = CeWriteRecordProps(m_handle, 0, static_cast<WORD>(properties.size()), properties.data());
        return *oid != 0 ? S_OK : lastError();
    }

  private:
    HANDLE m_handle;
    BYTE *m_block = nullptr;
};

void leaveOut(std::vector<CEPROPVAL> &properties)
{
    constexpr CEPROPID own[] = {itemInterchangeId, notificationHandle, taskRecurrence, taskRecurringFlag,
                                itemSubject,       taskCompleteFlag,   taskDateCompleted, taskReminderSet};
    properties.erase(std::remove_if(properties.begin(), properties.end(),
                                    [&](const CEPROPVAL &value) {
                                        return std::find(std::begin(own), std::end(own), value.propid) != std::end(own);
                                    }),
                     properties.end());
}

CEPROPVAL shortValue(CEPROPID id, SHORT number)
{
    CEPROPVAL value{};
    value.propid = id;
    value.val.iVal = number;
    return value;
}

HRESULT addCompleted(CEOID oid, std::u16string subject, CEOID *copy)
{
    OpenTasks tasks;
    std::vector<CEPROPVAL> properties;
    if (const HRESULT result = tasks.read(oid, properties); FAILED(result))
    {
        return result;
    }
    leaveOut(properties);
    properties.push_back(shortValue(taskCompleteFlag, 1));
    properties.push_back(shortValue(taskReminderSet, 0));
    properties.push_back(shortValue(taskRecurringFlag, 0));
    CEPROPVAL completed{};
    completed.propid = taskDateCompleted;
    completed.val.filetime = today();
    properties.push_back(completed);
    if (!subject.empty())
    {
        CEPROPVAL text{};
        text.propid = itemSubject;
        text.val.lpwstr = subject.data();
        properties.push_back(text);
    }
    return tasks.add(properties, copy);
}

HRESULT moveOn(ITask &task, int days)
{
    DATE start = PIM_NO_DATE;
    DATE due = PIM_NO_DATE;
    task.get_StartDate(&start);
    task.get_DueDate(&due);
    const DATE next = dateOf(today()) + days;
    if (due == PIM_NO_DATE)
    {
        task.put_StartDate(next);
    }
    else if (start != PIM_NO_DATE)
    {
        task.put_StartDate(start + (next - due));
    }
    task.put_DueDate(next);
    return task.Save();
}
} // namespace

int regenerationDays(const WCHAR *subject)
{
    int days = 0;
    withoutPriority(subject, days);
    return std::max(days, 0);
}

HRESULT completeRegenerating(ITask &task, CEOID *copy)
{
    *copy = 0;
    VARIANT_BOOL complete = VARIANT_FALSE;
    LONG oid = 0;
    task.get_Complete(&complete);
    task.get_Oid(&oid);
    int days = 0;
    const std::u16string visible = withoutPriority(subjectOf(task).c_str(), days);
    if (complete != VARIANT_FALSE || days < 1)
    {
        return S_FALSE;
    }
    if (oid == 0)
    {
        return gone;
    }
    BulkWrite bulk;
    // What was put goes into the copy too, so it is saved first.
    HRESULT result = task.Save();
    result = SUCCEEDED(result) ? addCompleted(static_cast<CEOID>(oid), visible, copy) : result;
    result = SUCCEEDED(result) ? moveOn(task, days) : result;
    if (SUCCEEDED(result) && !bulk.commit())
    {
        result = lastError();
    }
    *copy = SUCCEEDED(result) ? *copy : 0;
    return result;
}
} // namespace zb
