// What the rows of a task list say, and where in them a tap does what. Threads: the main thread.
#pragma once

#include "tasks/DATATASKS.h"
#include "zembrik/item_card.h"

#include <optional>

namespace zb::screens
{
/// Parts of a row from left to right, as a tap meets them.
enum class TaskPart
{
    Arrow, ///< opens and closes what is below
    Check,
    Subject
};

/// In a tree every row keeps room for the arrow, so that the boxes of one depth stand below each other.
ListRow taskRow(const DATATASKS &task, bool tree, int today);
/// x in pixels of the pane.
TaskPart taskPartAt(const DATATASKS &task, bool tree, int x);

/// What a task holds; nothing when it is gone.
std::optional<CardWords> taskCard(CEOID id);
} // namespace zb::screens
