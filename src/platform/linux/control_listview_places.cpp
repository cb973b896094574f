// Columns of a list view, where its rows and their parts lie, and scrolling.
#include "platform/linux/control_listview.h"

#include <algorithm>
#include <utility>

namespace zb::internal
{
namespace
{
int gap()
{
    return scaledPixels(4);
}
} // namespace

// --- Columns ---------------------------------------------------------------------------------------------------------

int ListView::subItemOf(int column) const
{
    return hasColumns() && isColumn(column) ? m_columns[static_cast<std::size_t>(column)].subItem : 0;
}

int ListView::columnLeft(int column) const
{
    int left = -m_left;
    for (int one = 0; one < column && hasColumns(); ++one)
    {
        left += m_columns[static_cast<std::size_t>(one)].width;
    }
    return left;
}

int ListView::columnWidth(int column) const
{
    return hasColumns() ? m_columns[static_cast<std::size_t>(column)].width : static_cast<int>(client().right);
}

LRESULT ListView::insertColumn(int column, const LVCOLUMNW &given)
{
    if (column < 0)
    {
        return -1;
    }
    const int place = std::min(column, static_cast<int>(m_columns.size()));
    Column fresh;
    // A column shows the texts of its own number, unless somebody says otherwise.
    fresh.subItem = place;
    m_columns.insert(m_columns.begin() + place, fresh);
    setColumn(place, given);
    return place;
}

bool ListView::setColumn(int column, const LVCOLUMNW &given)
{
    if (!isColumn(column))
    {
        return false;
    }
    Column &changed = m_columns[static_cast<std::size_t>(column)];
    if ((given.mask & LVCF_FMT) != 0)
    {
        // The item itself always begins at the left.
        changed.format = column == 0 ? LVCFMT_LEFT : given.fmt & LVCFMT_JUSTIFYMASK;
    }
    if ((given.mask & LVCF_TEXT) != 0)
    {
        changed.title = given.pszText == nullptr ? u"" : given.pszText;
    }
    changed.subItem = (given.mask & LVCF_SUBITEM) != 0 ? std::max(given.iSubItem, 0) : changed.subItem;
    changed.width = (given.mask & LVCF_WIDTH) != 0 ? std::clamp(given.cx, 0, 0x7FFF) : changed.width;
    columnsChanged();
    return true;
}

bool ListView::getColumn(int column, LVCOLUMNW &wanted) const
{
    if (!isColumn(column))
    {
        return false;
    }
    const Column &found = m_columns[static_cast<std::size_t>(column)];
    wanted.fmt = (wanted.mask & LVCF_FMT) != 0 ? found.format : wanted.fmt;
    wanted.cx = (wanted.mask & LVCF_WIDTH) != 0 ? found.width : wanted.cx;
    wanted.iSubItem = (wanted.mask & LVCF_SUBITEM) != 0 ? found.subItem : wanted.iSubItem;
    if ((wanted.mask & LVCF_TEXT) != 0 && wanted.pszText != nullptr && wanted.cchTextMax > 0)
    {
        putText(found.title, wanted.pszText, static_cast<std::size_t>(wanted.cchTextMax));
    }
    return true;
}

bool ListView::eraseColumn(int column)
{
    if (!isColumn(column))
    {
        return false;
    }
    m_columns.erase(m_columns.begin() + column);
    columnsChanged();
    return true;
}

void ListView::columnsChanged()
{
    arrange();
    refresh();
    InvalidateRect(m_header, nullptr, FALSE);
}

void ListView::setColumnWidth(int column, int width)
{
    const ControlAtWork work(*this);
    if (!isColumn(column))
    {
        return;
    }
    m_edit.end(true);
    m_columns[static_cast<std::size_t>(column)].width = std::clamp(width, 0, 0x7FFF);
    columnsChanged();
}

void ListView::fitColumn(int column, bool withTitle)
{
    const ControlAtWork work(*this);
    if (!isColumn(column))
    {
        return;
    }
    const Column &fitted = m_columns[static_cast<std::size_t>(column)];
    const TextMeasure measure(font());
    const int margins = 2 * gap();
    const int arrow = fitted.order != 0 ? scaledPixels(14) : 0;
    int widest = withTitle ? static_cast<int>(measure.sizeOf(fitted.title).cx) + margins + arrow : 0;
    for (int row = 0; row < count(); ++row)
    {
        const bool hasPicture = column != 0 && rowImages() != nullptr && imageOf(row, fitted.subItem) >= 0;
        const int before = column == 0 ? partsOf(row).label : hasPicture ? m_rowHeight : 0;
        widest = std::max<int>(widest, before + measure.sizeOf(textOf(row, fitted.subItem)).cx + margins);
    }
    if (withTitle && column + 1 == static_cast<int>(m_columns.size()))
    {
        widest = std::max(widest, static_cast<int>(client().right) - columnLeft(column) - m_left);
    }
    setColumnWidth(column, widest);
}

int ListView::textWidth(std::u16string_view text) const
{
    return static_cast<int>(TextMeasure(font()).sizeOf(text).cx);
}

// --- Places ----------------------------------------------------------------------------------------------------------

void ListView::measure()
{
    const int height = imageSizeOf(rowImages()).cy;
    const int ofText = rowHeightOf(font());
    m_rowHeight = std::max(ofText, height + 2 * scaledPixels(2));
    m_titleHeight = std::max(ofText, scaledPixels(22));
    arrange();
    refresh();
}

int ListView::headerHeight() const
{
    return hasColumns() && (style() & LVS_NOCOLUMNHEADER) == 0 ? m_titleHeight : 0;
}

int ListView::totalWidth() const
{
    return hasColumns() ? columnLeft(columnCount()) + m_left : static_cast<int>(client().right);
}

void ListView::aboutToArrange()
{
    m_barDue = false;
}

void ListView::arranged()
{
    const int header = headerHeight();
    const RECT now = client();
    RECT place{};
    GetClientRect(m_header, &place);
    if (place.right != now.right || place.bottom != header)
    {
        SetWindowPos(m_header, nullptr, 0, 0, now.right, header,
                     SWP_NOZORDER | SWP_NOACTIVATE | (header > 0 ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
    }
}

/// After a row has come or gone. While there are more rows than fit before and after, that changes the scroll bar
/// alone, which is then drawn once for all of them, with the next paint.
void ListView::arrangeRows()
{
    const int page = pageRows();
    if ((style() & WS_VSCROLL) != 0 && count() > page + 1 && m_top <= count() - page)
    {
        m_barDue = true;
        const RECT corner{0, 0, 1, 1};
        InvalidateRect(window(), &corner, FALSE);
        return;
    }
    arrange();
}

RECT ListView::rowBox(int row) const
{
    const LONG top = rowsArea().top + (row - m_top) * m_rowHeight;
    return {-m_left, top, totalWidth() - m_left, top + m_rowHeight};
}

RECT ListView::cellBox(int row, int column) const
{
    RECT box = rowBox(row);
    box.left = columnLeft(column);
    box.right = box.left + columnWidth(column);
    return box;
}

ListView::Parts ListView::partsOf(int row) const
{
    const int width = imageSizeOf(rowImages()).cx;
    Parts parts;
    const bool hasState = isRow(row) && (item(row).state & LVIS_STATEIMAGEMASK) != 0;
    // A label alone begins where its column's title does.
    parts.state = (hasState || width > 0 ? scaledPixels(2) : 0) +
                  (isRow(row) ? item(row).indent * std::max(width, scaledPixels(16)) : 0);
    // The box is small, the place that a finger may meet is not.
    parts.image = parts.state + (hasState ? std::min(m_rowHeight, scaledPixels(24)) : 0);
    parts.label = parts.image + (width > 0 ? width + scaledPixels(2) : 0);
    return parts;
}

/// From the picture to the end of the first column.
RECT ListView::labelBox(int row) const
{
    RECT box = cellBox(row, 0);
    box.left = std::min<LONG>(box.left + partsOf(row).label, box.right);
    return box;
}

/// What of it the text takes.
RECT ListView::textBox(int row)
{
    RECT box = labelBox(row);
    box.right = std::min<LONG>(box.right, box.left + textWidth(textOf(row, subItemOf(0))) + 2 * gap());
    return box;
}

bool ListView::rectOf(int row, int column, int which, RECT &box)
{
    if (!isRow(row) || column < 0 || column >= columnCount())
    {
        return false;
    }
    const RECT cell = cellBox(row, column);
    const Parts parts = column == 0 ? partsOf(row) : Parts{};
    switch (which)
    {
    case LVIR_BOUNDS:
        box = column == 0 ? rowBox(row) : cell;
        return true;
    case LVIR_ICON:
        box = {cell.left + parts.image, cell.top, cell.left + parts.label, cell.bottom};
        return true;
    case LVIR_LABEL:
        box = column == 0 ? labelBox(row) : cell;
        return true;
    case LVIR_SELECTBOUNDS:
        box = {cell.left + parts.image, cell.top, hasFullRows() ? rowBox(row).right : cell.right, cell.bottom};
        return true;
    default:
        return false;
    }
}

int ListView::hitTest(LVHITTESTINFO &hit)
{
    const RECT area = rowsArea();
    const RECT all = client();
    hit.iItem = -1;
    hit.flags = (hit.pt.x < 0 ? LVHT_TOLEFT : 0) | (hit.pt.x >= all.right ? LVHT_TORIGHT : 0) |
                (hit.pt.y < 0 ? LVHT_ABOVE : 0) | (hit.pt.y >= all.bottom ? LVHT_BELOW : 0);
    if (hit.flags != 0)
    {
        return -1;
    }
    hit.flags = LVHT_NOWHERE;
    const int row = m_top + static_cast<int>(hit.pt.y - area.top) / m_rowHeight;
    const int x = hit.pt.x + m_left;
    if (hit.pt.y < area.top || !isRow(row) || x >= totalWidth())
    {
        return -1;
    }
    int column = 0;
    while (column + 1 < columnCount() && hit.pt.x >= columnLeft(column + 1))
    {
        ++column;
    }
    const Parts parts = partsOf(row);
    hit.iItem = row;
    hit.iSubItem = subItemOf(column);
    if (column > 0)
    {
        hit.flags = LVHT_ONITEMLABEL;
    }
    else
    {
        hit.flags = x < parts.image && parts.image > parts.state ? LVHT_ONITEMSTATEICON
                    : x < parts.label                            ? LVHT_ONITEMICON
                                                                 : LVHT_ONITEMLABEL;
    }
    return row;
}

// --- Scrolling -------------------------------------------------------------------------------------------------------

bool ListView::scrollRightTo(LONGLONG left)
{
    const bool moved = RowView::scrollRightTo(left);
    if (moved)
    {
        InvalidateRect(m_header, nullptr, FALSE);
    }
    return moved;
}

bool ListView::show(int row, bool partIsEnough)
{
    if (!isRow(row))
    {
        return false;
    }
    const RECT area = rowsArea();
    const bool showsPart = row == m_top + pageRows() && (area.bottom - area.top) % m_rowHeight != 0;
    if (!partIsEnough || !showsPart)
    {
        scrollToShow(row);
    }
    return true;
}

void ListView::redraw(int row)
{
    if (row >= m_top && row <= m_top + pageRows() && !isGone())
    {
        const RECT box = rowBox(row);
        const RECT all{0, box.top, client().right, box.bottom};
        InvalidateRect(window(), &all, FALSE);
    }
}

/// The row and all that follow have changed.
void ListView::redrawFrom(int row)
{
    if (row <= m_top + pageRows() && !isGone())
    {
        RECT area = rowsArea();
        area.top = row > m_top ? rowBox(row).top : area.top;
        InvalidateRect(window(), &area, FALSE);
    }
}
} // namespace zb::internal
