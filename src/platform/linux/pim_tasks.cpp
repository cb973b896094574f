// From a task as its owner sees it to the properties of its record. Layouts stand in platform/pim.h.
#include "platform/linux/pim_item_fields.h"
#include "platform/pim.h"

namespace zb
{
namespace
{
void setDate(RecordProperties &record, CEPROPID id, const std::optional<FILETIME> &date)
{
    if (!date)
    {
        record.remove(id);
        return;
    }
    record.set(id, internal::midnightOf(*date));
}
} // namespace

RecordProperties encodeTask(const TaskItem &item)
{
    RecordProperties record;
    internal::setText(record, itemSubject, item.subject);
    setDate(record, taskStartDate, item.start);
    setDate(record, taskDueDate, item.due);
    record.set(taskCompleteFlag, static_cast<SHORT>(item.complete ? 1 : 0));
    setDate(record, taskDateCompleted, item.complete ? item.completed : std::nullopt);
    record.set(taskImportance, static_cast<LONG>(item.importance));
    record.set(itemSensitivity, item.isPrivate ? sensitivityPrivate : SHORT{0});
    record.set(taskReminderSet, static_cast<SHORT>(item.reminder ? 1 : 0));
    if (item.reminder && item.reminderMinutes)
    {
        record.set(itemReminderMinutes, *item.reminderMinutes);
    }
    internal::setText(record, itemInterchangeId, item.interchangeId);
    internal::setBlob(record, itemNotes, encodeNotes(item.notes));
    return record;
}
} // namespace zb
