// The date and time picker ("SysDateTimePick32"): a date or a time by its fields, and a month to choose from.
//
// Shows the moment in the locale's short or long form, as a time, or in a picture of the host's. The field with the mark
// is edited by keys: digits (the next field follows when no more fit), Up and Down or + and -, Home and End, the first
// letters of months, weekdays and halves of the day; Left and Right or a tap move the mark. The button, F4, Alt+Down or,
// without a check box, Blank drop down a month: its arrows go to other months and years, a tap on a day or Enter takes it,
// Escape or a tap beside gives up. Keys in it: arrows, Page Up and Down by months, with Ctrl by years, Home and End of the
// month. With DTS_UPDOWN two arrows change the marked field instead.
//
// Dates lie between 1601 and 9999. A day that a month lacks becomes its last one, and comes back with a longer month.
// Messages are silent: only what the user changes is told, by WM_NOTIFY.
#pragma once

#include "platform/notifications.h"

inline constexpr const WCHAR *DATETIMEPICK_CLASSW = u"SysDateTimePick32";

inline constexpr DWORD DTS_SHORTDATEFORMAT = 0x0000U;
inline constexpr DWORD DTS_UPDOWN = 0x0001U;
inline constexpr DWORD DTS_SHOWNONE = 0x0002U; ///< with a check box; cleared there is no date. Blank turns it
inline constexpr DWORD DTS_LONGDATEFORMAT = 0x0004U;
inline constexpr DWORD DTS_TIMEFORMAT = 0x0009U; ///< always with two arrows
inline constexpr DWORD DTS_SHORTDATECENTURYFORMAT = 0x000CU; ///< the short date with all digits of the year
inline constexpr DWORD DTS_RIGHTALIGN = 0x0020U;             ///< the month drops down at the right end

inline constexpr UINT DTM_FIRST = 0x1000;
inline constexpr WPARAM GDT_VALID = 0;
inline constexpr WPARAM GDT_NONE = 1;
inline constexpr LRESULT GDT_ERROR = -1;
/// GDT_VALID with the moment in lParam, or GDT_NONE.
inline constexpr UINT DTM_GETSYSTEMTIME = DTM_FIRST + 1;
/// wParam GDT_VALID with a moment, or GDT_NONE (with DTS_SHOWNONE alone). False, and nothing changed, for a date that
/// does not exist or lies outside of the range.
inline constexpr UINT DTM_SETSYSTEMTIME = DTM_FIRST + 2;
inline constexpr WPARAM GDTR_MIN = 1;
inline constexpr WPARAM GDTR_MAX = 2;
inline constexpr UINT DTM_GETRANGE = DTM_FIRST + 3; ///< lParam two moments; GDTR_... of those that are set
/// wParam which of the two moments of lParam count; the others are no limit. The moment shown moves inside.
inline constexpr UINT DTM_SETRANGE = DTM_FIRST + 4;
inline constexpr UINT DTM_GETMONTHCAL = DTM_FIRST + 8; ///< the open month, else null
/// lParam a picture (d dd ddd dddd M MM MMM MMMM y yy yyyy h hh H HH m mm s ss t tt, text in '...'), null the style's.
inline constexpr UINT DTM_SETFORMATW = DTM_FIRST + 50;

inline constexpr UINT DTN_DATETIMECHANGE = static_cast<UINT>(-759); ///< lParam an NMDATETIMECHANGE
inline constexpr UINT DTN_DROPDOWN = static_cast<UINT>(-754);
inline constexpr UINT DTN_CLOSEUP = static_cast<UINT>(-753);
struct NMDATETIMECHANGE
{
    NMHDR nmhdr;
    DWORD dwFlags; ///< GDT_VALID or GDT_NONE
    SYSTEMTIME st;
};
