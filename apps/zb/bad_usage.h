// What a command can't do because of how it was asked: ends the program with exitUsage and this message.
#pragma once

#include <stdexcept>

namespace zb::cli
{
/// what() is a sentence for the user, without "zb:" in front.
class BadUsage : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};
} // namespace zb::cli
