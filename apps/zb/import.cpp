// zb import: events and to-dos of iCalendar files into the device's appointments and tasks, cards of vCard files into
// its contacts, one transaction a file.
#include "common/complain.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "interchange/appointment_store.h"
#include "interchange/import_file.h"
#include "zb/commands.h"
#include "zb/json.h"
#include "zb/recorded.h"
#include "zb/terminal.h"

#include <optional>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr int longestWords = 100;

using interchange::FileFault;
using interchange::ImportReport;

const char *nameOf(FileFault fault)
{
    switch (fault)
    {
    case FileFault::Unreadable:
        return "unreadable";
    case FileFault::NotCalendar:
        return "notCalendar";
    case FileFault::Torn:
        return "torn";
    }
    return "";
}

Json asJson(const interchange::TaskCounts &tasks)
{
    Json told = {
        {"inFile", tasks.seen},
        {"new", tasks.added},
        {"changed", tasks.updated},
        {"unchanged", tasks.unchanged},
        {"leftOut", {{"cancelled", tasks.cancelled}, {"olderVersions", tasks.superseded}, {"refused", tasks.refused}}},
        {"repeatingAsOne", tasks.repeating},
        {"putUnderAnother", tasks.linked},
        {"lostProperties", Json::object()}};
    for (const auto &[name, count] : tasks.lost)
    {
        told["lostProperties"][name] = count;
    }
    return told;
}

Json asJson(const interchange::ContactCounts &contacts)
{
    Json told = {{"inFile", contacts.seen},
                 {"new", contacts.added},
                 {"changed", contacts.updated},
                 {"unchanged", contacts.unchanged},
                 {"leftOut",
                  {{"olderVersions", contacts.superseded},
                   {"repeated", contacts.repeated},
                   {"groups", contacts.groups},
                   {"refused", contacts.refused}}},
                 {"pictures", contacts.pictures},
                 {"newCategories", contacts.categories},
                 {"lostProperties", Json::object()}};
    for (const auto &[name, count] : contacts.lost)
    {
        told["lostProperties"][name] = count;
    }
    return told;
}

Json asJson(const ImportReport &report)
{
    Json file = {{"file", report.file}};
    if (report.failure)
    {
        file["failure"] = {
            {"kind", nameOf(report.failure->fault)}, {"line", report.failure->line}, {"text", report.failure->text}};
        return file;
    }
    file["events"] = report.events;
    file["new"] = report.added;
    file["changed"] = report.updated;
    file["unchanged"] = report.unchanged;
    file["leftOut"] = {{"cancelled", report.cancelled},
                       {"olderVersions", report.superseded},
                       {"changedFirstDays", report.changedFirstDays},
                       {"refused", report.refused}};
    file["removed"] = report.removed;
    file["series"] = {{"records", report.series},
                      {"changedDays", report.changedDays},
                      {"cancelledDays", report.cancelledDays},
                      {"unrolled", report.unrolled},
                      {"unrolledAppointments", report.unrolledAppointments}};
    file["repeatingAsFirstDay"] = report.repeating;
    file["shortenedTexts"] = report.shortened;
    file["newCategories"] = report.categories;
    file["lostColors"] = report.lostColors;
    file["tasks"] = asJson(report.tasks);
    file["contacts"] = asJson(report.contacts);
    file["otherComponents"] = Json::object();
    for (const auto &[name, count] : report.otherComponents)
    {
        file["otherComponents"][name] = count;
    }
    file["remarks"] = Json::array();
    for (const interchange::Finding &finding : report.findings)
    {
        file["remarks"].push_back({{"line", finding.line}, {"text", finding.text}});
    }
    file["moreRemarks"] = report.moreFindings;
    return file;
}

void print(const ImportReport &report, const ImportArguments &arguments, Output &output)
{
    for (const std::string &remark : remarks(report))
    {
        complain(remark);
    }
    if (!arguments.json && !report.failure)
    {
        output.line(summary(report) + (arguments.dryRun ? " (nothing written)" : ""));
    }
}

ImportReport importOne(const std::filesystem::path &file, const ImportArguments &arguments)
{
    ProgressBar bar("Importing " + file.filename().string());
    interchange::ImportOptions options;
    options.dryRun = arguments.dryRun;
    options.progress = [&bar](double fraction) { bar.show(fraction); };
    return interchange::importFile(file, options);
}

/// The gravest result of all files decides.
int worse(int a, int b)
{
    return std::max(a, b);
}

/// What the change is called.
std::string wordsFor(const ImportArguments &arguments)
{
    std::string words = "import";
    for (const std::filesystem::path &file : arguments.files)
    {
        words += (words == "import" ? " " : ", ") + (file == "-" ? "standard input" : file.filename().string());
    }
    return fitted(words, longestWords);
}

int resultOf(const ImportReport &report)
{
    return report.failure ? exitInput : report.isWhole() ? exitOk : exitIncomplete;
}
} // namespace

int runImport(const ImportArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Make);
    if (!device)
    {
        return exitDevice;
    }
    Output output;
    Json files = Json::array();
    std::optional<Recorded> recorded;
    if (!arguments.dryRun)
    {
        recorded.emplace(wordsFor(arguments));
    }
    int result = exitOk;
    bool deviceFailed = false;
    for (const std::filesystem::path &file : arguments.files)
    {
        try
        {
            const ImportReport report = importOne(file, arguments);
            print(report, arguments, output);
            files.push_back(asJson(report));
            result = worse(result, resultOf(report));
        }
        catch (const interchange::StoreError &error)
        {
            complain(file.string() + ": nothing taken, " + error.what());
            files.push_back(
                {{"file", file.string()}, {"failure", {{"kind", "device"}, {"line", 0}, {"text", error.what()}}}});
            deviceFailed = true;
            break; // the next file would meet the same device
        }
    }
    recorded.reset();
    if (arguments.json)
    {
        output.line(text({{"version", jsonVersion}, {"dryRun", arguments.dryRun}, {"files", files}}));
    }
    if (!output.finish())
    {
        return exitOutput;
    }
    return deviceFailed ? static_cast<int>(exitDevice) : result;
}
} // namespace zb::cli
