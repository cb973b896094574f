// The linked list that every loader fills and sorts: elements are reached by index through a remembered cursor, so a
// walk by rising or falling index costs one step an element.
//
// Invariants:
//   - Indices run from the base (0 or 1) to base + count - 1; positions from 1 to count.
//   - The cursor is null and its position 0 exactly when the list is empty; else the position is that of the cursor.
//     A call that fails leaves both alone.
//   - A node is malloc memory of its own or part of a block of SetSize (m_pRanges); the node decides by its address.
//
// Elements are plain records (numbers, pointers, structs of them) that are copied by assignment. What they point at is
// owned through the callbacks, which get the user value last: the list calls `construct` for each value that goes into
// a node and `destroy` for each that leaves one.
//
// Threads: one at a time, reads included, since every read moves the cursor. Callers that share a list lock it.
// Errors: an operation returns 0 or 1 index out of range, 2 out of memory, 3 broken links, 4 file error, 5 wrong file
// version or signature (CELIST_...).
#pragma once

#include "core/CeList_blocks.h"
#include "core/CeList_file.h"
#include "core/CeList_sort.h"
#include "platform/types.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

template <class T>
class CeList
{
    static_assert(std::is_trivially_copyable_v<T>,
                  "elements are plain records; their callbacks own what they point at");

  public:
    /// Makes `dest` hold a value of its own made from `source`; dest holds nothing before.
    using ConstructCallback = void (*)(T &dest, const T &source, DWORD_PTR user);
    /// Releases what the element owns. Is also called for null values.
    using DestroyCallback = void (*)(T &element, DWORD_PTR user);
    /// Below, equal to or above 0.
    using CompareCallback = int (*)(const T *a, const T *b, DWORD_PTR user);
    /// CELIST_WRITE: sets size and buffer (owned by the callback, good until its next call) from element. CELIST_READ:
    /// sets element from size bytes at buffer, which are the list's and not aligned; the element is then handed to the
    /// list as it is, without `construct`. Returns 0, or an error number that ends the save or load.
    using PackCallback = int (*)(T &element, UINT &size, void *&buffer, _CELIST_STREAMTYPE type, DWORD_PTR user);

    /// Callbacks that are null take the defaults: plain assignment, nothing, comparison as unsigned numbers, and, for
    /// numbers alone, their little-endian bytes.
    explicit CeList(int base = 0, ConstructCallback construct = nullptr, DestroyCallback destroy = nullptr,
                    CompareCallback compare = nullptr, PackCallback pack = nullptr, const T &nullValue = T())
        : m_nBase(base), m_null(nullValue), m_pfnConstruct(construct != nullptr ? construct : DefaultConstruct),
          m_pfnDestroy(destroy), m_pfnCompare(compare != nullptr ? compare : DefaultCompare),
          m_pfnPack(pack != nullptr ? pack : DefaultPack)
    {
    }
    CeList(const CeList &) = delete;
    CeList &operator=(const CeList &) = delete;
    ~CeList()
    {
        RemoveAll();
    }

    // --- Configuration; RemoveAll leaves it alone ---

    int GetBase() const
    {
        return m_nBase;
    }
    DWORD_PTR GetUser() const
    {
        return m_dwUser;
    }
    void SetUser(DWORD_PTR user)
    {
        m_dwUser = user;
    }
    CompareCallback GetCompare() const
    {
        return m_pfnCompare;
    }
    /// Null takes the default.
    void SetCompare(CompareCallback compare)
    {
        m_pfnCompare = compare != nullptr ? compare : DefaultCompare;
    }
    void SetPack(PackCallback pack)
    {
        m_pfnPack = pack != nullptr ? pack : DefaultPack;
    }
    void SetNull(const T &value)
    {
        m_null = value;
    }

    // --- Reading ---

    int GetCount() const
    {
        return m_nCount;
    }
    bool IsEmpty() const
    {
        return m_nCount == 0;
    }
    /// Index of the cursor; base - 1 in an empty list.
    int GetIndex() const
    {
        return m_nPosition + m_nBase - 1;
    }
    int GetLastIndex() const
    {
        return m_nCount + m_nBase - 1;
    }
    /// Puts the cursor on an index: error 1 outside the list.
    int MoveTo(int index)
    {
        return MoveToPosition(PositionOf(index));
    }
    /// The null value outside the list; the cursor then stays.
    T GetAt(int index)
    {
        const T *element = GetPtrAt(index);
        return element != nullptr ? *element : m_null;
    }
    /// The element in its node, good until the node is removed or the list sorted; null outside the list.
    T *GetPtrAt(int index)
    {
        return MoveTo(index) == CELIST_OK ? &m_pCursor->m_value : nullptr;
    }
    T GetTail()
    {
        return GetAt(GetLastIndex());
    }
    /// Index of the first element that compares equal, with the cursor on it; base - 1, and the cursor unmoved, when
    /// there is none.
    int Find(const T &value);

    // --- Changing ---

    /// The cursor moves to the new node.
    int AddHead(const T &value);
    int AddTail(const T &value);
    /// In front of the element at index. An index up to the first element's is AddHead, one behind the last AddTail.
    int InsertAt(int index, const T &value);
    /// One past the last appends.
    int SetAt(int index, const T &value);
    /// The cursor moves to the following node, which then has the removed one's index; at the end, to the one before.
    int RemoveAt(int index);
    /// From the head on.
    void RemoveAll();
    /// Shrinks from the tail; grows with null values, six or more of them in one allocation. Then the cursor is on the
    /// last element, unless the size was right already. Error 1 for a negative size.
    int SetSize(int size);
    /// See CeList_sort.h for the order in which equal elements are left. Values change nodes, nodes stay linked. The
    /// cursor ends on the first element. Error 2, and nothing changed, without memory.
    int Sort(bool ascending = true);

    // --- File form; see CeList_file.h ---

    /// withUser stores the low 32 bits of the user value. A null signature is an empty one.
    int SaveFile(const WCHAR *path, const char *signature, bool withUser = false);
    /// Clears the list first, and again on any error. `sized` makes room for the stored count in one piece and takes
    /// the stored base; withUser takes the stored user value. The list holds the elements that the file has, which may
    /// be fewer than it says. The cursor ends on the stored index, or on the last element when there is no such index.
    int LoadFile(const WCHAR *path, const char *signature, bool sized = false, bool withUser = false);

  protected:
    void SetDestroy(DestroyCallback destroy)
    {
        m_pfnDestroy = destroy;
    }

  private:
    struct Node
    {
        Node *m_pPrev;
        Node *m_pNext;
        T m_value;
    };

    static void DefaultConstruct(T &dest, const T &source, DWORD_PTR)
    {
        dest = source;
    }
    static int DefaultCompare(const T *a, const T *b, DWORD_PTR user);
    static int DefaultPack(T &element, UINT &size, void *&buffer, _CELIST_STREAMTYPE type, DWORD_PTR user);

    /// Wide, so that no index overflows.
    LONGLONG PositionOf(int index) const
    {
        return static_cast<LONGLONG>(index) - m_nBase + 1;
    }
    int MoveToPosition(LONGLONG position);
    Node *NodeAt(int position) const;
    static Node *Walk(Node *from, int steps);
    Node *NewNode(const T &value);
    void FreeNode(Node *node);
    void SetCursor(Node *node, int position)
    {
        m_pCursor = node;
        m_nPosition = position;
    }
    /// Links node in front of `next`, at the tail when that is null.
    void LinkBefore(Node *node, Node *next);
    int GrowBy(int count);
    int AddBlock(int count);
    int LoadItems(CeListFileReader &reader, const CeListFileHeader &header, bool sized);
    int LoadItem(const BYTE *data, UINT size, int index);

    Node *m_pHead = nullptr;
    Node *m_pTail = nullptr;
    Node *m_pCursor = nullptr;
    int m_nBase;
    int m_nPosition = 0;
    int m_nCount = 0;
    DWORD_PTR m_dwUser = 0;
    T m_null;
    ConstructCallback m_pfnConstruct;
    DestroyCallback m_pfnDestroy;
    CompareCallback m_pfnCompare;
    PackCallback m_pfnPack;
    std::unique_ptr<CeNodeBlocks> m_pRanges;
};

#include "core/CeList_impl.h"
