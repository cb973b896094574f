// What zb add and zb edit put into items.
#include "common/days.h"
#include "platform/text.h"
#include "records/CategoryEdit.h"
#include "zb/bad_usage.h"
#include "zb/item_words.h"
#include "zb/items.h"
#include "zb/repeat_days.h"

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
    for (const std::string &written : names)
    {
        const std::string name = trimmed(written); // items take names without the blanks around them
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

LONG typeOf(IRecurrencePattern &pattern)
{
    LONG type = olRecursWeekly;
    pattern.get_RecurrenceType(&type);
    return type;
}

/// Another type begins with an interval of its own.
void changeType(IRecurrencePattern &pattern, LONG type)
{
    LONG interval = 1;
    pattern.get_Interval(&interval);
    if (typeOf(pattern) != type)
    {
        pattern.put_RecurrenceType(type);
        pattern.put_Interval(interval);
    }
}

/// --on: days of each week, or one of a month or of a month of the year.
void putDays(IRecurrencePattern &pattern, const std::string &text)
{
    const std::optional<RepeatDays> days = repeatDaysFromText(text);
    if (!days)
    {
        throw BadUsage("\"" + text + "\" of --on names no days: use tuesday,thursday or weekdays, and of months and "
                                    "years \"second tuesday\" or \"last friday\"");
    }
    switch (typeOf(pattern))
    {
    case olRecursDaily:
        throw BadUsage("--on goes with what repeats weekly, monthly or yearly");
    case olRecursWeekly:
        if (days->instance != 0)
        {
            throw BadUsage("\"" + text + "\" of --on goes with what repeats monthly or yearly");
        }
        break;
    default:
        if (days->instance == 0)
        {
            throw BadUsage("\"" + text + "\" of --on does not tell which: \"second tuesday\", \"last friday\"");
        }
        const LONG type = typeOf(pattern);
        changeType(pattern, type == olRecursMonthly || type == olRecursMonthNth ? olRecursMonthNth : olRecursYearNth);
        pattern.put_Instance(days->instance);
        break;
    }
    pattern.put_DayOfWeekMask(days->mask);
}

void putRepetition(IRecurrencePattern &pattern, const ItemArguments &arguments)
{
    if (arguments.repeat)
    {
        pattern.put_RecurrenceType(*arguments.repeat);
    }
    if (arguments.every)
    {
        if (*arguments.every > 1 && (typeOf(pattern) == olRecursYearly || typeOf(pattern) == olRecursYearNth))
        {
            throw BadUsage("what repeats yearly does so every year; --every goes with days, weeks and months");
        }
        pattern.put_Interval(*arguments.every);
    }
    if (!arguments.on.empty())
    {
        putDays(pattern, arguments.on);
    }
    if (arguments.times)
    {
        pattern.put_Occurrences(*arguments.times);
    }
    else if (!arguments.until.empty())
    {
        pattern.put_PatternEndDate(dayOption(arguments.until, "--until"));
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
    item.get_IsRecurring(&recurring);
    DATE first = firstListedDay;
    const bool moves = arguments.changesRepetition() || !arguments.start.empty() || !arguments.due.empty();
    if (moves && recurring != VARIANT_FALSE && (pattern || SUCCEEDED(item.GetRecurrencePattern(pattern.out()))))
    {
        pattern->get_PatternStartDate(&first);
    }
    if (first < firstListedDay)
    {
        throw BadUsage("what repeats begins in 1900 at the earliest, as lists show none before");
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
        if (moment.date < firstListedDay)
        {
            throw BadUsage("\"" + text + "\" of " + option + " is too early for a time of day; these begin in 1900");
        }
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
    if (!start.hasTime && arguments.minutes)
    {
        throw BadUsage("--minutes goes with a --start that has a time");
    }
    item.put_AllDayEvent(start.hasTime ? VARIANT_FALSE : VARIANT_TRUE);
    item.put_Start(start.date);
    if (arguments.end.empty())
    {
        item.put_Duration(start.hasTime ? arguments.minutes.value_or(usualMinutes) : minutesOfDay);
        return;
    }
    if (const std::optional<int> minute = start.hasTime ? minuteFromText(arguments.end) : std::nullopt)
    {
        // The first such time behind the start: an evening may last into the next day.
        const DATE end = std::floor(start.date) + *minute / static_cast<double>(minutesOfDay);
        item.put_End(end < start.date ? end + 1 : end);
        return;
    }
    const Moment end = momentOption(arguments.end, "--end");
    if (start.hasTime != end.hasTime)
    {
        throw BadUsage(start.hasTime ? "--end wants a time too, since --start has one"
                                     : "--start wants a time too, since --end has one");
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
        if (takesWholeDays(item))
        {
            throw BadUsage("--minutes does not go with whole days; a --start with a time ends these");
        }
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
        item.put_StartDate(arguments.noStart ? PIM_NO_DATE : dayOption(arguments.start, "--start"));
    }
    if (!arguments.due.empty() || arguments.noDue)
    {
        item.put_DueDate(arguments.noDue ? PIM_NO_DATE : dayOption(arguments.due, "--due"));
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
        // Blanks are no name: nobody could find the contact, and no card could carry it.
        item.put_FileAs(ItemText(isBlank(*arguments.subject) ? std::string() : *arguments.subject));
    }
    if (!arguments.birthday.empty() || arguments.noBirthday)
    {
        item.put_Birthday(arguments.noBirthday ? PIM_NO_DATE : dayOption(arguments.birthday, "--birthday"));
    }
    if (!arguments.anniversary.empty() || arguments.noAnniversary)
    {
        item.put_Anniversary(arguments.noAnniversary ? PIM_NO_DATE
                                                     : dayOption(arguments.anniversary, "--anniversary"));
    }
    BSTR name = nullptr;
    item.get_FileAs(&name);
    const bool named = name != nullptr && !isBlank(toUtf8(std::u16string_view(name, SysStringLen(name))));
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
    if (isNew && arguments.kind != olContactItem && isBlank(arguments.subject.value_or("")))
    {
        throw BadUsage(std::string(kindWord(item)) + "s need a subject");
    }
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
