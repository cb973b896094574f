// The commands of zb, one source file each. Each returns the program's exit code; data goes to standard output,
// messages to standard error.
#pragma once

#include "zb/calendar_load.h"
#include "zb/category_choice.h"
#include "zb/task_list_load.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zb::cli
{
struct InitArguments
{
    std::filesystem::path device; ///< empty: the default
};
int runInit(const InitArguments &arguments);

struct ImportArguments
{
    std::filesystem::path device;
    std::vector<std::filesystem::path> files;
    bool dryRun = false;
    bool json = false;
};
int runImport(const ImportArguments &arguments);

enum class ExportKind
{
    Calendar, ///< appointments and tasks
    Events,
    Tasks,
    Contacts
};

struct ExportArguments
{
    std::filesystem::path device;
    ExportKind kind = ExportKind::Calendar;
    std::filesystem::path file; ///< empty or "-": standard output
    std::string from;           ///< as written, empty when not given
    std::string to;
    std::vector<std::string> categories;
    bool json = false;
};
int runExport(const ExportArguments &arguments);

struct UndoArguments
{
    std::filesystem::path device;
    int count = 1;
    bool list = false;
    bool json = false;
};
int runUndo(const UndoArguments &arguments);
int runRedo(const UndoArguments &arguments);

/// A picture in place of text.
struct PictureArguments
{
    std::filesystem::path file; ///< empty: none
    int width = 480;            ///< pixels
    int dotsPerInch = 192;
};

struct AgendaArguments
{
    std::filesystem::path device;
    std::string from; ///< as written, empty when not given
    std::string to;
    bool fullest = false;
    CalendarChoice choice;
    PictureArguments picture;
    bool ids = false; ///< in front of each row
    bool json = false;
};
int runAgenda(const AgendaArguments &arguments);

struct ShotArguments
{
    std::string markup;
    PictureArguments picture;
};
int runShot(const ShotArguments &arguments);

struct TasksArguments
{
    std::filesystem::path device;
    TaskListChoice choice;
    std::string day; ///< as written, empty when not given
    bool ids = false; ///< in front of each row
    bool json = false;
};
int runTasks(const TasksArguments &arguments);

struct ContactsArguments
{
    std::filesystem::path device;
    std::string text;             ///< what names begin with; empty: all contacts
    std::optional<DWORD> display; ///< a ContactsDisplay; without one the settings decide
    bool deep = false;            ///< anywhere in a contact
    CategoryChoice categories;
    bool ids = false; ///< in front of each row
    bool json = false;
};
int runContacts(const ContactsArguments &arguments);

struct InfoArguments
{
    std::filesystem::path device;
    bool json = false;
};
int runInfo(const InfoArguments &arguments);

struct DumpArguments
{
    std::filesystem::path device;
    std::string database; ///< name or id
    std::optional<std::size_t> limit;
    bool json = false;
};
int runDump(const DumpArguments &arguments);

struct ShowArguments
{
    std::filesystem::path device;
    CEOID id = 0; ///< of a record of any database
    bool json = false;
};
int runShow(const ShowArguments &arguments);

enum class SettingsAction
{
    List,
    Get,
    Set,
    Unset
};

struct SettingsArguments
{
    std::filesystem::path device;
    SettingsAction action = SettingsAction::List;
    std::string key; ///< as written; empty: everything in a list, the calendar's key otherwise
    std::string name;
    std::string value;
    bool asText = false; ///< a value of digits is a text all the same
    bool json = false;
};
int runSettings(const SettingsArguments &arguments);

enum class CategoriesAction
{
    List,
    Add,
    Rename,
    Color,
    Delete
};

struct CategoriesArguments
{
    std::filesystem::path device;
    CategoriesAction action = CategoriesAction::List;
    std::string name;
    std::string newName;
    std::string color;   ///< as written; empty when not given
    bool retire = false; ///< a deleted category keeps its number
    bool yes = false;    ///< delete it though items use it
    bool json = false;
};
int runCategories(const CategoriesArguments &arguments);
} // namespace zb::cli
