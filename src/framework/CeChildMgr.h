// Keeps the controls of a window in place when it changes its size: each moves, grows or scales by rules of its own.
//
// The windows stay their maker's; one that is gone is passed over. Threads: the parent's. Worked example: a parent of
// 200 pixels with a child from 20 to 120 that grows (CHILD_GROW_WIDTH) becomes 260 wide: the child reaches to 180.
#pragma once

#include "core/CePtrList.h"
#include "core/api.h"
#include "platform/user.h"

inline constexpr UINT CHILD_KEEP_RIGHT = 0x0002;   ///< the right edge keeps its distance from the parent's
inline constexpr UINT CHILD_KEEP_BOTTOM = 0x0008;  ///< the bottom edge likewise
inline constexpr UINT CHILD_GROW_WIDTH = 0x0010;   ///< as many pixels as the parent
inline constexpr UINT CHILD_GROW_HEIGHT = 0x0020;
inline constexpr UINT CHILD_SCALE_WIDTH = 0x0040;  ///< in proportion to the parent
inline constexpr UINT CHILD_SCALE_HEIGHT = 0x0080;
inline constexpr UINT CHILD_SCALE_LEFT = 0x0100;   ///< the place, in proportion to the parent
inline constexpr UINT CHILD_SCALE_TOP = 0x0200;
inline constexpr UINT CHILD_WITH_PREVIOUS = 0x3000; ///< either bit: the sibling before it, a label, moves along
inline constexpr UINT CHILD_WITH_NEXT = 0x4000;     ///< the sibling behind it moves along

/// One managed child. Rectangles are in client coordinates of the parent.
struct CeChildInfo
{
    HWND hWnd = nullptr;
    UINT uFlags = 0;
    RECT rcOriginal{};
    int nFrameCx = 0; ///< window less client area when it was registered: it never gets smaller
    int nFrameCy = 0;
    RECT rcNew{};
    RECT rcPrev{}; ///< left and top: how far its right and top are from the child's left and top
    HWND hPrev = nullptr;
    RECT rcPrevNew{};
    RECT rcNext{}; ///< left and top: how far its left and top are from the child's right and top
    HWND hNext = nullptr;
    RECT rcNextNew{};
    RECT rcParent{}; ///< the parent's client area when it was registered
};

class ZBTOOLS_API CeChildMgr
{
  public:
    explicit CeChildMgr(HWND hParent = nullptr);
    CeChildMgr(const CeChildMgr &) = delete;
    CeChildMgr &operator=(const CeChildMgr &) = delete;
    virtual ~CeChildMgr();

    /// From here on; the child's index, -1 for a window that is gone or no child of the parent.
    int Manage(HWND hWnd, UINT uFlags);
    void UnManage(HWND hWnd);
    /// The present place becomes the original one: across with CHILD_GROW_WIDTH in the flags, down with
    /// CHILD_GROW_HEIGHT.
    void UpdateChild(HWND hWnd, UINT uFlags);

    /// To be called with the parent's new client size. Nothing for a minimised window (type 1). When a child would get
    /// smaller than its frame no child moves at all.
    void OnSize(UINT nType, int cx, int cy);
    /// The size that a child's rules give it; 0 for a side without one, which stays as it is.
    SIZE CalcSize(const CeChildInfo &child, int cx, int cy) const;
    /// Whether two children would overlap: never, here.
    virtual bool DetectCollision();

    /// Gives the parent a client area of so many dialog units.
    void SizeDialogToScreen(int x, int y);
    /// Moves all children of a window.
    static void OffsetChildren(HWND hParent, const SIZE &size);
    /// Keeps the children out of what the parent erases.
    void ValidateChildBkgnd(HDC hdc);

    /// One count for the whole process; who lays out many windows asks for it.
    static void BeginUpdate();
    static void EndUpdate();
    static bool IsUpdating();

  private:
    CeChildInfo *Find(HWND hWnd);
    RECT PlaceOf(HWND hWnd) const;
    bool Place(CeChildInfo &child, int cx, int cy) const;

    CePtrList<CeChildInfo *> m_children;
    HWND m_hParent;
    RECT m_rcParent{};
};
