#include "zb/item_options.h"

#include "zb/option_words.h"

#include <limits>

namespace zb::cli
{
namespace
{
/// Registers the options of one kind of item; `isNew` is zb add, else it is zb edit, which can take values away too.
class KindOptions
{
  public:
    KindOptions(CLI::App &parent, const char *word, const char *help, int kind, ItemArguments &arguments, bool isNew)
        : m_command(*parent.add_subcommand(word, help)), m_item(arguments), m_isNew(isNew)
    {
        m_command.callback([&item = m_item, kind] { item.kind = kind; });
        if (!m_isNew)
        {
            m_command.add_option("id", m_item.id, "Id of the item")->type_name("ID")->required()->check(itemId());
        }
    }

    void subject(const char *help)
    {
        if (m_isNew)
        {
            m_command.add_option("subject", m_item.subject, help)->type_name("SUBJECT")->required();
            return;
        }
        text("--subject", m_item.subject, help);
    }

    void event();
    void task();
    void contact();

  private:
    void text(const char *name, std::optional<std::string> &target, const char *help)
    {
        m_command.add_option(name, target, help)->type_name("TEXT");
    }
    /// What takes the value of an option away; of the two only one can be given.
    void without(const char *name, bool &target, const char *help, CLI::Option *value)
    {
        if (!m_isNew)
        {
            m_command.add_flag(name, target, help)->excludes(value);
        }
    }
    void common();
    void repetition();
    void importance();

    CLI::App &m_command;
    ItemArguments &m_item;
    bool m_isNew;
};

void KindOptions::common()
{
    text("--notes", m_item.notes, "Notes");
    CLI::Option *const categories =
        m_command
            .add_option("--category", m_item.categories,
                        m_isNew ? "A category, made where there is none; several times"
                                : "Its categories from now on, made where there are none; several times")
            ->type_name("NAME")
            ->take_all();
    without("--no-category", m_item.noCategory, "Take its categories away", categories);
    m_command.add_flag("--json", m_item.json, "Print JSON");
}

void KindOptions::repetition()
{
    static const Words repetitions = {{"daily", static_cast<ULONG>(olRecursDaily)},
                                      {"weekly", static_cast<ULONG>(olRecursWeekly)},
                                      {"monthly", static_cast<ULONG>(olRecursMonthly)},
                                      {"yearly", static_cast<ULONG>(olRecursYearly)}};
    addChoice(m_command, "--private,!--no-private", m_item.isPrivate, "Nobody else's business");
    CLI::Option *const repeat =
        m_command.add_option("--repeat", m_item.repeat, "daily, weekly, monthly, yearly, from the first day on");
    repeat->type_name("HOW")->transform(words(repetitions));
    CLI::Option *const every = m_command.add_option("--every", m_item.every, "Days, weeks or months between");
    every->type_name("N")->check(CLI::Range(1, 999));
    CLI::Option *const on = m_command.add_option(
        "--on", m_item.on,
        "Its days: tuesday,thursday or weekdays; of months and years \"second tuesday\", \"last friday\"");
    on->type_name("DAYS");
    CLI::Option *const times = m_command.add_option("--times", m_item.times, "How many times in all");
    times->type_name("N")->check(CLI::Range(1, 9999));
    CLI::Option *const until = m_command.add_option("--until", m_item.until, "The last day on which it may take place");
    until->type_name("DAY")->excludes(times);
    if (m_isNew)
    {
        for (CLI::Option *const option : {every, on, times, until})
        {
            option->needs(repeat);
        }
        return;
    }
    CLI::Option *const forever = m_command.add_flag("--forever", m_item.forever, "It repeats without end");
    forever->excludes(times)->excludes(until);
    CLI::Option *const single = m_command.add_flag("--no-repeat", m_item.noRepeat, "It takes place once, on its first day");
    for (CLI::Option *const option : {repeat, every, on, times, until, forever})
    {
        single->excludes(option);
    }
}

void KindOptions::event()
{
    static const Words statuses = {{"free", static_cast<ULONG>(olFree)},
                                   {"tentative", static_cast<ULONG>(olTentative)},
                                   {"busy", static_cast<ULONG>(olBusy)},
                                   {"out", static_cast<ULONG>(olOutOfOffice)}};
    CLI::Option *const start = m_command.add_option(
        "--start", m_item.start,
        m_isNew ? "A day and a time (2026-11-21 9:30); a day alone means whole days"
                : "A day and a time (2026-11-21 9:30); a day or a time alone keeps the other");
    start->type_name("WHEN")->required(m_isNew);
    CLI::Option *const end =
        m_command.add_option("--end", m_item.end, "Likewise, or a time alone; whole days: the last of them");
    end->type_name("WHEN");
    m_command.add_option("--minutes", m_item.minutes, m_isNew ? "Its length, 60 without" : "Its length")
        ->type_name("N")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()).description(""))
        ->excludes(end);
    if (!m_isNew)
    {
        m_command.add_flag("--all-day", m_item.allDay, "It takes whole days; a time of --start ends that");
        CLI::Option *const day =
            m_command.add_option("--occurrence", m_item.occurrence, "Change this day of a series alone");
        day->type_name("DAY");
        m_command.add_option("--following", m_item.following, "Change this day of a series and all later ones")
            ->type_name("DAY")
            ->excludes(day);
    }
    text("--location", m_item.location, "Where it is");
    m_command.add_option("--status", m_item.busy, "free, tentative, busy, out (of office)")
        ->type_name("STATUS")
        ->transform(words(statuses));
    CLI::Option *const reminder = m_command.add_option("--reminder", m_item.reminder, "Minutes before the start");
    reminder->type_name("N")->check(CLI::Range(0, static_cast<int>(PIM_LONGEST_REMINDER)));
    without("--no-reminder", m_item.noReminder, "Without a reminder", reminder);
    repetition();
    common();
}

void KindOptions::task()
{
    static const Words importances = {{"low", 0}, {"normal", 1}, {"high", 2}};
    CLI::Option *const start = m_command.add_option("--start", m_item.start, "The day on which it may begin");
    start->type_name("DAY");
    without("--no-start", m_item.noStart, "Without a start date", start);
    CLI::Option *const due = m_command.add_option("--due", m_item.due, "The day by which it is to be done");
    due->type_name("DAY");
    without("--no-due", m_item.noDue, "Without a due date", due);
    m_command.add_option("--importance", m_item.importance, "low, normal, high")
        ->type_name("IMPORTANCE")
        ->transform(words(importances));
    repetition();
    common();
}

void KindOptions::contact()
{
    constexpr const char *filedUnder = "What it is filed under; made from the other names without";
    if (m_isNew)
    {
        m_command.add_option("name", m_item.subject, filedUnder)->type_name("NAME");
    }
    else
    {
        text("--name", m_item.subject, filedUnder);
    }
    m_item.contact.resize(contactTexts().size());
    for (std::size_t i = 0; i < contactTexts().size(); ++i)
    {
        text(contactTexts()[i].option, m_item.contact[i], contactTexts()[i].help);
    }
    CLI::Option *const birthday = m_command.add_option("--birthday", m_item.birthday, "A day");
    birthday->type_name("DAY");
    without("--no-birthday", m_item.noBirthday, "Without a birthday", birthday);
    CLI::Option *const anniversary = m_command.add_option("--anniversary", m_item.anniversary, "A day");
    anniversary->type_name("DAY");
    without("--no-anniversary", m_item.noAnniversary, "Without an anniversary", anniversary);
    common();
}

void addWords(CLI::App &command, ItemArguments &arguments, bool isNew)
{
    KindOptions event(command, "event", "An appointment", olAppointmentItem, arguments, isNew);
    event.subject("What it is about");
    event.event();
    KindOptions task(command, "task", "A task", olTaskItem, arguments, isNew);
    task.subject("What is to be done, with its priority in front (A1: Pay)");
    task.task();
    KindOptions(command, "contact", "A contact", olContactItem, arguments, isNew).contact();
}
} // namespace

void addNewItemWords(CLI::App &add, ItemArguments &arguments)
{
    addWords(add, arguments, true);
}

void addChangedItemWords(CLI::App &edit, ItemArguments &arguments)
{
    addWords(edit, arguments, false);
}
} // namespace zb::cli
