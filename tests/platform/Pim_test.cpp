// The databases of personal items and the encoder of appointments.
#include "platform/pim.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace
{
using namespace zb::test;
using zb::AppointmentItem;
using zb::BusyStatus;
using zb::RecordProperties;

const CEPROPVAL *valueOf(const RecordProperties &record, CEPROPID id)
{
    for (WORD i = 0; i < record.count(); ++i)
    {
        if (record.values()[i].propid == id)
        {
            return record.values() + i;
        }
    }
    return nullptr;
}

bool isRemoved(const RecordProperties &record, CEPROPID id)
{
    const CEPROPVAL *value = valueOf(record, id);
    return value != nullptr && value->wFlags == CEDB_PROPDELETE;
}

std::string textOf(const RecordProperties &record, CEPROPID id)
{
    const CEPROPVAL *value = valueOf(record, id);
    return value == nullptr ? "(missing)" : value->wFlags != 0 ? "(removed)" : utf8(value->val.lpwstr);
}

std::vector<BYTE> bytesOf(const CEPROPVAL &value)
{
    return {value.val.blob.lpb, value.val.blob.lpb + value.val.blob.dwCount};
}

AppointmentItem dentist()
{
    AppointmentItem item;
    item.subject = u"Dentist";
    item.location = u"Main Street 5";
    item.notes = u"Bring the card";
    item.interchangeId = u"uid-1";
    item.start = makeFileTime(2026, 3, 2, 13, 30);
    item.durationMinutes = 45;
    return item;
}

// --- RecordProperties ----------------------------------------------------------------------------------------------

constexpr CEPROPID shortId = MakePropId(1, CEVT_I2);
constexpr CEPROPID longId = MakePropId(2, CEVT_I4);
constexpr CEPROPID timeId = MakePropId(3, CEVT_FILETIME);
constexpr CEPROPID textId = MakePropId(4, CEVT_LPWSTR);
constexpr CEPROPID blobId = MakePropId(5, CEVT_BLOB);

TEST(RecordProperties, HoldEveryKindOfValueInTheOrderOfSetting)
{
    RecordProperties record;
    EXPECT_EQ(record.count(), 0);
    record.set(blobId, std::vector<BYTE>{1, 2, 3});
    record.set(textId, std::u16string(u"text"));
    record.set(timeId, FILETIME{7, 8});
    record.set(longId, LONG{-70'000});
    record.set(shortId, SHORT{-2});
    ASSERT_EQ(record.count(), 5);
    const CEPROPVAL *values = record.values();
    EXPECT_EQ(values[0].propid, blobId);
    EXPECT_EQ(bytesOf(values[0]), (std::vector<BYTE>{1, 2, 3}));
    EXPECT_EQ(values[1].propid, textId);
    EXPECT_EQ(utf8(values[1].val.lpwstr), "text");
    EXPECT_EQ(values[2].val.filetime.dwLowDateTime, 7U);
    EXPECT_EQ(values[2].val.filetime.dwHighDateTime, 8U);
    EXPECT_EQ(values[3].val.lVal, -70'000);
    EXPECT_EQ(values[4].val.iVal, -2);
    for (WORD i = 0; i < record.count(); ++i)
    {
        EXPECT_EQ(values[i].wFlags, 0);
    }
}

TEST(RecordProperties, TakeCopiesOfPropertiesOfAnyType)
{
    RecordProperties record;
    {
        std::u16string text = u"a text";
        std::vector<BYTE> bytes = {1, 2, 3};
        CEPROPVAL value{};
        value.propid = textId;
        value.val.lpwstr = text.data();
        record.set(value);
        value.propid = blobId;
        value.val.blob = CEBLOB{3, bytes.data()};
        record.set(value);
        value.propid = MakePropId(6, CEVT_R8);
        value.val.dblVal = 1.5;
        record.set(value);
        value.propid = MakePropId(7, CEVT_UI2);
        value.val.uiVal = 0xFFFE;
        record.set(value);
    }
    ASSERT_EQ(record.count(), 4);
    EXPECT_EQ(textOf(record, textId), "a text");
    EXPECT_EQ(bytesOf(*valueOf(record, blobId)), (std::vector<BYTE>{1, 2, 3}));
    EXPECT_EQ(record.values()[2].val.dblVal, 1.5);
    EXPECT_EQ(record.values()[3].val.uiVal, 0xFFFE);
}

TEST(RecordProperties, HoldEachPropertyOnce)
{
    RecordProperties record;
    record.set(textId, std::u16string(u"a first text that is long enough to be on the heap"));
    record.set(longId, LONG{1});
    record.remove(textId);
    EXPECT_EQ(record.count(), 2);
    EXPECT_TRUE(isRemoved(record, textId));
    record.set(textId, std::u16string(u"second"));
    EXPECT_EQ(record.count(), 2);
    EXPECT_EQ(record.values()[0].wFlags, 0);
    EXPECT_EQ(textOf(record, textId), "second");
    record.remove(shortId);
    EXPECT_EQ(record.count(), 3);
}

TEST(RecordProperties, KeepWhatTheyPointAtWhenMovedAndWhenTheyGrow)
{
    RecordProperties record;
    for (WORD i = 0; i < 200; ++i)
    {
        record.set(MakePropId(i, CEVT_LPWSTR), utf16("text " + std::to_string(i)));
    }
    RecordProperties moved(std::move(record));
    RecordProperties assigned;
    assigned = std::move(moved);
    ASSERT_EQ(assigned.count(), 200);
    for (WORD i = 0; i < 200; ++i)
    {
        EXPECT_EQ(utf8(assigned.values()[i].val.lpwstr), "text " + std::to_string(i));
    }
}

// --- The encoder ---------------------------------------------------------------------------------------------------

TEST(EncodeAppointment, WritesATimedItem)
{
    const RecordProperties record = zb::encodeAppointment(dentist());
    EXPECT_EQ(describe(valueOf(record, MakePropId(0x420d, CEVT_FILETIME))->val.filetime), "2026-03-02 13:30:00");
    EXPECT_EQ(valueOf(record, MakePropId(0x4213, CEVT_I4))->val.lVal, 45);
    EXPECT_EQ(valueOf(record, MakePropId(0x4215, CEVT_I4))->val.lVal, 2);
    EXPECT_EQ(valueOf(record, MakePropId(0x4503, CEVT_I2))->val.iVal, 0);
    EXPECT_EQ(valueOf(record, MakePropId(0x4223, CEVT_I2))->val.iVal, 0);
    EXPECT_EQ(valueOf(record, MakePropId(0x0004, CEVT_I2))->val.iVal, 0);
    EXPECT_EQ(valueOf(record, MakePropId(0x000f, CEVT_I2))->val.iVal, 2);
    EXPECT_EQ(textOf(record, MakePropId(0x0037, CEVT_LPWSTR)), "Dentist");
    EXPECT_EQ(textOf(record, MakePropId(0x4208, CEVT_LPWSTR)), "Main Street 5");
    EXPECT_EQ(textOf(record, MakePropId(0x5a01, CEVT_LPWSTR)), "uid-1");
    EXPECT_EQ(bytesOf(*valueOf(record, MakePropId(0x0017, CEVT_BLOB))).size(), 4U + 2 * 14);
    EXPECT_TRUE(isRemoved(record, MakePropId(0x4015, CEVT_BLOB)));
    EXPECT_TRUE(isRemoved(record, MakePropId(0x0001, CEVT_BLOB)));
    EXPECT_EQ(record.count(), 13);
}

TEST(EncodeAppointment, LeavesWhatAnItemCannotSayAsItIs)
{
    const RecordProperties record = zb::encodeAppointment(dentist());
    EXPECT_EQ(valueOf(record, zb::itemCategories), nullptr);
    EXPECT_EQ(valueOf(record, zb::appointmentAttendees), nullptr);
    EXPECT_EQ(valueOf(record, zb::itemExtraText), nullptr);
}

TEST(EncodeAppointment, RemovesWhatTheItemLacks)
{
    AppointmentItem item;
    item.start = makeFileTime(2026, 3, 2);
    item.location = std::u16string(u"\0hidden", 7);
    const RecordProperties record = zb::encodeAppointment(item);
    for (const CEPROPID id : {zb::itemSubject, zb::appointmentLocation, zb::itemNotes, zb::itemInterchangeId})
    {
        EXPECT_TRUE(isRemoved(record, id)) << std::hex << id;
    }
}

TEST(EncodeAppointment, WritesAllDayItemsOneMinuteShort)
{
    struct Case
    {
        LONG days;
        LONG minutes;
    };
    for (const Case &each : {Case{1, 1439}, Case{2, 2879}, Case{7, 10079}, Case{0, 1439}, Case{-5, 1439},
                             Case{std::numeric_limits<LONG>::max(), 2'147'483'519}})
    {
        AppointmentItem item = dentist();
        item.allDay = true;
        item.days = each.days;
        item.durationMinutes = 4711;
        item.start = makeFileTime(2026, 3, 3);
        const RecordProperties record = zb::encodeAppointment(item);
        EXPECT_EQ(valueOf(record, zb::appointmentDuration)->val.lVal, each.minutes) << each.days;
        EXPECT_EQ(valueOf(record, zb::appointmentDurationType)->val.lVal, 1);
        EXPECT_EQ(describe(valueOf(record, zb::appointmentStart)->val.filetime), "2026-03-03 00:00:00");
    }
}

TEST(EncodeAppointment, CutsTheStartOfAnAllDayItemToItsDay)
{
    AppointmentItem item;
    item.allDay = true;
    item.start = makeFileTime(2026, 3, 3, 23, 59, 59);
    const RecordProperties record = zb::encodeAppointment(item);
    EXPECT_EQ(describe(valueOf(record, zb::appointmentStart)->val.filetime), "2026-03-03 00:00:00");
}

TEST(EncodeAppointment, WritesFlagsAndStates)
{
    AppointmentItem item = dentist();
    item.isPrivate = true;
    item.reminder = true;
    item.durationMinutes = -10;
    const BusyStatus states[] = {BusyStatus::Free, BusyStatus::Tentative, BusyStatus::Busy, BusyStatus::OutOfOffice};
    for (SHORT i = 0; i < 4; ++i)
    {
        item.busy = states[i];
        const RecordProperties record = zb::encodeAppointment(item);
        EXPECT_EQ(valueOf(record, zb::appointmentBusyStatus)->val.iVal, i);
        EXPECT_EQ(valueOf(record, zb::itemSensitivity)->val.iVal, 2);
        EXPECT_EQ(valueOf(record, zb::appointmentReminderSet)->val.iVal, 1);
        EXPECT_EQ(valueOf(record, zb::appointmentDuration)->val.lVal, 0);
    }
}

TEST(EncodeAppointment, LetsTheCallerMakeItASeries)
{
    RecordProperties record = zb::encodeAppointment(dentist());
    const WORD before = record.count();
    record.set(zb::appointmentRecurrence, std::vector<BYTE>{4, 0x30});
    record.set(zb::appointmentRecurringFlag, SHORT{1});
    EXPECT_EQ(record.count(), before);
    EXPECT_EQ(bytesOf(*valueOf(record, zb::appointmentRecurrence)), (std::vector<BYTE>{4, 0x30}));
    EXPECT_EQ(valueOf(record, zb::appointmentRecurrence)->wFlags, 0);
}

// --- Notes ---------------------------------------------------------------------------------------------------------

TEST(Notes, AreATagAndUtf16)
{
    EXPECT_EQ(zb::encodeNotes(u"A\u20AC"), (std::vector<BYTE>{0x5A, 0x42, 0x54, 0x31, 0x41, 0x00, 0xAC, 0x20}));
    EXPECT_EQ(zb::encodeNotes(u""), std::vector<BYTE>{});
}

TEST(Notes, ComeBackAsTheyWent)
{
    for (const std::u16string &text :
         {std::u16string(u"A"), std::u16string(u"line\nline"), std::u16string(u"\U0001F600"),
          std::u16string(u"a\0b", 3), std::u16string(u"half \xD800"), std::u16string(100'000, u'x'), std::u16string()})
    {
        const std::vector<BYTE> bytes = zb::encodeNotes(text);
        EXPECT_EQ(zb::decodeNotes(bytes.data(), bytes.size()), text);
        EXPECT_TRUE(text.empty() || bytes.size() > 4);
    }
}

TEST(Notes, OfAnotherKindGiveAnEmptyText)
{
    const std::vector<BYTE> good = zb::encodeNotes(u"AB");
    for (std::size_t size = 0; size < 4; ++size)
    {
        EXPECT_EQ(zb::decodeNotes(good.data(), size), u"");
    }
    EXPECT_EQ(zb::decodeNotes(good.data(), 4), u"");
    EXPECT_EQ(zb::decodeNotes(good.data(), 5), u"");
    EXPECT_EQ(zb::decodeNotes(good.data(), 7), u"A");
    EXPECT_EQ(zb::decodeNotes(nullptr, 8), u"");
    for (std::size_t at = 0; at < 4; ++at)
    {
        std::vector<BYTE> foreign = good;
        foreign[at] ^= 0x20U;
        EXPECT_EQ(zb::decodeNotes(foreign.data(), foreign.size()), u"");
    }
}

// --- The databases -------------------------------------------------------------------------------------------------

class PimDatabasesTest : public DeviceTest
{
  protected:
    using Sorts = std::vector<std::pair<CEPROPID, DWORD>>;

    static std::optional<CEOIDINFO> infoOf(const WCHAR *name)
    {
        CEOID oid = 0;
        HANDLE database = CeOpenDatabase(&oid, name, 0, 0, nullptr);
        CEOIDINFO info{};
        if (database == INVALID_HANDLE_VALUE || CeOidGetInfo(oid, &info) == FALSE)
        {
            return std::nullopt;
        }
        CloseHandle(database);
        return info;
    }

    static CEOID idOf(const WCHAR *name)
    {
        CEOID oid = 0;
        HANDLE database = CeOpenDatabase(&oid, name, 0, 0, nullptr);
        if (database != INVALID_HANDLE_VALUE)
        {
            CloseHandle(database);
        }
        return oid;
    }

    static Sorts sortsOf(const WCHAR *name)
    {
        Sorts sorts;
        if (const auto info = infoOf(name))
        {
            for (WORD i = 0; i < info->infDatabase.wNumSortOrder; ++i)
            {
                sorts.emplace_back(info->infDatabase.rgSortSpecs[i].propid, info->infDatabase.rgSortSpecs[i].dwFlags);
            }
        }
        return sorts;
    }

    static std::map<std::u16string, Sorts> expected()
    {
        return {
            {u"Appointments Database", {{0x420d0040, 0}, {0x5a01001f, 0}}},
            {u"Tasks Database", {{0x0037001f, 2}, {0x41050040, 0}, {0x5a01001f, 0}}},
            {u"Contacts Database", {{0x4013001f, 2}, {0x5a01001f, 0}}},
            {u"\\Categories Database", {{0x4001001f, 2}, {0x40020002, 0}}},
        };
    }

    static void expectAll()
    {
        for (const auto &[name, sorts] : expected())
        {
            EXPECT_EQ(sortsOf(name.c_str()), sorts) << utf8(name);
        }
    }
};

TEST_F(PimDatabasesTest, ANewDeviceHasThemWithTheirSortOrders)
{
    expectAll();
}

TEST_F(PimDatabasesTest, MakingThemAgainChangesNothing)
{
    const CEOID before = idOf(zb::appointmentsDatabase);
    EXPECT_TRUE(zb::createPimDatabases());
    device.reopen();
    EXPECT_EQ(idOf(zb::appointmentsDatabase), before);
    expectAll();
}

TEST_F(PimDatabasesTest, AMissingOneComesBackAtTheNextOpening)
{
    const CEOID tasks = idOf(zb::tasksDatabase);
    ASSERT_TRUE(CeDeleteDatabase(idOf(zb::contactsDatabase)));
    ASSERT_EQ(idOf(zb::contactsDatabase), 0U);
    device.reopen();
    expectAll();
    EXPECT_EQ(idOf(zb::tasksDatabase), tasks);
}

TEST_F(PimDatabasesTest, LostSortOrdersComeBackBehindThoseThatAreThere)
{
    CEDBASEINFO info{};
    info.dwFlags = CEDB_VALIDSORTSPEC;
    info.wNumSortOrder = 2;
    info.rgSortSpecs[0] = {zb::appointmentDuration, 1};
    info.rgSortSpecs[1] = {zb::itemInterchangeId, 0};
    const CEGUID systemVolume{};
    ASSERT_TRUE(CeSetDatabaseInfoEx(&systemVolume, idOf(zb::appointmentsDatabase), &info));
    device.reopen();
    EXPECT_EQ(sortsOf(zb::appointmentsDatabase), (Sorts{{0x42130003, 1}, {0x5a01001f, 0}, {0x420d0040, 0}}));
}

TEST_F(PimDatabasesTest, AnEncodedAppointmentIsStoredAndChanged)
{
    CEOID database = 0;
    HANDLE handle = CeOpenDatabase(&database, zb::appointmentsDatabase, zb::appointmentStart, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    const RecordProperties first = zb::encodeAppointment(dentist());
    const CEOID oid = CeWriteRecordProps(handle, 0, first.count(), first.values());
    ASSERT_NE(oid, 0U);
    AppointmentItem item = dentist();
    item.location.clear();
    item.notes.clear();
    item.subject = u"Dentist, again";
    const RecordProperties second = zb::encodeAppointment(item);
    ASSERT_EQ(CeWriteRecordProps(handle, oid, second.count(), second.values()), oid);

    ASSERT_EQ(CeSeekDatabase(handle, CEDB_SEEK_CEOID, oid, nullptr), oid);
    const CEPROPID ids[] = {zb::itemSubject, zb::appointmentLocation, zb::itemNotes, zb::appointmentStart};
    WORD count = 4;
    BYTE *buffer = nullptr;
    DWORD size = 0;
    ASSERT_EQ(CeReadRecordProps(handle, CEDB_ALLOWREALLOC, &count, ids, &buffer, &size), oid);
    const auto *values = reinterpret_cast<const CEPROPVAL *>(buffer);
    EXPECT_EQ(utf8(values[0].val.lpwstr), "Dentist, again");
    EXPECT_EQ(values[1].wFlags, CEDB_PROPNOTFOUND);
    EXPECT_EQ(values[2].wFlags, CEDB_PROPNOTFOUND);
    EXPECT_EQ(describe(values[3].val.filetime), "2026-03-02 13:30:00");
    LocalFree(buffer);

    HANDLE byId = CeOpenDatabase(&database, nullptr, zb::itemInterchangeId, 0, nullptr);
    ASSERT_NE(byId, INVALID_HANDLE_VALUE);
    CEPROPVAL key{};
    std::u16string uid = u"uid-1";
    key.propid = zb::itemInterchangeId;
    key.val.lpwstr = uid.data();
    EXPECT_EQ(CeSeekDatabase(byId, CEDB_SEEK_VALUEFIRSTEQUAL, reinterpret_cast<DWORD_PTR>(&key), nullptr), oid);
    CloseHandle(byId);
    CloseHandle(handle);
}
} // namespace
