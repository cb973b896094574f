// Numbers of the texts and commands of the calendar views.
#pragma once

#include "platform/types.h"

namespace zb::screens
{
inline constexpr UINT commandToday = 1001;
inline constexpr UINT commandBack = 1002;
inline constexpr UINT commandOn = 1003;
inline constexpr UINT commandOpenItem = 1004;
inline constexpr UINT commandShowTasks = 1005;
inline constexpr UINT commandShowBirthdays = 1006;
inline constexpr UINT commandShowDone = 1007;
/// And the place in statusChoices.
inline constexpr UINT commandStatus = 1010;

inline constexpr UINT textAgenda = 60201;
inline constexpr UINT textDay = 60202;
inline constexpr UINT textWeek = 60203;
inline constexpr UINT textMonth = 60204;
inline constexpr UINT textReading = 60220;
inline constexpr UINT textQuiet = 60221;
inline constexpr UINT textQuietToday = 60222;
inline constexpr UINT textQuietHint = 60223;
inline constexpr UINT textEarlier = 60224;
inline constexpr UINT textLater = 60225;
inline constexpr UINT textMore = 60227;
inline constexpr UINT textWhen = 60230;
inline constexpr UINT textWhere = 60231;
inline constexpr UINT textStatus = 60232;
inline constexpr UINT textFirstStatus = 60233; ///< free, tentative, busy, out of office
inline constexpr UINT textSeries = 60237;
inline constexpr UINT textPrivate = 60238;
inline constexpr UINT textReminder = 60239;
inline constexpr UINT textReminderMinutes = 60240;
inline constexpr UINT textAllDay = 60241;
inline constexpr UINT textAgendaHelp = 60242;
inline constexpr UINT textHoursHelp = 60243;
inline constexpr UINT textMonthHelp = 60244;
inline constexpr UINT textNotMoved = 60245;
inline constexpr UINT textNotMovedNeighbour = 60246;
inline constexpr UINT textNotMovedLength = 60247;
inline constexpr UINT textGone = 60248;
inline constexpr UINT textOfContact = 60250;
inline constexpr UINT textReminderAtStart = 60251;
inline constexpr UINT textReminderMinute = 60252;
inline constexpr UINT textReminderHour = 60253; ///< one, and in the next text more; so the two below
inline constexpr UINT textReminderDay = 60255;
inline constexpr UINT textReminderWeek = 60257;
} // namespace zb::screens
