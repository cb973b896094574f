// Numbers of the host's own resources and commands.
#pragma once

#include "platform/types.h"

namespace zb::screens
{
inline constexpr WORD frameMenu = 60100;

inline constexpr UINT commandHelp = 60151;
inline constexpr UINT commandAbout = 60152;
inline constexpr UINT commandExit = 60153;
/// The view of that place in viewKinds().
inline constexpr UINT firstSwitchCommand = 60160;
inline constexpr UINT lastSwitchCommand = 60199;

inline constexpr UINT textProgram = 60110;
inline constexpr UINT textAbout = 60113;
inline constexpr UINT textHelp = 60114;
inline constexpr UINT textClose = 60115;
inline constexpr UINT textRefresh = 60121;
inline constexpr UINT textStart = 60120;
inline constexpr UINT textAppointments = 60122;
inline constexpr UINT textTasks = 60123;
inline constexpr UINT textContacts = 60124;
} // namespace zb::screens
