#include "framework/CeChildMgr.h"

#include "platform/dialog.h"

#include <algorithm>
#include <atomic>
#include <memory>

namespace
{
std::atomic<int> updates{0};

LONG Width(const RECT &rect)
{
    return rect.right - rect.left;
}
LONG Height(const RECT &rect)
{
    return rect.bottom - rect.top;
}

LONG Scaled(LONG value, LONG to, LONG from)
{
    return from == 0 ? value : static_cast<LONG>(static_cast<LONGLONG>(value) * to / from);
}

/// One end of a child along one direction.
struct Span
{
    LONG start;
    LONG end;
};

/// Where a child of this size lies: held to the far edge, scaled with the parent, or where it starts now.
Span SpanOf(const Span &original, LONG now, LONG size, LONG fresh, LONG old, bool keep, bool scale)
{
    const LONG end = keep    ? original.end + fresh - old
                     : scale ? Scaled(original.start, fresh, old) + size
                             : now + size;
    return {end - size, end};
}

void Defer(HDWP &changes, HWND hWnd, const RECT &place)
{
    if (hWnd != nullptr && changes != nullptr && IsWindow(hWnd) != FALSE)
    {
        changes = DeferWindowPos(changes, hWnd, nullptr, place.left, place.top, Width(place), Height(place),
                                 SWP_NOZORDER | SWP_NOACTIVATE);
    }
}
} // namespace

CeChildMgr::CeChildMgr(HWND hParent) : m_children(0, CEOWN_DELETE), m_hParent(hParent)
{
    GetClientRect(m_hParent, &m_rcParent);
}

CeChildMgr::~CeChildMgr() = default;

RECT CeChildMgr::PlaceOf(HWND hWnd) const
{
    RECT place{};
    GetWindowRect(hWnd, &place);
    MapWindowPoints(nullptr, m_hParent, reinterpret_cast<POINT *>(&place), 2);
    return place;
}

CeChildInfo *CeChildMgr::Find(HWND hWnd)
{
    for (int i = 0; i < m_children.GetCount(); ++i)
    {
        if (m_children.GetAt(i)->hWnd == hWnd)
        {
            return m_children.GetAt(i);
        }
    }
    return nullptr;
}

int CeChildMgr::Manage(HWND hWnd, UINT uFlags)
{
    if (IsChild(m_hParent, hWnd) == FALSE)
    {
        return -1;
    }
    auto child = std::make_unique<CeChildInfo>();
    child->hWnd = hWnd;
    child->uFlags = uFlags;
    child->rcOriginal = PlaceOf(hWnd);
    RECT client{};
    GetClientRect(hWnd, &client);
    child->nFrameCx = Width(child->rcOriginal) - client.right;
    child->nFrameCy = Height(child->rcOriginal) - client.bottom;
    GetClientRect(m_hParent, &child->rcParent);
    m_rcParent = child->rcParent;
    if ((uFlags & CHILD_WITH_PREVIOUS) != 0)
    {
        child->hPrev = GetWindow(hWnd, GW_HWNDPREV);
        const RECT label = child->hPrev == nullptr ? RECT{} : PlaceOf(child->hPrev);
        child->rcPrev = {child->rcOriginal.left - label.right, label.top - child->rcOriginal.top, Width(label),
                         Height(label)};
    }
    if ((uFlags & CHILD_WITH_NEXT) != 0)
    {
        child->hNext = GetWindow(hWnd, GW_HWNDNEXT);
        const RECT next = child->hNext == nullptr ? RECT{} : PlaceOf(child->hNext);
        child->rcNext = {next.left - child->rcOriginal.right, next.top - child->rcOriginal.top, Width(next),
                         Height(next)};
    }
    m_children.AddTail(child.release());
    return m_children.GetCount() - 1;
}

void CeChildMgr::UnManage(HWND hWnd)
{
    for (int i = m_children.GetCount() - 1; i >= 0; --i)
    {
        if (m_children.GetAt(i)->hWnd == hWnd)
        {
            m_children.RemoveAt(i);
        }
    }
}

void CeChildMgr::UpdateChild(HWND hWnd, UINT uFlags)
{
    CeChildInfo *child = Find(hWnd);
    if (child == nullptr)
    {
        return;
    }
    const RECT place = PlaceOf(hWnd);
    RECT parent{};
    GetClientRect(m_hParent, &parent);
    if ((uFlags & CHILD_GROW_WIDTH) != 0)
    {
        child->rcOriginal.left = place.left;
        child->rcOriginal.right = place.right;
        child->rcParent.right = parent.right;
    }
    if ((uFlags & CHILD_GROW_HEIGHT) != 0)
    {
        child->rcOriginal.top = place.top;
        child->rcOriginal.bottom = place.bottom;
        child->rcParent.bottom = parent.bottom;
    }
}

SIZE CeChildMgr::CalcSize(const CeChildInfo &child, int cx, int cy) const
{
    SIZE size{0, 0};
    const RECT &parent = child.rcParent;
    if ((child.uFlags & CHILD_GROW_WIDTH) != 0)
    {
        size.cx = Width(child.rcOriginal) + cx - parent.right;
    }
    else if ((child.uFlags & CHILD_SCALE_WIDTH) != 0)
    {
        size.cx = Scaled(Width(child.rcOriginal), cx, parent.right);
    }
    if ((child.uFlags & CHILD_GROW_HEIGHT) != 0)
    {
        size.cy = Height(child.rcOriginal) + cy - parent.bottom;
    }
    else if ((child.uFlags & CHILD_SCALE_HEIGHT) != 0)
    {
        size.cy = Scaled(Height(child.rcOriginal), cy, parent.bottom);
    }
    return size;
}

bool CeChildMgr::Place(CeChildInfo &child, int cx, int cy) const
{
    const RECT now = PlaceOf(child.hWnd);
    const SIZE size = CalcSize(child, cx, cy);
    const LONG width = size.cx != 0 ? size.cx : Width(now);
    const LONG height = size.cy != 0 ? size.cy : Height(now);
    const Span across =
        SpanOf({child.rcOriginal.left, child.rcOriginal.right}, now.left, width, cx, child.rcParent.right,
               (child.uFlags & CHILD_KEEP_RIGHT) != 0, (child.uFlags & CHILD_SCALE_LEFT) != 0);
    const Span down =
        SpanOf({child.rcOriginal.top, child.rcOriginal.bottom}, now.top, height, cy, child.rcParent.bottom,
               (child.uFlags & CHILD_KEEP_BOTTOM) != 0, (child.uFlags & CHILD_SCALE_TOP) != 0);
    child.rcNew = {across.start, std::min(down.start, down.end), across.end, down.end};
    child.rcPrevNew.right = child.rcNew.left - child.rcPrev.left;
    child.rcPrevNew.top = child.rcNew.top + child.rcPrev.top;
    child.rcPrevNew.left = child.rcPrevNew.right - child.rcPrev.right;
    child.rcPrevNew.bottom = child.rcPrevNew.top + child.rcPrev.bottom;
    child.rcNextNew.left = child.rcNew.right + child.rcNext.left;
    child.rcNextNew.top = child.rcNew.top + child.rcNext.top;
    child.rcNextNew.right = child.rcNextNew.left + child.rcNext.right;
    child.rcNextNew.bottom = child.rcNextNew.top + child.rcNext.bottom;
    return height >= child.nFrameCy && width >= child.nFrameCx;
}

void CeChildMgr::OnSize(UINT nType, int cx, int cy)
{
    constexpr UINT minimized = 1;
    if (nType == minimized || m_children.IsEmpty())
    {
        return;
    }
    for (int i = 0; i < m_children.GetCount(); ++i)
    {
        CeChildInfo *child = m_children.GetAt(i);
        if (IsWindow(child->hWnd) != FALSE && !Place(*child, cx, cy))
        {
            return;
        }
    }
    if (DetectCollision())
    {
        return;
    }
    HDWP changes = BeginDeferWindowPos(m_children.GetCount());
    for (int i = 0; i < m_children.GetCount(); ++i)
    {
        const CeChildInfo *child = m_children.GetAt(i);
        if (IsWindow(child->hWnd) != FALSE)
        {
            Defer(changes, child->hWnd, child->rcNew);
            Defer(changes, child->hPrev, child->rcPrevNew);
            Defer(changes, child->hNext, child->rcNextNew);
        }
    }
    EndDeferWindowPos(changes);
    m_rcParent = {0, 0, cx, cy};
}

bool CeChildMgr::DetectCollision()
{
    return false;
}

void CeChildMgr::SizeDialogToScreen(int x, int y)
{
    const auto units = static_cast<DWORD_PTR>(GetDialogBaseUnits());
    RECT place{0, 0, x * LOWORD(units) / 4, y * HIWORD(units) / 8};
    AdjustWindowRectEx(&place, static_cast<DWORD>(GetWindowLongW(m_hParent, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongW(m_hParent, GWL_EXSTYLE)));
    SetWindowPos(m_hParent, nullptr, 0, 0, Width(place), Height(place), SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CeChildMgr::OffsetChildren(HWND hParent, const SIZE &size)
{
    HDWP changes = BeginDeferWindowPos(16);
    for (HWND child = GetWindow(hParent, GW_CHILD); child != nullptr && changes != nullptr;
         child = GetWindow(child, GW_HWNDNEXT))
    {
        RECT place{};
        GetWindowRect(child, &place);
        MapWindowPoints(nullptr, hParent, reinterpret_cast<POINT *>(&place), 2);
        changes = DeferWindowPos(changes, child, nullptr, place.left + size.cx, place.top + size.cy, 0, 0,
                                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    EndDeferWindowPos(changes);
}

void CeChildMgr::ValidateChildBkgnd(HDC hdc)
{
    for (int i = 0; i < m_children.GetCount(); ++i)
    {
        const HWND hWnd = m_children.GetAt(i)->hWnd;
        if (IsWindowVisible(hWnd) != FALSE)
        {
            const RECT place = PlaceOf(hWnd);
            ExcludeClipRect(hdc, place.left, place.top, place.right, place.bottom);
        }
    }
}

void CeChildMgr::BeginUpdate()
{
    ++updates;
}

void CeChildMgr::EndUpdate()
{
    --updates;
}

bool CeChildMgr::IsUpdating()
{
    return updates > 0;
}
