// What zb add and zb edit put into items.
#include "common/days.h"
#include "platform/text.h"
#include "records/CategoryEdit.h"
#include "zb/bad_usage.h"
#include "zb/item_words.h"
#include "zb/items.h"

#include <cmath>

namespace zb::cli
{
namespace
{
constexpr LONG usualMinutes = 60;
constexpr LONG minutesOfDay = 1440;

/// Names with ", " between; what the device lacks is made.
std::string madeCategories(const std::vector<std::string> &names)
{
    std::string joined;
    for (const std::string &name : names)
    {
        const CategoryChange made = addCategory(toUtf16(name).c_str());
        if (made != CategoryChange::Done && made != CategoryChange::Exists)
        {
            throw BadUsage("\"" + name + "\" can't be a category");
        }
        joined += (joined.empty() ? "" : ", ") + name;
    }
    return joined;
}

// --- Repetition --------------------------------------------------------------------------------------------------

void putRepetition(IRecurrencePattern &pattern, const ItemArguments &arguments)
{
    if (arguments.repeat)
    {
        pattern.put_RecurrenceType(*arguments.repeat);
    }
    if (arguments.every)
    {
        pattern.put_Interval(*arguments.every);
    }
    if (arguments.times)
    {
        pattern.put_Occurrences(*arguments.times);
    }
    else if (!arguments.until.empty())
    {
        pattern.put_PatternEndDate(momentOption(arguments.until, "--until").date);
    }
    else if (arguments.forever)
    {
        pattern.put_NoEndDate(VARIANT_TRUE);
    }
}

template <typename Item>
void putPattern(Item &item, const ItemArguments &arguments)
{
    if (arguments.noRepeat)
    {
        item.ClearRecurrencePattern();
        return;
    }
    VARIANT_BOOL recurring = VARIANT_FALSE;
    item.get_IsRecurring(&recurring);
    if (!arguments.repeat && arguments.changesRepetition() && recurring == VARIANT_FALSE)
    {
        throw BadUsage("it does not repeat; --repeat says how it should");
    }
    Counted<IRecurrencePattern> pattern;
    if (arguments.changesRepetition() && SUCCEEDED(item.GetRecurrencePattern(pattern.out())))
    {
        putRepetition(*pattern.get(), arguments);
    }
}

// --- Times -------------------------------------------------------------------------------------------------------

/// A moment where a time alone means that time on the day of `now`, and a day alone the time of `now` on that day.
Moment changedMoment(const std::string &text, const char *option, DATE now, bool allDay)
{
    if (const std::optional<int> minute = minuteFromText(text))
    {
        return {std::floor(now) + *minute / static_cast<double>(minutesOfDay), true};
    }
    Moment moment = momentOption(text, option);
    if (!moment.hasTime && !allDay)
    {
        moment.date += now - std::floor(now);
        moment.hasTime = true;
    }
    return moment;
}

bool takesWholeDays(IAppointment &item)
{
    VARIANT_BOOL allDay = VARIANT_FALSE;
    item.get_AllDayEvent(&allDay);
    return allDay != VARIANT_FALSE;
}

void putNewTimes(IAppointment &item, const ItemArguments &arguments)
{
    const Moment start = momentOption(arguments.start, "--start");
    item.put_AllDayEvent(start.hasTime ? VARIANT_FALSE : VARIANT_TRUE);
    item.put_Start(start.date);
    if (arguments.end.empty())
    {
        item.put_Duration(arguments.minutes.value_or(start.hasTime ? usualMinutes : minutesOfDay));
        return;
    }
    const Moment end = momentOption(arguments.end, "--end");
    if (start.hasTime && !end.hasTime)
    {
        throw BadUsage("--end wants a time too, since --start has one");
    }
    item.put_End(end.date);
}

void changeStart(IAppointment &item, const ItemArguments &arguments)
{
    DATE now = 0.0;
    item.get_Start(&now);
    const bool allDay = takesWholeDays(item);
    const Moment start = changedMoment(arguments.start, "--start", now, allDay || arguments.allDay);
    if (start.hasTime && arguments.allDay)
    {
        throw BadUsage("--all-day goes with a --start that is a day alone");
    }
    if (start.hasTime && allDay)
    {
        item.put_AllDayEvent(VARIANT_FALSE);
        item.put_Duration(usualMinutes);
    }
    item.put_Start(start.date);
}

void changeEnd(IAppointment &item, const ItemArguments &arguments)
{
    const bool allDay = takesWholeDays(item);
    DATE start = 0.0;
    DATE now = 0.0;
    item.get_Start(&start);
    item.get_End(&now);
    // Midnight belongs to the day that ends there, and an evening may last into the next day.
    const bool midnight = !allDay && now > start && now == std::floor(now);
    Moment end = changedMoment(arguments.end, "--end", midnight && minuteFromText(arguments.end) ? now - 1 : now, allDay);
    if (end.hasTime && allDay)
    {
        throw BadUsage("--end has a time, but the appointment takes whole days; a --start with a time ends that");
    }
    if (minuteFromText(arguments.end) && end.date < start)
    {
        end.date += 1;
    }
    item.put_End(end.date);
}

void changeTimes(IAppointment &item, const ItemArguments &arguments)
{
    if (!arguments.start.empty())
    {
        changeStart(item, arguments);
    }
    if (arguments.allDay)
    {
        item.put_AllDayEvent(VARIANT_TRUE);
    }
    if (arguments.minutes)
    {
        item.put_Duration(*arguments.minutes);
    }
    if (!arguments.end.empty())
    {
        changeEnd(item, arguments);
    }
}

// --- Kinds -------------------------------------------------------------------------------------------------------

void fill(IAppointment &item, const ItemArguments &arguments, bool isNew)
{
    isNew ? putNewTimes(item, arguments) : changeTimes(item, arguments);
    if (arguments.subject)
    {
        item.put_Subject(ItemText(*arguments.subject));
    }
    if (arguments.location)
    {
        item.put_Location(ItemText(*arguments.location));
    }
    if (arguments.busy)
    {
        item.put_BusyStatus(*arguments.busy);
    }
    if (arguments.isPrivate)
    {
        item.put_Sensitivity(*arguments.isPrivate ? olPrivate : olNormal);
    }
    if (arguments.reminder || arguments.noReminder)
    {
        item.put_ReminderSet(arguments.noReminder ? VARIANT_FALSE : VARIANT_TRUE);
    }
    if (arguments.reminder)
    {
        item.put_ReminderMinutesBeforeStart(*arguments.reminder);
    }
    putPattern(item, arguments);
}

void putDates(ITask &item, const ItemArguments &arguments)
{
    if (!arguments.start.empty() || arguments.noStart)
    {
        item.put_StartDate(arguments.noStart ? PIM_NO_DATE : momentOption(arguments.start, "--start").date);
    }
    if (!arguments.due.empty() || arguments.noDue)
    {
        item.put_DueDate(arguments.noDue ? PIM_NO_DATE : momentOption(arguments.due, "--due").date);
    }
}

void fill(ITask &item, const ItemArguments &arguments)
{
    putDates(item, arguments);
    if (arguments.subject)
    {
        item.put_Subject(ItemText(*arguments.subject));
    }
    if (arguments.importance)
    {
        item.put_Importance(*arguments.importance);
    }
    if (arguments.isPrivate)
    {
        item.put_Sensitivity(*arguments.isPrivate ? olPrivate : olNormal);
    }
    putPattern(item, arguments);
}

void fill(IContact &item, const ItemArguments &arguments)
{
    for (std::size_t i = 0; i < arguments.contact.size(); ++i)
    {
        if (arguments.contact[i])
        {
            // Apart from the call: one compiler loses its way with both in one expression.
            const auto put = contactTexts()[i].put;
            const ItemText text(*arguments.contact[i]);
            (item.*put)(text);
        }
    }
    if (arguments.subject)
    {
        item.put_FileAs(ItemText(*arguments.subject));
    }
    if (!arguments.birthday.empty() || arguments.noBirthday)
    {
        item.put_Birthday(arguments.noBirthday ? PIM_NO_DATE : momentOption(arguments.birthday, "--birthday").date);
    }
    if (!arguments.anniversary.empty() || arguments.noAnniversary)
    {
        item.put_Anniversary(arguments.noAnniversary ? PIM_NO_DATE
                                                     : momentOption(arguments.anniversary, "--anniversary").date);
    }
    BSTR name = nullptr;
    item.get_FileAs(&name);
    const bool named = SysStringLen(name) != 0;
    SysFreeString(name);
    if (!named)
    {
        throw BadUsage("a contact needs a name, a company, a number or an address");
    }
}
} // namespace

const std::vector<ContactText> &contactTexts()
{
    static const std::vector<ContactText> texts = {
        {"--title", "In front of the name, Dr.", &IContact::put_Title},
        {"--first", "First name", &IContact::put_FirstName},
        {"--middle", "Middle name", &IContact::put_MiddleName},
        {"--last", "Last name", &IContact::put_LastName},
        {"--suffix", "Behind the name, Jr.", &IContact::put_Suffix},
        {"--company", "Company", &IContact::put_CompanyName},
        {"--department", "Department", &IContact::put_Department},
        {"--job", "Job title", &IContact::put_JobTitle},
        {"--office", "Office", &IContact::put_OfficeLocation},
        {"--assistant", "Assistant", &IContact::put_AssistantName},
        {"--spouse", "Spouse", &IContact::put_Spouse},
        {"--children", "Children", &IContact::put_Children},
        {"--mobile", "Mobile number", &IContact::put_MobileTelephoneNumber},
        {"--phone", "Home number", &IContact::put_HomeTelephoneNumber},
        {"--work-phone", "Business number", &IContact::put_BusinessTelephoneNumber},
        {"--phone2", "Second home number", &IContact::put_Home2TelephoneNumber},
        {"--work-phone2", "Second business number", &IContact::put_Business2TelephoneNumber},
        {"--car", "Car number", &IContact::put_CarTelephoneNumber},
        {"--radio", "Radio number", &IContact::put_RadioTelephoneNumber},
        {"--pager", "Pager number", &IContact::put_PagerNumber},
        {"--assistant-phone", "Assistant's number", &IContact::put_AssistantTelephoneNumber},
        {"--fax", "Business fax", &IContact::put_BusinessFaxNumber},
        {"--home-fax", "Home fax", &IContact::put_HomeFaxNumber},
        {"--email", "Mail address", &IContact::put_Email1Address},
        {"--email2", "Second mail address", &IContact::put_Email2Address},
        {"--email3", "Third mail address", &IContact::put_Email3Address},
        {"--web", "Web page", &IContact::put_WebPage},
        {"--street", "Home address: street", &IContact::put_HomeAddressStreet},
        {"--city", "Home address: city", &IContact::put_HomeAddressCity},
        {"--state", "Home address: state", &IContact::put_HomeAddressState},
        {"--postal-code", "Home address: postal code", &IContact::put_HomeAddressPostalCode},
        {"--country", "Home address: country", &IContact::put_HomeAddressCountry},
        {"--work-street", "Business address: street", &IContact::put_BusinessAddressStreet},
        {"--work-city", "Business address: city", &IContact::put_BusinessAddressCity},
        {"--work-state", "Business address: state", &IContact::put_BusinessAddressState},
        {"--work-postal-code", "Business address: postal code", &IContact::put_BusinessAddressPostalCode},
        {"--work-country", "Business address: country", &IContact::put_BusinessAddressCountry},
        {"--other-street", "Other address: street", &IContact::put_OtherAddressStreet},
        {"--other-city", "Other address: city", &IContact::put_OtherAddressCity},
        {"--other-state", "Other address: state", &IContact::put_OtherAddressState},
        {"--other-postal-code", "Other address: postal code", &IContact::put_OtherAddressPostalCode},
        {"--other-country", "Other address: country", &IContact::put_OtherAddressCountry},
    };
    return texts;
}

void fillItem(IPOutlookItem &item, const ItemArguments &arguments, bool isNew)
{
    switch (arguments.kind)
    {
    case olAppointmentItem:
        fill(*as<IAppointment>(item, IID_IAppointment).get(), arguments, isNew);
        break;
    case olTaskItem:
        fill(*as<ITask>(item, IID_ITask).get(), arguments);
        break;
    default:
        fill(*as<IContact>(item, IID_IContact).get(), arguments);
        break;
    }
    if (arguments.notes)
    {
        item.put_Body(ItemText(*arguments.notes));
    }
    if (!arguments.categories.empty() || arguments.noCategory)
    {
        item.put_Categories(ItemText(madeCategories(arguments.categories)));
    }
}
} // namespace zb::cli
