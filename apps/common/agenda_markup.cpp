#include "common/agenda_markup.h"

#include "common/agenda_words.h"
#include "common/days.h"
#include "common/markup_text.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "common/visible_text.h"
#include "framework/HIDPI.h"
#include "platform/text.h"

namespace zb::host
{
namespace
{
// Pictures of the system.
constexpr int taskDone = 260;
constexpr int taskOpen = 259;
constexpr int overdue = 508;
constexpr int birthday = 500;
constexpr int anniversary = 501;
constexpr int important = 211;
constexpr int reminder = 213;
constexpr int repeats = 212;
constexpr int isPrivate = 214;
constexpr int notes = 207;
constexpr int place = 505;

/// No higher than the words beside it, so that a line is as high with pictures as without.
std::u16string picture(int number, int height)
{
    return u"<IMG SRC=" + toUtf16(std::to_string(number)) + u" SIZE=" + toUtf16(std::to_string(HIDPI_SCALEY(height))) +
           u">";
}

std::u16string kindPicture(const AgendaRow &row)
{
    constexpr int height = 14;
    switch (row.kind)
    {
    case AgendaKind::Task:
        return picture(row.isComplete ? taskDone : row.isOverdue ? overdue : taskOpen, height);
    case AgendaKind::Birthday:
        return picture(birthday, height);
    case AgendaKind::Anniversary:
        return picture(anniversary, height);
    default:
        return {};
    }
}

/// The flags of an item as small pictures, each behind a blank.
std::u16string flagPictures(const AgendaRow &row)
{
    constexpr int height = 12;
    const std::pair<bool, int> flags[] = {{row.importance > 1 && row.kind == AgendaKind::Task, important},
                                          {row.reminder, reminder},
                                          {row.recurring && row.kind == AgendaKind::Appointment, repeats},
                                          {row.isPrivate, isPrivate},
                                          {row.hasNotes, notes}};
    std::u16string pictures;
    for (const auto &[set, number] : flags)
    {
        pictures += set ? u" " + picture(number, height) : std::u16string();
    }
    return pictures;
}

std::u16string pinMarkup()
{
    constexpr int height = 11;
    return picture(place, height);
}
} // namespace

std::u16string wordsMarkup(const std::string &words)
{
    return plainMarkup(toUtf16(words));
}

std::u16string subjectMarkup(const AgendaRow &row)
{
    const std::string subject = subjectOf(row);
    const std::u16string words = subject.empty() ? plainMarkup(text(textNoSubject)) : wordsMarkup(subject);
    const std::u16string picture = kindPicture(row);
    const std::u16string styled = row.isComplete ? u"<FONT SIZE=2 COLOR=#7A848F><S>" + words + u"</S>"
                                                 : u"<FONT SIZE=2 COLOR=#16202B><B>" + words + u"</B>";
    return (picture.empty() ? picture : picture + u" ") + styled + endMarkup + flagPictures(row);
}

std::u16string detailMarkup(const AgendaRow &row)
{
    std::u16string line;
    const auto add = [&line](const std::u16string &part)
    { line += part.empty() ? part : (line.empty() ? part : u"\u00A0\u00A0·  " + part); };
    if (!row.location.empty())
    {
        add(pinMarkup() + u" " + wordsMarkup(visibleText(row.location)));
    }
    add(wordsMarkup(markText(row)));
    add(wordsMarkup(categoryText(row)));
    return line.empty() ? line : std::u16string(u"<BR>") + dimMarkup + line + endMarkup;
}

std::u16string timeMarkup(const AgendaRow &row)
{
    if (row.kind == AgendaKind::Task)
    {
        const WCHAR *color = row.isOverdue && !row.isComplete ? u"<FONT SIZE=0 COLOR=#B3261E>" : dimMarkup;
        return color + wordsMarkup(timeOf(row)) + endMarkup;
    }
    const bool begins = row.day == row.firstDay;
    const bool ends = row.day == row.lastDay;
    if (row.allDay || !begins || !ends)
    {
        return dimMarkup + wordsMarkup(timeOf(row)) + endMarkup;
    }
    const std::u16string start =
        u"<FONT SIZE=2 COLOR=#16202B>" + wordsMarkup(timeText(row.start)) + endMarkup;
    const bool moment = timeText(row.start) == timeText(row.end);
    return moment ? start : start + u"<BR>" + dimMarkup + wordsMarkup(timeText(row.end)) + endMarkup;
}
} // namespace zb::host
