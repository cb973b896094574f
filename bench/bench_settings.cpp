// What settings cost: one value out of the shared text of a file that holds as many as a device in use does, beside the
// same look-up in a plain hash table.
//
// Aim: below 1,000 ns a value, and no access to the disk.
#include "core/CRegistry.h"
#include "support/LoaderStage.h"
#include "support/Rounds.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace
{
constexpr std::size_t keyCount = 20;
constexpr std::size_t valuesPerKey = 50;
constexpr int readsPerRound = 200'000;
constexpr const WCHAR *calendarKey = u"Software\\Kelvo\\Zembrik\\CAV";

std::u16string numbered(const WCHAR *word, std::size_t number)
{
    std::u16string text = word;
    for (const char digit : std::to_string(number))
    {
        text.push_back(static_cast<char16_t>(digit));
    }
    return text;
}

/// A device whose settings file holds a thousand values; gone with the object.
class Stage : public zb::bench::DeviceStage
{
  public:
    Stage()
    {
        CRegistry registry;
        for (std::size_t key = 0; key < keyCount; ++key)
        {
            fill(registry, key == 0 ? std::u16string(calendarKey) : numbered(u"Software\\Kelvo\\Zembrik\\Key", key));
        }
    }
    const std::vector<std::u16string> &names() const
    {
        return m_names;
    }

  private:
    void fill(CRegistry &registry, const std::u16string &key)
    {
        registry.OpenKey(HKEY_CURRENT_USER, key.c_str());
        m_names.clear();
        for (std::size_t value = 0; value < valuesPerKey; ++value)
        {
            m_names.push_back(numbered(u"CA_ShowCompletedTasks", value));
            registry.SetValue(m_names.back().c_str(), static_cast<DWORD>(value));
        }
    }

    std::vector<std::u16string> m_names;
};

void settingRead(benchmark::State &state)
{
    const Stage stage;
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, calendarKey);
    std::unordered_map<std::u16string, DWORD> table;
    for (std::size_t at = 0; at < valuesPerKey; ++at)
    {
        table[stage.names()[at]] = static_cast<DWORD>(at);
    }
    const auto inTurn = [&](const auto &read)
    {
        DWORD sum = 0;
        for (int count = 0; count < readsPerRound; ++count)
        {
            sum += read(stage.names()[static_cast<std::size_t>(count) % valuesPerKey]);
        }
        benchmark::DoNotOptimize(sum);
    };
    zb::bench::compareInRounds(
        state, zb::bench::threadSeconds,
        [&] { inTurn([&](const std::u16string &name) { return table.find(name)->second; }); },
        [&]
        {
            inTurn(
                [&](const std::u16string &name)
                {
                    DWORD value = 0;
                    registry.QueryValue(name.c_str(), &value);
                    return value;
                });
        });
    state.counters["ns_each"] = 1e6 * static_cast<double>(state.counters["ours_ms"]) / readsPerRound;
}
BENCHMARK(settingRead)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
