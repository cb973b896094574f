#include "platform/kernel.h"
#include "platform/user.h"
#include "support/MessageWindow.h"

#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace
{
using zb::test::drainMessages;
using zb::test::MessageWindowClass;
using zb::test::PlatformThread;
using zb::test::Procedure;
using zb::test::ServingThread;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class Timers : public testing::Test
{
  protected:
    void SetUp() override
    {
        drainMessages();
        window = type.make(&procedure);
    }
    void TearDown() override
    {
        DestroyWindow(window);
        drainMessages();
    }

    const MessageWindowClass type{u"Timers"};
    Procedure procedure = DefWindowProcW;
    HWND window = nullptr;
    MSG message{};
};

TEST_F(Timers, OfAWindowBringItsMessageAgainAndAgain)
{
    EXPECT_EQ(SetTimer(window, 85, 10, nullptr), 85U);
    auto before = Clock::now();
    for (int i = 0; i < 3; ++i)
    {
        ASSERT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
        EXPECT_GE(Clock::now() - before, milliseconds(9));
        before = Clock::now();
        EXPECT_EQ(message.hwnd, window);
        EXPECT_EQ(message.message, WM_TIMER);
        EXPECT_EQ(message.wParam, 85U);
        EXPECT_EQ(message.lParam, 0);
    }
    EXPECT_TRUE(KillTimer(window, 85));
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, 30, QS_ALLINPUT, 0), WAIT_TIMEOUT);
}

TEST_F(Timers, NeverComeTwiceAtOnce)
{
    SetTimer(window, 1, 5, nullptr);
    Sleep(40);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    const auto taken = Clock::now();
    const bool again = PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE;
    EXPECT_TRUE(!again || Clock::now() - taken >= milliseconds(5)) << "what was missed does not come in a row";
    KillTimer(window, 1);
}

TEST_F(Timers, StayDueWhenOnlyLookedAt)
{
    SetTimer(window, 1, 1, nullptr);
    Sleep(10);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(Timers, ComeWhenNoOtherMessageWaits)
{
    SetTimer(window, 1, 1, nullptr);
    Sleep(10);
    PostMessageW(window, WM_USER, 0, 0);
    GetMessageW(&message, nullptr, 0, 0);
    EXPECT_EQ(message.message, WM_USER);
    GetMessageW(&message, nullptr, 0, 0);
    EXPECT_EQ(message.message, WM_TIMER);
}

TEST_F(Timers, SetAgainStartAnew)
{
    SetTimer(window, 1, 1, nullptr);
    Sleep(10);
    EXPECT_EQ(SetTimer(window, 1, 10'000, nullptr), 1U);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_TRUE(KillTimer(window, 1));
    SetLastError(0);
    EXPECT_FALSE(KillTimer(window, 1)) << "it was one timer";
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(Timers, OfOneIdAndTwoWindowsAreTwo)
{
    const HWND other = type.make(&procedure);
    SetTimer(window, 1, 1, nullptr);
    SetTimer(other, 1, 1, nullptr);
    std::map<HWND, int> heard;
    while (heard[window] < 3 || heard[other] < 3)
    {
        GetMessageW(&message, nullptr, 0, 0);
        ++heard[message.hwnd];
    }
    EXPECT_TRUE(KillTimer(other, 1));
    EXPECT_TRUE(KillTimer(window, 1));
    DestroyWindow(other);
}

TEST_F(Timers, OfAThreadGetIdsOfTheirOwn)
{
    std::set<UINT_PTR> ids;
    for (int i = 0; i < 10; ++i)
    {
        const UINT_PTR id = SetTimer(nullptr, 0, 60'000, nullptr);
        EXPECT_NE(id, 0U);
        EXPECT_TRUE(ids.insert(id).second);
    }
    const UINT_PTR first = *ids.begin();
    EXPECT_EQ(SetTimer(nullptr, first, 1, nullptr), first) << "an id of one that runs sets it anew";
    ASSERT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    EXPECT_EQ(message.hwnd, nullptr);
    EXPECT_EQ(message.wParam, first);
    for (UINT_PTR id : ids)
    {
        EXPECT_TRUE(KillTimer(nullptr, id));
    }
}

struct Call
{
    HWND window;
    UINT message;
    UINT_PTR id;
};
std::vector<Call> calls;

void noteCall(HWND window, UINT message, UINT_PTR id, DWORD)
{
    calls.push_back({window, message, id});
}

TEST_F(Timers, WithAProcedureCallItWhenDispatched)
{
    calls.clear();
    SetTimer(window, 7, 1, noteCall);
    GetMessageW(&message, nullptr, 0, 0);
    EXPECT_EQ(message.lParam, reinterpret_cast<LPARAM>(noteCall));
    DispatchMessageW(&message);
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].window, window);
    EXPECT_EQ(calls[0].message, WM_TIMER);
    EXPECT_EQ(calls[0].id, 7U);
    KillTimer(window, 7);
    DispatchMessageW(&message);
    EXPECT_EQ(calls.size(), 1U) << "not for a timer that was killed meanwhile";
}

TEST_F(Timers, NobodySetAreNotFollowed)
{
    PostMessageW(window, WM_TIMER, 1, 0x1234);
    GetMessageW(&message, nullptr, 0, 0);
    EXPECT_EQ(DispatchMessageW(&message), 0);
}

TEST_F(Timers, GoWithTheirWindow)
{
    const HWND other = type.make(&procedure);
    SetTimer(other, 1, 1, nullptr);
    DestroyWindow(other);
    EXPECT_EQ(MsgWaitForMultipleObjectsEx(0, nullptr, 20, QS_ALLINPUT, 0), WAIT_TIMEOUT);
    SetLastError(0);
    EXPECT_EQ(SetTimer(other, 1, 1, nullptr), 0U);
    EXPECT_EQ(GetLastError(), 1400U);
    SetLastError(0);
    EXPECT_FALSE(KillTimer(other, 1));
    EXPECT_EQ(GetLastError(), 1400U);
}

TEST_F(Timers, AreBoundLikeOtherMessages)
{
    SetTimer(window, 1, 1, nullptr);
    Sleep(10);
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_USER, WM_USER + 5, PM_REMOVE));
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_TIMER, WM_TIMER, PM_REMOVE));
    // A due timer that the bounds leave out must not end or spin the wait for what they let in.
    const DWORD id = GetCurrentThreadId();
    const PlatformThread other(
        [id]
        {
            Sleep(20);
            PostThreadMessageW(id, WM_USER, 0, 0);
        });
    EXPECT_EQ(GetMessageW(&message, nullptr, WM_USER, WM_USER), 1);
    EXPECT_EQ(message.message, WM_USER);
}

TEST_F(Timers, OfZeroMillisecondsDoNotHoldUpTheLoop)
{
    EXPECT_EQ(SetTimer(window, 1, 0, nullptr), 1U);
    for (int i = 0; i < 3; ++i)
    {
        ASSERT_EQ(GetMessageW(&message, nullptr, 0, 0), 1);
    }
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_USER, WM_USER, PM_REMOVE));
}

TEST_F(Timers, MayBeSetForAWindowOfAnotherThread)
{
    zb::test::TestEvent rang;
    DWORD rangOn = 0;
    const ServingThread server(type,
                               [&](HWND target, UINT number, WPARAM wParam, LPARAM lParam) -> LRESULT
                               {
                                   if (number == WM_TIMER)
                                   {
                                       rangOn = GetCurrentThreadId();
                                       KillTimer(target, wParam);
                                       rang.set();
                                   }
                                   return DefWindowProcW(target, number, wParam, lParam);
                               });
    Sleep(5);
    EXPECT_EQ(SetTimer(server.window(), 3, 5, nullptr), 3U);
    EXPECT_TRUE(rang.wait());
    EXPECT_EQ(rangOn, server.thread().id());
}
} // namespace
