// zb export: items as a calendar file, or as a file of cards.
#include "common/complain.h"
#include "common/days.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "interchange/appointment_store.h"
#include "interchange/export.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "records/FullCategories.h"
#include "zb/bad_usage.h"
#include "zb/commands.h"
#include "zb/json.h"
#include "zb/terminal.h"
#include "zb/whole_file.h"

#include <optional>

namespace zb::cli
{
using namespace host;

namespace
{
LONGLONG ticksOfDay(const std::string &text, const char *option)
{
    const std::optional<int> day = dayFromText(text, today());
    if (!day)
    {
        throw BadUsage("\"" + text + "\" of " + option + " is no day (2026-11-21, today, tomorrow, +3)");
    }
    return (LONGLONG{*day} + daysFrom1601ToVariantZero) * ticksPerDay;
}

std::set<unsigned> idsOf(const std::vector<std::string> &names)
{
    std::set<unsigned> ids;
    CePtrList<CFullCategory *> known(0, CEOWN_DELETE);
    GetFullCategoryInfo(known, true);
    for (const std::string &name : names)
    {
        const std::size_t before = ids.size();
        for (int n = 0; n < known.GetCount(); ++n)
        {
            if (lstrcmpiW(known.GetAt(n)->m_pszName, toUtf16(name).c_str()) == 0)
            {
                ids.insert(static_cast<unsigned>(known.GetAt(n)->m_nId));
            }
        }
        if (ids.size() == before)
        {
            throw BadUsage("there is no category \"" + name + "\"; \"zb categories\" lists them");
        }
    }
    return ids;
}

interchange::ExportChoice choiceOf(const ExportArguments &arguments)
{
    interchange::ExportChoice choice;
    if (!arguments.from.empty())
    {
        choice.firstDay = ticksOfDay(arguments.from, "--from");
    }
    if (!arguments.to.empty())
    {
        choice.lastDay = ticksOfDay(arguments.to, "--to");
    }
    if (choice.firstDay && choice.lastDay && *choice.lastDay < *choice.firstDay)
    {
        throw BadUsage("--to lies before --from");
    }
    choice.events = arguments.kind != ExportKind::Tasks;
    choice.tasks = arguments.kind != ExportKind::Events;
    choice.categories = idsOf(arguments.categories);
    return choice;
}

std::string counted(std::size_t count, const char *word)
{
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

int tell(const interchange::ExportResult &result, const ExportArguments &arguments, bool cards)
{
    Output output;
    if (arguments.json)
    {
        Json told{{"version", jsonVersion}, {"file", arguments.file.string()}};
        told["appointments"] = result.appointments;
        told["tasks"] = result.tasks;
        told["contacts"] = result.contacts;
        output.line(text(told));
    }
    else
    {
        output.line(arguments.file.string() + ": " +
                    (cards ? counted(result.contacts, "contact")
                           : counted(result.appointments, "appointment") + ", " + counted(result.tasks, "task")));
    }
    return output.finish() ? exitOk : exitOutput;
}
} // namespace

int runExport(const ExportArguments &arguments)
{
    const bool toFile = !arguments.file.empty() && arguments.file != "-";
    const bool cards = arguments.kind == ExportKind::Contacts;
    if (cards && (!arguments.from.empty() || !arguments.to.empty()))
    {
        throw BadUsage("--from and --to go with appointments and tasks");
    }
    if (arguments.json && !toFile)
    {
        throw BadUsage("--json tells what went into a file; -o names it");
    }
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    const interchange::ExportChoice choice = choiceOf(arguments);
    interchange::ExportResult result;
    try
    {
        result = cards ? interchange::exportContacts(choice) : interchange::exportCalendar(choice);
    }
    catch (const interchange::StoreError &error)
    {
        complain(std::string("nothing exported, ") + error.what());
        return exitDevice;
    }
    if (!toFile)
    {
        Output output;
        output.write(result.text);
        return output.finish() ? exitOk : exitOutput;
    }
    if (const std::string reason = writeWhole(arguments.file, result.text); !reason.empty())
    {
        complain(arguments.file.string() + ": " + reason);
        return exitOutput;
    }
    return tell(result, arguments, cards);
}
} // namespace zb::cli
