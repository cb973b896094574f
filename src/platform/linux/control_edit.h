// The edit control: what its window does with messages, keys and pen, around text and layout of their own.
#pragma once

#include "platform/linux/control.h"
#include "platform/linux/edit_layout.h"

#include <optional>

namespace zb::internal
{
class Edit final : public Control
{
  public:
    explicit Edit(HWND window);

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    // control_edit.cpp: the text as a whole, its size, its look
    LRESULT takeText(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeWindow(UINT message, WPARAM wParam, LPARAM lParam);
    bool isMultiLine() const
    {
        return (style() & ES_MULTILINE) != 0;
    }
    bool isReadOnly() const
    {
        return (style() & ES_READONLY) != 0;
    }
    void create(const WCHAR *text);
    void setShape();
    LRESULT dialogCode(const MSG *about) const;
    LRESULT setText(const WCHAR *text);
    LRESULT copyText(WCHAR *buffer, std::size_t size) const;
    void draw(HDC context);
    RECT caretBox();
    void showCaret(bool shown);
    void takeFocus(bool gained);
    void updateBars();
    void scrollBy(LONGLONG lines, int pixels);
    void scrolled(bool vertical, WPARAM wParam);

    // control_edit_messages.cpp: EM_ messages
    LRESULT takeEdit(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeLines(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT getSelection(WPARAM wParam, LPARAM lParam) const;
    void setSelection(WPARAM wParam, LPARAM lParam);
    LRESULT lineLength(LONGLONG place) const;
    LRESULT copyLine(std::size_t line, WCHAR *buffer) const;
    LRESULT scroll(WORD code);
    LRESULT pointOf(std::size_t place);
    LRESULT placeAt(LPARAM point);
    void setMargins(WPARAM which, LPARAM pixels);

    // control_edit_input.cpp: changes by the user
    /// Whether the control is still there: who hears of a change may end it.
    bool insert(std::u16string text, EditStep step);
    bool erase(std::size_t from, std::size_t to, EditStep step);
    bool changed(const std::optional<TextChange> &change);
    bool tellAlive(WORD code) const;
    std::u16string filtered(std::u16string text) const;
    std::u16string cutToLimit(std::u16string text, std::size_t replaced, bool &cut) const;
    void takeCharacter(WCHAR character);
    void typed(WCHAR character);
    bool takeKey(int key);
    bool takeMove(int key, bool control, bool extend);
    bool takeControlKey(int key);
    bool eraseBack(bool word);
    bool eraseForward(bool word);
    void move(const CaretPlace &to, bool extend);
    void moveLines(LONGLONG lines, bool extend);
    void copy() const;
    void cut();
    void paste();
    void takePen(UINT message, LPARAM place);
    void followPen();
    void releasePen();
    CaretPlace caret() const
    {
        return {m_text.caret(), m_atLineEnd};
    }

    static constexpr UINT_PTR blinkTimer = 0xFFD1;
    static constexpr UINT_PTR penTimer = 0xFFD2;
    static constexpr UINT blinkTime = 530; // milliseconds
    static constexpr UINT penTime = 60;
    static constexpr std::size_t unlimited = 0x7FFFFFFE;
    static constexpr std::size_t firstLimit = 30000;

    EditText m_text;
    EditLayout m_layout;
    std::size_t m_limit = firstLimit;
    bool m_modified = false;
    bool m_atLineEnd = false;
    std::optional<int> m_goal; ///< where moves by lines aim at, from the text's left edge
    bool m_caretShown = false;
    bool m_vertical = false; ///< has scroll bars
    bool m_horizontal = false;
    int m_leftMargin = 0;
    int m_rightMargin = 0;
    bool m_selecting = false; ///< the pen is down
    bool m_captured = false;  ///< by the pen going down: a host that holds the pen here keeps it when it is lifted
    WCHAR m_leading = 0;      ///< the first half of a pair that was typed
    POINT m_pen{};
    WCHAR m_answered = 0; ///< the character of a key that was dealt with when it went down
};
} // namespace zb::internal
