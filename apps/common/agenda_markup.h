// The rows of an agenda as marked-up text: what the pictures of the command line and the cells of the screens show.
#pragma once

#include "common/agenda_rows.h"
#include "platform/gdi.h"

#include <string>

namespace zb::host
{
/// The font of what stands beside the subject; endMarkup ends it.
inline constexpr const WCHAR *dimMarkup = u"<FONT SIZE=0 COLOR=#5C6875>";
inline constexpr const WCHAR *endMarkup = u"</FONT>";
/// The strip of an item without a colour of its own.
inline constexpr COLORREF noCategoryColor = RGB(0xB8, 0xC4, 0xD2);

/// Harmless words, UTF-8, as markup.
std::u16string wordsMarkup(const std::string &words);
/// Picture of what it is, subject, pictures of its flags.
std::u16string subjectMarkup(const AgendaRow &row);
/// Place, marks and categories on a line below, with the break in front of it; empty when there are none.
std::u16string detailMarkup(const AgendaRow &row);
/// When it begins, and below it when it ends.
std::u16string timeMarkup(const AgendaRow &row);
} // namespace zb::host
