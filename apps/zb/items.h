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

struct AddArguments
{
    std::filesystem::path device;
    int kind = olAppointmentItem;
    std::string subject; ///< of a contact: the name to file it under, empty to make it from the others
    std::string start;   ///< moments and days as written; empty: not given
    std::string end;
    std::string due;
    std::optional<LONG> minutes;
    std::string location;
    std::string notes;
    std::vector<std::string> categories;
    std::optional<LONG> busy;
    bool isPrivate = false;
    std::optional<LONG> reminder; ///< minutes
    std::optional<LONG> importance;
    std::optional<LONG> repeat; ///< a type of IRecurrencePattern
    std::optional<LONG> every;
    std::optional<LONG> times;
    std::string until;
    std::vector<std::string> contact; ///< in the order of contactTexts()
    std::string birthday;
    std::string anniversary;
    bool json = false;
};
int runAdd(const AddArguments &arguments);

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
