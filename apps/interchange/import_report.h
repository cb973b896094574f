// What the import of one file of calendars or cards did, for the eyes of its user.
#pragma once

#include "interchange/calendar_file_error.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zb::interchange
{
/// One thing worth telling, with its line in the file (0: the file as a whole).
struct Finding
{
    std::size_t line;
    std::string text;
};

struct FileFailure
{
    FileFault fault;
    std::size_t line;
    std::string text;
};

/// To-dos of the file.
struct TaskCounts
{
    std::size_t seen = 0;
    std::size_t added = 0;
    std::size_t updated = 0;
    std::size_t unchanged = 0;
    std::size_t cancelled = 0;
    std::size_t superseded = 0; ///< an older version of a to-do that the file holds again
    std::size_t refused = 0;    ///< each has a finding
    std::size_t repeating = 0;  ///< taken as one task; each has a finding
    std::size_t linked = 0;     ///< put under another task, where they did not lie before
    bool linksLost = false;     ///< which task lies under which could not be kept
    /// What no record of a task holds: name of the property, to-dos that had it.
    std::map<std::string, std::size_t> lost;

    std::size_t leftOut() const
    {
        return cancelled + superseded + refused;
    }
};

/// Cards of the file.
struct ContactCounts
{
    std::size_t seen = 0;
    std::size_t added = 0;
    std::size_t updated = 0;
    std::size_t unchanged = 0;
    std::size_t superseded = 0; ///< an older version of a card that the file holds again
    std::size_t repeated = 0;   ///< the same as a card before it
    std::size_t groups = 0;     ///< lists of others
    std::size_t refused = 0;    ///< each has a finding
    std::size_t categories = 0; ///< made for them
    std::size_t pictures = 0;   ///< written, or to be written
    bool picturesLost = false;  ///< one could not be written
    /// What no record of a contact holds: name of the property, contacts that had it.
    std::map<std::string, std::size_t> lost;

    std::size_t leftOut() const
    {
        return superseded + repeated + groups + refused;
    }
};

struct ImportReport
{
    std::string file; ///< as its user named it

    std::size_t events = 0; ///< in the file
    std::size_t added = 0;
    std::size_t updated = 0;
    std::size_t unchanged = 0;

    // Events that were left out on purpose.
    std::size_t cancelled = 0;
    std::size_t superseded = 0;       ///< an older version of an event that the file holds again
    std::size_t changedFirstDays = 0; ///< a series whose first day is in the file as a changed one
    /// Events that no record can hold; each has a finding.
    std::size_t refused = 0;

    std::size_t removed = 0; ///< appointments of earlier imports that stood for days which a series has no more

    std::size_t series = 0;        ///< repeating events taken as one record each
    std::size_t changedDays = 0;   ///< changed days that such a record tells
    std::size_t cancelledDays = 0; ///< days taken out of a series
    std::size_t unrolled = 0;      ///< repeating events taken as single appointments; each has a finding
    std::size_t unrolledAppointments = 0;
    std::size_t repeating = 0;  ///< taken as their first day only; each has a finding
    std::size_t shortened = 0;  ///< texts cut to what a record holds; each has a finding
    std::size_t categories = 0; ///< made for events and to-dos
    std::size_t lostColors = 0; ///< events with a colour and no category that could have it
    TaskCounts tasks;
    ContactCounts contacts;
    std::map<std::string, std::size_t> otherComponents;

    std::vector<Finding> findings; ///< as many as are kept
    std::size_t moreFindings = 0;  ///< those beyond

    /// Set when nothing of the file was taken.
    std::optional<FileFailure> failure;

    /// Keeps memory bounded for files in which every line is wrong.
    static constexpr std::size_t mostFindings = 1000;
    void find(std::size_t line, std::string text);

    std::size_t leftOut() const
    {
        return cancelled + superseded + changedFirstDays + refused;
    }
    /// True when all that the device could keep of the file was taken whole.
    bool isWhole() const
    {
        return !failure && refused == 0 && shortened == 0 && tasks.refused == 0 && !tasks.linksLost &&
               contacts.refused == 0 && !contacts.picturesLost;
    }
};

/// One line of counts: "work.ics: 12 new, 1 changed, 30 unchanged, 2 left out"; with to-dos in the file it ends
/// "; to-dos: 4 new, 0 changed, 0 unchanged, 0 left out". Of a file of cards the counts are those of its cards.
std::string summary(const ImportReport &report);
/// The reasons, one a line: findings with file and line first, then what was done to many events alike.
std::vector<std::string> remarks(const ImportReport &report);
} // namespace zb::interchange
