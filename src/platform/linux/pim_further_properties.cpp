#include "platform/linux/pim_further_properties.h"

#include "platform/linux/pim_item_fields.h"

#include <algorithm>
#include <array>

namespace zb::internal
{
namespace
{
/// By imports: what a contact's picture looked like when they wrote it.
constexpr CEPROPID pictureStamp = MakePropId(0x5a02, CEVT_LPWSTR);

constexpr std::array stays = {
    itemInterchangeId,     taskNotification, itemCategories,    appointmentAttendees, appointmentMeetingStatus,
    appointmentRecurrence, appointmentZone,  taskRecurringFlag, taskOfTeam,           pictureStamp};

bool isTold(const RecordProperties &properties, CEPROPID id)
{
    const CEPROPVAL *const values = properties.values();
    return std::any_of(values, values + properties.count(), [=](const CEPROPVAL &each) { return each.propid == id; });
}
} // namespace

void addFurther(const StoredItem &original, RecordProperties &properties)
{
    for (WORD i = 0; i < original.count(); ++i)
    {
        const CEPROPVAL &value = original.values()[i];
        if (std::find(stays.begin(), stays.end(), value.propid) == stays.end() && !isTold(properties, value.propid))
        {
            properties.set(value);
        }
    }
}
} // namespace zb::internal
