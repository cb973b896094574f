// Numbers of the texts of the task and contact lists.
#pragma once

#include "platform/types.h"

namespace zb::screens
{
inline constexpr UINT textBack = 60300;
inline constexpr UINT textCategories = 60302;
inline constexpr UINT textNotes = 60303;
inline constexpr UINT textToday = 60304;
inline constexpr UINT textTomorrow = 60305;
inline constexpr UINT textYesterday = 60306;

inline constexpr UINT textTasksTitle = 60307;
inline constexpr UINT textTasksHelp = 60308;
inline constexpr UINT textNoTasks = 60309;
inline constexpr UINT textTasksNone = 60310;
inline constexpr UINT textTasksHidden = 60311;
inline constexpr UINT textDue = 60313;
inline constexpr UINT textStarts = 60314;
inline constexpr UINT textCompleted = 60315;

inline constexpr UINT textContactsTitle = 60337;
inline constexpr UINT textContactsHelp = 60338;
inline constexpr UINT textNoContacts = 60339;
inline constexpr UINT textContactsNone = 60340;
inline constexpr UINT textContactsNotFound = 60341;
inline constexpr UINT textNoName = 60342;
inline constexpr UINT textMobile = 60349;
inline constexpr UINT textWork = 60350;
inline constexpr UINT textWork2 = 60351;
inline constexpr UINT textHome = 60352;
inline constexpr UINT textHome2 = 60353;
inline constexpr UINT textCar = 60354;
inline constexpr UINT textRadio = 60355;
inline constexpr UINT textPager = 60356;
inline constexpr UINT textWorkFax = 60357;
inline constexpr UINT textHomeFax = 60358;
inline constexpr UINT textMail = 60359;
inline constexpr UINT textMail2 = 60360;
inline constexpr UINT textMail3 = 60361;
inline constexpr UINT textWeb = 60362;
inline constexpr UINT textDepartment = 60363;
inline constexpr UINT textOffice = 60364;
inline constexpr UINT textAssistant = 60365;
inline constexpr UINT textSpouse = 60366;
inline constexpr UINT textChildren = 60367;
inline constexpr UINT textWorkAddress = 60368;
inline constexpr UINT textHomeAddress = 60369;
inline constexpr UINT textOtherAddress = 60370;
inline constexpr UINT textBirthday = 60371;
inline constexpr UINT textAnniversary = 60372;

inline constexpr UINT textBelowTask = 60375;
inline constexpr UINT textToTheTop = 60376;

inline constexpr UINT textTypeName = 60377;
inline constexpr UINT textTypeAnything = 60378;
inline constexpr UINT textHighImportance = 60379;
inline constexpr UINT textLowImportance = 60380;
} // namespace zb::screens
