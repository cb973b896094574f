#include "platform/clipboard.h"

#include <memory>
#include <mutex>

namespace
{
struct Clipboard
{
    std::mutex lock; ///< never held over a hook
    std::u16string text;
    std::shared_ptr<const zb::ClipboardHooks> hooks = std::make_shared<const zb::ClipboardHooks>();
};

Clipboard &clipboard()
{
    static auto *instance = new Clipboard;
    return *instance;
}

std::shared_ptr<const zb::ClipboardHooks> hooksNow()
{
    Clipboard &board = clipboard();
    const std::lock_guard guard(board.lock);
    return board.hooks;
}
} // namespace

void zb::setClipboardHooks(ClipboardHooks hooks)
{
    auto fresh = std::make_shared<const ClipboardHooks>(std::move(hooks));
    Clipboard &board = clipboard();
    const std::lock_guard guard(board.lock);
    board.hooks.swap(fresh);
}

std::u16string zb::clipboardText()
{
    if (const auto hooks = hooksNow(); hooks->read)
    {
        if (auto text = hooks->read())
        {
            return *std::move(text);
        }
    }
    Clipboard &board = clipboard();
    const std::lock_guard guard(board.lock);
    return board.text;
}

void zb::setClipboardText(std::u16string_view text)
{
    const auto hooks = hooksNow();
    {
        Clipboard &board = clipboard();
        const std::lock_guard guard(board.lock);
        board.text = text;
    }
    if (hooks->write)
    {
        hooks->write(text);
    }
}
