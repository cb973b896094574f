// A command whose changes "zb undo" takes back.
#pragma once

#include "platform/undo.h"

#include <string>

namespace zb::cli
{
/// From here to its end everything that the command changes in the open device is one change: records, settings, and
/// which task lies under which.
class Recorded
{
  public:
    /// What the change is called, such as "delete task \"Pay\"".
    explicit Recorded(const std::string &words);
    void describe(const std::string &words);
    /// For changes of settings alone: written down before anything changes.
    void announce();

  private:
    explicit Recorded(const std::u16string &words);
    ChangeRecording m_recording;
};

/// Lists write one default into the settings when it is missing. It has to stand there before and behind every change:
/// else looking at the calendar would change a file of a change, which then could not be taken back.
void completeSettings();

/// The text in quotes, short enough for a line.
std::string quoted(const std::string &title);
} // namespace zb::cli
