// Brings the to-dos of a calendar file into the tasks of the open device.
#pragma once

#include "interchange/calendar_survey.h"
#include "interchange/import_report.h"
#include "interchange/item_categories.h"
#include "interchange/task_item.h"
#include "interchange/task_store.h"
#include "interchange/zone_book.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zb::interchange
{
/// Works inside the transaction of its file. Everything may throw StoreError.
class TaskImport
{
  public:
    /// Told of each zone that nobody knows, with its line.
    using UnknownZone = std::function<void(const std::string &, std::size_t)>;

    TaskImport(const CalendarSurvey &survey, ZoneBook &zones, ItemCategories &categories, ImportReport &report,
               UnknownZone unknownZone);

    void take(const CalendarComponent &task);
    /// Behind the last to-do, before the transaction ends.
    void findParents();
    /// Once the transaction is through, since links name records.
    void saveLinks(bool write);

  private:
    /// A to-do that says what it lies under, until all are read.
    struct WaitingLink
    {
        std::u16string child;
        std::u16string parent;
        std::size_t line;
    };

    void store(const CalendarComponent &task, TaskReading &reading);
    void shorten(const CalendarComponent &task, TaskItem &item);
    void tell(const TaskReading &reading);
    void refuse(std::size_t line, const std::string &reason);
    void count(TaskStore::Outcome outcome);

    const CalendarSurvey &m_survey;
    ZoneBook &m_zones;
    ItemCategories &m_categories;
    ImportReport &m_report;
    UnknownZone m_unknownZone;
    std::optional<TaskStore> m_store; // opened by the first to-do
    std::vector<WaitingLink> m_waiting;
    std::vector<TaskLink> m_links;
};
} // namespace zb::interchange
