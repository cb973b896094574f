// What messages cost: sent on their own thread through one to four levels of dispatch, and posted, taken and
// dispatched.
//
// A level is a procedure or operation that the message goes through: the window's procedure, the object's operation,
// the default behind it, the procedure of a class that the object's stands before. Beside each stands an empty virtual
// call, which is taken off. Aims: below 200 ns a level sent, below 1,000 ns posted and dispatched.
#include "framework/CeWnd.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace
{
constexpr int messagesPerRound = 200'000;
constexpr int postsAtOnce = 100; ///< as when a loader tells of many rows

/// A device with a small screen.
class Stage : public zb::bench::DeviceStage
{
  public:
    Stage() : DeviceStage(smallScreen())
    {
    }

  private:
    static zb::DeviceOptions smallScreen()
    {
        zb::DeviceOptions options;
        options.screen = {240, 320, 96};
        return options;
    }
};

/// The floor: a call through a table, of one of two classes so that nobody can see which.
class Callee
{
  public:
    virtual ~Callee() = default;
    virtual LRESULT call(UINT message, WPARAM wParam, LPARAM lParam) = 0;
};

class Empty : public Callee
{
  public:
    [[gnu::noinline]] LRESULT call(UINT message, WPARAM, LPARAM lParam) override
    {
        benchmark::DoNotOptimize(message);
        return lParam;
    }
};

class Zero : public Callee
{
  public:
    [[gnu::noinline]] LRESULT call(UINT message, WPARAM, LPARAM) override
    {
        benchmark::DoNotOptimize(message);
        return 0;
    }
};

LRESULT plainProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message >= WM_USER ? lParam : DefWindowProcW(window, message, wParam, lParam);
}

/// An object whose operation answers, or leaves the message to the default.
class Target : public CeWnd
{
  public:
    bool answers = true;
    LRESULT OnMessage(UINT, WPARAM, LPARAM lParam, bool &handled) override
    {
        handled = answers;
        return lParam;
    }
};

HWND plainWindow()
{
    WNDCLASSW type{};
    type.lpfnWndProc = plainProcedure;
    type.lpszClassName = u"BenchPlain";
    RegisterClassW(&type);
    return CreateWindowExW(0, u"BenchPlain", u"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
}

/// Runs `one` beside the empty call and tells what it costs beyond that, as a whole and by the level.
void measure(benchmark::State &state, int levels, const std::function<void()> &round)
{
    Empty empty;
    Zero zero;
    Callee *callees[] = {&empty, &zero};
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds,
        [&]
        {
            LRESULT sum = 0;
            for (int count = 0; count < messagesPerRound; ++count)
            {
                Callee *target = callees[count & 1];
                benchmark::DoNotOptimize(target);
                sum += target->call(WM_USER, 0, count);
            }
            benchmark::DoNotOptimize(sum);
        },
        round);
    const double beyond =
        static_cast<double>(state.counters["ours_ms"]) - static_cast<double>(state.counters["floor_ms"]);
    state.counters["ns_each"] = 1e6 * beyond / messagesPerRound;
    state.counters["ns_level"] = 1e6 * beyond / messagesPerRound / levels;
}

void sendAll(HWND window)
{
    LRESULT sum = 0;
    for (int count = 0; count < messagesPerRound; ++count)
    {
        sum += SendMessageW(window, WM_USER, 0, count);
    }
    benchmark::DoNotOptimize(sum);
}

void postAll(HWND window)
{
    MSG message{};
    for (int count = 0; count < messagesPerRound; count += postsAtOnce)
    {
        for (int one = 0; one < postsAtOnce; ++one)
        {
            PostMessageW(window, WM_USER, 0, one);
        }
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        {
            DispatchMessageW(&message);
        }
    }
}

/// One that is waited for with GetMessageW, as a thread's main loop does.
void postEach(HWND window)
{
    MSG message{};
    for (int count = 0; count < messagesPerRound; ++count)
    {
        PostMessageW(window, WM_USER, 0, count);
        GetMessageW(&message, nullptr, 0, 0);
        DispatchMessageW(&message);
    }
}

void sentToProcedure(benchmark::State &state)
{
    const Stage stage;
    const HWND window = plainWindow();
    measure(state, 1, [window] { sendAll(window); });
    DestroyWindow(window);
}

void sentToOperation(benchmark::State &state)
{
    const Stage stage;
    Target window;
    window.Create(nullptr, {0, 0, 10, 10}, WS_POPUP);
    measure(state, 2, [&] { sendAll(window); });
    DestroyWindow(window);
}

void sentToDefault(benchmark::State &state)
{
    const Stage stage;
    Target window;
    window.answers = false;
    window.Create(nullptr, {0, 0, 10, 10}, WS_POPUP);
    measure(state, 3, [&] { sendAll(window); });
    DestroyWindow(window);
}

void sentThroughClass(benchmark::State &state)
{
    const Stage stage;
    DestroyWindow(plainWindow());
    Target window;
    window.answers = false;
    window.Create(u"BenchPlain", nullptr, {0, 0, 10, 10}, nullptr, WS_POPUP);
    measure(state, 3, [&] { sendAll(window); });
    DestroyWindow(window);
}

void postedAndDispatched(benchmark::State &state)
{
    const Stage stage;
    Target window;
    window.Create(nullptr, {0, 0, 10, 10}, WS_POPUP);
    measure(state, 1, [&] { postAll(window); });
    DestroyWindow(window);
}

void postedAndWaitedFor(benchmark::State &state)
{
    const Stage stage;
    Target window;
    window.Create(nullptr, {0, 0, 10, 10}, WS_POPUP);
    measure(state, 1, [&] { postEach(window); });
    DestroyWindow(window);
}

BENCHMARK(sentToProcedure)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(sentToOperation)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(sentToDefault)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(sentThroughClass)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(postedAndDispatched)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(postedAndWaitedFor)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
