// Tasks that come again some days after they were done, "A1|7: Mow" seven: completing one leaves a completed copy and
// sets the task itself to a new day.
//
// Threads: the one that the task's application belongs to.
#pragma once

#include "core/api.h"
#include "platform/pim_objects.h"

namespace zb
{
/// The days behind the bar in front of a subject; 0 for a task that does not come again.
ZBTOOLS_API int regenerationDays(const WCHAR *subject);

/// Completes such a task: its days count from today, not from its due date. All in one transaction.
///
/// - The copy has all properties of the task's record but the identity of interchange files, the handle of a
///   notification and how the task repeats. Its subject has no priority, it is complete since today, and no reminder is
///   set in it. *copy gets its id.
/// - The task stays open: due today + days, and its start moves as far as its due date. One that had no due date starts
///   on its new one.
///
/// Worked example: on Monday 2026-03-02 "A1|7: Mow", start 25 and due 27 February, is completed: "Mow" is left, complete,
/// due 27 February; "A1|7: Mow" is due on 9 March and starts on the 7th, ten days later both.
///
/// S_FALSE, and nothing has changed, for a task that is complete already or does not come again. HRESULT_FROM_WIN32(2)
/// for one that was never saved, or is gone. What was put and not saved is saved with it.
ZBTOOLS_API HRESULT completeRegenerating(ITask &task, CEOID *copy);
} // namespace zb
