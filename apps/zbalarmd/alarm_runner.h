// Runs the notifications whose time has come, each exactly once.
#pragma once

#include "platform/notify.h"
#include "zbalarmd/child_launch.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace zb::alarmd
{
/// Where a runner stands while it runs one; tests end it there.
enum class RunStep
{
    BeforeChild,
    BeforeRecord,
    BeforeStart,
    BeforeFinish,
    Finished
};

class AlarmRunner
{
  public:
    struct Places
    {
        std::filesystem::path program; ///< zbalarmd itself
        std::filesystem::path device;  ///< the device's folder
        std::string tellWith;          ///< program that tells the user, with title and text; empty: the desktop
    };
    explicit AlarmRunner(Places places, std::function<void(RunStep)> observer = {});

    /// Runs all that are due, the earliest first, and returns their number. Throws std::runtime_error when the store or
    /// the system refuses; what was not run stays due.
    int runDue();
    /// For a child whose parent died: goes on with that attempt if it was recorded, else does nothing.
    void settle(DWORD number, const std::string &attempt);

    /// A word that is another one each time the machine is started.
    static std::string bootId();

  private:
    bool run(const Alarm &alarm);
    Command commandOf(const Alarm &alarm) const;
    Command tellCommand(DWORD number) const;
    Command selfCommand(const std::vector<std::string> &arguments) const;
    void pass(RunStep step) const;

    Places m_places;
    std::function<void(RunStep)> m_observer;
    std::string m_boot;
};
} // namespace zb::alarmd
