#include "zembrik/move_item.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "zembrik/calendar_texts.h"
#include "zembrik/item_objects.h"

namespace zb::screens
{
HRESULT moveAppointment(const host::AgendaRow &row, int day, int minutes)
{
    COutlook outlook;
    Counted<IAppointment> item = itemOf<IAppointment>(outlook, row.id, IID_IAppointment);
    if (!item)
    {
        return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    }
    VARIANT_BOOL recurring = VARIANT_FALSE;
    item->get_IsRecurring(&recurring);
    if (recurring != VARIANT_FALSE)
    {
        DATE start = 0;
        SystemTimeToVariantTime(&row.start, &start);
        Counted<IRecurrencePattern> pattern;
        Counted<IAppointment> occurrence;
        item->GetRecurrencePattern(pattern.out());
        if (const HRESULT result = pattern->GetOccurrence(start, occurrence.out()); result != S_OK)
        {
            return result;
        }
        item = occurrence;
    }
    constexpr double minutesOfDay = 1440.0;
    const HRESULT put = item->put_Start(day + minutes / minutesOfDay);
    return put != S_OK ? put : item->Save();
}

UINT notMovedText(HRESULT result)
{
    switch (result)
    {
    case PIM_E_OCCURRENCE_MOVED:
        return textNotMovedNeighbour;
    case PIM_E_OCCURRENCE_LENGTH:
        return textNotMovedLength;
    case HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND):
    case PIM_E_NO_OCCURRENCE:
        return textGone;
    default:
        return textNotMoved;
    }
}
} // namespace zb::screens
