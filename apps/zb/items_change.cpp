// zb delete and zb done: single items.
#include "platform/text.h"
#include "records/COutlook.h"
#include "tasks/TaskSubject.h"
#include "zb/bad_usage.h"
#include "zb/exit_code.h"
#include "zb/item_words.h"
#include "zb/items.h"
#include "zb/json.h"
#include "zb/open_device.h"
#include "zb/terminal.h"

#include <cstdlib>

namespace zb::cli
{
namespace
{
/// Throws BadUsage when there is no such item.
Counted<IPOutlookItem> itemOf(COutlook &outlook, CEOID id)
{
    Counted<IDispatch> found;
    if (outlook.GetItemFromOid(id, found.out()) != S_OK)
    {
        throw BadUsage("the device has no item " + std::to_string(id));
    }
    found->AddRef();
    return Counted<IPOutlookItem>(static_cast<IPOutlookItem *>(found.get()));
}

template <typename Item>
Counted<Item> as(IPOutlookItem &item, const GUID &id)
{
    void *found = nullptr;
    item.QueryInterface(id, &found);
    return Counted<Item>(static_cast<Item *>(found));
}

bool isSeries(IPOutlookItem &item)
{
    VARIANT_BOOL recurring = VARIANT_FALSE;
    if (const auto appointment = as<IAppointment>(item, IID_IAppointment))
    {
        appointment->get_IsRecurring(&recurring);
    }
    return recurring != VARIANT_FALSE;
}

/// One day of a series; throws BadUsage for an item that is none, or has none then.
Counted<IPOutlookItem> dayOfSeries(IPOutlookItem &item, const std::string &day)
{
    if (!isSeries(item))
    {
        throw BadUsage("--day goes with repeating appointments alone");
    }
    Counted<IRecurrencePattern> pattern;
    Counted<IAppointment> occurrence;
    as<IAppointment>(item, IID_IAppointment)->GetRecurrencePattern(pattern.out());
    if (pattern->GetOccurrence(momentOption(day, "--day").date, occurrence.out()) != S_OK)
    {
        throw BadUsage("the appointment does not take place on that day");
    }
    occurrence->AddRef();
    return Counted<IPOutlookItem>(occurrence.get());
}

/// Throws BadUsage for a task that comes again some days after it was done: what is to happen then is no field of the
/// object.
void refuseRegenerating(const std::string &subject)
{
    WCHAR letter[5] = {};
    WCHAR number[5] = {};
    int days = 0;
    std::free(CTask::ParseExtraFromSubjectInt(toUtf16(subject).c_str(), letter, number, days));
    if (days > 0)
    {
        throw BadUsage("this task comes again " + std::to_string(days) +
                       " days after it was done; zb can't complete such tasks");
    }
}
} // namespace

int runDelete(const DeleteArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    COutlook outlook;
    Counted<IPOutlookItem> item = itemOf(outlook, arguments.id);
    const bool series = isSeries(*item.get());
    if (!arguments.day.empty())
    {
        item = dayOfSeries(*item.get(), arguments.day);
    }
    else if (series && !arguments.yes && !arguments.dryRun)
    {
        throw BadUsage("\"" + titleOf(*item.get()) + "\" repeats: --day names one day of it, --yes deletes all of it");
    }
    const std::string title = titleOf(*item.get());
    const std::string kind = kindWord(*item.get());
    const int code = arguments.dryRun ? exitOk : exitCodeOf(item->Delete());
    if (code != exitOk)
    {
        return code;
    }
    Output output;
    const bool oneDay = !arguments.day.empty();
    output.line(arguments.json ? text(Json{{"version", jsonVersion},
                                           {"id", arguments.id},
                                           {"kind", kind},
                                           {"title", title},
                                           {"oneDay", oneDay},
                                           {"deleted", !arguments.dryRun}})
                               : (arguments.dryRun ? "would delete " : "deleted ") +
                                     std::string(oneDay ? "one day of " : "") + kind + " \"" + title + "\"");
    return output.finish() ? exitOk : exitOutput;
}

int runDone(const DoneArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    COutlook outlook;
    const Counted<IPOutlookItem> item = itemOf(outlook, arguments.id);
    const Counted<ITask> task = as<ITask>(*item.get(), IID_ITask);
    if (!task)
    {
        throw BadUsage("item " + std::to_string(arguments.id) + " is no task");
    }
    const std::string title = titleOf(*item.get());
    if (!arguments.undo)
    {
        refuseRegenerating(title);
    }
    task->put_Complete(arguments.undo ? VARIANT_FALSE : VARIANT_TRUE);
    if (const int code = exitCodeOf(task->Save()); code != exitOk)
    {
        return code;
    }
    VARIANT_BOOL complete = VARIANT_FALSE;
    DATE due = PIM_NO_DATE;
    task->get_Complete(&complete);
    task->get_DueDate(&due);
    const std::string dueText = isoText(due, false);
    const bool movedOn = !arguments.undo && complete == VARIANT_FALSE;
    Output output;
    if (arguments.json)
    {
        Json result{{"version", jsonVersion}, {"id", arguments.id}, {"title", title}};
        result["complete"] = complete != VARIANT_FALSE;
        result["due"] = dueText.empty() ? Json() : Json(dueText);
        output.line(text(result));
    }
    else
    {
        output.line(movedOn ? "\"" + title + "\" is due again " + dueText
                            : "\"" + title + "\" is " + (complete != VARIANT_FALSE ? "completed" : "open"));
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
