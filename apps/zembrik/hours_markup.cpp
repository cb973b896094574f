#include "zembrik/hours_markup.h"

#include "common/agenda_words.h"
#include "common/markup_text.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "common/visible_text.h"
#include "platform/text.h"
#include "zembrik/date_words.h"
#include "zembrik/paint.h"

namespace zb::screens
{
namespace
{
using namespace zb::host;

constexpr COLORREF white = RGB(255, 255, 255);
constexpr COLORREF tipColor = RGB(0xFF, 0xFB, 0xE6);
} // namespace

std::u16string dayHeadMarkup(int day, int today, bool narrow)
{
    const bool isToday = day == today;
    const std::u16string ink = isToday ? u"#FFFFFF" : u"#2B3A4C";
    const std::u16string number = dateByPicture(day, u"d");
    const std::u16string body = groundMarkup(isToday ? todayColor : headerColor) + u"<P ALIGN=CENTER>";
    if (narrow)
    {
        return body + u"<FONT SIZE=-1 COLOR=" + ink + u">" + weekdayWords(day, 1) + u"<BR><FONT SIZE=2 COLOR=" + ink +
               u"><B>" + number;
    }
    return body + u"<FONT SIZE=0 COLOR=" + ink + u">" + weekdayWords(day, 0) + u" <FONT SIZE=2 COLOR=" + ink + u"><B>" +
           number;
}

std::u16string weekNumberMarkup(int number)
{
    return groundMarkup(headerColor) + u"<P ALIGN=CENTER><FONT SIZE=-1 COLOR=#5C6875>" +
           toUtf16(std::to_string(number));
}

std::u16string hourMarkup(int slot)
{
    if (slot % 2 != 0)
    {
        return groundMarkup(white);
    }
    const std::u16string hour = hourWords(slot / 2);
    const bool bare = hour.find_first_not_of(u"0123456789") == std::u16string::npos;
    return groundMarkup(white) + u"<P ALIGN=RIGHT><FONT SIZE=" + (bare ? u"1" : u"-2") + u" COLOR=#2B3A4C>" + hour +
           (bare ? u"<FONT SIZE=-3 COLOR=#5C6875> 00" : u"");
}

std::u16string quietMarkup(const std::u16string &words)
{
    return groundMarkup(white) + u"<FONT SIZE=0 COLOR=#5C6875>" + plainMarkup(words);
}

std::u16string timeTipMarkup(const std::u16string &words)
{
    return groundMarkup(tipColor) + u"<FONT SIZE=1 COLOR=#16202B>" + plainMarkup(words);
}

std::u16string blockMarkup(const AgendaRow &row, const BlockLook &look)
{
    const COLORREF tint = mixed(row.color.value_or(usualColor), white, look.narrow ? 60 : 26);
    const std::u16string body = groundMarkup(look.chosen ? todayColor : tint);
    if (look.narrow)
    {
        return body + u" ";
    }
    const std::u16string size = look.roomy ? u"<FONT SIZE=0 COLOR=" : u"<FONT SIZE=-1 COLOR=";
    const std::string subject = subjectOf(row);
    std::u16string markup = body + size + (look.chosen ? u"#FFFFFF>" : u"#16202B>") + u"<B>" +
                            plainMarkup(subject.empty() ? text(textNoSubject) : toUtf16(subject)) + u"</B>";
    if (!row.location.empty())
    {
        markup += look.oneLine ? u"  ·  " : u"<BR>";
        markup += size + (look.chosen ? u"#FFFFFF>" : u"#5C6875>") + plainMarkup(toUtf16(visibleText(row.location)));
    }
    return markup;
}
} // namespace zb::screens
