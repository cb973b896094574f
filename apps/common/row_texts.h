// Numbers of the texts that rows of an agenda are made of, in every host.
#pragma once

#include "platform/types.h"

namespace zb::host
{
inline constexpr UINT textRowAllDay = 60400;
inline constexpr UINT textRowAllDayLong = 60401; ///< of a day in the middle of a long appointment
inline constexpr UINT textRowFrom = 60402;
inline constexpr UINT textRowUntil = 60403;
inline constexpr UINT textRowDone = 60404;
inline constexpr UINT textRowOverdue = 60405;
inline constexpr UINT textRowToDo = 60406;
inline constexpr UINT textRowDue = 60407;
inline constexpr UINT textRowLow = 60408;
inline constexpr UINT textRowHigh = 60409;
inline constexpr UINT textRowDayOf = 60410;
inline constexpr UINT textRowTentative = 60411;
inline constexpr UINT textRowOutOfOffice = 60412;
inline constexpr UINT textRowPrivate = 60413;
inline constexpr UINT textNoSubject = 60414;
inline constexpr UINT textFirstAppointmentCount = 60415; ///< none, one, more
inline constexpr UINT textFirstTaskCount = 60418;        ///< none, one, more
inline constexpr UINT textBothCounts = 60421;
} // namespace zb::host
