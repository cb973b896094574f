// The window named when a database is opened hears of what others write.
#include "RecordsTest.h"

#include "platform/user.h"
#include "support/MessageWindow.h"

namespace zb::test
{
namespace
{
class CeDbNotifyTest : public RecordsTest
{
  protected:
    void SetUp() override
    {
        RecordsTest::SetUp();
        window = type.make(&procedure);
        ASSERT_NE(window, nullptr);
    }
    void TearDown() override
    {
        DestroyWindow(window);
        drainMessages();
    }

    /// The next notice of a database to the window; message 0 when none comes in time.
    MSG nextNotice() const
    {
        MSG message{};
        for (int waits = 0; waits < 1000; ++waits)
        {
            if (PeekMessageW(&message, window, DB_CEOID_CREATED, DB_CEOID_CHANGED, PM_REMOVE))
            {
                return message;
            }
            Sleep(5);
        }
        return MSG{};
    }

    void expectNoticeOfAWrite()
    {
        CeDb writer;
        ASSERT_TRUE(openThings(writer));
        const CEOID oid = write(writer, {longProp(keyId, 1)});
        const MSG notice = nextNotice();
        EXPECT_EQ(notice.message, DB_CEOID_CREATED);
        EXPECT_EQ(notice.wParam, oid);
        EXPECT_EQ(static_cast<CEOID>(notice.lParam), m_databaseId);
    }

    const MessageWindowClass type{u"DatabaseNotices"};
    Procedure procedure = [](HWND target, UINT message, WPARAM wParam, LPARAM lParam)
    { return DefWindowProcW(target, message, wParam, lParam); };
    HWND window = nullptr;
};

TEST_F(CeDbNotifyTest, openByNameHandsTheWindowOn)
{
    CeDb db;
    ASSERT_TRUE(db.Open(u"Things", keyId, 0, window));
    expectNoticeOfAWrite();
}

TEST_F(CeDbNotifyTest, openByIdHandsTheWindowOn)
{
    CeDb db;
    ASSERT_TRUE(db.Open(m_databaseId, keyId, 0, window));
    expectNoticeOfAWrite();
}

TEST_F(CeDbNotifyTest, ownWritesAreNotTold)
{
    CeDb db;
    ASSERT_TRUE(db.Open(u"Things", keyId, 0, window));
    ASSERT_NE(write(db, {longProp(keyId, 7)}), 0U);
    expectNoticeOfAWrite(); // the other one's is the first to arrive
}
} // namespace
} // namespace zb::test
