#include "support/Programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace zb::bench
{
std::filesystem::path ownPath()
{
    return std::filesystem::read_symlink("/proc/self/exe");
}

double childSeconds()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

void run(std::vector<std::string> arguments, const std::filesystem::path &output)
{
    std::vector<char *> pointers;
    for (std::string &argument : arguments)
    {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t child = 0;
    const int failed = posix_spawn(&child, arguments[0].c_str(), &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (failed != 0 || waitpid(child, &status, 0) != child || status != 0)
    {
        throw std::runtime_error(arguments[0] + " failed");
    }
}
} // namespace zb::bench
