// A list of 50,000 rows on a screen of 480 by 640 pixels with 192 dots an inch, whose cells are asked for when they are
// seen: what it costs until it shows, a row further, a page further, and in memory for each row that nobody has seen.
//
// What counts is the processor time of the thread, parsing, layout, painting and the answers of the parent included.
// Aims: 30 ms for the first paint, 4 ms for a row, 15 ms for a page, 20 bytes a row.
#include "display/CHTMLGrid.h"
#include "framework/HIDPI.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

#include <malloc.h>
#include <string>

namespace
{
constexpr USHORT rowCount = 50'000;
constexpr int screenWidth = 480;
constexpr int screenHeight = 640;
constexpr int rounds = 15;
constexpr int stepsARound = 40;

/// Three columns as a list of appointments has them; in the middle a text that wraps.
LRESULT answer(GRIDCELLREQUEST &request)
{
    static std::u16string text;
    const unsigned row = HIWORD(request.hdr.idFrom);
    const auto number = [](unsigned value)
    {
        const std::string digits = std::to_string(value);
        return std::u16string(digits.begin(), digits.end());
    };
    switch (LOWORD(request.hdr.idFrom))
    {
    case 0:
        text = number(row % 24) + u":15";
        request.nColWidth = 90;
        break;
    case 1:
        text = u"<A=" + number(row) + u"><B>Meeting " + number(row) +
               u"</B> about the plans of the coming year</A> <FONT COLOR=#606060>in the large room on the left";
        break;
    default:
        text = u"<P ALIGN=RIGHT>" + number(row % 180) + u" min";
        request.nColWidth = 90;
        break;
    }
    request.rcMargins = {2, 1, 2, 1};
    request.pszHTML = text.c_str();
    return 0;
}

LRESULT parentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == GRID_GETCELL ? answer(*reinterpret_cast<GRIDCELLREQUEST *>(lParam))
                                   : DefWindowProcW(window, message, wParam, lParam);
}

zb::DeviceOptions screenOptions()
{
    zb::DeviceOptions options;
    options.screen.width = screenWidth;
    options.screen.height = screenHeight;
    options.screen.dotsPerInch = 192;
    return options;
}

/// The device and a window of the whole screen.
class Stage
{
  public:
    Stage() : m_stage(screenOptions())
    {
        HIDPI_InitScaling();
        WNDCLASSW type{};
        type.lpfnWndProc = parentProcedure;
        type.lpszClassName = u"GridParent";
        RegisterClassW(&type);
        m_parent = CreateWindowExW(0, type.lpszClassName, u"", WS_POPUP | WS_VISIBLE, 0, 0, screenWidth, screenHeight,
                                   nullptr, nullptr, nullptr, nullptr);
    }
    static HWND parent()
    {
        static const Stage stage;
        return stage.m_parent;
    }

  private:
    zb::bench::DeviceStage m_stage;
    HWND m_parent = nullptr;
};

void settle()
{
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
    {
        DispatchMessageW(&message);
    }
}

struct List
{
    List() : grid(Stage::parent(), RECT{0, 0, screenWidth, screenHeight}, true)
    {
        settle();
    }
    void fill()
    {
        grid.SetDimensions(rowCount, 3);
        settle();
    }
    CHTMLGrid grid;
};

/// The median of the rounds, each in milliseconds a step.
template <typename Round>
void measure(benchmark::State &state, int steps, Round &&round)
{
    for ([[maybe_unused]] auto _ : state)
    {
        round();
        std::vector<double> times;
        for (int i = 0; i < rounds; ++i)
        {
            times.push_back(round() / steps);
        }
        state.SetIterationTime(zb::bench::median(times));
        state.counters["ms"] = 1000 * zb::bench::median(times);
    }
}

void firstPaint(benchmark::State &state)
{
    measure(state, 1,
            []
            {
                List list;
                const double begin = zb::bench::threadSeconds();
                list.fill();
                return zb::bench::threadSeconds() - begin;
            });
}

/// A step again and again, in a list of all rows.
template <typename Step>
void measureSteps(benchmark::State &state, Step &&step)
{
    List list;
    list.fill();
    measure(state, stepsARound,
            [&]
            {
                const double begin = zb::bench::threadSeconds();
                for (int one = 0; one < stepsARound; ++one)
                {
                    step(list.grid);
                }
                return zb::bench::threadSeconds() - begin;
            });
}

void rowScroll(benchmark::State &state)
{
    measureSteps(state, [](CHTMLGrid &grid) { grid.ScrollByRowDown(1, false); });
}

void page(benchmark::State &state)
{
    measureSteps(state, [](CHTMLGrid &grid) { grid.ScrollByPageDown(); });
}

void currentRowDown(benchmark::State &state)
{
    measureSteps(state, [](CHTMLGrid &grid) { SendMessageW(grid, WM_KEYDOWN, VK_DOWN, 1); });
}

void toTheEndAndBack(benchmark::State &state)
{
    List list;
    list.fill();
    measure(state, 2,
            [&]
            {
                const double begin = zb::bench::threadSeconds();
                list.grid.ScrollToBottom();
                list.grid.ScrollToTop();
                return zb::bench::threadSeconds() - begin;
            });
}

/// Of a list of 50,000 rows beside one of 1,000, both with their first screen seen.
void memory(benchmark::State &state)
{
    const auto bytes = [](USHORT rows)
    {
        List list;
        const auto before = mallinfo2();
        list.grid.SetDimensions(rows, 3);
        settle();
        const auto after = mallinfo2();
        return static_cast<double>(after.uordblks + after.hblkhd) -
               static_cast<double>(before.uordblks + before.hblkhd);
    };
    for ([[maybe_unused]] auto _ : state)
    {
        constexpr USHORT few = 1'000;
        bytes(few);
        const double difference = bytes(rowCount) - bytes(few);
        state.SetIterationTime(1e-6);
        state.counters["bytes_a_row"] = difference / (rowCount - few);
    }
}

BENCHMARK(firstPaint)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(rowScroll)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(page)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(currentRowDown)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(toTheEndAndBack)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(memory)->UseManualTime()->Iterations(1);
} // namespace

BENCHMARK_MAIN();
