// zb undo and zb redo, and the recordings that they work on.
#include "calendar/CCalendarThread.h"
#include "calendar/CalendarSettings.h"
#include "common/complain.h"
#include "common/exit_code.h"
#include "common/open_device.h"
#include "common/visible_text.h"
#include "core/CRegistry.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "records/COutlook.h"
#include "tasks/TaskHierarchy.h"
#include "zb/bad_usage.h"
#include "zb/commands.h"
#include "zb/item_words.h"
#include "zb/json.h"
#include "zb/recorded.h"
#include "zb/terminal.h"

#include <algorithm>
#include <cstdio>

namespace zb::cli
{
using namespace host;

namespace
{
constexpr int longestTitle = 60;
constexpr std::size_t mostNamed = 10;

std::vector<std::u16string> ownFiles()
{
    return {SettingsBaseFolder() + u"\\Kelvo\\Settings.txt", TaskHierarchy::FilePath()};
}

std::string timeText(const FILETIME &made)
{
    FILETIME local{};
    SYSTEMTIME fields{};
    if (FileTimeToLocalFileTime(&made, &local) == FALSE || FileTimeToSystemTime(&local, &fields) == FALSE)
    {
        return "?";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u", fields.wYear, fields.wMonth, fields.wDay, fields.wHour,
                  fields.wMinute);
    return text;
}

std::string wordsOf(const RecordedChange &change)
{
    return visibleText(change.words) + (change.whole ? "" : " (interrupted)");
}

Json asJson(const RecordedChange &change)
{
    Json told{{"words", toUtf8(std::u16string_view(change.words))}, {"made", timeText(change.made)}};
    told["records"] = change.records;
    told["whole"] = change.whole;
    return told;
}

/// What a person calls the record; its number where it is gone, or no item.
std::string nameOf(CEOID record)
{
    CEOIDINFO info{};
    COutlook outlook;
    Counted<IDispatch> found;
    if (CeOidGetInfo(record, &info) == FALSE)
    {
        return "record " + std::to_string(record) + ", which is gone,";
    }
    if (outlook.GetItemFromOid(record, found.out()) != S_OK)
    {
        return "record " + std::to_string(record);
    }
    auto &item = *static_cast<IPOutlookItem *>(found.get());
    return std::string("the ") + kindWord(item) + " " + quoted(titleOf(item)) + " (" + std::to_string(record) + ")";
}

int list(bool undone, const UndoArguments &arguments)
{
    Output output;
    Json all = Json::array();
    const std::vector<RecordedChange> changes = recordedChanges(undone);
    for (std::size_t n = 0; n < changes.size(); ++n)
    {
        all.push_back(asJson(changes[n]));
        if (!arguments.json)
        {
            char number[24];
            std::snprintf(number, sizeof number, "%3zu  ", n + 1);
            output.line(number + timeText(changes[n].made) + "  " + wordsOf(changes[n]));
        }
    }
    if (arguments.json)
    {
        output.line(text({{"version", jsonVersion}, {"changes", all}}));
    }
    return output.finish() ? exitOk : exitOutput;
}

/// Exit code, after a complaint, of what did not go well.
int refused(const UndoResult &result, bool redo)
{
    const std::string what = redo ? "made again" : "taken back";
    switch (result.outcome)
    {
    case UndoOutcome::Nothing:
        complain("there is nothing that could be " + what);
        return exitUsage;
    case UndoOutcome::Conflict:
        complain("\"" + visibleText(result.change.words) + "\" can't be " + what + ": " +
                 (result.file.empty() ? nameOf(result.record) : toUtf8(std::u16string_view(result.file))) +
                 " was changed since; nothing was done");
        return exitUsage;
    default:
    {
        const DWORD error = GetLastError();
        complain(error == ERROR_DISK_FULL
                     ? "nothing was done, the disk is full"
                     : "the device can't be read or written (" + std::to_string(error) + "); nothing was done");
        return exitDevice;
    }
    }
}

void tellLeft(const std::vector<std::u16string> &files)
{
    const std::size_t named = std::min(files.size(), mostNamed);
    for (std::size_t n = 0; n < named; ++n)
    {
        complain(toUtf8(std::u16string_view(files[n])) + " stays as it is");
    }
    if (files.size() > named)
    {
        complain("so do " + std::to_string(files.size() - named) + " more files");
    }
}

int stepBack(bool redo, const UndoArguments &arguments)
{
    Output output;
    Json done = Json::array();
    int code = exitOk;
    for (int n = 0; n < arguments.count; ++n)
    {
        const UndoResult result = redo ? redoLastChange() : undoLastChange();
        if (result.outcome != UndoOutcome::Done)
        {
            code = result.outcome == UndoOutcome::Nothing && n > 0 ? int{exitOk} : refused(result, redo);
            break;
        }
        tellLeft(result.filesLeft);
        done.push_back(asJson(result.change));
        if (!arguments.json)
        {
            output.line((redo ? "made again: " : "taken back: ") + visibleText(result.change.words));
        }
    }
    if (arguments.json && (code == exitOk || !done.empty()))
    {
        output.line(text({{"version", jsonVersion}, {"changes", done}}));
    }
    return output.finish() ? code : exitOutput;
}

int run(bool redo, const UndoArguments &arguments)
{
    const std::unique_ptr<Device> device = openDevice(arguments.device, Missing::Refuse);
    if (!device)
    {
        return exitDevice;
    }
    return arguments.list ? list(redo, arguments) : stepBack(redo, arguments);
}
} // namespace

void completeSettings()
{
    CalendarSettings::read(CCalendarThread::DEFAULT_SETTINGS_KEY);
}

Recorded::Recorded(const std::string &words) : Recorded((completeSettings(), toUtf16(words)))
{
}

Recorded::Recorded(const std::u16string &words) : m_recording(words, ownFiles())
{
}

void Recorded::describe(const std::string &words)
{
    m_recording.describe(toUtf16(words));
}

void Recorded::announce()
{
    m_recording.announce();
}

std::string quoted(const std::string &title)
{
    return "\"" + fitted(title, longestTitle) + "\"";
}

int runUndo(const UndoArguments &arguments)
{
    return run(false, arguments);
}

int runRedo(const UndoArguments &arguments)
{
    return run(true, arguments);
}
} // namespace zb::cli
