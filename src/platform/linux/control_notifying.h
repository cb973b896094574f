// What the controls that speak to their parents by WM_NOTIFY have in common.
//
// They ask in the midst of what they do, and a parent may answer by destroying the control. The object then stays until
// the outermost message has come back (ControlAtWork): it may go on, its window just does nothing any more.
#pragma once

#include "platform/linux/control.h"
#include "platform/notifications.h"

namespace zb::internal
{
class NotifyingControl : public Control
{
  public:
    using Control::Control;

  protected:
    /// WM_NOTIFY to the parent, with the record's header filled in; its answer, 0 from none.
    LRESULT notify(UINT code, NMHDR &header) const
    {
        if (isGone())
        {
            return 0;
        }
        header = {window(), static_cast<UINT_PTR>(GetDlgCtrlID(window())), code};
        return SendMessageW(parent(), WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
    }
    LRESULT notify(UINT code) const
    {
        NMHDR header{};
        return notify(code, header);
    }
};
} // namespace zb::internal
