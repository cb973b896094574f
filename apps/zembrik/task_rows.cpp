#include "zembrik/task_rows.h"

#include "common/agenda_markup.h"
#include "common/markup_text.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "framework/HIDPI.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "records/CCategoryColor.h"
#include "records/COutlook.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/item_objects.h"
#include "zembrik/list_texts.h"
#include "zembrik/paint.h"

#include <array>

namespace zb::screens
{
namespace
{
using host::text;

// In pixels at 96 dots an inch.
constexpr int step = 18;  // of depth, and the room of an arrow
constexpr int strip = 16; // in front of what is drawn
constexpr int checkWidth = 26;

constexpr const WCHAR *dim = u"<FONT SIZE=0 COLOR=#5C6875>";
constexpr const WCHAR *late = u"<FONT SIZE=0 COLOR=#B3261E>";
constexpr const WCHAR *endFont = u"</FONT>";

std::u16string arrow(const DATATASKS &task)
{
    return task.m_bExpanded ? u"<IMG SRC=503> " : u"<IMG SRC=502> ";
}

/// "today", "tomorrow", "yesterday", or the locale's short date.
std::u16string dayWords(double date, int today)
{
    switch (static_cast<int>(date) - today)
    {
    case -1:
        return text(textYesterday);
    case 0:
        return text(textToday);
    case 1:
        return text(textTomorrow);
    default:
        return dateWords(date, false);
    }
}

std::u16string flags(const DATATASKS &task)
{
    const std::pair<bool, int> pictures[] = {{task.m_nImportance == taskImportanceHigh, 211},
                                             {task.m_nImportance == taskImportanceLow, 504},
                                             {task.m_bReminder != 0, 213},
                                             {task.m_bRecurring != 0, 212},
                                             {task.m_nSensitivity != 0, 214},
                                             {task.m_bHasNotes != 0, 207}};
    std::u16string markup;
    for (const auto &[set, picture] : pictures)
    {
        markup += set ? u" " + smallPicture(picture) : u"";
    }
    return markup;
}

std::u16string secondLine(const DATATASKS &task, int today)
{
    std::u16string line;
    if (task.m_dtDue != noDate)
    {
        const std::u16string due = text(textDue) + u" " + dayWords(task.m_dtDue, today);
        line = (task.m_bOverdue ? late : dim) + host::plainMarkup(due) + endFont;
    }
    if (task.m_pszCategories != nullptr && task.m_pszCategories[0] != 0)
    {
        line += dim + std::u16string(line.empty() ? u"" : u"\u00A0\u00A0·  ") +
                host::plainMarkup(task.m_pszCategories) + endFont;
    }
    return line;
}

std::u16string subject(const DATATASKS &task)
{
    const bool without = task.m_pszSubject == nullptr || task.m_pszSubject[0] == 0;
    const std::u16string words = without ? host::plainMarkup(text(host::textNoSubject)) : host::plainMarkup(task.m_pszSubject);
    if (task.m_bComplete != 0)
    {
        return u"<FONT SIZE=2 COLOR=#7A848F><S>" + words + u"</S></FONT>";
    }
    return (task.m_bParentOnly ? u"<FONT SIZE=2 COLOR=#7A848F>" : u"<FONT SIZE=2 COLOR=#16202B>") + words + endFont;
}

std::u16string priority(const DATATASKS &task)
{
    const std::u16string words = std::u16string(task.m_szPriorityLetter) + task.m_szPriorityNumber;
    return words.empty() ? words : u"<FONT SIZE=0 COLOR=#1F4E8C><B>" + host::plainMarkup(words) + u"</B></FONT> ";
}

ListRow headerRow(const DATATASKS &group)
{
    ListRow row;
    row.back = headerColor;
    row.markup = arrow(group) + u"<FONT SIZE=1 COLOR=#2B3A4C><B>" + host::plainMarkup(group.m_pszSubject) + u"</B></FONT>" +
                 u"<P ALIGN=RIGHT><FONT SIZE=1 COLOR=#5C6875>" + decimal(group.NumChildren()) + u"</FONT></P>";
    return row;
}

int indentOf(const DATATASKS &task, bool tree)
{
    return tree ? task.m_nDepth * HIDPI_SCALEX(step) : 0;
}
} // namespace

ListRow taskRow(const DATATASKS &task, bool tree, int today)
{
    if (task.IsGroupHeader())
    {
        return headerRow(task);
    }
    const bool parent = tree && task.IsParentNode();
    ListRow row;
    CCategoryColor::InitCategoryColors();
    const COLORREF color = CCategoryColor::GetCategoryColorCR(task.m_pszCategories);
    row.strip = color == NO_CATEGORY_COLOR ? host::noCategoryColor : color;
    // The room of an arrow that is not there.
    row.indent = indentOf(task, tree) + (tree && !parent ? HIDPI_SCALEX(step) : 0);
    row.markup = (parent ? arrow(task) : std::u16string()) +
                 (task.m_bComplete != 0 ? u"<IMG SRC=260> " : u"<IMG SRC=259> ") + priority(task) + subject(task) +
                 flags(task);
    const std::u16string second = secondLine(task, today);
    row.markup += second.empty() ? second : u"<BR>" + second;
    return row;
}

TaskPart taskPartAt(const DATATASKS &task, bool tree, int x)
{
    if (task.IsGroupHeader())
    {
        return TaskPart::Arrow;
    }
    const int from = HIDPI_SCALEX(strip) + indentOf(task, tree);
    const int room = tree ? HIDPI_SCALEX(step) : 0;
    if (x < from + room && task.IsParentNode())
    {
        return TaskPart::Arrow;
    }
    return x < from + room + HIDPI_SCALEX(checkWidth) ? TaskPart::Check : TaskPart::Subject;
}

std::optional<CardWords> taskCard(CEOID id)
{
    COutlook outlook;
    const Counted<ITask> task = itemOf<ITask>(outlook, id, IID_ITask);
    if (!task)
    {
        return std::nullopt;
    }
    CardWords card;
    card.title = bstrOf(*task.get(), &ITask::get_Subject);
    card.title = card.title.empty() ? text(host::textNoSubject) : card.title;
    VARIANT_BOOL complete = VARIANT_FALSE;
    task->get_Complete(&complete);
    VARIANT_BOOL recurring = VARIANT_FALSE;
    LONG importance = taskImportanceNormal;
    LONG sensitivity = olNormal;
    task->get_IsRecurring(&recurring);
    task->get_Importance(&importance);
    task->get_Sensitivity(&sensitivity);
    card.mark(complete != VARIANT_FALSE, textCompleted);
    card.mark(importance == taskImportanceHigh, textHighImportance);
    card.mark(importance == taskImportanceLow, textLowImportance);
    card.mark(recurring != VARIANT_FALSE, textSeries);
    card.mark(sensitivity != olNormal, textPrivate);
    const auto date = [&task](HRESULT (ITask::*get)(DATE *))
    {
        DATE value = PIM_NO_DATE;
        ((*task.get()).*get)(&value);
        return value == PIM_NO_DATE ? std::u16string() : dateWords(value, true);
    };
    card.add(textStarts, date(&ITask::get_StartDate));
    card.add(textDue, date(&ITask::get_DueDate));
    card.add(textCompleted, date(&ITask::get_DateCompleted));
    card.add(textCategories, bstrOf<IPOutlookItem>(*task.get(), &IPOutlookItem::get_Categories));
    card.add(textNotes, bstrOf<IPOutlookItem>(*task.get(), &IPOutlookItem::get_Body));
    return card;
}
} // namespace zb::screens
