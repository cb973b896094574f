// Categories as text: the joined names that items and dialogs show, a saved choice of names, icons as markup.
//
// Names are compared in the words of the locale's order (lstrcmpW). They go by what GetFullCategoryInfo knows, so a
// category that was made since it was read last is not found. Threads: any; a list belongs to one thread at a time.
#pragma once

#include "core/CePtrList.h"
#include "core/api.h"
#include "platform/types.h"
#include "records/CFullCategory.h"

/// The item objects' common base; see SaveCategoriesToPIMRecord.
struct IDispatch;

/// Between the names of a saved choice: a horizontal ellipsis, which nobody types into a name.
inline constexpr WCHAR CATEGORY_CHOICE_SEPARATOR = u'\x2026';
/// Characters that a saved choice never passes.
inline constexpr std::size_t CATEGORY_CHOICE_LENGTH = 2000;

/// The categories of a text "Home, Work", into a list that is emptied first and owns them from then on. Null and empty
/// texts leave the list as it was. Kept: the joint is always ", ", so one character behind each comma is dropped
/// without looking at it; "Home,Work" finds Home and asks for "ork". Names that no category has are lost.
ZBTOOLS_API void ReadCategory(CePtrList<CFullCategory *> &list, const WCHAR *names);

/// Writes the categories of a text "Home, Work" into the categories property of the item record `oid`. True when the
/// record was written. Nothing is changed by an empty or null text (who clears categories does so elsewhere), by an id
/// that is no record's, and when the categories of the device can't be read.
///
/// A record is not to be held by an item object while it is rewritten: the one that `item` points at (appointment,
/// contact or task) is released and the pointer nulled; with `reload` it is fetched again afterwards. `item` may be
/// null.
ZBTOOLS_API bool SaveCategoriesToPIMRecord(const WCHAR *names, IDispatch **item, CEOID oid, bool reload);

/// A saved choice into a list that is emptied first: from the settings, or from the store of custom views. At most
/// 7,900 characters are read. The list stays empty without the value; names that no category has are left out.
ZBTOOLS_API void ReadCategoryFromRegistry(const WCHAR *key, const WCHAR *value, CePtrList<CFullCategory *> &list,
                                          bool customViews);
/// Saves the names of a list in the settings, below HKEY_CURRENT_USER. Kept: it ends in front of the first name that
/// with two characters more would pass 2,000 in all; that name and all later ones are lost without a message.
ZBTOOLS_API void SaveCategoryFromRegistry(const WCHAR *key, const WCHAR *value, CePtrList<CFullCategory *> &list);

/// The icons of joined names as markup, `<IMG SRC="Home.bmp"><IMG SRC="Work.bmp">`; one blank behind a comma is
/// skipped. `out` has room for `limit` characters and a zero. The tag that would pass the limit is left out with all
/// that follow; the result, the number of characters, counts that tag. Empty names with `noCategoryIcon` give
/// `<IMG SRC="~NoCategory.bmp">` whatever the limit, and 1. 0, and nothing written, when names, out or copy is null.
/// Kept: every field between commas has a tag, an empty one too. `copy` and `tag` were scratch for a cut-up copy of the
/// names and for one tag; nothing is written there any more, so their size does not matter.
ZBTOOLS_API int CreateIconString(const WCHAR *names, WCHAR *out, int limit, bool noCategoryIcon, const WCHAR *copy,
                                 const WCHAR *tag);
