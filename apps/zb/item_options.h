// The options of zb add and zb edit: one set for each kind of item, so that what can be added can be changed.
#pragma once

#include "zb/items.h"

#include <CLI/CLI.hpp>

namespace zb::cli
{
/// The words "event", "task" and "contact" behind a command; `arguments`, which has to outlive the command line, gets
/// what is given.
void addNewItemWords(CLI::App &add, ItemArguments &arguments);
void addChangedItemWords(CLI::App &edit, ItemArguments &arguments);
} // namespace zb::cli
