// zb add: one appointment, task or contact.
#include "platform/text.h"
#include "records/COutlook.h"
#include "records/CategoryEdit.h"
#include "zb/bad_usage.h"
#include "zb/days.h"
#include "zb/exit_code.h"
#include "zb/item_words.h"
#include "zb/items.h"
#include "zb/json.h"
#include "zb/open_device.h"
#include "zb/terminal.h"

namespace zb::cli
{
namespace
{
constexpr LONG usualMinutes = 60;
constexpr LONG minutesOfDay = 1440;

/// What a put refuses, Save tells.
template <typename Item>
Counted<Item> as(IDispatch *item, const GUID &id)
{
    void *found = nullptr;
    item->QueryInterface(id, &found);
    return Counted<Item>(static_cast<Item *>(found));
}

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

void putRepetition(IRecurrencePattern &pattern, const AddArguments &arguments)
{
    pattern.put_RecurrenceType(*arguments.repeat);
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
}

template <typename Item>
void putPattern(Item &item, const AddArguments &arguments)
{
    Counted<IRecurrencePattern> pattern;
    if (arguments.repeat && SUCCEEDED(item.GetRecurrencePattern(pattern.out())))
    {
        putRepetition(*pattern.get(), arguments);
    }
}

void putTimes(IAppointment &item, const AddArguments &arguments)
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

void fill(IAppointment &item, const AddArguments &arguments)
{
    putTimes(item, arguments);
    item.put_Subject(ItemText(arguments.subject));
    item.put_Location(ItemText(arguments.location));
    item.put_BusyStatus(arguments.busy.value_or(olBusy));
    item.put_Sensitivity(arguments.isPrivate ? olPrivate : olNormal);
    if (arguments.reminder)
    {
        item.put_ReminderSet(VARIANT_TRUE);
        item.put_ReminderMinutesBeforeStart(*arguments.reminder);
    }
    putPattern(item, arguments);
}

void fill(ITask &item, const AddArguments &arguments)
{
    item.put_Subject(ItemText(arguments.subject));
    if (!arguments.start.empty())
    {
        item.put_StartDate(momentOption(arguments.start, "--start").date);
    }
    if (!arguments.due.empty())
    {
        item.put_DueDate(momentOption(arguments.due, "--due").date);
    }
    item.put_Importance(arguments.importance.value_or(olImportanceNormal));
    item.put_Sensitivity(arguments.isPrivate ? olPrivate : olNormal);
    putPattern(item, arguments);
}

void fill(IContact &item, const AddArguments &arguments)
{
    for (std::size_t i = 0; i < arguments.contact.size(); ++i)
    {
        (item.*contactTexts()[i].put)(ItemText(arguments.contact[i]));
    }
    if (!arguments.subject.empty())
    {
        item.put_FileAs(ItemText(arguments.subject));
    }
    if (!arguments.birthday.empty())
    {
        item.put_Birthday(momentOption(arguments.birthday, "--birthday").date);
    }
    if (!arguments.anniversary.empty())
    {
        item.put_Anniversary(momentOption(arguments.anniversary, "--anniversary").date);
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

void fillByKind(IDispatch *made, const AddArguments &arguments)
{
    switch (arguments.kind)
    {
    case olAppointmentItem:
        fill(*as<IAppointment>(made, IID_IAppointment).get(), arguments);
        break;
    case olTaskItem:
        fill(*as<ITask>(made, IID_ITask).get(), arguments);
        break;
    default:
        fill(*as<IContact>(made, IID_IContact).get(), arguments);
        break;
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
        {"--mobile", "Mobile number", &IContact::put_MobileTelephoneNumber},
        {"--phone", "Home number", &IContact::put_HomeTelephoneNumber},
        {"--work-phone", "Business number", &IContact::put_BusinessTelephoneNumber},
        {"--fax", "Business fax", &IContact::put_BusinessFaxNumber},
        {"--email", "Mail address", &IContact::put_Email1Address},
        {"--email2", "Second mail address", &IContact::put_Email2Address},
        {"--web", "Web page", &IContact::put_WebPage},
        {"--street", "Home address: street", &IContact::put_HomeAddressStreet},
        {"--city", "Home address: city", &IContact::put_HomeAddressCity},
        {"--state", "Home address: state", &IContact::put_HomeAddressState},
        {"--postal-code", "Home address: postal code", &IContact::put_HomeAddressPostalCode},
        {"--country", "Home address: country", &IContact::put_HomeAddressCountry},
    };
    return texts;
}

int runAdd(const AddArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    COutlook outlook;
    Counted<IDispatch> made;
    if (outlook.CreateItem(arguments.kind, made.out()) != S_OK)
    {
        return exitDevice;
    }
    auto *const item = static_cast<IPOutlookItem *>(made.get());
    fillByKind(made.get(), arguments);
    item->put_Body(ItemText(arguments.notes));
    item->put_Categories(ItemText(madeCategories(arguments.categories)));
    if (const int code = exitCodeOf(item->Save()); code != exitOk)
    {
        return code;
    }
    LONG oid = 0;
    item->get_Oid(&oid);
    Output output;
    output.line(arguments.json ? text(Json{{"version", jsonVersion}, {"kind", kindWord(*item)}, {"id", oid}})
                               : std::to_string(oid));
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
