// The picture files that a category's icon can be chosen from: the names of those of a folder, sorted.
//
// Threads: an object belongs to one thread at a time.
#pragma once

#include "core/CeStrList.h"
#include "core/api.h"

#include <string>

class ZBTOOLS_API CCategoryDisplay
{
  public:
    /// Pictures of type ".bmp". A null folder has none.
    explicit CCategoryDisplay(const WCHAR *folder);
    /// Of several types, ".bmp.png"; null takes ".bmp".
    CCategoryDisplay(const WCHAR *folder, const WCHAR *types);

    /// Loads the list; false when it is empty.
    bool Init();
    /// Empties it.
    void UnInit();
    /// Fills the list anew and returns its count. Files of 256,000 bytes and more are left out without a message.
    int LoadCategoryIcons();
    /// Counts from the next load on.
    void SetGraphicTypes(const WCHAR *types);
    /// Names of files without folder, ascending in the locale's order; owned by this object.
    CeStrList<WCHAR *> &GetList()
    {
        return m_list;
    }

  private:
    void AddFiles(const std::u16string &pattern);

    std::u16string m_strFolder;
    std::u16string m_strTypes;
    CeStrList<WCHAR *> m_list{1, CEOWN_FREE, CESTR_LOCALE};
};
