// zb: the command line host. Arguments only; the commands stand in files of their own.
#include "calendar/CalendarSettings.h"
#include "common/complain.h"
#include "common/exit_code.h"
#include "contacts/ContactListSettings.h"
#include "platform/undo.h"
#include "zb/bad_usage.h"
#include "zb/commands.h"
#include "zb/item_options.h"
#include "zb/items.h"
#include "zb/option_words.h"
#include "zb/terminal.h"

#include <CLI/CLI.hpp>

#include <clocale>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string_view>

namespace
{
using namespace zb::cli;
using namespace zb::host;

constexpr const char *exitCodes =
    "Exit codes: 0 done; 1 done, but something of the input could not be taken; 2 wrong usage; 3 the device can't be\n"
    "opened, read or written; 4 an input file is unreadable or no calendar; 5 the output can't be written.\n"
    "The device is --device, else ZB_DEVICE, else $XDG_DATA_HOME/zembrik, else ~/.local/share/zembrik.";

/// Help without the value that an opposite gives its flag: "--private,--no-private".
class PlainHelp : public CLI::Formatter
{
  public:
    std::string make_option_name(const CLI::Option *option, bool isPositional) const override
    {
        constexpr std::string_view value = "{false}";
        std::string name = CLI::Formatter::make_option_name(option, isPositional);
        for (std::size_t at = name.find(value); at != std::string::npos; at = name.find(value))
        {
            name.erase(at, value.size());
        }
        return name;
    }
};

/// All commands with their options; each leaves what to run in `run`.
class CommandLine
{
  public:
    CommandLine() : m_app("Calendars on a handheld device kept in a folder.", "zb")
    {
        m_app.formatter(std::make_shared<PlainHelp>());
        m_app.add_option("--device", m_device, "Folder of the device")->type_name("DIR");
        m_app.set_version_flag("--version", "zb 0.1.0");
        m_app.require_subcommand(1);
        m_app.footer(exitCodes);
        m_app.failure_message([](const CLI::App *app, const CLI::Error &error)
                              { return "zb: " + CLI::FailureMessage::simple(app, error); });
        addInit();
        addImport();
        addExport();
        addAgenda();
        addShot();
        addTasks();
        addContacts();
        addInfo();
        addDump();
        addShow();
        addSettings();
        addCategories();
        addAdd();
        addEdit();
        addDelete();
        addDone();
        addUndo("undo", "Take the last change back, or the last N", m_undo, runUndo);
        addUndo("redo", "Make again what was taken back", m_redo, runRedo);
    }

    int run(int count, char **arguments)
    {
        try
        {
            m_app.parse(count, arguments);
        }
        catch (const CLI::ParseError &error)
        {
            if (const std::string word = unknownCommand(error); !word.empty())
            {
                complain("there is no command \"" + word + "\"; \"zb --help\" lists them");
                return exitUsage;
            }
            return m_app.exit(error) == 0 ? exitOk : exitUsage;
        }
        return m_run();
    }

  private:
    /// What stands in the place of a command and is none; empty for other errors.
    std::string unknownCommand(const CLI::ParseError &error) const
    {
        const CLI::App *last = &m_app;
        while (!last->get_subcommands().empty())
        {
            last = last->get_subcommands().front();
        }
        const bool noCommand = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError) &&
                               last->get_require_subcommand_min() > 0;
        const std::vector<std::string> left = m_app.remaining(true);
        return noCommand && !left.empty() ? left.front() : std::string();
    }

    void addInit()
    {
        CLI::App *const command = m_app.add_subcommand("init", "Make a device, if there is none, and say where it is");
        command->add_option("dir", m_init.device, "Folder of the device, as --device")->type_name("DIR");
        command->callback(
            [this]
            {
                m_init.device = m_init.device.empty() ? m_device : m_init.device;
                m_run = [this] { return runInit(m_init); };
            });
    }

    void addImport()
    {
        CLI::App *const command = m_app.add_subcommand("import", "Take calendars and address books into the device");
        command->add_option("file", m_import.files, "iCalendar and vCard files, - for standard input")
            ->type_name("FILE")
            ->required();
        command->add_flag("--dry-run", m_import.dryRun, "Say what would happen, write nothing");
        command->add_flag("--json", m_import.json, "Print the result as JSON");
        command->callback(
            [this]
            {
                m_import.device = m_device;
                m_run = [this] { return runImport(m_import); };
            });
    }

    void addExport()
    {
        static const Words kinds = {{"event", static_cast<DWORD>(ExportKind::Events)},
                                    {"task", static_cast<DWORD>(ExportKind::Tasks)},
                                    {"contact", static_cast<DWORD>(ExportKind::Contacts)}};
        CLI::App *const command = m_app.add_subcommand("export", "Write items as a calendar file, or as cards");
        CLI::Option *const calendar = command->add_flag("--ics", m_exportCalendar, "Appointments and tasks, as iCalendar (the default)");
        CLI::Option *const cards = command->add_flag_callback(
            "--vcf", [this] { m_export.kind = ExportKind::Contacts; }, "Contacts, as vCard");
        CLI::Option *const type = command->add_option("--type", m_exportType, "event, task, contact: that kind alone");
        type->type_name("TYPE")->transform(words(kinds));
        cards->excludes(calendar)->excludes(type);
        command->add_option("-o,--output", m_export.file, "Write into this file; its name tells cards by .vcf")
            ->type_name("FILE");
        command->add_option("--from", m_export.from, "First day: 2026-11-21, today, +3")->type_name("DAY");
        command->add_option("--to", m_export.to, "Last day, itself included")->type_name("DAY");
        command->add_option("--category", m_export.categories, "Only what has this category; may be given several times")
            ->type_name("NAME")
            ->take_all();
        command->add_flag("--json", m_export.json, "Print what went into the file as JSON");
        command->callback(
            [this]
            {
                if (m_exportType)
                {
                    m_export.kind = static_cast<ExportKind>(*m_exportType);
                }
                else if (!m_exportCalendar && m_export.file.extension() == ".vcf")
                {
                    m_export.kind = ExportKind::Contacts;
                }
                m_export.device = m_device;
                m_run = [this] { return runExport(m_export); };
            });
    }

    void addAgenda()
    {
        CLI::App *const command =
            m_app.add_subcommand("agenda", "Print the appointments of this week, or of other days");
        CLI::Option *const from =
            command->add_option("--from", m_agenda.from, "First day: 2026-11-21, today, tomorrow, +3");
        CLI::Option *const to = command->add_option("--to", m_agenda.to, "Last day, itself included");
        bool *const week = &m_week;
        CLI::Option *const weekFlag = command->add_flag("--week", *week, "This week (the default)");
        CLI::Option *const fullest = command->add_flag("--fullest,--fullest-week", m_agenda.fullest,
                                                       "The week with the most appointments of all");
        for (CLI::Option *const day : {from, to})
        {
            day->type_name("DAY")->excludes(fullest)->excludes(weekFlag);
        }
        weekFlag->excludes(fullest);
        addAgendaChoice(*command);
        CLI::Option *const json = command->add_flag("--json", m_agenda.json, "Print JSON");
        CLI::Option *const ids = command->add_flag("--ids", m_agenda.ids, "With the ids of the items");
        addPicture(*command, m_agenda.picture)->excludes(json)->excludes(ids);
        command->callback(
            [this]
            {
                m_agenda.device = m_device;
                m_run = [this] { return runAgenda(m_agenda); };
            });
    }

    static CLI::Option *addPicture(CLI::App &command, PictureArguments &picture)
    {
        constexpr int narrowest = 40;
        constexpr int widest = 8192;
        CLI::Option *const file =
            command.add_option("-o,--output", picture.file, "Draw a picture into this PNG file")->type_name("FILE");
        command.add_option("--width", picture.width, "Width of the picture in pixels")
            ->check(CLI::Range(narrowest, widest))
            ->capture_default_str()
            ->needs(file);
        command.add_option("--dpi", picture.dotsPerInch, "Dots an inch of the screen that it is for")
            ->check(CLI::Range(72, 600))
            ->capture_default_str()
            ->needs(file);
        return file;
    }

    void addShot()
    {
        CLI::App *const command = m_app.add_subcommand("shot", "Draw marked-up text into a PNG file");
        command->add_option("--markup", m_shot.markup, "What to draw, such as \"<B>Hello</B>\"")
            ->type_name("TEXT")
            ->required();
        addPicture(*command, m_shot.picture)->required();
        command->callback([this] { m_run = [this] { return runShot(m_shot); }; });
    }

    static void addCategoryChoice(CLI::App &command, CategoryChoice &choice)
    {
        CLI::Option *const names =
            command.add_option("--category", choice.names, "Only what has this category; may be given several times")
                ->type_name("NAME")
                ->take_all();
        command.add_flag("--all-of", choice.all, "Only what has all of the categories")->needs(names);
        command.add_flag("--hide", choice.hide, "Leave out what has them instead")->needs(names);
        command.add_flag("--no-category", choice.withoutCategory, "Only what has no category")->excludes(names);
    }

    void addAgendaChoice(CLI::App &command)
    {
        static const Words statuses = {{"free", statusFilterFree},
                                       {"tentative", statusFilterTentative},
                                       {"busy", statusFilterBusy},
                                       {"out", statusFilterOutOfOffice},
                                       {"all", statusFilterAll}};
        CalendarChoice &choice = m_agenda.choice;
        addCategoryChoice(command, choice.categories);
        command.add_option("--status", choice.status, "free, tentative, busy, out (of office), all")
            ->type_name("STATUS")
            ->transform(words(statuses));
        addChoice(command, "--tasks,!--no-tasks", choice.tasks, "With or without tasks, whatever the settings say");
        addChoice(command, "--birthdays,!--no-birthdays", choice.birthdays,
                  "With or without birthdays and anniversaries of contacts");
    }

    void addTasks()
    {
        static const Words groupings = {
            {"none", taskGroupNone},       {"category", taskGroupCategory},      {"importance", taskGroupImportance},
            {"priority", taskGroupLetter}, {"progress", taskGroupProgress},      {"completion", taskGroupCompletion},
            {"due", taskGroupDueDate},     {"manager", taskGroupPriorityManager}};
        static const Words rules = {{"all", taskRuleAll},           {"today", taskRuleDueByToday},
                                    {"overdue", taskRuleOverdue},   {"undated", taskRuleNoDates},
                                    {"active", taskRuleActive},     {"tomorrow", taskRuleByTomorrow},
                                    {"complete", taskRuleComplete}, {"ahead", taskRuleDaysAhead}};
        static const Words importances = {{"low", 0}, {"normal", 1}, {"high", 2}};
        CLI::App *const command = m_app.add_subcommand("tasks", "Print the tasks");
        TaskListChoice &choice = m_tasks.choice;
        CLI::Option *const group =
            command->add_option("--group", choice.grouping,
                                "none, category, importance, priority (letter), progress, completion, due, manager");
        group->type_name("GROUPING")->transform(words(groupings));
        command
            ->add_flag_callback(
                "--tree", [this] { m_tasks.choice.grouping = taskGroupTree; }, "Nested as they belong")
            ->excludes(group);
        command
            ->add_option("--sort", choice.sort,
                         "subject, due, start, importance, completion, priority, category; two with a comma between, "
                         "- in front for descending (--sort=-due,subject)")
            ->type_name("KEYS")
            ->delimiter(',')
            ->expected(1, 2);
        CLI::Option *const filter = command->add_option(
            "--filter", choice.rule, "all, today, overdue, undated, active, tomorrow, complete, ahead (see --days)");
        filter->type_name("FILTER")->transform(words(rules));
        command
            ->add_option("--days", choice.daysAhead,
                         "Days ahead of --filter ahead, which it means when it stands alone")
            ->type_name("N")
            ->check(CLI::Range(0, static_cast<int>(taskDaysUnlimited)));
        command->add_option("--on", m_tasks.day, "Only what is due or starts on this day")->type_name("DAY");
        command->add_option("--importance", choice.importance, "Only low, normal or high")
            ->type_name("IMPORTANCE")
            ->transform(words(importances));
        addChoice(*command, "--completed,!--no-completed", choice.completed, "With or without completed tasks");
        addChoice(*command, "--undated,!--no-undated", choice.undated, "With or without tasks that have no due date");
        addCategoryChoice(*command, choice.categories);
        command->add_flag("--ids", m_tasks.ids, "With the ids of the tasks");
        command->add_flag("--json", m_tasks.json, "Print JSON");
        command->callback(
            [this]
            {
                const std::optional<ULONG> &rule = m_tasks.choice.rule;
                if (m_tasks.choice.daysAhead && rule && *rule != ULONG{taskRuleDaysAhead})
                {
                    throw CLI::ValidationError("--days", "goes with --filter ahead alone");
                }
                m_tasks.device = m_device;
                m_run = [this] { return runTasks(m_tasks); };
            });
    }

    void addContacts()
    {
        static const Words displays = {{"name", contactsFileAs},
                                       {"first", contactsFirstName},
                                       {"last", contactsLastName},
                                       {"company", contactsCompanies},
                                       {"category", contactsCategories}};
        CLI::App *const command = m_app.add_subcommand("contacts", "Print the contacts, or find some of them");
        CLI::Option *const search =
            command->add_option("text", m_contacts.text, "What their names begin with")->type_name("TEXT");
        command
            ->add_option("--by", m_contacts.display,
                         "name (the one that they are filed under), first, last, company, category")
            ->type_name("ORDER")
            ->transform(words(displays));
        command->add_flag("--deep", m_contacts.deep, "Find the text anywhere: numbers, addresses, jobs")->needs(search);
        addCategoryChoice(*command, m_contacts.categories);
        command->add_flag("--ids", m_contacts.ids, "With the ids of the contacts");
        command->add_flag("--json", m_contacts.json, "Print JSON");
        command->callback(
            [this]
            {
                m_contacts.device = m_device;
                m_run = [this] { return runContacts(m_contacts); };
            });
    }

    void addInfo()
    {
        CLI::App *const command = m_app.add_subcommand("info", "List the databases of the device");
        command->add_flag("--json", m_info.json, "Print JSON");
        command->callback(
            [this]
            {
                m_info.device = m_device;
                m_run = [this] { return runInfo(m_info); };
            });
    }

    void addDump()
    {
        CLI::App *const command = m_app.add_subcommand("dump", "Print the records of a database, property by property");
        command->add_option("database", m_dump.database, "Name or id of the database")
            ->type_name("DATABASE")
            ->required();
        command->add_option("--limit", m_dump.limit, "At most so many records")
            ->type_name("N")
            ->check(CLI::NonNegativeNumber);
        command->add_flag("--json", m_dump.json, "Print JSON");
        command->callback(
            [this]
            {
                m_dump.device = m_device;
                m_run = [this] { return runDump(m_dump); };
            });
    }

    void addShow()
    {
        CLI::App *const command = m_app.add_subcommand("show", "Print one record with all its properties");
        command->add_option("id", m_show.id, "Id of the record, as the lists tell it with --ids")
            ->type_name("ID")
            ->required()
            ->check(itemId());
        command->add_flag("--json", m_show.json, "Print JSON");
        command->callback(
            [this]
            {
                m_show.device = m_device;
                m_run = [this] { return runShow(m_show); };
            });
    }

    /// One of the words behind "settings".
    CLI::App *addSettingsWord(CLI::App *settings, const char *word, const char *help, SettingsAction action)
    {
        CLI::App *const command = settings->add_subcommand(word, help);
        command->add_option("--key", m_settings.key, "Key: CAV is Software\\Kelvo\\Zembrik\\CAV, . the key above it")
            ->type_name("KEY");
        command->callback([this, action] { m_settings.action = action; });
        return command;
    }

    void addSettings()
    {
        CLI::App *const command = m_app.add_subcommand("settings", "Show and change the settings of the device");
        command->require_subcommand(0, 1);
        CLI::Option *const json = command->add_flag("--json", m_settings.json, "Print JSON");
        CLI::App *const list =
            addSettingsWord(command, "list", "All settings, those at their default too", SettingsAction::List);
        CLI::App *const get = addSettingsWord(command, "get", "Print one value", SettingsAction::Get);
        CLI::App *const set = addSettingsWord(command, "set", "Change one value", SettingsAction::Set);
        CLI::App *const unset =
            addSettingsWord(command, "unset", "Take one value out, so that its default holds", SettingsAction::Unset);
        for (CLI::App *const word : {get, set, unset})
        {
            word->add_option("name", m_settings.name, "Name of the setting")->type_name("NAME")->required();
        }
        for (CLI::App *const word : {list, get})
        {
            word->add_flag(json->get_name(), m_settings.json, "Print JSON");
        }
        set->add_option("value", m_settings.value, "A number (42, 0x2a) or a text")->type_name("VALUE")->required();
        set->add_flag("--text", m_settings.asText, "Keep a number as a text");
        command->callback(
            [this]
            {
                m_settings.device = m_device;
                m_run = [this] { return runSettings(m_settings); };
            });
    }

    /// One of the words behind "categories" that take the name of a category.
    CLI::App *addCategoriesWord(CLI::App *categories, const char *word, const char *help, CategoriesAction action)
    {
        CLI::App *const command = categories->add_subcommand(word, help);
        command->add_option("name", m_categories.name, "Name of the category")->type_name("NAME")->required();
        command->callback([this, action] { m_categories.action = action; });
        return command;
    }

    void addCategories()
    {
        CLI::App *const command = m_app.add_subcommand("categories", "Show and change the categories of items");
        command->require_subcommand(0, 1);
        command->add_flag("--json", m_categories.json, "Print JSON");
        command->add_subcommand("list", "All categories, their colours and how many items use them")
            ->add_flag("--json", m_categories.json, "Print JSON");
        addCategoriesWord(command, "add", "Make a category and print its number", CategoriesAction::Add)
            ->add_option("--color", m_categories.color, "Its colour, #RRGGBB")
            ->type_name("COLOR");
        addCategoriesWord(command, "rename", "Give a category another name", CategoriesAction::Rename)
            ->add_option("new-name", m_categories.newName, "The new name")
            ->type_name("NEW")
            ->required();
        addCategoriesWord(command, "color", "Give a category a colour, or take it away", CategoriesAction::Color)
            ->add_option("color", m_categories.color, "#RRGGBB, or none")
            ->type_name("COLOR")
            ->required();
        CLI::App *const remove =
            addCategoriesWord(command, "delete", "Delete a category that no item uses", CategoriesAction::Delete);
        CLI::Option *const yes = remove->add_flag("--yes", m_categories.yes, "Also one that items use");
        remove
            ->add_flag("--retire", m_categories.retire,
                       "Keep its number, so that its items never get another one's name")
            ->excludes(yes);
        command->callback(
            [this]
            {
                m_categories.device = m_device;
                m_run = [this] { return runCategories(m_categories); };
            });
    }

    void addAdd()
    {
        CLI::App *const command = m_app.add_subcommand("add", "Add an appointment, a task or a contact; print its id");
        command->require_subcommand(1);
        addNewItemWords(*command, m_add);
        command->callback(
            [this]
            {
                m_add.device = m_device;
                m_run = [this] { return runAdd(m_add); };
            });
    }

    void addEdit()
    {
        CLI::App *const command =
            m_app.add_subcommand("edit", "Change an appointment, a task or a contact; an empty text takes one away");
        command->require_subcommand(1);
        addChangedItemWords(*command, m_edit);
        command->callback(
            [this]
            {
                m_edit.device = m_device;
                m_run = [this] { return runEdit(m_edit); };
            });
    }

    void addDelete()
    {
        CLI::App *const command = m_app.add_subcommand("delete", "Delete an item, or one day of a series");
        command->add_option("id", m_delete.id, "Id of the item")->type_name("ID")->required()->check(itemId());
        command->add_option("--day,--occurrence", m_delete.day, "This day of what repeats alone")->type_name("DAY");
        command->add_flag("--yes", m_delete.yes, "Also a whole series");
        command->add_flag("--dry-run", m_delete.dryRun, "Tell what would go, and keep it");
        command->add_flag("--json", m_delete.json, "Print JSON");
        command->callback(
            [this]
            {
                m_delete.device = m_device;
                m_run = [this] { return runDelete(m_delete); };
            });
    }

    void addDone()
    {
        CLI::App *const command = m_app.add_subcommand("done", "Complete a task; one that repeats moves on");
        command->add_option("id", m_done.id, "Id of the task")->type_name("ID")->required()->check(itemId());
        command->add_flag("--undo", m_done.undo, "Open it again");
        command->add_flag("--json", m_done.json, "Print JSON");
        command->callback(
            [this]
            {
                m_done.device = m_device;
                m_run = [this] { return runDone(m_done); };
            });
    }

    void addUndo(const char *word, const char *help, UndoArguments &arguments, int (*command)(const UndoArguments &))
    {
        CLI::App *const undo = m_app.add_subcommand(word, help);
        CLI::Option *const count = undo->add_option("count", arguments.count, "How many changes");
        count->type_name("N")->check(CLI::Range(1, static_cast<int>(zb::recordedChangesKept)));
        undo->add_flag("--list", arguments.list, "Show them, the next one first")->excludes(count);
        undo->add_flag("--json", arguments.json, "Print JSON");
        undo->callback(
            [this, &arguments, command]
            {
                arguments.device = m_device;
                m_run = [&arguments, command] { return command(arguments); };
            });
    }

    CLI::App m_app;
    std::filesystem::path m_device;
    InitArguments m_init;
    ImportArguments m_import;
    ExportArguments m_export;
    std::optional<DWORD> m_exportType;
    bool m_exportCalendar = false;
    AgendaArguments m_agenda;
    ShotArguments m_shot;
    bool m_week = false;
    TasksArguments m_tasks;
    ContactsArguments m_contacts;
    InfoArguments m_info;
    DumpArguments m_dump;
    ShowArguments m_show;
    SettingsArguments m_settings;
    CategoriesArguments m_categories;
    ItemArguments m_add;
    ItemArguments m_edit;
    DeleteArguments m_delete;
    DoneArguments m_done;
    UndoArguments m_undo;
    UndoArguments m_redo;
    std::function<int()> m_run;
};
} // namespace

int main(int count, char **arguments)
{
    // Only for the width of characters; all formats are the device's.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    try
    {
        return CommandLine().run(count, arguments);
    }
    catch (const BadUsage &bad)
    {
        complain(bad.what());
        return exitUsage;
    }
    catch (const std::exception &error)
    {
        complain(error.what());
        return exitDevice;
    }
}
