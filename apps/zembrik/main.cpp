// zembrik: the screens. Arguments only.
#include "common/complain.h"
#include "common/exit_code.h"
#include "zembrik/host.h"
#include "zembrik/screen_size_text.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <tuple>

namespace
{
using namespace zb::host;
using zb::screens::HostArguments;

constexpr const char *footer =
    "Exit codes: 0 done; 2 wrong usage; 3 the device can't be opened or shown; 4 the script is unreadable or wrong;\n"
    "5 a picture can't be written. docs/zembrik.md tells the lines of scripts.\n"
    "The device is --device, else ZB_DEVICE, else $XDG_DATA_HOME/zembrik, else ~/.local/share/zembrik.";

void addOptions(CLI::App &app, HostArguments &arguments)
{
    app.add_option("view", arguments.view, "What to show; what showed last when nothing is said")->type_name("VIEW");
    app.add_option("--device", arguments.device, "Folder of the device; made when there is none")->type_name("DIR");
    app.add_option_function<std::string>(
           "--size",
           [&arguments](const std::string &text)
           {
               const auto size = zb::screens::screenSizeOf(text);
               if (!size)
               {
                   throw CLI::ValidationError("--size", "needs a size such as 480x640, sides from " +
                                                            std::to_string(zb::screens::smallestSide) + " to " +
                                                            std::to_string(zb::screens::largestSide));
               }
               std::tie(arguments.width, arguments.height) = *size;
               arguments.sized = true;
           },
           "Pixels of the screen; when nothing is said what the window had last, 480x640 without one")
        ->type_name("WxH");
    app.add_option("--dpi", arguments.dotsPerInch, "Dots an inch of the screen")
        ->check(CLI::Range(72, 600))
        ->capture_default_str();
    app.add_option("--script", arguments.script, "Do what the lines of this file say, - for standard input")
        ->type_name("FILE");
    CLI::Option *const headless = app.add_flag("--headless", arguments.headless, "Without a window");
    app.add_option("--shot", arguments.shot, "Draw the screen into this PNG file and end")
        ->type_name("FILE")
        ->needs(headless);
    app.add_option("--font", arguments.fonts, "Take faces from this file alone; may be given several times")
        ->type_name("FILE")
        ->check(CLI::ExistingFile)
        ->take_all()
        ->expected(1);
}
} // namespace

int main(int count, char **words)
{
    CLI::App app("The screens of a handheld device kept in a folder.", "zembrik");
    HostArguments arguments;
    addOptions(app, arguments);
    app.set_version_flag("--version", "zembrik 0.1.0");
    app.footer(footer);
    try
    {
        app.parse(count, words);
        if (arguments.headless && arguments.shot.empty() && arguments.script.empty())
        {
            complain("--headless needs --shot or --script: nobody could see or do anything else");
            return exitUsage;
        }
        return zb::screens::runHost(arguments);
    }
    catch (const CLI::ParseError &error)
    {
        return app.exit(error) == 0 ? exitOk : exitUsage;
    }
    catch (const std::exception &error)
    {
        complain(error.what());
        return exitDevice;
    }
}
