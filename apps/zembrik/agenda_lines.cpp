#include "zembrik/agenda_lines.h"

#include "common/agenda_markup.h"
#include "common/markup_text.h"
#include "common/texts.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/date_words.h"
#include "zembrik/list_texts.h"
#include "zembrik/paint.h"

namespace zb::screens
{
namespace
{
using namespace zb::host;

/// The grid counts rows with 16 bits; what is beyond comes with a leaf.
constexpr std::size_t mostLines = 60000;

/// "today" and its neighbours.
std::u16string nearWords(int day, int today)
{
    return day == today       ? text(textToday)
           : day == today + 1 ? text(textTomorrow)
           : day == today - 1 ? text(textYesterday)
                              : std::u16string();
}

std::u16string headCell(const AgendaLine &line, int today)
{
    const bool isToday = line.day == today;
    const WCHAR *font = isToday ? u"<FONT SIZE=1 COLOR=#FFFFFF>" : u"<FONT SIZE=1 COLOR=#2B3A4C>";
    const std::u16string near = nearWords(line.day, today);
    return groundMarkup(isToday ? todayColor : headerColor) + font + u"<B>" + plainMarkup(dayWords(line.day)) + u"</B>" +
           (near.empty() ? near : u"<P ALIGN=RIGHT>" + plainMarkup(near) + u"</P>");
}

std::u16string leadCell(const WCHAR *arrow, UINT words)
{
    return groundMarkup(quietColor) + u"<P ALIGN=CENTER><FONT SIZE=1 COLOR=#2F5D96>" + arrow + u" " + plainMarkup(text(words));
}
} // namespace

std::vector<AgendaLine> agendaLines(const std::vector<AgendaRow> &rows, int first, int last, int today)
{
    using Kind = AgendaLine::Kind;
    std::vector<AgendaLine> lines;
    lines.push_back({Kind::Earlier, first});
    bool todayTold = today < first || today > last;
    const auto tellToday = [&]
    {
        todayTold = true;
        lines.push_back({Kind::Head, today});
        lines.push_back({Kind::Words, today, 0, true, text(textQuietToday)});
    };
    for (std::size_t n = 0; n < rows.size() && lines.size() < mostLines; ++n)
    {
        const int day = rows[n].day;
        const bool begins = n == 0 || rows[n - 1].day != day;
        if (begins && !todayTold && day > today)
        {
            tellToday();
        }
        if (begins)
        {
            todayTold = todayTold || day == today;
            lines.push_back({Kind::Head, day});
        }
        lines.push_back({Kind::Item, day, n, n + 1 == rows.size() || rows[n + 1].day != day});
    }
    if (!todayTold)
    {
        tellToday();
    }
    if (rows.empty())
    {
        lines.push_back({Kind::Words, last, 0, true, text(textQuietHint)});
    }
    lines.push_back({Kind::Later, last});
    return lines;
}

std::u16string timeCell(const AgendaLine &line, const std::vector<AgendaRow> &rows, int today)
{
    switch (line.kind)
    {
    case AgendaLine::Kind::Item:
        return groundMarkup(RGB(255, 255, 255)) + u"<P ALIGN=RIGHT>" + timeMarkup(rows[line.row]);
    case AgendaLine::Kind::Head:
        return groundMarkup(line.day == today ? todayColor : headerColor) + u" ";
    case AgendaLine::Kind::Words:
        return groundMarkup(RGB(255, 255, 255)) + u" ";
    default:
        return groundMarkup(quietColor) + u" ";
    }
}

std::u16string textCell(const AgendaLine &line, const std::vector<AgendaRow> &rows, int today)
{
    switch (line.kind)
    {
    case AgendaLine::Kind::Item:
        return groundMarkup(RGB(255, 255, 255)) + subjectMarkup(rows[line.row]) + detailMarkup(rows[line.row]);
    case AgendaLine::Kind::Head:
        return headCell(line, today);
    case AgendaLine::Kind::Words:
        return groundMarkup(RGB(255, 255, 255)) + u"<P ALIGN=CENTER><FONT SIZE=1 COLOR=#5C6875>" + plainMarkup(line.words);
    case AgendaLine::Kind::Earlier:
        return leadCell(u"▲", textEarlier);
    default:
        return leadCell(u"▼", textLater);
    }
}
} // namespace zb::screens
