// Scripts that drive the screens: what pen and keys do, one thing a line.
//
// docs/zembrik.md tells the lines. A script is read whole before anything of it runs.
#pragma once

#include <filesystem>
#include <istream>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace zb::screens
{
struct PenStep
{
    enum class Kind
    {
        Down,
        Move,
        Up
    };
    Kind kind;
    int x;
    int y;
};
/// A key of the VK_ numbers that goes down or up. What it types goes with it: a character that came later would meet
/// whatever the key has brought up.
struct KeyStep
{
    int key;
    bool down;
    char16_t character = 0;
};
struct TypeStep
{
    std::u16string text;
};
struct WheelStep
{
    int steps;
};
struct WaitStep
{
    unsigned milliseconds;
};
struct ShotStep
{
    std::filesystem::path file;
};
/// The screen gets another size; 0 for both turns it.
struct SizeStep
{
    int width;
    int height;
};
struct QuitStep
{
};
struct ScriptStep
{
    int line; ///< of the script, from 1
    std::variant<PenStep, KeyStep, TypeStep, WheelStep, WaitStep, ShotStep, SizeStep, QuitStep> action;
};
using Script = std::vector<ScriptStep>;

/// what() says everything that is wrong, a line for each: "NAME:3: ...".
class ScriptError : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// `name` stands in front of errors. Throws ScriptError.
Script readScript(std::istream &stream, const std::string &name);
} // namespace zb::screens
