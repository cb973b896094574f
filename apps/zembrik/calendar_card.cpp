#include "zembrik/calendar_card.h"

#include "common/agenda_words.h"
#include "common/days.h"
#include "common/row_texts.h"
#include "common/texts.h"
#include "common/visible_text.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/date_words.h"
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

std::u16string reminderOf(IAppointment &item)
{
    VARIANT_BOOL set = VARIANT_FALSE;
    LONG minutes = 0;
    item.get_ReminderSet(&set);
    item.get_ReminderMinutesBeforeStart(&minutes);
    if (set == VARIANT_FALSE)
    {
        return {};
    }
    return reminderWords(minutes);
}

std::optional<CardWords> appointmentCard(const AgendaRow &row)
{
    const std::string subject = subjectOf(row);
    CardWords card{subject.empty() ? text(textNoSubject) : toUtf16(subject), {}, {}};
    card.add(textWhen, whenWords(row));
    card.add(textWhere, toUtf16(visibleText(row.location)));
    if (row.kind != AgendaKind::Appointment)
    {
        card.below = text(textOfContact);
        return card;
    }
    COutlook outlook;
    const Counted<IAppointment> item = itemOf<IAppointment>(outlook, row.id, IID_IAppointment);
    if (!item)
    {
        return std::nullopt;
    }
    card.mark(row.recurring, textSeries);
    card.mark(row.isPrivate, textPrivate);
    card.add(textStatus, text(textFirstStatus + static_cast<UINT>(std::clamp(row.busyStatus, 0, 3))));
    card.add(textCategories, toUtf16(categoryText(row)));
    card.add(textReminder, reminderOf(*item.get()));
    card.add(textNotes, bstrOf<IPOutlookItem>(*item.get(), &IPOutlookItem::get_Body));
    return card;
}
} // namespace

std::u16string reminderWords(LONG minutes)
{
    constexpr std::pair<LONG, UINT> units[] = {
        {7 * 24 * 60, textReminderWeek}, {24 * 60, textReminderDay}, {60, textReminderHour}};
    if (minutes == 0)
    {
        return text(textReminderAtStart);
    }
    for (const auto &[length, one] : units)
    {
        if (minutes % length == 0)
        {
            return minutes == length ? text(one) : text(one + 1, {decimal(minutes / length)});
        }
    }
    return minutes == 1 ? text(textReminderMinute) : text(textReminderMinutes, {decimal(minutes)});
}

std::optional<CardWords> cardOf(const AgendaRow &row)
{
    return row.kind == AgendaKind::Task ? taskCard(row.id) : appointmentCard(row);
}
} // namespace zb::screens
