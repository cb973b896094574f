#include "zembrik/calendar_card.h"

#include "common/agenda_words.h"
#include "common/days.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "common/visible_text.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/date_words.h"
#include "zembrik/item_card.h"
#include "zembrik/item_objects.h"
#include "zembrik/list_texts.h"
#include "zembrik/task_rows.h"

namespace zb::screens
{
namespace
{
using namespace zb::host;

/// "Friday, 20 November, 09:00 – 10:00".
std::u16string whenWords(const AgendaRow &row)
{
    const std::u16string first = dayWords(row.firstDay);
    const std::u16string last = dayWords(row.lastDay);
    if (row.allDay)
    {
        return row.firstDay == row.lastDay ? first + u"\n" + text(textAllDay) : first + u" –\n" + last;
    }
    const std::u16string from = toUtf16(timeText(row.start));
    const std::u16string to = toUtf16(timeText(row.end));
    if (row.firstDay == row.lastDay)
    {
        return first + u"\n" + (from == to ? from : from + u" – " + to);
    }
    return first + u", " + from + u" –\n" + last + u", " + to;
}

/// The values of a card, those left out that say nothing.
class Values
{
  public:
    void add(UINT label, const std::u16string &value)
    {
        if (!value.empty())
        {
            m_all.push_back(valueMarkup(text(label), value));
        }
    }
    std::vector<std::u16string> take()
    {
        return std::move(m_all);
    }

  private:
    std::vector<std::u16string> m_all;
};

std::u16string reminderWords(IAppointment &item)
{
    VARIANT_BOOL set = VARIANT_FALSE;
    LONG minutes = 0;
    item.get_ReminderSet(&set);
    item.get_ReminderMinutesBeforeStart(&minutes);
    if (set == VARIANT_FALSE)
    {
        return {};
    }
    return text(textReminderMinutes, {decimal(minutes)});
}

CardWords appointmentCard(const AgendaRow &row)
{
    CardWords card{toUtf16(subjectOf(row)), {}, {}};
    Values values;
    values.add(textWhen, whenWords(row));
    values.add(textWhere, toUtf16(visibleText(row.location)));
    if (row.kind != AgendaKind::Appointment)
    {
        card.below = text(textOfContact);
        card.values = values.take();
        return card;
    }
    COutlook outlook;
    const Counted<IAppointment> item = itemOf<IAppointment>(outlook, row.id, IID_IAppointment);
    std::u16string marks = row.recurring ? text(textSeries) : std::u16string();
    marks += row.isPrivate ? (marks.empty() ? u"" : u" · ") + text(textPrivate) : std::u16string();
    card.below = item ? marks : text(textGone);
    values.add(textStatus, text(textFirstStatus + static_cast<UINT>(std::clamp(row.busyStatus, 0, 3))));
    values.add(textCategories, toUtf16(categoryText(row)));
    if (item)
    {
        values.add(textReminder, reminderWords(*item.get()));
        values.add(textNotes, bstrOf<IPOutlookItem>(*item.get(), &IPOutlookItem::get_Body));
    }
    card.values = values.take();
    return card;
}
} // namespace

CardWords cardOf(const AgendaRow &row)
{
    if (row.kind != AgendaKind::Task)
    {
        CardWords card = appointmentCard(row);
        card.title = card.title.empty() ? text(textNoSubject) : card.title;
        return card;
    }
    std::optional<TaskDetails> details = taskDetails(row.id);
    if (!details)
    {
        return {toUtf16(subjectOf(row)), text(textGone), {}};
    }
    return {details->title, details->below, std::move(details->values)};
}
} // namespace zb::screens
