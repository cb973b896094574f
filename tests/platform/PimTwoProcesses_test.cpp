// Two processes that edit the same items at once: nothing is lost, nothing is there twice.
#include "platform/PimObjects.h"

#include "platform/device.h"
#include "platform/pim_recurrence.h"
#include "support/Child.h"
#include "support/PropertyRecords.h"

#include <set>
#include <vector>

namespace
{
using namespace zb;
using namespace zb::test;

constexpr int processes = 2;
constexpr int daysOfEach = 20;

class PimTwoProcesses : public PimObjectsTest
{
  protected:
    /// Runs the body in two processes at once, each with the device open for itself; their numbers are 0 and 1.
    void inProcesses(const std::function<int(const Counted<IPOutlookApp> &, int)> &body)
    {
        app.reset();
        const DeviceOptions options = device.options();
        device.close();
        std::vector<std::unique_ptr<Child>> children;
        for (int number = 0; number < processes; ++number)
        {
            children.push_back(std::make_unique<Child>(
                [&, number]
                {
                    const auto opened = OpenDevice(options);
                    const Counted<IPOutlookApp> own = application();
                    return body(own, number);
                }));
        }
        for (const auto &child : children)
        {
            EXPECT_EQ(child->wait(), 0);
        }
        device.open();
        app = application();
    }
};

HRESULT occurrenceOf(const Counted<IPOutlookApp> &app, LONG oid, DATE day, Counted<IAppointment> &occurrence)
{
    const Counted<IAppointment> item = itemOf<IAppointment>(app, oid);
    Counted<IRecurrencePattern> pattern;
    item->GetRecurrencePattern(pattern.out());
    return pattern->GetOccurrence(day, occurrence.out());
}

TEST_F(PimTwoProcesses, changedAndDeletedDaysOfOneSeriesAreAllThere)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Start(date(2026, 3, 2, 10));
    item->put_Duration(60);
    Counted<IRecurrencePattern> pattern;
    item->GetRecurrencePattern(pattern.out());
    pattern->put_RecurrenceType(olRecursDaily);
    ASSERT_EQ(item->Save(), S_OK);
    const LONG oid = oidOf(item);
    // One process has the even days, the other the odd ones; every fourth of each is deleted.
    inProcesses(
        [&](const Counted<IPOutlookApp> &own, int number)
        {
            for (int n = 0; n < daysOfEach; ++n)
            {
                const DATE day = date(2026, 3, 2) + 2 * n + number;
                Counted<IAppointment> occurrence;
                if (occurrenceOf(own, oid, day, occurrence) != S_OK)
                {
                    return 1;
                }
                occurrence->put_Subject(Text(u"Process " + utf16(std::to_string(number))));
                if ((n % 4 == 3 ? occurrence->Delete() : occurrence->Save()) != S_OK)
                {
                    return 2;
                }
            }
            return 0;
        });
    for (int number = 0; number < processes; ++number)
    {
        for (int n = 0; n < daysOfEach; ++n)
        {
            Counted<IAppointment> occurrence;
            const HRESULT found = occurrenceOf(app, oid, date(2026, 3, 2) + 2 * n + number, occurrence);
            ASSERT_EQ(found, n % 4 == 3 ? PIM_E_NO_OCCURRENCE : S_OK) << n;
            if (occurrence)
            {
                EXPECT_EQ(textOf(occurrence, &IAppointment::get_Subject), "Process " + std::to_string(number));
            }
        }
    }
    const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
    EXPECT_EQ(database.walk().size(), 1U);
}

TEST_F(PimTwoProcesses, daysThatLeaveTheirSeriesAreThereOnce)
{
    const Counted<IAppointment> item = newItem<IAppointment>(app);
    item->put_Start(date(2026, 3, 2, 10));
    item->put_Duration(60);
    Counted<IRecurrencePattern> pattern;
    item->GetRecurrencePattern(pattern.out());
    pattern->put_RecurrenceType(olRecursDaily);
    ASSERT_EQ(item->Save(), S_OK);
    const LONG oid = oidOf(item);
    // Both want the same ten days; of each one comes first, and the other hears that the day is gone.
    inProcesses(
        [&](const Counted<IPOutlookApp> &own, int)
        {
            for (int n = 0; n < 10; ++n)
            {
                Counted<IAppointment> occurrence;
                if (occurrenceOf(own, oid, date(2026, 3, 2) + n, occurrence) == S_OK)
                {
                    occurrence->put_Body(Text(u"notes"));
                    const HRESULT saved = occurrence->Save();
                    if (saved != S_OK && saved != PIM_E_NO_OCCURRENCE)
                    {
                        return 1;
                    }
                }
            }
            return 0;
        });
    const OpenedDatabase database(infoOf(static_cast<CEOID>(oid)).infRecord.oidParent);
    EXPECT_EQ(database.walk().size(), 11U);
    std::set<std::string> days;
    for (const CEOID each : database.walk())
    {
        days.insert(dateOf(itemOf<IAppointment>(app, static_cast<LONG>(each)), &IAppointment::get_Start));
    }
    EXPECT_EQ(days.size(), 10U); // the series itself is told by the first day of its pattern, which has left it
}

TEST_F(PimTwoProcesses, fieldsOfOneContactThatTheyFillAreAllThere)
{
    const Counted<IContact> contact = newItem<IContact>(app);
    contact->put_LastName(Text(u"Berg"));
    ASSERT_EQ(contact->Save(), S_OK);
    const LONG oid = oidOf(contact);
    inProcesses(
        [&](const Counted<IPOutlookApp> &own, int number)
        {
            const Counted<IContact> mine = itemOf<IContact>(own, oid);
            for (int n = 0; n < 20; ++n)
            {
                const Text text(utf16(std::to_string(n)));
                number == 0 ? mine->put_HomeAddressCity(text) : mine->put_HomeAddressStreet(text);
                number == 0 ? mine->put_Spouse(text) : mine->put_Children(text);
                if (mine->Save() != S_OK)
                {
                    return 1;
                }
            }
            return 0;
        });
    const Counted<IContact> both = itemOf<IContact>(app, oid);
    EXPECT_EQ(textOf(both, &IContact::get_HomeAddressCity), "19");
    EXPECT_EQ(textOf(both, &IContact::get_HomeAddressStreet), "19");
    EXPECT_EQ(textOf(both, &IContact::get_Spouse), "19");
    EXPECT_EQ(textOf(both, &IContact::get_Children), "19");
}
} // namespace
