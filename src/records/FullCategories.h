// The categories of the device: the cached list of all of them, and names for the ids in items' blobs.
//
// There are two caches, each read from the database whole: one behind GetFullCategoryInfo and GetCategories, one behind
// CategoryAssembler. Both keep what they have read, whatever happens to the database, until somebody reloads them; both
// forget it when another device is opened. The order is that in which the records lie: by name without regard to case.
//
// Threads: any. A reload replaces a cache in one step, so a call that is under way goes on with the old one. Failure:
// a database that does not open leaves caches and lists as they were.
#pragma once

#include "core/CeList.h"
#include "core/CePtrList.h"
#include "core/CeStrList.h"
#include "core/api.h"
#include "records/CFullCategory.h"

/// Fills the list, which is emptied first, with copies that the list owns from then on (so its ownership should be
/// CEOWN_DELETE), and returns their number. `reload` reads the database anew; so does a cache that is empty. Records
/// without a name are deleted from the database while it is read; those of more than 2,048 bytes are left out. 0, and
/// the list as it was, when the database does not open.
ZBTOOLS_API int GetFullCategoryInfo(CePtrList<CFullCategory *> &list, bool reload);

/// Appends the names of the categories that choosers offer, as malloc texts (so the list's ownership should be
/// CEOWN_FREE), and returns the list's count. With a mask that is not 0, only of those that an item of one of the
/// affiliations in it uses (1, 2, 4 contacts). The two other numbers have no effect.
ZBTOOLS_API int GetCategories(CeStrList<WCHAR *> &list, int unused, ULONG affiliations, int unused2);

/// Reads anew what CategoryAssembler knows, and the cache of GetFullCategoryInfo with it. Start-up calls it.
ZBTOOLS_API void ResetFullCategoryList();

/// The names of ids, joined by ", ", as malloc text with room for 8 more characters; empty, with room for 16, for no
/// ids. Null without memory. Of several categories with one id the first counts. An id that no category has adds
/// nothing; kept: as the last one it leaves the text ending in ", ", which readers cope with. Ids of categories are 16
/// bits wide and signed: category -1 is id 0xFFFFFFFF. Until ResetFullCategoryList was called for the open device, the
/// first call does it. Takes a time that does not depend on the number of categories.
ZBTOOLS_API WCHAR *CategoryAssembler(CeList<unsigned int> &ids);

/// Order of hosts' lists: by name in the words of the locale's order, then by id.
ZBTOOLS_API int FullCategoryCompareFunc(CFullCategory *const &a, CFullCategory *const &b, DWORD_PTR user);
