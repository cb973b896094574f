// What all standard controls have in common.
//
// A control is an object behind its window, in the word 0 of the window's extra bytes, from WM_CREATE to WM_NCDESTROY
// (a class that stands before a control's own passes on nothing that comes earlier); hosts are free to use the user
// word and to put a procedure before the control's own.
#pragma once

#include "platform/controls.h"
#include "platform/dialog.h"
#include "platform/image_list.h"
#include "platform/linux/message_values.h"

#include <memory>
#include <string>
#include <string_view>

namespace zb::internal
{
class Control
{
  public:
    explicit Control(HWND window) : m_window(window)
    {
    }
    virtual ~Control() = default;
    Control(const Control &) = delete;
    Control &operator=(const Control &) = delete;

    /// All messages; what is not the control's own goes on to takeCommon().
    virtual LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) = 0;

  protected:
    HWND window() const
    {
        return m_window;
    }
    HWND parent() const
    {
        return GetParent(m_window);
    }
    DWORD style() const
    {
        return static_cast<DWORD>(GetWindowLongW(m_window, GWL_STYLE));
    }
    bool isEnabled() const
    {
        return (style() & WS_DISABLED) == 0;
    }
    bool hasFocus() const
    {
        return GetFocus() == m_window;
    }
    RECT client() const
    {
        RECT rectangle{};
        GetClientRect(m_window, &rectangle);
        return rectangle;
    }
    std::u16string text() const;
    HFONT font() const;
    /// The window is gone, in answer to something that was told in the midst of a message.
    bool isGone() const
    {
        return m_ended;
    }
    void refresh() const
    {
        InvalidateRect(m_window, nullptr, TRUE);
    }
    /// WM_COMMAND to the parent.
    void tell(WORD code) const;
    /// Selects font and colours, asks the parent for its own, and fills the background.
    void prepare(HDC context, UINT colorMessage, int backColor) const;
    /// Paints through a bitmap, so that nothing flickers; draw gets a context that counts as the window's.
    template <typename Draw>
    void paint(Draw draw) const;
    /// Font, enabling, text, size and focus: kept, and the control drawn anew. Everything else is DefWindowProcW's.
    LRESULT takeCommon(UINT message, WPARAM wParam, LPARAM lParam);
    /// The line around a field, inside of its box.
    void drawFieldFrame(HDC context, const RECT &field) const;

    /// What a scroll bar stands for: where it is, by how much it goes on, and how far.
    struct Scrolled
    {
        LONGLONG now;
        LONGLONG line;
        LONGLONG page;
        LONGLONG most;
    };
    /// Where WM_VSCROLL or WM_HSCROLL leads; not held within any limits.
    LONGLONG scrollTarget(int bar, WPARAM wParam, const Scrolled &scrolled) const;

  private:
    friend class ControlAtWork;

    HWND m_window;
    HFONT m_font = nullptr;
    int m_atWork = 0;      ///< messages that it is dealing with, one inside another
    bool m_ended = false;  ///< its window is gone
};

/// Keeps a control for as long as it deals with a message: what it tells its parent meanwhile may end its window.
class ControlAtWork
{
  public:
    explicit ControlAtWork(Control &control) : m_control(control)
    {
        ++m_control.m_atWork;
    }
    ~ControlAtWork()
    {
        if (--m_control.m_atWork == 0 && m_control.m_ended)
        {
            delete &m_control;
        }
    }
    ControlAtWork(const ControlAtWork &) = delete;
    ControlAtWork &operator=(const ControlAtWork &) = delete;
    /// The control goes with the outermost message.
    void end()
    {
        m_control.m_ended = true;
    }

  private:
    Control &m_control;
};

/// A bitmap the size of the window's client area that is brought to the screen when it goes.
class BufferedPaint
{
  public:
    explicit BufferedPaint(HWND window);
    ~BufferedPaint();
    BufferedPaint(const BufferedPaint &) = delete;
    BufferedPaint &operator=(const BufferedPaint &) = delete;
    HDC context() const
    {
        return m_memory;
    }

  private:
    HWND m_window;
    PAINTSTRUCT m_paint{};
    HDC m_memory;
    HBITMAP m_bitmap;
    HGDIOBJ m_former;
};

template <typename Draw>
void Control::paint(Draw draw) const
{
    const BufferedPaint paint(m_window);
    draw(paint.context());
}

template <typename Kind>
LRESULT controlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_CREATE && GetWindowLongW(window, 0) == 0)
    {
        SetWindowLongW(window, 0, reinterpret_cast<LONG_PTR>(static_cast<Control *>(new Kind(window))));
    }
    auto *control = reinterpret_cast<Control *>(GetWindowLongW(window, 0));
    if (control == nullptr)
    {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    ControlAtWork work(*control);
    if (message == WM_NCDESTROY)
    {
        SetWindowLongW(window, 0, 0);
        work.end();
        return 0;
    }
    return control->take(message, wParam, lParam);
}

template <typename Kind>
void registerControl(const WCHAR *name)
{
    WNDCLASSW type{};
    type.style = CS_DBLCLKS;
    type.lpfnWndProc = controlProcedure<Kind>;
    type.cbWndExtra = static_cast<int>(sizeof(LONG_PTR));
    type.lpszClassName = name;
    RegisterClassW(&type);
}

/// Measures texts in one font, for as many as there are.
class TextMeasure
{
  public:
    explicit TextMeasure(HFONT font);
    ~TextMeasure();
    TextMeasure(const TextMeasure &) = delete;
    TextMeasure &operator=(const TextMeasure &) = delete;
    SIZE sizeOf(std::u16string_view text) const;
    int heightOfLine() const;

  private:
    HDC m_context;
};

/// As much as fits in so many characters with the 0 at its end; how many were put before that.
std::size_t putText(std::u16string_view text, WCHAR *buffer, std::size_t size);
/// The whole text of any window.
std::u16string textOfWindow(HWND window);
/// Of each picture; nothing without a list.
SIZE imageSizeOf(HIMAGELIST images);
/// What is written with until somebody gives another font, at the screen's density; the system's own.
HFONT systemFont();
/// Pixels of the screen for so many at 96 dots an inch; at least 1.
int scaledPixels(int pixels);
/// A row of a list that a finger can meet: the font's height with room above and below.
int rowHeightOf(HFONT font);

void registerStatic();
void registerButton();
void registerEdit();
void registerListBox();
void registerListView();
void registerDatePicker();
void registerTreeView();
void registerComboBox();
void registerScrollBar();
void registerTabControl();
} // namespace zb::internal
