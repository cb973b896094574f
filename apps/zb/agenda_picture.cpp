#include "zb/agenda_picture.h"

#include "common/agenda_markup.h"
#include "common/agenda_rows.h"
#include "common/agenda_words.h"
#include "common/days.h"
#include "zb/cell_sheet.h"
#include "zb/shot.h"

namespace zb::cli
{
using namespace host;

namespace
{
constexpr COLORREF headerBack = RGB(0xE6, 0xEB, 0xF2);
constexpr COLORREF todayBack = RGB(0x2F, 0x5D, 0x96);

SheetRow titleRow(const std::vector<AgendaRow> &rows, const DayRange &range)
{
    const std::string days = range.last == range.first ? longDate(range.first)
                                                       : shortDate(range.first) + " – " + shortDate(range.last);
    SheetRow row;
    row.text = u"<FONT SIZE=5 COLOR=#16202B><B>" + wordsMarkup(days) + u"</B>" + endMarkup + u"<BR>" + dimMarkup +
               wordsMarkup(countText(countOf(rows), taskCountOf(rows))) + endMarkup;
    row.spread = true;
    row.padding = 8;
    return row;
}

SheetRow headerRow(int day, bool isToday)
{
    SheetRow row;
    row.back = isToday ? todayBack : headerBack;
    const std::u16string font = isToday ? u"<FONT SIZE=1 COLOR=#FFFFFF><B>" : u"<FONT SIZE=1 COLOR=#2B3A4C><B>";
    row.text = font + wordsMarkup(longDate(day)) + u"</B>" + (isToday ? u"<P ALIGN=RIGHT>today</P>" : u"") + endMarkup;
    row.spread = true;
    row.padding = 4;
    return row;
}

SheetRow itemRow(const AgendaRow &item, bool ruled)
{
    SheetRow row;
    row.text = subjectMarkup(item) + detailMarkup(item);
    row.side = timeMarkup(item);
    row.strip = item.color.value_or(noCategoryColor);
    row.ruled = ruled;
    return row;
}

SheetRow emptyRow()
{
    SheetRow row;
    row.text = std::u16string(u"<P ALIGN=CENTER><FONT SIZE=2 COLOR=#5C6875>Nothing on these days") + endMarkup;
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
