// What the user does in an edit control: typing, moving, selecting, cutting and pasting, by keys and pen.
#include "platform/clipboard.h"
#include "platform/linux/control_edit.h"
#include "platform/linux/edit_boundaries.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
// Characters that keys with Ctrl make.
constexpr WCHAR selectAllCharacter = 1;
constexpr WCHAR copyCharacter = 3;
constexpr WCHAR backspace = 8;
constexpr WCHAR pasteCharacter = 22;
constexpr WCHAR cutCharacter = 24;
constexpr WCHAR redoCharacter = 25;
constexpr WCHAR undoCharacter = 26;
constexpr WCHAR eraseWordCharacter = 127;
constexpr int insertKey = 0x2D;

bool isLineEnd(WCHAR character)
{
    return character == u'\r' || character == u'\n';
}

bool isLeading(WCHAR character)
{
    return character >= 0xD800 && character < 0xDC00;
}

/// Each line end becomes one blank, so that no words run together.
std::u16string onOneLine(std::u16string_view text)
{
    std::u16string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool isPair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        line += isLineEnd(text[i]) ? u' ' : text[i];
        i += isPair ? 1 : 0;
    }
    return line;
}
} // namespace

bool Edit::tellAlive(WORD code) const
{
    const HWND self = window();
    tell(code);
    return IsWindow(self) != FALSE;
}

std::u16string Edit::filtered(std::u16string text) const
{
    if ((style() & (ES_UPPERCASE | ES_LOWERCASE)) != 0)
    {
        const bool upper = (style() & ES_UPPERCASE) != 0;
        std::ranges::transform(text, text.begin(),
                               [upper](WCHAR character) { return upper ? towupper(character) : towlower(character); });
    }
    return text;
}

std::u16string Edit::cutToLimit(std::u16string text, std::size_t replaced, bool &cut) const
{
    const std::size_t rest = m_text.length() - replaced;
    const std::size_t room = m_limit > rest ? m_limit - rest : 0;
    cut = text.size() > room;
    if (cut)
    {
        text.resize(characterStart(text, room));
    }
    return text;
}

bool Edit::insert(std::u16string text, EditStep step)
{
    bool cut = false;
    const std::size_t replaced = m_text.last() - m_text.first();
    const std::u16string fitting = cutToLimit(filtered(std::move(text)), replaced, cut);
    if (cut && !tellAlive(EN_MAXTEXT))
    {
        return false;
    }
    if (fitting.empty() && (cut || replaced == 0))
    {
        return true; // what is selected is not lost for nothing
    }
    const EditStep kind = replaced != 0 ? EditStep::Whole : step;
    return changed(m_text.replace(m_text.first(), m_text.last(), fitting, kind));
}

bool Edit::erase(std::size_t from, std::size_t to, EditStep step)
{
    return from == to || changed(m_text.replace(from, to, {}, step));
}

bool Edit::changed(const std::optional<TextChange> &change)
{
    m_modified = true;
    m_atLineEnd = false;
    m_goal.reset();
    m_layout.follow(*change);
    m_layout.show(caret());
    m_caretShown = hasFocus();
    if (!tellAlive(EN_UPDATE))
    {
        return false;
    }
    updateBars();
    refresh();
    return tellAlive(EN_CHANGE);
}

void Edit::takeCharacter(WCHAR character)
{
    if (character == std::exchange(m_answered, WCHAR{0}) && character != 0)
    {
        return;
    }
    switch (character)
    {
    case selectAllCharacter:
        takeControlKey('A');
        break;
    case copyCharacter:
        copy();
        break;
    case pasteCharacter:
        paste();
        break;
    case cutCharacter:
        cut();
        break;
    case undoCharacter:
        takeControlKey('Z');
        break;
    case redoCharacter:
        takeControlKey('Y');
        break;
    case backspace:
        eraseBack(false);
        break;
    case eraseWordCharacter:
        eraseBack(true);
        break;
    default:
        typed(character);
        break;
    }
}

void Edit::typed(WCHAR character)
{
    const bool isBreak = character == u'\r' || character == u'\n';
    const bool isText = character >= u' ' || (isMultiLine() && (isBreak || character == u'\t'));
    const bool isRefused = (style() & ES_NUMBER) != 0 && (character < u'0' || character > u'9');
    if (isReadOnly() || !isText || isRefused)
    {
        return;
    }
    if (isLeading(character))
    {
        m_leading = character; // half a character is never shown
        return;
    }
    const WCHAR leading = std::exchange(m_leading, WCHAR{0});
    const std::u16string pair{leading, character};
    insert(isBreak ? std::u16string(u"\r\n") : leading != 0 ? pair : std::u16string(1, character), EditStep::Typed);
}

bool Edit::takeKey(int key)
{
    const bool control = isKeyHeld(VK_CONTROL);
    const bool shift = isKeyHeld(VK_SHIFT);
    switch (key)
    {
    case VK_BACK:
        m_answered = control ? eraseWordCharacter : backspace;
        return eraseBack(control);
    case VK_DELETE:
        if (shift)
        {
            cut();
            return true;
        }
        return eraseForward(control);
    case insertKey:
        if (shift)
        {
            paste();
        }
        else if (control)
        {
            copy();
        }
        return true;
    case VK_RETURN:
        m_answered = u'\r';
        typed(u'\r');
        return true;
    default:
        return control && !isKeyHeld(VK_MENU) && takeControlKey(key) ? true : takeMove(key, control, shift);
    }
}

bool Edit::takeControlKey(int key)
{
    // A host that has characters for these keys sends them behind the key.
    m_answered = key >= 'A' && key <= 'Z' ? static_cast<WCHAR>(key - 'A' + 1) : WCHAR{0};
    switch (key)
    {
    case 'A':
        m_text.select(0, m_text.length());
        m_goal.reset();
        refresh();
        return true;
    case 'C':
        copy();
        return true;
    case 'X':
        cut();
        return true;
    case 'V':
        paste();
        return true;
    case 'Z':
    case 'Y':
        if (!isReadOnly())
        {
            const auto change = key == 'Z' ? m_text.undo() : m_text.redo();
            if (change.has_value())
            {
                changed(change);
            }
        }
        return true;
    default:
        m_answered = 0;
        return false;
    }
}

bool Edit::takeMove(int key, bool control, bool extend)
{
    const std::u16string &text = m_text.text();
    const std::size_t line = m_layout.lineOf(caret());
    const bool collapses = m_text.hasSelection() && !extend && !control;
    const bool vertical = isMultiLine();
    switch (key)
    {
    case VK_UP:
    case VK_DOWN:
        if (vertical)
        {
            moveLines(key == VK_UP ? -1 : 1, extend);
            return true;
        }
        return takeMove(key == VK_UP ? VK_LEFT : VK_RIGHT, false, extend);
    case VK_LEFT:
        move({collapses ? m_text.first()
              : control ? previousWord(text, m_text.caret())
                        : previousCharacter(text, m_text.caret())},
             extend);
        return true;
    case VK_RIGHT:
        move({collapses ? m_text.last()
              : control ? nextWord(text, m_text.caret())
                        : nextCharacter(text, m_text.caret())},
             extend);
        return true;
    case VK_HOME:
        move({control ? 0 : m_layout.lines().startOf(line)}, extend);
        return true;
    case VK_END:
        move({control ? m_text.length() : m_layout.lines().endOf(text, line), !control}, extend);
        return true;
    case VK_PRIOR:
    case VK_NEXT:
        if (vertical)
        {
            const auto page = static_cast<LONGLONG>(std::max<std::size_t>(m_layout.visibleLines(), 2)) - 1;
            moveLines(key == VK_PRIOR ? -page : page, extend);
        }
        return true;
    default:
        return false;
    }
}

bool Edit::eraseBack(bool word)
{
    if (isReadOnly())
    {
        return true;
    }
    if (m_text.hasSelection())
    {
        return erase(m_text.first(), m_text.last(), EditStep::Whole);
    }
    const std::size_t at = m_text.caret();
    const std::size_t from = word ? previousWord(m_text.text(), at) : previousCharacter(m_text.text(), at);
    return erase(from, at, EditStep::ErasedBack);
}

bool Edit::eraseForward(bool word)
{
    if (isReadOnly())
    {
        return true;
    }
    if (m_text.hasSelection())
    {
        return erase(m_text.first(), m_text.last(), EditStep::Whole);
    }
    const std::size_t at = m_text.caret();
    return erase(at, word ? nextWord(m_text.text(), at) : nextCharacter(m_text.text(), at), EditStep::ErasedForward);
}

void Edit::move(const CaretPlace &to, bool extend)
{
    m_text.select(extend ? m_text.anchor() : to.place, to.place);
    m_atLineEnd = to.atLineEnd;
    m_goal.reset();
    if (m_layout.show(caret()))
    {
        updateBars();
    }
    m_caretShown = hasFocus();
    if (m_caretShown)
    {
        SetTimer(window(), blinkTimer, blinkTime, nullptr); // a caret that moves is seen
    }
    refresh();
}

void Edit::moveLines(LONGLONG lines, bool extend)
{
    const std::size_t line = m_layout.lineOf(caret());
    const int goal = m_goal.value_or(m_layout.pointOf(caret()).x + m_layout.left());
    const auto wanted = static_cast<LONGLONG>(line) + lines;
    const auto highest = static_cast<LONGLONG>(m_layout.lines().count()) - 1;
    const auto target = static_cast<std::size_t>(std::clamp<LONGLONG>(wanted, 0, highest));
    if (lines != 1 && lines != -1)
    {
        const LONGLONG top = std::max<LONGLONG>(static_cast<LONGLONG>(m_layout.topLine()) + lines, 0);
        m_layout.scrollTo(static_cast<std::size_t>(top), m_layout.left());
    }
    // Of the line as it is aligned: its own left end taken off the goal.
    const int lineLeft = m_layout.pointOf({m_layout.lines().startOf(target), false}).x + m_layout.left();
    move(m_layout.placeInLine(target, goal - lineLeft), extend);
    updateBars();
    m_goal = goal;
}

void Edit::copy() const
{
    if (m_text.hasSelection())
    {
        setClipboardText(m_text.selected());
    }
}

void Edit::cut()
{
    copy();
    if (!isReadOnly())
    {
        erase(m_text.first(), m_text.last(), EditStep::Whole);
    }
}

void Edit::paste()
{
    std::u16string text = isReadOnly() ? std::u16string() : clipboardText();
    text.resize(std::min(text.find(u'\0'), text.size()));
    if ((style() & ES_NUMBER) != 0)
    {
        std::erase_if(text, [](WCHAR character) { return character < u'0' || character > u'9'; });
    }
    if (!text.empty())
    {
        insert(isMultiLine() ? std::move(text) : onOneLine(text), EditStep::Whole);
    }
}

void Edit::takePen(UINT message, LPARAM place)
{
    m_pen = penPlace(place);
    switch (message)
    {
    case WM_LBUTTONDOWN:
    {
        const HWND self = window();
        SetFocus(self);
        if (IsWindow(self) != FALSE)
        {
            m_captured = GetCapture() != self;
            SetCapture(self);
            m_selecting = true;
            move(m_layout.placeAt(m_pen), isKeyHeld(VK_SHIFT));
        }
        break;
    }
    case WM_LBUTTONDBLCLK:
    {
        const TextRange word = wordAround(m_text.text(), m_layout.placeAt(m_pen).place);
        move({word.first}, false);
        move({word.last, true}, true);
        break;
    }
    case WM_MOUSEMOVE:
        if (m_selecting)
        {
            followPen();
        }
        break;
    default:
        releasePen();
        break;
    }
}

/// While the pen is held outside, the text scrolls towards it.
void Edit::followPen()
{
    const RECT &box = m_layout.box();
    const bool outside = isMultiLine() ? m_pen.y < box.top || m_pen.y >= box.bottom
                                       : m_pen.x < box.left || m_pen.x >= box.right;
    move(m_layout.placeAt(m_pen), true);
    if (outside)
    {
        SetTimer(window(), penTimer, penTime, nullptr);
    }
    else
    {
        KillTimer(window(), penTimer);
    }
}

void Edit::releasePen()
{
    KillTimer(window(), penTimer);
    if (std::exchange(m_selecting, false) && m_captured && GetCapture() == window())
    {
        ReleaseCapture();
    }
}
} // namespace zb::internal
