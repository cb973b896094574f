// Numbers of the host's own resources and commands.
#pragma once

#include "platform/types.h"

namespace zb::screens
{
inline constexpr WORD frameMenu = 60100;
inline constexpr WORD startMenu = 60101;
inline constexpr WORD calendarMenu = 60200;
inline constexpr WORD tasksMenu = 60300;
inline constexpr WORD contactsMenu = 60310;

inline constexpr UINT commandHelp = 60151;
inline constexpr UINT commandAbout = 60152;
inline constexpr UINT commandExit = 60153;
/// Each leads to a view.
inline constexpr UINT commandStart = 60160;
inline constexpr UINT commandAgenda = 60161;
inline constexpr UINT commandDay = 60162;
inline constexpr UINT commandWeek = 60163;
inline constexpr UINT commandMonth = 60164;
inline constexpr UINT commandTasks = 60165;
inline constexpr UINT commandContacts = 60166;

inline constexpr UINT textProgram = 60110;
inline constexpr UINT textAbout = 60113;
inline constexpr UINT textHelp = 60114;
inline constexpr UINT textClose = 60115;
inline constexpr UINT textStart = 60120;
inline constexpr UINT textAppointments = 60122;
inline constexpr UINT textTasks = 60123;
inline constexpr UINT textContacts = 60124;
} // namespace zb::screens
