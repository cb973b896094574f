// What calendar rows need to know of the tasks in them.
//
// Present state: no loader builds task rows yet, so there is no task to release and none to compare; both calls are the
// place where the task rows come in.
#pragma once

#include "platform/types.h"

struct DATATASKS;

namespace zb
{
/// Releases the task of a row; null is fine.
void releaseTask(DATATASKS *task);
/// Order of two tasks by a sort key of the task lists: below, equal to or above 0.
int compareTasks(const DATATASKS *a, const DATATASKS *b, DWORD key);
} // namespace zb
