// The list of contacts: the loader's rows in a pane, by name, company or category, cut down by what is typed.
//
// A flat list comes in pages: rows that nobody has scrolled to are not read. The loader owns the rows; while a run is
// going nobody reads them. Changes of the device, by this program or another, are taken into the loader's cache one
// contact at a time. Threads: the main thread.
#pragma once

#include "contacts/CContactsThread.h"
#include "zembrik/change_watch.h"
#include "zembrik/list_pane.h"

#include <functional>
#include <set>
#include <vector>

namespace zb::screens
{
class ContactList final : public ListPane
{
  public:
    /// `changed` is called when another list has come, `opened` with the id of a contact that the user wants to see.
    bool open(HWND parent, const RECT &area, std::function<void()> changed, std::function<void(CEOID)> opened);
    ~ContactList() override;

    bool isBusy() const
    {
        return m_running || m_pending || !m_changes.empty() || m_watch.isPending();
    }
    /// By the settings as they are now.
    void reload();
    /// Shows whose names begin with the text or, deep, who hold it anywhere; all for an empty one.
    void search(const std::u16string &text, bool deep);
    bool isTree() const;

    CEOID currentContact() const;
    /// Puts the cursor on a contact, now or when the run that is going has it.
    void select(CEOID id);
    void openCurrent();
    /// Opens or closes the header under the cursor; false where there is none.
    bool expandCurrent(bool open);
    using ListPane::pressKey;

    void OnTimer(UINT_PTR nId, bool &handled) override;

  protected:
    std::optional<ListRow> row(int index) override;
    std::u16string emptyMarkup() override;
    void tapped(int index, int x) override;
    bool heard(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    DATACONTACTS *contact(int index) const;
    void start();
    void listReady(int count);
    void runDone();
    void wantPage(int page);
    void hearChanges(const std::vector<RecordChange> &changes);
    void takeChanges();
    void expand(DATACONTACTS &header, int index, bool open);

    mutable CContactsThread m_loader;
    ChangeWatch m_watch;
    std::u16string m_search;
    bool m_deep = false;
    bool m_running = false;
    bool m_readable = false; ///< the rows are ours to read
    bool m_pending = false;  ///< another run is wanted behind this one
    int m_page = -1;         ///< first row of a page that is wanted, or being read
    std::set<int> m_pages;   ///< pages of this list that were read, by their first rows
    CEOID m_wanted = 0;
    std::vector<RecordChange> m_changes; ///< that wait for the end of a run
    std::function<void()> m_changed;
    std::function<void(CEOID)> m_opened;
};
} // namespace zb::screens
