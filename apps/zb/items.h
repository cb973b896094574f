// Commands that make, delete and complete single items through the object model.
#pragma once

#include "platform/pim_objects.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zb::cli
{
/// A text of a contact: how its option is called, and where it goes.
struct ContactText
{
    const char *option;
    const char *help;
    HRESULT (IContact::*put)(BSTR);
};
const std::vector<ContactText> &contactTexts();

/// What zb add gives a new item, and zb edit one that is there. Texts, moments and days are as written.
struct ItemArguments
{
    std::filesystem::path device;
    int kind = olAppointmentItem;
    std::optional<std::string> subject; ///< of a contact: the name to file it under, empty to make it from the others
    std::string start;                  ///< empty: not given
    std::string end;
    std::string due;
    std::optional<LONG> minutes;
    std::optional<std::string> location;
    std::optional<std::string> notes;
    std::vector<std::string> categories;
    std::optional<LONG> busy;
    std::optional<bool> isPrivate;
    std::optional<LONG> reminder; ///< minutes
    std::optional<LONG> importance;
    std::optional<LONG> repeat; ///< a type of IRecurrencePattern
    std::optional<LONG> every;
    std::string on; ///< days of a week, or of a month
    std::optional<LONG> times;
    std::string until;
    std::vector<std::optional<std::string>> contact; ///< in the order of contactTexts()
    std::string birthday;
    std::string anniversary;
    bool json = false;

    // zb edit alone.
    CEOID id = 0;
    std::string occurrence; ///< one day of a series
    std::string following;  ///< that day and all later ones
    bool allDay = false;
    bool forever = false;
    bool noRepeat = false;
    bool noReminder = false;
    bool noCategory = false;
    bool noStart = false;
    bool noDue = false;
    bool noBirthday = false;
    bool noAnniversary = false;

    /// Something of the repetition is to change.
    bool changesRepetition() const
    {
        return repeat || every || !on.empty() || times || !until.empty() || forever || noRepeat;
    }
};
int runAdd(const ItemArguments &arguments);
int runEdit(const ItemArguments &arguments);

/// Puts what is given into an item of the arguments' kind; nothing is saved. A new appointment gets the usual length,
/// and takes whole days when its start has no time; one that is there keeps what the arguments don't tell. Throws
/// BadUsage for what makes no sense.
void fillItem(IPOutlookItem &item, const ItemArguments &arguments, bool isNew);

struct DeleteArguments
{
    std::filesystem::path device;
    CEOID id = 0;
    std::string day; ///< one day of a series; empty: the item
    bool yes = false;
    bool dryRun = false;
    bool json = false;
};
int runDelete(const DeleteArguments &arguments);

struct DoneArguments
{
    std::filesystem::path device;
    CEOID id = 0;
    bool undo = false;
    bool json = false;
};
int runDone(const DoneArguments &arguments);
} // namespace zb::cli
