#include "apps/Desktop.h"

#include "apps/ZbProgram.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <thread>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zb::test
{
namespace
{
/// The number that the server writes when it is ready; empty when it ends before.
std::string readDisplay(int pipe)
{
    constexpr int patience = 60'000; // milliseconds
    std::string number;
    pollfd waiting{pipe, POLLIN, 0};
    for (char ch = 0; ::poll(&waiting, 1, patience) > 0 && ::read(pipe, &ch, 1) == 1 && ch != '\n';)
    {
        number += ch;
    }
    return number;
}

/// A word of the file's header, which is 32 bits, highest byte first.
std::uint32_t headerWord(const std::string &bytes, std::size_t index)
{
    std::uint32_t value = 0;
    for (std::size_t n = 0; n < 4; ++n)
    {
        value = value << 8U | static_cast<unsigned char>(bytes.at(4 * index + n));
    }
    return value;
}

void eachWindow(const std::string &name, const std::function<void(::Display *display, ::Window window)> &use)
{
    ::Display *const display = XOpenDisplay(name.c_str());
    ::Window root = 0;
    ::Window parent = 0;
    ::Window *windows = nullptr;
    unsigned count = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &windows, &count);
    for (unsigned n = 0; n < count; ++n)
    {
        XWindowAttributes looks{};
        if (XGetWindowAttributes(display, windows[n], &looks) != 0 && looks.map_state == IsViewable)
        {
            use(display, windows[n]);
        }
    }
    XFree(windows);
    XCloseDisplay(display);
}
} // namespace

Desktop::Desktop()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
    {
        return;
    }
    const std::string folder = m_folder.path().string();
    m_server = ::fork();
    if (m_server == 0)
    {
        ::dup2(ends[1], 3); // without O_CLOEXEC
        const int nowhere = ::open("/dev/null", O_RDWR);
        ::dup2(nowhere, STDOUT_FILENO);
        ::dup2(nowhere, STDERR_FILENO);
        ::execlp("Xvfb", "Xvfb", "-displayfd", "3", "-screen", "0", "800x700x24", "-fbdir", folder.c_str(),
                 "-noreset", "-nolisten", "tcp", static_cast<char *>(nullptr));
        ::_exit(127);
    }
    ::close(ends[1]);
    if (const std::string number = readDisplay(ends[0]); !number.empty())
    {
        m_display = ":" + number;
    }
    ::close(ends[0]);
}

Desktop::~Desktop()
{
    if (m_server > 0)
    {
        ::kill(m_server, SIGTERM);
        ::waitpid(m_server, nullptr, 0);
    }
}

/// The server keeps its pixels in a file: a header of words, a table of colours, and rows of blue, green, red and a byte.
Picture Desktop::shot(int left, int top, int width, int height) const
{
    constexpr std::size_t colorSize = 12;
    const std::string bytes = readFile(m_folder.path() / "Xvfb_screen0");
    const std::size_t start = headerWord(bytes, 0) + headerWord(bytes, 19) * colorSize;
    const std::size_t row = headerWord(bytes, 12);
    Picture picture{width, height, {}};
    for (int y = top; y < top + height; ++y)
    {
        for (int x = left; x < left + width; ++x)
        {
            const std::size_t at = start + static_cast<std::size_t>(y) * row + static_cast<std::size_t>(x) * 4;
            const auto part = [&bytes, at](std::size_t n) { return std::uint32_t{static_cast<unsigned char>(bytes.at(at + n))}; };
            picture.pixels.push_back(part(2) << 16U | part(1) << 8U | part(0));
        }
    }
    return picture;
}

bool Desktop::act(const std::vector<std::string> &words) const
{
    ProgramOptions options;
    options.environment["DISPLAY"] = m_display;
    return runProgram("/usr/bin/xdotool", words, options).exitCode == 0;
}

bool Desktop::closeWindows() const
{
    int told = 0;
    eachWindow(m_display,
               [&told](::Display *display, ::Window window)
               {
                   XEvent event{};
                   event.xclient.type = ClientMessage;
                   event.xclient.window = window;
                   event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", 0);
                   event.xclient.format = 32;
                   event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", 0));
                   told += XSendEvent(display, window, 0, NoEventMask, &event) != 0 ? 1 : 0;
               });
    return told > 0;
}

std::vector<std::uint32_t> Desktop::icon() const
{
    constexpr long most = 1'000'000;
    std::vector<std::uint32_t> values;
    eachWindow(m_display,
               [&values](::Display *display, ::Window window)
               {
                   Atom type = 0;
                   int bits = 0;
                   unsigned long count = 0;
                   unsigned long left = 0;
                   unsigned char *bytes = nullptr;
                   XGetWindowProperty(display, window, XInternAtom(display, "_NET_WM_ICON", 0), 0, most, 0, XA_CARDINAL,
                                      &type, &bits, &count, &left, &bytes);
                   const auto *words = reinterpret_cast<const unsigned long *>(bytes);
                   // Words of 64 bits here, in which 32 bits lie with their sign.
                   std::transform(words, words + count, std::back_inserter(values),
                                  [](unsigned long word) { return static_cast<std::uint32_t>(word); });
                   XFree(bytes);
               });
    return values;
}

std::string Desktop::clipboard() const
{
    ProgramOptions options;
    options.environment["DISPLAY"] = m_display;
    return runProgram("/usr/bin/xclip", {"-selection", "clipboard", "-o"}, options).out;
}

void Desktop::setClipboard(const std::string &text) const
{
    ProgramOptions options;
    options.environment["DISPLAY"] = m_display;
    options.input = text;
    // It stays in the background for as long as it owns the clipboard, and ends with the desktop.
    runProgram("/usr/bin/xclip", {"-selection", "clipboard", "-i"}, options);
}

bool eventually(const std::function<bool()> &condition)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::minutes(1);
    while (!condition())
    {
        if (Clock::now() > end)
        {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}
} // namespace zb::test
