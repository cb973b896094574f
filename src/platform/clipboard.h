// The text that was last cut or copied.
//
// It is the process's own until a host with a clipboard gives its hooks; from then on both are kept the same.
//
// Threads: any. The hooks are called on the thread that copies or pastes, without a lock held.
#pragma once

#include "platform/types.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zb
{
/// A host's own clipboard. Either may be empty.
struct ClipboardHooks
{
    /// Its text now; nothing when it holds none, in which case the process's own counts.
    std::function<std::optional<std::u16string>()> read;
    std::function<void(std::u16string_view)> write;
};
/// Takes the place of the hooks before; empty ones end them.
ZBPLATFORM_API void setClipboardHooks(ClipboardHooks hooks);
/// Empty when nothing was copied yet.
ZBPLATFORM_API std::u16string clipboardText();
ZBPLATFORM_API void setClipboardText(std::u16string_view text);
} // namespace zb
