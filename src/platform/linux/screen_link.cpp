// The desktop's window of the screen, seen from the platform: what goes to it, and what comes from it.
//
// What comes is kept in a list and taken by the thread that opened the window, through a message of a window of its
// own: so it arrives in menus and dialogs too, and a pen that moves faster than it is followed makes no queue.
#include "platform/linux/screen_link.h"

#include "platform/clipboard.h"
#include "platform/dialog.h"
#include "platform/linux/beside.h"
#include "platform/linux/device_context.h"
#include "platform/linux/drag_image.h"
#include "platform/linux/input_state.h"
#include "platform/linux/screen_copy.h"
#include "platform/screen.h"
#include "platform/text.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <dlfcn.h>
#include <variant>

namespace zb::internal
{
namespace
{
constexpr const WCHAR *receiverClass = u"zb.screen";
constexpr UINT arrived = WM_APP;
/// A desktop whose clipboard's owner does not answer must not hold up a paste for long.
constexpr auto clipboardPatience = std::chrono::milliseconds(500);

struct PenEvent
{
    PenAction action;
    int x;
    int y;
};
struct WheelEvent
{
    int steps;
    int x;
    int y;
};
struct KeyEvent
{
    int number;
    bool down;
    char16_t character;
};
struct TextEvent
{
    std::string utf8;
};
struct SizeEvent
{
    int width;
    int height;
};
struct CloseEvent
{
};
/// From the platform itself: another window has the focus, which is to be asked on a thread that may wait for it.
struct FocusEvent
{
};
using ScreenEvent = std::variant<PenEvent, WheelEvent, KeyEvent, TextEvent, SizeEvent, CloseEvent, FocusEvent>;

void apply(const PenEvent &pen)
{
    switch (pen.action)
    {
    case PenAction::Down:
        return penDown(pen.x, pen.y);
    case PenAction::Move:
        return penMove(pen.x, pen.y);
    case PenAction::Up:
        return penUp(pen.x, pen.y);
    }
}

void apply(const WheelEvent &wheel)
{
    turnWheelAt(wheel.steps, wheel.x, wheel.y);
}

void apply(const KeyEvent &key)
{
    if (key.number != 0)
    {
        key.down ? keyDown(key.number) : keyUp(key.number);
    }
    if (key.character != 0)
    {
        typeCharacter(key.character);
    }
}

void apply(const TextEvent &text)
{
    for (const WCHAR character : toUtf16(text.utf8))
    {
        typeCharacter(character);
    }
}

void apply(const SizeEvent &)
{
}

void apply(const FocusEvent &)
{
}

void apply(const CloseEvent &)
{
    if (const HWND active = GetForegroundWindow())
    {
        PostMessageW(active, WM_CLOSE, 0, 0);
    }
    else
    {
        PostQuitMessage(0);
    }
}

class ScreenLink final : public ScreenWindow, public ScreenPlatform
{
  public:
    ScreenLink(OpenScreenBackend open, const ScreenWindowOptions &options);
    ~ScreenLink() override;

    void show() override;
    void setTitle(std::u16string_view title) override;
    void setIcon(HBITMAP picture) override;

    void pen(PenAction action, int x, int y) override
    {
        put(PenEvent{action, x, y});
    }
    void wheel(int steps, int x, int y) override
    {
        put(WheelEvent{steps, x, y});
    }
    void key(int number, bool down, char16_t character) override
    {
        put(KeyEvent{number, down, character});
    }
    void text(std::string utf8) override
    {
        put(TextEvent{std::move(utf8)});
    }
    void resized(int width, int height) override
    {
        put(SizeEvent{width, height});
    }
    void closed() override
    {
        put(CloseEvent{});
    }
    void clipboard(std::optional<std::string> utf8) override;
    ScreenWishes takeWishes() override;
    void lend(bool all, const std::function<void(const ScreenPixels &)> &use) override
    {
        m_copy.lend(all, use);
    }

    void drawn(const Surface &surface, const Region &region);
    void overlaid();
    void sizeChanged(int width, int height);
    void focusMoves()
    {
        put(FocusEvent{});
    }

  private:
    static LRESULT receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void put(ScreenEvent event);
    void takeEvents();
    void follow(const SizeEvent &size);
    void focusChanged();
    void wish(const std::function<void(ScreenWishes &)> &change);
    void wake();
    std::optional<std::u16string> desktopText();

    ScreenCopy m_copy;
    std::mutex m_lock; ///< of all that follows, up to the backend; never held over a call of the other side
    std::deque<ScreenEvent> m_events;
    bool m_isPosted = false;
    ScreenWishes m_wishes;
    std::condition_variable m_answered;
    bool m_asking = false;
    std::optional<std::string> m_answer;

    std::atomic<bool> m_isFollowing{false}; ///< the screen takes the window's size
    std::atomic<bool> m_woken{false};
    HWND m_receiver = nullptr;
    std::unique_ptr<ScreenBackend> m_backend;
};

/// The one that there is. Those who draw hold the lock while they tell it, so that it does not go meanwhile.
std::mutex linkLock;
std::atomic<ScreenLink *> theLink{nullptr};

/// This thread is telling it already: what it draws for that is no news.
thread_local bool isTelling = false;

template <typename Call>
void withLink(Call call)
{
    if (theLink.load(std::memory_order_relaxed) == nullptr || isTelling)
    {
        return;
    }
    const std::lock_guard guard(linkLock);
    if (ScreenLink *link = theLink.load())
    {
        isTelling = true;
        call(*link);
        isTelling = false;
    }
}

ScreenIcon iconOf(const Surface &surface)
{
    ScreenIcon icon{surface.width(), surface.height(), {}};
    for (int y = 0; y < surface.height(); ++y)
    {
        for (int x = 0; x < surface.width(); ++x)
        {
            const std::uint32_t pixel = surface.row(y)[x];
            // What lets all through has the key's colour, which a desktop that knows no softness would show.
            icon.pixels.push_back(surface.isSoft() && pixel >> 24U == 0 ? 0 : pixel);
        }
    }
    return icon;
}

ScreenLink::ScreenLink(OpenScreenBackend open, const ScreenWindowOptions &options)
{
    WNDCLASSW type{};
    type.lpfnWndProc = receive;
    type.lpszClassName = receiverClass;
    RegisterClassW(&type);
    m_receiver =
        CreateWindowExW(WS_EX_NOACTIVATE, receiverClass, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    SetWindowLongW(m_receiver, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
    m_wishes.title = toUtf8(options.title);
    m_backend.reset(open(*this, {m_wishes.title, options.width, options.height, options.dotsPerInch}));
    const std::lock_guard guard(linkLock);
    theLink.store(this);
}

ScreenLink::~ScreenLink()
{
    setClipboardHooks({});
    {
        const std::lock_guard guard(linkLock);
        theLink.store(nullptr);
    }
    m_backend.reset();
    DestroyWindow(m_receiver);
}

void ScreenLink::show()
{
    if (const std::string fault = m_backend->awaitStart(); !fault.empty())
    {
        throw ScreenWindowError("The desktop has no window for the screen: " + fault + ".");
    }
    setClipboardHooks({[this] { return desktopText(); },
                       [this](std::u16string_view text)
                       { wish([&text](ScreenWishes &wishes) { wishes.clipboard = toUtf8(text); }); }});
    if (const auto surface = screenSurface())
    {
        m_copy.take(*surface, Region(surface->bounds()));
    }
    focusChanged();
    wish([](ScreenWishes &wishes) { wishes.shown = true; });
}

void ScreenLink::setTitle(std::u16string_view title)
{
    wish([&title](ScreenWishes &wishes) { wishes.title = toUtf8(title); });
}

void ScreenLink::setIcon(HBITMAP picture)
{
    if (const auto bitmap = findAs<BitmapObject>(picture, HandleKind::Bitmap))
    {
        wish([&bitmap](ScreenWishes &wishes) { wishes.icon = iconOf(*bitmap->surface()); });
    }
}

void ScreenLink::wish(const std::function<void(ScreenWishes &)> &change)
{
    {
        const std::lock_guard guard(m_lock);
        change(m_wishes);
    }
    wake();
}

/// One wake-up is enough however much there is to do.
void ScreenLink::wake()
{
    if (!m_woken.exchange(true))
    {
        m_backend->wake();
    }
}

ScreenWishes ScreenLink::takeWishes()
{
    m_woken.store(false);
    const std::lock_guard guard(m_lock);
    ScreenWishes wishes = m_wishes;
    m_wishes.width = 0;
    m_wishes.height = 0;
    m_wishes.clipboard.reset();
    m_wishes.icon.reset();
    m_wishes.asksForClipboard = false;
    return wishes;
}

void ScreenLink::drawn(const Surface &surface, const Region &region)
{
    if (isDragShown())
    {
        overlaid();
    }
    else if (m_copy.take(surface, region))
    {
        wake();
    }
}

/// The whole screen with what is dragged over it.
void ScreenLink::overlaid()
{
    const HBITMAP shown = captureScreen();
    if (const auto bitmap = findAs<BitmapObject>(shown, HandleKind::Bitmap);
        bitmap != nullptr && m_copy.take(*bitmap->surface(), Region(bitmap->surface()->bounds())))
    {
        wake();
    }
    DeleteObject(shown);
}

void ScreenLink::sizeChanged(int width, int height)
{
    const std::lock_guard guard(m_lock);
    if (!m_isFollowing.load())
    {
        m_wishes.width = width;
        m_wishes.height = height;
    }
}

void ScreenLink::focusChanged()
{
    const HWND focus = focusedWindow();
    const bool editing = focus != nullptr && (SendMessageW(focus, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0;
    RECT place{};
    GetWindowRect(focus, &place);
    wish(
        [&](ScreenWishes &wishes)
        {
            wishes.editing = editing;
            wishes.editLeft = place.left;
            wishes.editTop = place.top;
            wishes.editWidth = place.right - place.left;
            wishes.editHeight = place.bottom - place.top;
        });
}

// --- From the window

void ScreenLink::put(ScreenEvent event)
{
    {
        const std::lock_guard guard(m_lock);
        const auto *pen = std::get_if<PenEvent>(&event);
        const auto *before = m_events.empty() ? nullptr : std::get_if<PenEvent>(&m_events.back());
        if (pen != nullptr && before != nullptr && pen->action == PenAction::Move && before->action == PenAction::Move)
        {
            m_events.pop_back();
        }
        if (std::holds_alternative<SizeEvent>(event))
        {
            std::erase_if(m_events, [](const ScreenEvent &one) { return std::holds_alternative<SizeEvent>(one); });
        }
        m_events.push_back(std::move(event));
        if (std::exchange(m_isPosted, true))
        {
            return;
        }
    }
    PostMessageW(m_receiver, arrived, 0, 0);
}

void ScreenLink::takeEvents()
{
    std::deque<ScreenEvent> events;
    {
        const std::lock_guard guard(m_lock);
        events.swap(m_events);
        m_isPosted = false;
    }
    for (const ScreenEvent &event : events)
    {
        if (const auto *size = std::get_if<SizeEvent>(&event))
        {
            follow(*size);
        }
        else if (std::holds_alternative<FocusEvent>(event))
        {
            focusChanged();
        }
        else
        {
            std::visit([](const auto &one) { apply(one); }, event);
        }
    }
}

/// The window may have gone on to yet another size: it must not be pulled back to this one.
void ScreenLink::follow(const SizeEvent &size)
{
    m_isFollowing.store(true);
    setScreenSize(size.width, size.height);
    m_isFollowing.store(false);
}

LRESULT ScreenLink::receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *self = reinterpret_cast<ScreenLink *>(GetWindowLongW(window, GWL_USERDATA));
    if (message == arrived && self != nullptr)
    {
        self->takeEvents();
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// --- Clipboard

std::optional<std::u16string> ScreenLink::desktopText()
{
    {
        const std::lock_guard guard(m_lock);
        m_asking = true;
        m_answer.reset();
        m_wishes.asksForClipboard = true;
    }
    wake();
    std::unique_lock guard(m_lock);
    m_answered.wait_for(guard, clipboardPatience, [this] { return !m_asking; });
    return m_answer.has_value() ? std::optional(toUtf16(*m_answer)) : std::nullopt;
}

void ScreenLink::clipboard(std::optional<std::string> utf8)
{
    const std::lock_guard guard(m_lock);
    m_answer = std::move(utf8);
    m_asking = false;
    m_answered.notify_all();
}

OpenScreenBackend loadBackend()
{
    void *library = openBeside("libZBScreen.so");
    return library == nullptr ? nullptr : reinterpret_cast<OpenScreenBackend>(dlsym(library, "zbOpenScreen"));
}
} // namespace

void screenDrawn(const Surface &surface, const Region &region)
{
    withLink(
        [&](ScreenLink &link)
        {
            if (const auto screen = screenSurface(); screen.get() == &surface)
            {
                link.drawn(surface, region);
            }
        });
}

void screenOverlaid()
{
    withLink([](ScreenLink &link) { link.overlaid(); });
}

void screenResized(int width, int height)
{
    withLink([&](ScreenLink &link) { link.sizeChanged(width, height); });
}

void focusMoved()
{
    withLink([](ScreenLink &link) { link.focusMoves(); });
}
} // namespace zb::internal

zb::ScreenWindow::~ScreenWindow() = default;

zb::ScreenWindowError::~ScreenWindowError() = default;

std::unique_ptr<zb::ScreenWindow> zb::openScreenWindow(const ScreenWindowOptions &options)
{
    const auto open = internal::loadBackend();
    if (open == nullptr)
    {
        throw ScreenWindowError("The part that shows windows (libZBScreen.so) can't be loaded.");
    }
    return std::make_unique<internal::ScreenLink>(open, options);
}
