// The frame of the compilers that read one file of lines and write one source.
#pragma once

#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>

/// compile(input, line, output) keeps `line` at the number of the line it reads, for the message of what it throws.
/// The program's exit code.
template <typename Compile>
int compileFile(const char *usage, int count, char **arguments, Compile compile)
{
    if (count != 3)
    {
        std::fprintf(stderr, "usage: %s\n", usage);
        return 2;
    }
    int line = 0;
    try
    {
        std::ifstream in(arguments[2]);
        if (!in)
        {
            throw std::runtime_error("can't be read");
        }
        compile(in, line, arguments[1]);
        return 0;
    }
    catch (const std::exception &error)
    {
        std::fprintf(stderr, "%s:%d: error: %s\n", arguments[2], line, error.what());
        return 1;
    }
}
