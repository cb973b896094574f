// The priority that a user types in front of a task's subject: "A1|7: Pay the rent" is letter A, number 1, and every
// 7 days.
#pragma once

#include "core/api.h"
#include "platform/types.h"

class ZBTOOLS_API CTask
{
  public:
    /// The subject without its priority, as malloc text (null without memory); the whole subject when it has none. A
    /// null subject counts as empty. `letter` and `number` have room for 4 characters each and get one letter and up to
    /// two digits, or an empty text; `days` gets the number behind the bar, or 0.
    ///
    /// | in front of the first colon | letter, number, days |
    /// |---|---|
    /// | A | A |
    /// | A1, A12 | A and 1, A and 12 |
    /// | A05 | A and 5 |
    /// | A\|7, A1\|7, A12\|7 | the same and 7 |
    /// | \|7 | 7 alone |
    /// | AB, 12, A123, or eight characters and more | none: the subject stays whole |
    ///
    /// One blank behind the colon goes with it. A bar behind the colon is text. Threads: reentrant.
    static WCHAR *ParseExtraFromSubjectInt(const WCHAR *subject, WCHAR *letter, WCHAR *number, int &days);
};
