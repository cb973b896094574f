// The texts of the day and week views' cells and blocks, as markup.
#pragma once

#include "common/agenda_rows.h"
#include "platform/gdi.h"

#include <string>

namespace zb::screens
{
/// The head of a day; narrow ones have its letter above the number.
std::u16string dayHeadMarkup(int day, int today, bool narrow);
std::u16string weekNumberMarkup(int number);
/// The hour in front of its first half.
std::u16string hourMarkup(int slot);
/// What is said in the place of whole days where nothing else is.
std::u16string quietMarkup(const std::u16string &words);
/// A time that goes along with the pen.
std::u16string timeTipMarkup(const std::u16string &words);

/// How a block shows its appointment.
struct BlockLook
{
    bool chosen = false;
    bool narrow = false;  ///< no room for words
    bool roomy = false;   ///< for a larger font
    bool oneLine = false; ///< as high as a single line
};
std::u16string blockMarkup(const host::AgendaRow &row, const BlockLook &look);
} // namespace zb::screens
