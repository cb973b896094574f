// Runs on the worker thread: messages and their order, stopping, killing, the lock.
#include "contacts/ContactListTest.h"
#include "platform/kernel.h"
#include "support/LoaderHost.h"

#include <chrono>
#include <thread>

namespace
{
using namespace zb::test;

class ContactRun : public ContactListTest
{
  protected:
    ContactRun()
    {
        loader().m_hWndHost = host.window();
    }
    ~ContactRun() override
    {
        loader().Stop(TRUE);
    }
    LoaderMessages run()
    {
        host.messages.clear();
        loader().Start();
        EXPECT_TRUE(host.waitFor(LoaderHost::done));
        return host.ordered();
    }
    void addMany(int count)
    {
        zb::BulkWrite bulk;
        for (int i = 0; i < count; ++i)
        {
            addContact(u"", utf16("name " + std::to_string(10'000 + i)), utf16("co " + std::to_string(i / 3)));
        }
        bulk.commit();
    }

    LoaderHost host{u"ContactListHost"};
    LoaderMessages &messages = host.messages;
};

TEST_F(ContactRun, flatListsTellTheirBeginTheListAndTheirEnd)
{
    addMany(3);
    display(1);
    EXPECT_EQ(run(), (LoaderMessages{{32802, 0, 0}, {1274, 1, 3}, {32803, 0, 0}}));
    addMany(25);
    loader().ClearCatCache();
    EXPECT_EQ(run(), (LoaderMessages{{32802, 0, 0}, {1274, 3, 28}, {32803, 0, 0}}));
    loader().SetLastRowRead(20);
    loader().SetStartListIndex(20);
    EXPECT_EQ(run(), (LoaderMessages{{32802, 0, 0}, {32803, 0, 0}})) << "later pages are not told";
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 28);
}

TEST_F(ContactRun, treesPostTheirList)
{
    addMany(6);
    display(2);
    EXPECT_EQ(run(), (LoaderMessages{{32802, 0, 0}, {1274, 1, 2}, {32803, 0, 0}}));
    messages.clear();
    EXPECT_EQ(loader().ListTreeContacts(2, 1, false), 3);
    EXPECT_TRUE(messages.empty()) << "posted";
    drainMessages();
    EXPECT_EQ(messages, (LoaderMessages{{1274, 4, 5}}));
    messages.clear();
    loader().DeleteTreeContacts(2);
    drainMessages();
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 2}}));
    display(1058);
    EXPECT_EQ(run(), (LoaderMessages{{32802, 0, 0}, {1274, 1, 1}, {32803, 0, 0}}));
}

TEST_F(ContactRun, aNodeWithoutMembersIsNotTold)
{
    const CEOID gone = addContact(u"A", u"B", u"Beta");
    display(2);
    load();
    removeContact(gone);
    drainMessages();
    messages.clear();
    EXPECT_EQ(loader().ListTreeContacts(2, 1, false), 0);
    drainMessages();
    EXPECT_TRUE(messages.empty());
}

TEST_F(ContactRun, aHostMayUpdateTheCacheWhileItHandlesTheMessage)
{
    addMany(3);
    const CEOID oid = addContact(u"", u"aaa");
    display(1);
    host.onMessage = [&](UINT number)
    {
        if (number == 1274)
        {
            loader().DeleteCatCacheItem(oid);
            loader().FinishUpdatingCatCacheItem();
        }
    };
    run();
    EXPECT_EQ(loader().GetCatCache().GetCount(), 3);
}

TEST_F(ContactRun, anEventThatIsNotSetStopsBeforeTheFirstContact)
{
    addMany(3);
    for (const LONG value : {1, 2, 1058})
    {
        display(value);
        messages.clear();
        CeManualEvent goesOn(false);
        loader().LoadContacts(&goesOn);
        drainMessages();
        EXPECT_TRUE(messages.empty()) << value;
    }
    display(1);
    load();
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 3);
}

TEST_F(ContactRun, aRunThatMeetsTheLockGivesUp)
{
    addMany(3);
    display(1);
    load();
    messages.clear();
    std::thread other([&] { loader().GetListLock().Enter(); });
    other.join();
    loader().ContactsThreadProc(nullptr);
    loader().CategoryThreadProc(nullptr);
    loader().CompanyThreadProc(nullptr);
    drainMessages();
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 3);
}

TEST_F(ContactRun, aRunThatIsKilledHoldsUpNoLaterOne)
{
    addMany(2000);
    display(2);
    loader().SetCompareString(u"co", false);
    for (int attempt = 0; attempt < 5; ++attempt)
    {
        messages.clear();
        loader().Start();
        std::this_thread::sleep_for(std::chrono::milliseconds(2 + 7 * attempt));
        loader().Kill(1);
        ASSERT_TRUE(host.waitFor(LoaderHost::done));
        load();
        ASSERT_EQ(loader().GetList().GetDisplayCount(), 2000 + 667);
    }
}

TEST_F(ContactRun, aHostThatDoesNotAnswerGetsItsLoaderKilledAndCanLoadAgain)
{
    addMany(3);
    display(1);
    loader().Start();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    loader().Kill(1);
    ASSERT_TRUE(host.waitFor(LoaderHost::done));
    messages.clear();
    load();
    EXPECT_EQ(messages, (LoaderMessages{{1274, 1, 3}}));
}

TEST_F(ContactRun, aStoppedRunMakesRoomForTheNext)
{
    addMany(2000);
    display(2);
    loader().SetCompareString(u"co", false);
    loader().Start();
    loader().Stop(TRUE);
    drainMessages();
    run();
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 2000 + 667);
}

TEST_F(ContactRun, withoutHostNobodyIsTold)
{
    addMany(3);
    display(1);
    loader().m_hWndHost = nullptr;
    loader().Start();
    loader().WaitForComplete();
    drainMessages();
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(loader().GetList().GetDisplayCount(), 3);
}
} // namespace
