// Items on a disk that is full: a save that fails leaves the item as it was, and succeeds when there is room again.
#include "platform/PimObjects.h"
#include "platform/kernel.h"
#include "support/FaultyFileLayer.h"

using namespace zb::test;
using zb::Counted;

namespace
{
constexpr HRESULT diskFull = HRESULT_FROM_WIN32(ERROR_DISK_FULL);

class PimFaults : public ::testing::Test
{
  protected:
    static zb::DeviceOptions optionsFor(FaultyFileLayer &layer)
    {
        zb::DeviceOptions options;
        options.storeFileLayer = layer.name();
        return options;
    }
    Counted<IAppointment> meeting()
    {
        Counted<IAppointment> item = newItem<IAppointment>(app);
        item->put_Start(date(2026, 3, 2, 10));
        item->put_Duration(60);
        item->put_Subject(Text(u"Meeting"));
        return item;
    }
    template <typename Item>
    void saveAfterAFullDisk(const Counted<Item> &item)
    {
        layer.failWrites(0, SQLITE_FULL);
        EXPECT_EQ(item->Save(), diskFull);
        EXPECT_EQ(textOf(item, &IAppointment::get_Subject), "Changed") << "what was put is still there";
        layer.heal();
        EXPECT_EQ(item->Save(), S_OK);
    }

    FaultyFileLayer layer;
    TestDevice device{optionsFor(layer)};
    Counted<IPOutlookApp> app = application();
};

TEST_F(PimFaults, ANewItemIsNewStillWhenTheDiskIsFull)
{
    const Counted<IAppointment> item = meeting();
    item->put_Subject(Text(u"Changed"));
    layer.failWrites(0, SQLITE_FULL);
    EXPECT_EQ(item->Save(), diskFull);
    EXPECT_EQ(valueOf<LONG>(item, &IAppointment::get_Oid), 0);
    saveAfterAFullDisk(item);
    EXPECT_NE(oidOf(item), 0);
    EXPECT_EQ(textOf(itemOf<IAppointment>(app, oidOf(item)), &IAppointment::get_Subject), "Changed");
}

TEST_F(PimFaults, AChangeIsAChangeStillWhenTheDiskIsFull)
{
    const Counted<IAppointment> item = meeting();
    ASSERT_EQ(item->Save(), S_OK);
    item->put_Subject(Text(u"Changed"));
    saveAfterAFullDisk(item);
    EXPECT_EQ(textOf(itemOf<IAppointment>(app, oidOf(item)), &IAppointment::get_Subject), "Changed");
}

TEST_F(PimFaults, ADayOfASeriesIsOneStillWhenTheDiskIsFull)
{
    const Counted<IAppointment> series = meeting();
    Counted<IRecurrencePattern> pattern;
    ASSERT_EQ(series->GetRecurrencePattern(pattern.out()), S_OK);
    ASSERT_EQ(pattern->put_RecurrenceType(olRecursDaily), S_OK);
    ASSERT_EQ(series->Save(), S_OK);
    const auto dayOf = [&]
    {
        Counted<IAppointment> day;
        EXPECT_EQ(pattern->GetOccurrence(date(2026, 3, 5), day.out()), S_OK);
        return day;
    };
    const Counted<IAppointment> day = dayOf();
    day->put_Subject(Text(u"Changed"));
    saveAfterAFullDisk(day);
    EXPECT_EQ(textOf(dayOf(), &IAppointment::get_Subject), "Changed");
    EXPECT_EQ(textOf(series, &IAppointment::get_Subject), "Meeting");
}
} // namespace
