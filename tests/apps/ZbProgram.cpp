#include "apps/ZbProgram.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zb::test
{
namespace
{
using Clock = std::chrono::steady_clock;

/// A file without a name that a child writes to.
class Capture
{
  public:
    Capture()
    {
        std::string name = (std::filesystem::temp_directory_path() / "zb-test-XXXXXX").string();
        m_descriptor = ::mkstemp(name.data());
        if (m_descriptor < 0)
        {
            throw std::runtime_error("no temporary file");
        }
        ::unlink(name.c_str());
    }
    ~Capture()
    {
        ::close(m_descriptor);
    }
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

    int descriptor() const
    {
        return m_descriptor;
    }
    void fill(const std::string &text) const
    {
        if (::write(m_descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        {
            throw std::runtime_error("temporary file not written");
        }
        ::lseek(m_descriptor, 0, SEEK_SET);
    }
    std::string text() const
    {
        std::string all;
        std::array<char, 65536> buffer{};
        ::lseek(m_descriptor, 0, SEEK_SET);
        for (ssize_t length = 0; (length = ::read(m_descriptor, buffer.data(), buffer.size())) > 0;)
        {
            all.append(buffer.data(), static_cast<std::size_t>(length));
        }
        return all;
    }

  private:
    int m_descriptor;
};

std::vector<std::string> environmentOf(const ProgramOptions &options)
{
    std::map<std::string, std::string> values = {{"TZ", "Europe/Berlin"},
                                                 {"LC_ALL", "en_US.UTF-8"},
                                                 {"PATH", "/usr/bin:/bin"},
                                                 {"HOME", "/nonexistent"},
                                                 {"TERM", "xterm"}};
    for (const char *const kept :
         {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "TMPDIR", "LLVM_PROFILE_FILE"})
    {
        if (const char *const value = std::getenv(kept))
        {
            values[kept] = value;
        }
    }
    for (const auto &[name, value] : options.environment)
    {
        values[name] = value;
    }
    std::vector<std::string> lines;
    for (const auto &[name, value] : values)
    {
        lines.push_back(name + "=" + value);
    }
    return lines;
}

std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts)
    {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

struct Streams
{
    int in;
    int out;
    int err;
};

pid_t start(const std::string &program, const std::vector<std::string> &arguments, const ProgramOptions &options,
            const Streams &streams)
{
    std::vector<std::string> words = {program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment = environmentOf(options);
    const std::vector<char *> argv = pointersTo(words);
    const std::vector<char *> envp = pointersTo(environment);
    const pid_t child = ::fork();
    if (child == 0)
    {
        ::dup2(streams.in, STDIN_FILENO);
        ::dup2(streams.out, STDOUT_FILENO);
        ::dup2(streams.err, STDERR_FILENO);
        if (options.largestFile)
        {
            const rlimit limit{*options.largestFile, *options.largestFile};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            ::signal(SIGXFSZ, SIG_IGN); // writes fail instead
        }
        ::execve(program.c_str(), argv.data(), envp.data());
        ::_exit(127);
    }
    return child;
}

/// The screen of a terminal: read all the while, or the child would wait for room.
class Screen
{
  public:
    explicit Screen(int columns)
    {
        winsize size{};
        size.ws_row = 24;
        size.ws_col = static_cast<unsigned short>(columns);
        if (::openpty(&m_master, &m_terminal, nullptr, nullptr, &size) != 0)
        {
            throw std::runtime_error("no pseudo terminal");
        }
    }
    int terminal() const
    {
        return m_terminal;
    }
    void startReading()
    {
        ::close(m_terminal);
        m_reader = std::thread(
            [this]
            {
                std::array<char, 4096> buffer{};
                for (ssize_t length = 0; (length = ::read(m_master, buffer.data(), buffer.size())) > 0;)
                {
                    m_text.append(buffer.data(), static_cast<std::size_t>(length));
                }
            });
    }
    std::string finish()
    {
        m_reader.join();
        ::close(m_master);
        return m_text;
    }

  private:
    int m_master = -1;
    int m_terminal = -1;
    std::thread m_reader;
    std::string m_text;
};

void await(pid_t child, const ProgramOptions &options, ProgramResult &result)
{
    const Clock::time_point started = Clock::now();
    if (options.killAfterSeconds)
    {
        std::this_thread::sleep_for(std::chrono::duration<double>(*options.killAfterSeconds));
        ::kill(child, SIGKILL);
    }
    int status = 0;
    rusage usage{};
    while (::wait4(child, &status, 0, &usage) < 0 && errno == EINTR)
    {
    }
    result.seconds = std::chrono::duration<double>(Clock::now() - started).count();
    result.peakKilobytes = usage.ru_maxrss;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}
} // namespace

ProgramResult runProgram(const std::string &program, const std::vector<std::string> &arguments,
                         const ProgramOptions &options)
{
    const Capture in;
    const Capture out;
    const Capture err;
    in.fill(options.input);
    std::optional<Screen> screen;
    Streams streams{in.descriptor(), out.descriptor(), err.descriptor()};
    if (options.terminalColumns)
    {
        screen.emplace(*options.terminalColumns);
        streams.out = screen->terminal();
        streams.err = screen->terminal();
    }
    const int file =
        options.outputFile.empty() ? -1 : ::open(options.outputFile.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    streams.out = file >= 0 ? file : streams.out;
    ProgramResult result;
    const pid_t child = start(program, arguments, options, streams);
    if (screen)
    {
        screen->startReading();
    }
    await(child, options, result);
    result.out = screen ? screen->finish() : out.text();
    result.err = screen ? result.out : err.text();
    if (file >= 0)
    {
        ::close(file);
    }
    return result;
}

ProgramResult runZb(const std::vector<std::string> &arguments, const ProgramOptions &options)
{
    return runProgram(ZB_PROGRAM, arguments, options);
}

std::string writeFile(const std::filesystem::path &file, const std::string &bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
    return file.string();
}

std::string readFile(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}
} // namespace zb::test
