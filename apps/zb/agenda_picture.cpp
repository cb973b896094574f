#include "zb/agenda_picture.h"

#include "framework/HIDPI.h"
#include "platform/text.h"
#include "zb/agenda_words.h"
#include "zb/cell_sheet.h"
#include "zb/days.h"
#include "zb/shot.h"
#include "zb/terminal.h"

namespace zb::cli
{
namespace
{
constexpr COLORREF headerBack = RGB(0xE6, 0xEB, 0xF2);
constexpr COLORREF todayBack = RGB(0x2F, 0x5D, 0x96);
constexpr COLORREF noCategory = RGB(0xB8, 0xC4, 0xD2);
constexpr const WCHAR *dim = u"<FONT SIZE=0 COLOR=#5C6875>";
constexpr const WCHAR *endFont = u"</FONT>";

// Pictures of the system.
constexpr const WCHAR *taskDone = u"<IMG SRC=260>";
constexpr const WCHAR *taskOpen = u"<IMG SRC=259>";
constexpr const WCHAR *overdue = u"<IMG SRC=508>";
constexpr const WCHAR *birthday = u"<IMG SRC=500>";
constexpr const WCHAR *anniversary = u"<IMG SRC=501>";

std::u16string markup(const std::string &text)
{
    return plainMarkup(toUtf16(text));
}

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

std::u16string subjectMarkup(const AgendaRow &row)
{
    const std::string subject = subjectOf(row);
    const std::u16string words = markup(subject.empty() ? "(no subject)" : subject);
    const std::u16string picture = kindPicture(row);
    const std::u16string styled = row.isComplete ? u"<FONT SIZE=2 COLOR=#7A848F><S>" + words + u"</S>"
                                                 : u"<FONT SIZE=2 COLOR=#16202B><B>" + words + u"</B>";
    return (picture.empty() ? picture : picture + u" ") + styled + endFont + flagPictures(row);
}

/// The picture of a place, no higher than the small text behind it.
std::u16string pinMarkup()
{
    constexpr int height = 11;
    return u"<IMG SRC=505 SIZE=" + toUtf16(std::to_string(HIDPI_SCALEY(height))) + u">";
}

std::u16string detailMarkup(const AgendaRow &row)
{
    std::u16string line;
    const auto add = [&line](const std::u16string &part)
    { line += part.empty() ? part : (line.empty() ? part : u"  ·  " + part); };
    if (!row.location.empty())
    {
        add(pinMarkup() + u" " + markup(visibleText(row.location)));
    }
    add(markup(markText(row)));
    add(markup(categoryText(row)));
    return line.empty() ? line : std::u16string(u"<BR>") + dim + line + endFont;
}

/// In front of the row: when it begins, and below when it ends.
std::u16string timeMarkup(const AgendaRow &row)
{
    if (row.kind == AgendaKind::Task)
    {
        const WCHAR *color = row.isOverdue && !row.isComplete ? u"<FONT SIZE=0 COLOR=#B3261E>" : dim;
        return color + markup(timeOf(row)) + endFont;
    }
    const bool begins = row.day == row.firstDay;
    const bool ends = row.day == row.lastDay;
    if (row.allDay || !begins || !ends)
    {
        return dim + markup(timeOf(row)) + endFont;
    }
    const std::u16string start =
        u"<FONT SIZE=2 COLOR=#16202B>" + markup(timeText(row.start)) + endFont;
    const bool moment = timeText(row.start) == timeText(row.end);
    return moment ? start : start + u"<BR>" + dim + markup(timeText(row.end)) + endFont;
}

SheetRow titleRow(const std::vector<AgendaRow> &rows, const DayRange &range)
{
    const std::string days = range.last == range.first ? longDate(range.first)
                                                       : shortDate(range.first) + " – " + shortDate(range.last);
    SheetRow row;
    row.text = u"<FONT SIZE=5 COLOR=#16202B><B>" + markup(days) + u"</B>" + endFont + u"<BR>" + dim +
               markup(countText(countOf(rows), taskCountOf(rows))) + endFont;
    row.spread = true;
    row.padding = 8;
    return row;
}

SheetRow headerRow(int day, bool isToday)
{
    SheetRow row;
    row.back = isToday ? todayBack : headerBack;
    const std::u16string font = isToday ? u"<FONT SIZE=1 COLOR=#FFFFFF><B>" : u"<FONT SIZE=1 COLOR=#2B3A4C><B>";
    row.text = font + markup(longDate(day)) + u"</B>" + (isToday ? u"<P ALIGN=RIGHT>today</P>" : u"") + endFont;
    row.spread = true;
    row.padding = 4;
    return row;
}

SheetRow itemRow(const AgendaRow &item, bool ruled)
{
    SheetRow row;
    row.text = subjectMarkup(item) + detailMarkup(item);
    row.side = timeMarkup(item);
    row.strip = item.color.value_or(noCategory);
    row.ruled = ruled;
    return row;
}

SheetRow emptyRow()
{
    SheetRow row;
    row.text = std::u16string(u"<P ALIGN=CENTER><FONT SIZE=2 COLOR=#5C6875>Nothing on these days") + endFont;
    row.spread = true;
    row.padding = 24;
    return row;
}
} // namespace

int drawAgenda(const std::vector<AgendaRow> &rows, const DayRange &range, const PictureArguments &picture)
{
    CellSheet sheet(picture.width);
    sheet.add(titleRow(rows, range));
    const int now = today();
    for (std::size_t n = 0; n < rows.size(); ++n)
    {
        if (n == 0 || rows[n].day != rows[n - 1].day)
        {
            sheet.add(headerRow(rows[n].day, rows[n].day == now));
        }
        const bool last = n + 1 == rows.size() || rows[n + 1].day != rows[n].day;
        sheet.add(itemRow(rows[n], !last));
    }
    if (rows.empty())
    {
        sheet.add(emptyRow());
    }
    return savePicture(sheet, picture.file);
}
} // namespace zb::cli
