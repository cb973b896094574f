// Which task hangs under which: the list of parent links and the file that keeps it.
//
// The device's task records know no sub-tasks, so the links stand beside them in "%s\Kelvo\TaskHierarchy.bin", %s being
// the base folder of the data. A link names records by id; a link whose records are gone stays and matches nothing.
//
// The file has the form of a list file (core/CeList_file.h): version byte 1, signature "ZBHT 1.2", the number of links,
// the index of the cursor, the base of the indices, the user word 0, then for each link a size of 116 and
//
//     offset  size  field
//     0       4     id of the child, little-endian
//     4       4     id of its parent, little-endian
//     8       1     the child's parent is open: 1, closed: 0
//     9       107   not used; written as zeros
//
// Reading tolerates links of another size: of a longer one the rest is passed over, in a shorter one the missing bytes
// count as zeros.
#pragma once

#include "core/CeList_file.h"
#include "core/api.h"
#include "platform/types.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

/// One parent link.
struct _HIERSTRUCT
{
    ULONG m_oid = 0;               ///< record id of the child
    ULONG m_oidParent = 0;         ///< record id of its parent
    BYTE m_bExpanded = 0;          ///< 1 when the child's parent is open
    BYTE m_reserved[3 + 104] = {}; ///< nothing reads or sets them
};
static_assert(sizeof(_HIERSTRUCT) == 116);

/// Links are ordered by the child alone.
inline bool operator<(const _HIERSTRUCT &a, const _HIERSTRUCT &b)
{
    return a.m_oid < b.m_oid;
}
inline bool operator>(const _HIERSTRUCT &a, const _HIERSTRUCT &b)
{
    return b < a;
}

namespace zb
{
/// The links in the order in which they were added or read. A child may have several; all look-ups by child mean the
/// first of them, as a walk from the head would find it, and take no walk. Threads: one at a time.
///
/// The cursor, which the file keeps, is on the link that was last added or found; after a removal on the one that
/// followed. It is -1 in an empty list.
class ZBTOOLS_API TaskHierarchy
{
  public:
    static constexpr const char *SIGNATURE = "ZBHT 1.2";
    static constexpr UINT LINK_SIZE = 116;

    /// Full path of the file on the open device, made from the base folder.
    static std::u16string FilePath();

    /// Replaces the list with the links of the file. 0, also when there is no file; 2 without memory; 4 when it can't
    /// be read or ends inside its header or inside a link; 5 for another version or signature. After 2, 4 and 5 the
    /// list is empty. A file that ends inside a size keeps the links in front of it, and the count that the file tells
    /// decides nothing.
    int Load(const WCHAR *path);
    /// Puts the links into the file, made anew with the folders that lead to it, whole or not at all. 0, 2, or 4 when
    /// that fails; then the old file is still there. Without links the file is deleted.
    ///
    /// A file that the last Load refused may be of use to somebody else (of a later version, say): the first Save
    /// renames it to "TaskHierarchy.damaged.bin" beside it, over an older one. Where that fails nothing is saved.
    int Save(const WCHAR *path);

    /// 0, or 2 without memory.
    int Add(const _HIERSTRUCT &link);
    /// False when there is none.
    bool Find(ULONG oid, _HIERSTRUCT *link);
    bool Remove(ULONG oid);
    bool SetParent(ULONG oid, ULONG oidParent);
    bool SetExpanded(ULONG oid, bool bExpanded);
    /// The flag of every link that names this parent.
    void SetExpandedBelow(ULONG oidParent, bool bExpanded);
    void SetExpandedAll(bool bExpanded);
    void RemoveAll();

    int GetCount() const
    {
        return m_count;
    }
    bool IsEmpty() const
    {
        return m_count == 0;
    }
    /// A link was added, removed or changed since the last Load or successful Save.
    bool IsChanged() const
    {
        return m_bChanged;
    }
    /// In order, their unused bytes 0.
    std::vector<_HIERSTRUCT> Links() const;
    /// Index of the cursor, counted from 0; -1 in an empty list.
    int GetCursor() const;

  private:
    /// A link keeps its slot for life, so that slots can be chained: all in order of the list, those of one child in
    /// that order too, those of one parent in none. Slots of removed links are chained by `next` and used again.
    struct Slot
    {
        ULONG oid;
        ULONG oidParent;
        BYTE expanded;
        int previous;
        int next;
        int nextOfChild;
        int previousOfParent;
        int nextOfParent;
    };
    struct Chain
    {
        int first = none;
        int last = none;
    };
    /// Ids come out of a file: spread, so that no file can put them all into one bucket by chance.
    struct Spread
    {
        std::size_t operator()(ULONG oid) const
        {
            const ULONGLONG product = oid * 0x9E3779B97F4A7C15ULL;
            return static_cast<std::size_t>(product ^ (product >> 32U));
        }
    };
    static constexpr int none = -1;

    int Read(const WCHAR *path);
    int ReadLinks(CeListFileReader &reader);
    void MoveCursorTo(LONGLONG index);
    bool MoveRefusedFileAside(const WCHAR *path);
    static int Delete(const WCHAR *path);
    int Write(const WCHAR *path) const;
    int FirstOf(ULONG oid) const;
    void Append(const _HIERSTRUCT &link);
    int TakeSlot();
    void LinkToParent(int at);
    void UnlinkFromParent(int at);
    void UnlinkFromOrder(int at);
    void SetFlag(int at, bool bExpanded);
    Slot &At(int at)
    {
        return m_slots[static_cast<std::size_t>(at)];
    }
    const Slot &At(int at) const
    {
        return m_slots[static_cast<std::size_t>(at)];
    }

    std::vector<Slot> m_slots;
    std::unordered_map<ULONG, Chain, Spread> m_ofChild;
    std::unordered_map<ULONG, int, Spread> m_ofParent;
    Chain m_order;
    int m_free = none;
    int m_count = 0;
    int m_cursor = none; // a slot
    int m_base = 0;
    bool m_bChanged = false;
    bool m_bRefused = false; // the file that was last read is not understood
};
} // namespace zb
