// What the tests of series as objects share.
#pragma once

#include "platform/PimObjects.h"
#include "platform/pim_recurrence.h"
#include "support/PropertyRecords.h"

#include <vector>

namespace zb::test
{
class PimSeriesObject : public PimObjectsTest
{
  protected:
    static Counted<IRecurrencePattern> patternOf(const Counted<IAppointment> &item)
    {
        Counted<IRecurrencePattern> pattern;
        EXPECT_EQ(item->GetRecurrencePattern(pattern.out()), S_OK);
        return pattern;
    }
    Counted<IAppointment> appointment(DATE start, LONG minutes)
    {
        const Counted<IAppointment> item = newItem<IAppointment>(app);
        item->put_Start(start);
        item->put_Duration(minutes);
        item->put_Subject(Text(u"Class"));
        item->put_Location(Text(u"Room 1"));
        return item;
    }
    /// Mondays and Wednesdays at ten for an hour, from 2 March, without end.
    LONG weeklyClass()
    {
        const Counted<IAppointment> item = appointment(date(2026, 3, 2, 10), 60);
        const Counted<IRecurrencePattern> pattern = patternOf(item);
        EXPECT_EQ(pattern->put_RecurrenceType(olRecursWeekly), S_OK);
        EXPECT_EQ(pattern->put_DayOfWeekMask(10), S_OK);
        EXPECT_EQ(item->Save(), S_OK);
        return oidOf(item);
    }
    Counted<IAppointment> occurrence(LONG oid, DATE day)
    {
        Counted<IAppointment> found;
        EXPECT_EQ(patternOf(itemOf<IAppointment>(app, oid))->GetOccurrence(day, found.out()), S_OK);
        return found;
    }
    HRESULT find(LONG oid, DATE day)
    {
        Counted<IAppointment> found;
        return patternOf(itemOf<IAppointment>(app, oid))->GetOccurrence(day, found.out());
    }
    static RecurrencePattern stored(LONG oid)
    {
        const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
        database.seek(CEDB_SEEK_CEOID, oid);
        const std::vector<BYTE> blob = ReadRecord(database).bytes(appointmentRecurrence);
        return decodeRecurrence(blob.data(), blob.size()).value_or(RecurrencePattern());
    }
    static DWORD minutes(int year, int month, int day, int hour = 0, int minute = 0)
    {
        return static_cast<DWORD>(ticksOf(makeFileTime(year, month, day, hour, minute)) / ticksPerMinute);
    }
    std::size_t appointments()
    {
        Counted<IFolder> folder;
        Counted<IPOutlookItemCollection> items;
        app->GetDefaultFolder(olFolderCalendar, folder.out());
        folder->get_Items(items.out());
        return static_cast<std::size_t>(valueOf<int>(items, &IPOutlookItemCollection::get_Count));
    }
};
} // namespace zb::test
