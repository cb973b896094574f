// Changes to the device's categories: adding, renaming, deleting, colours, icons, and which the choosers offer.
//
// These are the rules behind the dialog that edits categories, for anything that has no screen. Items hold ids alone,
// so none of this touches an item. "A category" is one that is active; names are compared in the words of the locale's
// order, to the letter. Each change is written whole or not at all. The caches of categories stay as they are until
// ResetFullCategoryList; loaded colours are forgotten by every call that changes something.
//
// Threads: any.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <functional>
#include <string>
#include <vector>

namespace zb
{
enum class CategoryChange
{
    Done,
    BadName,  ///< empty, too long to be read back, with "," or ";", which stand between names, or control characters
    Exists,   ///< another category has the name
    NotFound, ///< no category has it
    Full,     ///< all ids from 0 to 8191 are taken
    Failed    ///< the store could not be read or written (last error told)
};

/// What becomes of a category that items use.
enum class UsedCategory
{
    Delete, ///< it goes; items keep a bit without a name, and the next new category may take it over
    Retire, ///< it is no longer active; its record stays, so that nobody else gets its id
    Keep
};

/// A new category gets the lowest id that no record has, that of a retired one included; *id, where given, is set to
/// it on success. It is in use by nothing and offered in the choosers.
ZBTOOLS_API CategoryChange addCategory(const WCHAR *name, SHORT *id = nullptr);
/// Takes the colour along, and a copy of the icon.
ZBTOOLS_API CategoryChange renameCategory(const WCHAR *name, const WCHAR *newName);
/// `inUse` is asked when the counters of use of its record come to more than 0, or the caller knows of uses; an unused
/// category just goes. Its colour is removed in each of these cases (kept: also by the answer Keep).
ZBTOOLS_API CategoryChange deleteCategory(const WCHAR *name, const std::function<UsedCategory()> &inUse,
                                          DWORD knownUses = 0);

/// Appointments, tasks and contacts of each category, by id from 0 to 8191. Counted by reading every item, because the
/// counters in the records are the device's and need not be up to date. A database that does not open counts nothing.
ZBTOOLS_API std::vector<DWORD> countCategoryUses();

/// 0 takes the colour away; low byte red. False when it could not be saved, and for a name that the settings can't hold
/// (one with "=" or a line end).
ZBTOOLS_API bool setCategoryColor(const WCHAR *name, COLORREF color);
/// 0 without one.
ZBTOOLS_API COLORREF categoryColor(const WCHAR *name);

/// Puts a copy of `file`, a picture in the folder of icons, in place of the icon of a category; a null or empty file
/// leaves the category without icon. False without such a folder or file.
ZBTOOLS_API bool setCategoryIcon(const WCHAR *name, const WCHAR *file);

/// Saves which categories the choosers offer: all but `hidden`. When nothing is hidden, or the setting
/// IntellisyncCompat forbids it (a desktop synchroniser can't cope with the property), the property is taken out of all
/// records instead. False when the store could not be written; nothing has then changed.
ZBTOOLS_API bool setHiddenCategories(const std::vector<std::u16string> &hidden);
} // namespace zb
