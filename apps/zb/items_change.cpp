// zb delete and zb done: single items.
#include "common/exit_code.h"
#include "common/open_device.h"
#include "records/COutlook.h"
#include "tasks/TaskRegeneration.h"
#include "zb/bad_usage.h"
#include "zb/item_words.h"
#include "zb/items.h"
#include "zb/json.h"
#include "zb/recorded.h"
#include "zb/terminal.h"

namespace zb::cli
{
using namespace host;

namespace
{
bool isSeries(IPOutlookItem &item)
{
    VARIANT_BOOL recurring = VARIANT_FALSE;
    if (const auto appointment = as<IAppointment>(item, IID_IAppointment))
    {
        appointment->get_IsRecurring(&recurring);
    }
    else if (const auto task = as<ITask>(item, IID_ITask))
    {
        task->get_IsRecurring(&recurring);
    }
    return recurring != VARIANT_FALSE;
}

/// The one occurrence that a repeating task has: on its due date, else its start date.
DATE dayOfTask(ITask &task)
{
    DATE day = PIM_NO_DATE;
    task.get_DueDate(&day);
    if (day == PIM_NO_DATE)
    {
        task.get_StartDate(&day);
    }
    return day;
}

/// One day of a series goes; throws BadUsage for an item that is none, or has none then.
HRESULT deleteDay(IPOutlookItem &item, const std::string &day, bool dryRun)
{
    if (!isSeries(item))
    {
        throw BadUsage("--day goes with repeating appointments and tasks alone");
    }
    const DATE wanted = momentOption(day, "--day").date;
    if (const auto task = as<ITask>(item, IID_ITask))
    {
        const DATE only = dayOfTask(*task.get());
        if (only != wanted)
        {
            throw BadUsage("a repeating task has one day at a time, and this one is at " + isoText(only, false));
        }
        return dryRun ? S_OK : task->SkipRecurrence();
    }
    const Counted<IAppointment> occurrence = occurrenceOf(*as<IAppointment>(item, IID_IAppointment).get(), wanted);
    return dryRun ? S_OK : occurrence->Delete();
}

/// Completes it, or moves it on; `copy` gets the id of the completed task that one leaves which comes again.
HRESULT complete(ITask &task, CEOID &copy)
{
    const HRESULT comesAgain = completeRegenerating(task, &copy);
    if (comesAgain != S_FALSE)
    {
        return comesAgain;
    }
    task.put_Complete(VARIANT_TRUE);
    return task.Save();
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
    const Counted<IPOutlookItem> item = itemOf(outlook, arguments.id);
    const bool oneDay = !arguments.day.empty();
    const std::string title = titleOf(*item.get());
    const std::string kind = kindWord(*item.get());
    if (!oneDay && isSeries(*item.get()) && !arguments.yes && !arguments.dryRun)
    {
        throw BadUsage("\"" + title + "\" repeats: --day names one day of it, --yes deletes all of it");
    }
    Recorded recorded(std::string("delete ") + (oneDay ? "one day of " : "") + kind + " " + quoted(title));
    const HRESULT result = oneDay             ? deleteDay(*item.get(), arguments.day, arguments.dryRun)
                           : arguments.dryRun ? S_OK
                                              : item->Delete();
    if (oneDay && result == PIM_E_NO_OCCURRENCE)
    {
        throw BadUsage("this is the last day of the series; --yes deletes all of it");
    }
    if (const int code = exitCodeOf(result); code != exitOk)
    {
        return code;
    }
    Output output;
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
    CEOID copy = 0;
    Recorded recorded(std::string(arguments.undo ? "open task " : "complete task ") + quoted(title));
    if (arguments.undo)
    {
        task->put_Complete(VARIANT_FALSE);
    }
    const HRESULT done = arguments.undo ? task->Save() : complete(*task.get(), copy);
    if (const int code = exitCodeOf(done); code != exitOk)
    {
        return code;
    }
    VARIANT_BOOL isComplete = VARIANT_FALSE;
    DATE due = PIM_NO_DATE;
    task->get_Complete(&isComplete);
    task->get_DueDate(&due);
    const std::string dueText = isoText(due, false);
    const bool movedOn = !arguments.undo && isComplete == VARIANT_FALSE;
    const std::string again = due == PIM_NO_DATE ? "starts again " : "is due again ";
    Output output;
    if (arguments.json)
    {
        Json result{{"version", jsonVersion}, {"id", arguments.id}, {"title", title}};
        result["complete"] = isComplete != VARIANT_FALSE;
        result["due"] = dueText.empty() ? Json() : Json(dueText);
        result["copy"] = copy == 0 ? Json() : Json(copy);
        output.line(text(result));
    }
    else
    {
        output.line(movedOn ? "\"" + title + "\" " + again + isoText(dayOfTask(*task.get()), false)
                            : "\"" + title + "\" is " + (isComplete != VARIANT_FALSE ? "completed" : "open"));
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace zb::cli
