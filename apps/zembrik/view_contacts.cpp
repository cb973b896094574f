// The view "contacts": what is typed or tapped cuts the list down; the card of one contact lies over it.
#include "common/texts.h"
#include "core/CRegistry.h"
#include "framework/HIDPI.h"
#include "platform/controls.h"
#include "zembrik/contact_list.h"
#include "zembrik/contact_rows.h"
#include "zembrik/cue_field.h"
#include "zembrik/item_card.h"
#include "zembrik/letter_bar.h"
#include "zembrik/list_texts.h"
#include "zembrik/menu_states.h"
#include "zembrik/numbers.h"
#include "zembrik/remembered.h"
#include "zembrik/view.h"

#include <algorithm>
#include <array>
#include <vector>

namespace zb::screens
{
namespace
{
using host::text;

constexpr const WCHAR *contactSetting = u"ContactsCurrent";
constexpr int fieldHeight = 24; // at 96 dots an inch
constexpr UINT fieldId = 1;

constexpr UINT commandOpen = firstViewCommand;
constexpr UINT commandDeep = firstViewCommand + 1;
constexpr UINT commandDisplay = firstViewCommand + 10; // and the place in the table

/// In the order of the menu.
constexpr std::array<ContactsDisplay, 5> displays = {contactsFileAs, contactsFirstName, contactsLastName,
                                                     contactsCompanies, contactsCategories};

ContactListSettings settings()
{
    return ContactListSettings::read(CContactsThread::SETTINGS_KEY);
}

/// Field, letters and list below each other; tells what is typed.
class ContactsPane final : public CeWnd
{
  public:
    ~ContactsPane() override
    {
        if (m_hWnd != nullptr)
        {
            DestroyWindow(m_hWnd);
        }
    }

    bool open(HWND parent, const RECT &area, std::function<void(const std::u16string &)> typed)
    {
        m_typed = std::move(typed);
        if (!Create(parent, area, WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN))
        {
            return false;
        }
        return field.createIn(m_hWnd, fieldId);
    }

    CueField field;

    LRESULT OnCommand(WPARAM wParam, LPARAM lParam, bool &handled) override
    {
        if (LOWORD(wParam) == fieldId && HIWORD(wParam) == EN_CHANGE)
        {
            handled = true;
            m_typed(field.typedText());
            return 0;
        }
        return CeWnd::OnCommand(wParam, lParam, handled);
    }

  private:
    std::function<void(const std::u16string &)> m_typed;
};

class ContactsView final : public View
{
  public:
    ~ContactsView() override
    {
        DestroyWindow(m_pane);
    }

    bool create(HWND frame, const RECT &area) override
    {
        const RECT none{};
        if (!m_pane.open(frame, area, [this](const std::u16string &text) { search(text); }) ||
            !m_letters.createIn(m_pane, none, [this](const std::u16string &letter) { m_pane.field.type(letter); }))
        {
            return false;
        }
        m_pane.field.setCue(text(textTypeName));
        m_list.select(rememberedNumber(contactSetting).value_or(0));
        if (!m_list.open(
                m_pane, none, [this] { m_card.refresh(); }, [this](CEOID id) { showCard(id); }) ||
            !m_card.createIn(m_pane, none, [this] { closeCard(); }))
        {
            return false;
        }
        layOut(area);
        return true;
    }

    HWND window() const override
    {
        return m_pane.GetHwnd();
    }

    void place(const RECT &area) override
    {
        View::place(area);
        layOut(area);
    }

    void takeFocus() override
    {
        if (m_card.isShown())
        {
            m_card.takeFocus();
        }
        else
        {
            SetFocus(m_pane.field);
        }
    }

    WORD commands() const override
    {
        return contactsMenu;
    }

    void showStates(HMENU menu) const override
    {
        setEnabled(menu, commandOpen, m_list.currentContact() != 0 && !m_card.isShown());
        const auto display =
            std::ranges::find(displays, static_cast<ContactsDisplay>(settings().CV_DisplayFormat)) - displays.begin();
        setChosen(menu, commandDisplay, displays.size(), static_cast<std::size_t>(display));
        setChecked(menu, commandDeep, m_deep);
    }

    bool command(UINT id) override
    {
        if (id >= commandDisplay && id < commandDisplay + displays.size())
        {
            CRegistry store;
            store.OpenKey(HKEY_CURRENT_USER, CContactsThread::SETTINGS_KEY);
            store.SetValue(u"CV_DisplayFormat", static_cast<DWORD>(displays[id - commandDisplay]));
            m_list.reload();
            return true;
        }
        switch (id)
        {
        case commandOpen:
            m_list.openCurrent();
            return true;
        case commandDeep:
            m_deep = !m_deep;
            m_pane.field.setCue(text(m_deep ? textTypeAnything : textTypeName));
            search(m_pane.field.typedText());
            return true;
        default:
            return false;
        }
    }

    /// What is typed goes to the field; the keys that move go to the list.
    bool key(const MSG &message) override
    {
        if (m_card.isShown())
        {
            return m_card.key(message);
        }
        const bool typed = !m_pane.field.typedText().empty();
        const auto key = static_cast<UINT>(message.wParam);
        switch (key)
        {
        case VK_UP:
        case VK_DOWN:
        case VK_PRIOR:
        case VK_NEXT:
            m_list.pressKey(key);
            return true;
        case VK_HOME:
        case VK_END:
            if (!typed)
            {
                m_list.pressKey(key);
            }
            return !typed;
        case VK_LEFT:
        case VK_RIGHT:
            return !typed && m_list.expandCurrent(key == VK_RIGHT);
        case VK_RETURN:
            m_list.openCurrent();
            return true;
        case VK_ESCAPE:
            if (typed)
            {
                m_pane.field.type(u"");
            }
            return typed;
        default:
            return false;
        }
    }

    bool isBusy() const override
    {
        return m_list.isBusy();
    }

    void remember() override
    {
        rememberNumber(contactSetting, m_list.currentContact());
    }

    UINT help() const override
    {
        return textContactsHelp;
    }

  private:
    void layOut(const RECT &area)
    {
        const int width = area.right - area.left;
        const int height = area.bottom - area.top;
        const int field = HIDPI_SCALEY(fieldHeight);
        const int top = field + LetterBar::height();
        MoveWindow(m_pane.field, 0, 0, width, field, TRUE);
        MoveWindow(m_letters, 0, field, width, LetterBar::height(), TRUE);
        MoveWindow(m_list, 0, top, width, std::max(height - top, 0), TRUE);
        MoveWindow(m_card, 0, 0, width, height, TRUE);
    }

    void search(const std::u16string &words)
    {
        m_letters.mark(words);
        m_list.search(words, m_deep);
    }

    void showCard(CEOID id)
    {
        m_card.show([id] { return contactCard(id); });
    }

    void closeCard()
    {
        m_card.hide();
        takeFocus();
    }

    bool m_deep = false;
    ContactsPane m_pane;
    LetterBar m_letters;
    ContactList m_list;
    ItemCard m_card;
};

const ViewRegistration registration({"contacts", textContactsTitle, commandContacts,
                                     [] { return std::unique_ptr<View>(new ContactsView); }});
} // namespace
} // namespace zb::screens
