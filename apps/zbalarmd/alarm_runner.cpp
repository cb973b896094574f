#include "zbalarmd/alarm_runner.h"

#include "platform/text.h"
#include "zbalarmd/program_lookup.h"

#include <fstream>
#include <random>
#include <unistd.h>

namespace zb::alarmd
{
namespace
{
std::string newAttempt()
{
    std::random_device random;
    return std::to_string(getpid()) + "-" + std::to_string(random()) + std::to_string(random());
}
} // namespace

AlarmRunner::AlarmRunner(Places places, std::function<void(RunStep)> observer)
    : m_places(std::move(places)), m_observer(std::move(observer)), m_boot(bootId())
{
}

std::string AlarmRunner::bootId()
{
    std::ifstream file("/proc/sys/kernel/random/boot_id");
    std::string id;
    file >> id;
    return id;
}

void AlarmRunner::pass(RunStep step) const
{
    if (m_observer)
    {
        m_observer(step);
    }
}

Command AlarmRunner::selfCommand(const std::vector<std::string> &arguments) const
{
    Command command{m_places.program.string(), {"--device", m_places.device.string()}};
    if (!m_places.tellWith.empty())
    {
        command.arguments.insert(command.arguments.end(), {"--tell-with", m_places.tellWith});
    }
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    return command;
}

Command AlarmRunner::tellCommand(DWORD number) const
{
    return selfCommand({"--tell", std::to_string(number)});
}

Command AlarmRunner::commandOf(const Alarm &alarm) const
{
    if (alarm.isTold())
    {
        return tellCommand(alarm.number);
    }
    Command command;
    command.path =
        findProgram(toUtf8(alarm.program), m_places.program.parent_path(), m_places.device / "files").string();
    if (!alarm.arguments.empty())
    {
        command.arguments.push_back(toUtf8(alarm.arguments));
    }
    return command;
}

bool AlarmRunner::run(const Alarm &alarm)
{
    const std::string attempt = newAttempt();
    pass(RunStep::BeforeChild);
    // A program that is not there must not swallow the alarm: the user is told of it instead.
    ChildLaunch child(commandOf(alarm), selfCommand({"--settle", std::to_string(alarm.number), "--attempt", attempt}),
                      tellCommand(alarm.number));
    pass(RunStep::BeforeRecord);
    if (!beginAlarm(alarm, attempt, m_boot))
    {
        return false; // cleared, set anew or taken by another since it was read
    }
    pass(RunStep::BeforeStart);
    child.open();
    pass(RunStep::BeforeFinish);
    finishAlarm(alarm.number, attempt);
    pass(RunStep::Finished);
    return true;
}

int AlarmRunner::runDue()
{
    forgetBrokenAttempts(m_boot);
    int count = 0;
    for (const Alarm &alarm : dueAlarms())
    {
        count += run(alarm) ? 1 : 0;
    }
    return count;
}

void AlarmRunner::settle(DWORD number, const std::string &attempt)
{
    const std::optional<Alarm> alarm = alarmOf(number);
    if (!alarm || !isBegun(number, attempt))
    {
        return;
    }
    finishAlarm(number, attempt);
    become(commandOf(*alarm));
    become(tellCommand(number));
}
} // namespace zb::alarmd
