// The hosts run as children, as a shell runs them.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zb::test
{
struct ProgramResult
{
    int exitCode = -1; ///< -1 when a signal ended it
    int signal = 0;
    std::string out;
    std::string err; ///< with a terminal, all that the screen got
    long peakKilobytes = 0;
    double seconds = 0;
};

struct ProgramOptions
{
    /// Over those that every run has: TZ Europe/Berlin, LC_ALL en_US.UTF-8, no colours asked for, no device.
    std::map<std::string, std::string> environment;
    std::string input;
    /// Width of a terminal that output and messages go to; none when not set.
    std::optional<int> terminalColumns;
    /// Killed so long after its start.
    std::optional<double> killAfterSeconds;
    /// Bytes that any file may grow to, as on a disk that is full.
    std::optional<unsigned long> largestFile;
    /// File that standard output goes to.
    std::string outputFile;
};

/// A program by its path.
ProgramResult runProgram(const std::string &program, const std::vector<std::string> &arguments,
                         const ProgramOptions &options = {});
ProgramResult runZb(const std::vector<std::string> &arguments, const ProgramOptions &options = {});

/// Writes a file and returns its path.
std::string writeFile(const std::filesystem::path &file, const std::string &bytes);
std::string readFile(const std::filesystem::path &file);
} // namespace zb::test
