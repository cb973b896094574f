// What the rows of an agenda say.
#pragma once

#include "common/agenda_words.h"

namespace zb::cli
{
using namespace zb::host;
} // namespace zb::cli
