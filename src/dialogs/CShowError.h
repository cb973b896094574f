// A message of the system by its number.
#pragma once

#include "core/api.h"
#include "platform/user.h"

class ZBTOOLS_API CShowError
{
  public:
    /// Shows the text of the module by that number, caption "ZB Message", over the foreground window; a number without
    /// a text is told as such. An instance of null shows nothing. Any thread; returns when it is closed.
    CShowError(USHORT nId, HINSTANCE hInstance, UINT uFlags);

    /// The button that ended it; 0 when nothing was shown.
    int GetResult() const
    {
        return m_nResult;
    }

  private:
    int m_nResult = 0;
};
