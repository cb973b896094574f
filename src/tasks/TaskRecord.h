// What a record of a task says, for the lists of tasks and the calendar alike.
//
// The record was read with the properties of CTasksThread::SetPropIds. Threads: reentrant.
#pragma once

#include "core/DateConstants.h"
#include "core/api.h"
#include "platform/types.h"
#include "records/CeDbRecord.h"

struct DATATASKS;

namespace zb
{
/// Variant dates of a task; noDate where there is none, or what is stored is no moment of the calendar.
struct TaskDates
{
    double start = noDate;
    double due = noDate;
    double completed = noDate; ///< only of a complete task
    bool isComplete = false;

    /// A task that is due from 2999-11-27 to 2999-12-31 is a stored template, and shows in no list.
    bool isTemplate() const
    {
        constexpr int firstTemplateDay = 401734;
        constexpr int lastTemplateDay = 401768;
        const int day = static_cast<int>(due);
        return day >= firstTemplateDay && day <= lastTemplateDay;
    }
};

ZBTOOLS_API TaskDates readTaskDates(const CeDbRecord &record);
/// As rows have it: stored 1 is high, 3 low, anything else and none normal.
ZBTOOLS_API LONG readTaskImportance(const CeDbRecord &record);
/// The blob lies in the record; empty when it has none.
ZBTOOLS_API CEBLOB readTaskCategories(const CeDbRecord &record);

/// Fills an empty row with all that the record says; `today` is a whole day and decides what is overdue and due today.
/// The row's place, and whether it has links and a journal, are the caller's.
ZBTOOLS_API void fillTask(DATATASKS &row, const CeDbRecord &record, const TaskDates &dates, int today);
} // namespace zb
