// Hears what changes in databases of the device, by this program or another.
//
// Changes come in flocks (one import or one save changes several records): they are told together, a moment after the
// last of them. Threads: the main thread.
#pragma once

#include "framework/CeWnd.h"
#include "records/CeDb.h"

#include <deque>
#include <functional>
#include <initializer_list>
#include <vector>

namespace zb::screens
{
struct RecordChange
{
    UINT message; ///< DB_CEOID_CREATED, DB_CEOID_CHANGED or DB_CEOID_RECORD_DELETED
    CEOID id;     ///< 0 when any record of the database may have changed
};

class ChangeWatch final : public CeWnd
{
  public:
    using Changed = std::function<void(const std::vector<RecordChange> &)>;

    ~ChangeWatch() override;
    /// False when there is no window to be had, or one of the databases is missing.
    bool open(std::initializer_list<const WCHAR *> databases, Changed changed);
    /// Something has changed and is not told yet.
    bool isPending() const
    {
        return !m_changes.empty();
    }

    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;
    void OnTimer(UINT_PTR nId, bool &handled) override;

  private:
    std::deque<CeDb> m_databases; ///< open for as long as their changes are to be told
    std::vector<RecordChange> m_changes;
    Changed m_changed;
};
} // namespace zb::screens
