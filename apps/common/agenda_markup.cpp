#include "common/agenda_markup.h"

#include "common/agenda_words.h"
#include "common/days.h"
#include "common/markup_text.h"
#include "common/visible_text.h"
#include "framework/HIDPI.h"
#include "platform/text.h"

namespace zb::host
{
namespace
{
// Pictures of the system.
constexpr const WCHAR *taskDone = u"<IMG SRC=260>";
constexpr const WCHAR *taskOpen = u"<IMG SRC=259>";
constexpr const WCHAR *overdue = u"<IMG SRC=508>";
constexpr const WCHAR *birthday = u"<IMG SRC=500>";
constexpr const WCHAR *anniversary = u"<IMG SRC=501>";

std::u16string kindPicture(const AgendaRow &row)
{
    switch (row.kind)
    {
    case AgendaKind::Task:
        return row.isComplete ? taskDone : row.isOverdue ? overdue : taskOpen;
    case AgendaKind::Birthday:
        return birthday;
    case AgendaKind::Anniversary:
        return anniversary;
    default:
        return {};
    }
}

/// The flags of an item as small pictures, each behind a blank.
std::u16string flagPictures(const AgendaRow &row)
{
    const std::pair<bool, const WCHAR *> flags[] = {{row.importance > 1 && row.kind == AgendaKind::Task, u" <IMG SRC=211>"},
                                                    {row.reminder, u" <IMG SRC=213>"},
                                                    {row.recurring && row.kind == AgendaKind::Appointment, u" <IMG SRC=212>"},
                                                    {row.isPrivate, u" <IMG SRC=214>"},
                                                    {row.hasNotes, u" <IMG SRC=207>"}};
    std::u16string pictures;
    for (const auto &[set, picture] : flags)
    {
        pictures += set ? picture : u"";
    }
    return pictures;
}

/// The picture of a place, no higher than the small text behind it.
std::u16string pinMarkup()
{
    constexpr int height = 11;
    return u"<IMG SRC=505 SIZE=" + toUtf16(std::to_string(HIDPI_SCALEY(height))) + u">";
}
} // namespace

std::u16string wordsMarkup(const std::string &words)
{
    return plainMarkup(toUtf16(words));
}

std::u16string subjectMarkup(const AgendaRow &row)
{
    const std::string subject = subjectOf(row);
    const std::u16string words = wordsMarkup(subject.empty() ? "(no subject)" : subject);
    const std::u16string picture = kindPicture(row);
    const std::u16string styled = row.isComplete ? u"<FONT SIZE=2 COLOR=#7A848F><S>" + words + u"</S>"
                                                 : u"<FONT SIZE=2 COLOR=#16202B><B>" + words + u"</B>";
    return (picture.empty() ? picture : picture + u" ") + styled + endMarkup + flagPictures(row);
}

std::u16string detailMarkup(const AgendaRow &row)
{
    std::u16string line;
    const auto add = [&line](const std::u16string &part)
    { line += part.empty() ? part : (line.empty() ? part : u"  ·  " + part); };
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
