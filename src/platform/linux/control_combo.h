// The combo box: its field, and the list that drops down from it as a window of the screen.
//
// The open list holds the capture, so every tap comes to it, wherever it goes; it never takes the focus, which stays in
// the field with the keys.
#pragma once

#include "platform/linux/control_listbox.h"

namespace zb::internal
{
class ComboBox;

/// The rows of a combo box. Its parent (below an edit that is always shown) or owner (dropping down) is the combo box.
class ComboList final : public ListBox
{
  public:
    using ListBox::ListBox;

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;
    /// From now on the list follows the pen; `pressed` tells that this very pen has opened it and is still down.
    void open(bool pressed);
    void close();
    void takeComboKey(int key)
    {
        takeKey(key);
    }
    void takeComboCharacter(WCHAR character)
    {
        typed(character);
    }
    bool isTyping() const
    {
        return isTypingAhead();
    }

  protected:
    void takePen(UINT message, LPARAM place) override;
    void followPen() override;
    void tellChange() override;

  private:
    ComboBox *combo() const;
    bool isDropped() const;
    void penDown(POINT point);
    void penUp(POINT point);
    void followBar(POINT point);
    POINT m_at{};
    bool m_open = false;
    bool m_armed = false; ///< lifting the pen chooses: it went down here, or has come here
    bool m_pressed = false;
    bool m_onBar = false;
};

class ComboBox final : public Control
{
  public:
    using Control::Control;

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;
    /// What its edit hears first; false for what is the edit's own.
    bool takeEditMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result);

    // What its list tells.
    void rowChosen();
    void rowMovedTo();
    void doubleTapped() const;
    void tappedBeside(POINT onScreen);
    void left();
    void takeFocusFromPen();

  private:
    enum class End
    {
        Chosen,
        Cancelled
    };

    // control_combo.cpp: parts, places, looks
    LRESULT takeWindow(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT forwardToEdit(UINT message, WPARAM wParam, LPARAM lParam) const;
    void create(const CREATESTRUCTW &creation);
    void makeEdit(const WCHAR *text);
    void makeList();
    void enable(BOOL enabled);
    void setFontOfParts(LPARAM redraw);
    void takeSize();
    void layOut();
    int defaultFieldHeight() const;
    int fieldHeight() const;
    int rowsHeight() const;
    RECT buttonBox() const;
    RECT listPlace() const;
    LRESULT dialogCode(const MSG *about) const;
    void draw(HDC context) const;
    void drawChosen(HDC context, RECT box) const;
    DWORD kind() const
    {
        return style() & CBS_TYPEMASK;
    }
    bool hasEdit() const
    {
        return m_edit != nullptr;
    }
    bool drops() const
    {
        return kind() != CBS_SIMPLE;
    }

    // control_combo_messages.cpp: CB_ messages and the text
    LRESULT takeCombo(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takePlaces(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT setItemHeight(int which, int height);
    LRESULT getText(std::size_t size, WCHAR *buffer) const;
    LRESULT setText(const WCHAR *text);
    LRESULT toList(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    int current() const;
    std::u16string rowText(int row) const;
    void showCurrent();
    void putIntoEdit(const std::u16string &text);

    // control_combo_input.cpp: keys, pen, focus, opening and closing
    LRESULT takeInput(UINT message, WPARAM wParam, LPARAM lParam);
    bool takeKey(int key);
    void openOrClose();
    void move(int key);
    bool moveWithoutEdit(int key);
    void takePen(POINT point);
    void takeEditChange(WORD code);
    void followText();
    void takeFocus();
    void enter();
    void leave(HWND to);
    bool isPart(HWND window) const;
    bool tellAlive(WORD code) const;
    void open(bool pressed);
    void close(End end);
    ComboList *list() const;

    HWND m_edit = nullptr;
    HWND m_list = nullptr;
    int m_ownFieldHeight = 0; ///< that a host has set; 0 for none
    int m_droppedHeight = 0;  ///< the height of field and list together that was asked for
    int m_droppedWidth = 0;
    int m_before = -1; ///< chosen when the list was opened, and the text then
    std::u16string m_textBefore;
    bool m_open = false;
    bool m_opening = false; ///< the host is filling the list
    bool m_moved = false;   ///< keys have gone to another row of the open list
    bool m_extended = false;
    bool m_inside = false;  ///< has the focus
    bool m_setting = false; ///< the text changes by a message or a row, not by the user's typing
    bool m_sizing = false;
};
} // namespace zb::internal
