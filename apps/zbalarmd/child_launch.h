// Starting a program so that it runs exactly once, whenever this process is killed.
//
// The child is made first and waits at a gate. Then whoever launches records in the store that the program is being
// started, and opens the gate. When the launching process dies before that, the child itself looks into the store (it
// becomes "zbalarmd --settle") and starts the program only if it was recorded. So between record and start there is no
// moment at which a kill of this process could lose the start, and none at which a later process would repeat it.
//
// No shell is involved: program and arguments go to the system as they are. The child leads a session of its own, so
// that the end of this process, or a signal to its group, does not reach it. Threads: the process has one.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace zb::alarmd
{
/// A program by its path, and its arguments without the program's own name; the environment is handed on.
struct Command
{
    std::string path;
    std::vector<std::string> arguments;
};

class ChildLaunch
{
  public:
    /// Makes the child. `settle` is run in the place of the command when this process dies early; `otherwise` when the
    /// command can't be started. Throws std::runtime_error when there can be no more processes.
    ChildLaunch(const Command &command, const Command &settle, const Command &otherwise);
    /// A gate that was not opened ends the child.
    ~ChildLaunch();
    ChildLaunch(const ChildLaunch &) = delete;
    ChildLaunch &operator=(const ChildLaunch &) = delete;

    /// Lets the child go on, and waits until the command (or `otherwise`) has been started.
    void open();

  private:
    void send(char word);

    pid_t m_child = -1;
    int m_gate = -1;    ///< writing end
    int m_started = -1; ///< reading end; ends when the program is there
};

/// Becomes the program; returns only when it can't be started.
void become(const Command &command);
} // namespace zb::alarmd
