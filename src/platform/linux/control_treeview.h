// The tree view's object.
//
// Invariants: items are found by their handles alone, which are counted up and never used again, so a stale one finds
// nothing; whoever tells the parent something looks its items up anew afterwards. m_rows holds the open rows from the
// top while m_rowsDue is false, and each node in it knows its number; a change of the tree makes it due and leaves it
// for whoever needs rows next, so building up a tree takes no longer than its items.
#pragma once

#include "platform/linux/control_rows.h"
#include "platform/tree_view.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace zb::internal
{
class TreeView final : public RowView
{
  public:
    using RowView::RowView;
    ~TreeView() override;
    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    struct Node
    {
        HTREEITEM handle = nullptr;
        Node *parent = nullptr; ///< null for the root alone
        std::vector<Node *> children;
        std::size_t place = 0; ///< among its siblings, while the parent says so
        bool isNumbered = true;
        bool isGone = false; ///< about to be erased
        std::u16string text;
        bool asks = false; ///< the parent knows the text
        int image = 0;
        int selectedImage = 0;
        int childrenHint = 0;
        LPARAM data = 0;
        UINT state = 0;
        int level = -1;
        int width = -1; ///< of the text; below 0 not measured yet
        int row = -1;
    };
    enum class By
    {
        Message,
        User
    };
    /// Where the parts of a row begin, in client coordinates.
    struct Parts
    {
        int button = 0;
        int state = 0;
        int image = 0;
        int label = 0;
        int end = 0; ///< of the label
    };
    /// What the parts of all rows take.
    struct Measures
    {
        int root;   ///< columns of buttons before those of the top level
        int indent; ///< of one level: a button or a line, which a finger must meet
        int state;  ///< where a row has one
        int image;  ///< with the room behind it
        int gap;    ///< on both sides of the text
    };

    // control_treeview.cpp: messages
    LRESULT takeItems(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takePlaces(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeLooks(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeWindow(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT selectItem(WPARAM which, HTREEITEM item);
    LRESULT itemRect(bool textOnly, RECT *box);

    // control_treeview_items.cpp: the tree, its texts, erasing and sorting
    Node *find(HTREEITEM item) const;
    Node *parentFor(HTREEITEM item);
    static void number(Node &parent);
    static Node *siblingOf(const Node &node, int step);
    static bool isBelow(const Node &node, const Node &top);
    Node *nextTo(WPARAM which, HTREEITEM item);
    HTREEITEM insert(const TVINSERTSTRUCTW &given);
    std::size_t placeFor(Node &parent, HTREEITEM after, const std::u16string &text);
    bool setItem(const TVITEMW &given);
    bool getItem(TVITEMW &wanted);
    static void apply(Node &node, const TVITEMW &given);
    std::u16string textOf(HTREEITEM item);
    int imageOf(HTREEITEM item, bool selected);
    bool hasChildren(HTREEITEM item);
    TVITEMW about(HTREEITEM item) const;
    bool erase(HTREEITEM item);
    void eraseBelow(Node &top, bool itself);
    void chooseBeforeErasing(const Node &gone);
    bool sortByText(HTREEITEM parent);
    bool sortBy(const TVSORTCB &order);

    // control_treeview_choice.cpp: choosing, opening and closing
    bool choose(HTREEITEM item, UINT how);
    bool expand(HTREEITEM item, WPARAM how, By by);
    bool setOpen(HTREEITEM item, bool open, By by);
    void openAbove(HTREEITEM item);
    void openAllBelow(HTREEITEM item);

    // control_treeview_places.cpp: rows, places and scrolling
    void changed();
    const std::vector<Node *> &rows();
    int rowOf(HTREEITEM item);
    HTREEITEM rowAt(int row);
    int rowCount() override
    {
        return static_cast<int>(rows().size());
    }
    int rowsWidth() override;
    bool mayScroll() const override
    {
        return (style() & TVS_NOSCROLL) == 0;
    }
    void aboutToArrange() override
    {
        measureShown();
    }
    void measure();
    int textWidth(const Node &node, std::u16string_view text) const;
    void measureShown();
    Measures measures() const;
    int indent() const;
    int rootColumns() const;
    int buttonColumns(const Node &node) const
    {
        return node.level + rootColumns();
    }
    Parts partsOf(const Node &node, const Measures &all) const;
    Parts partsOf(const Node &node) const
    {
        return partsOf(node, measures());
    }
    RECT rowBox(int row) const;
    HTREEITEM hitTest(TVHITTESTINFO &hit);
    bool show(HTREEITEM item);
    void redraw(HTREEITEM item);
    bool hasCheckBoxes() const
    {
        return (style() & TVS_CHECKBOXES) != 0;
    }
    HFONT fontOf(const Node &node) const;

    // control_treeview_draw.cpp
    void draw(HDC context);
    void drawRow(HDC context, HTREEITEM item);
    void drawLines(HDC context, const Node &node, const RECT &box) const;
    void drawButton(HDC context, const Node &node, const RECT &box) const;
    void drawLabel(HDC context, HTREEITEM item, const RECT &box);

    // control_treeview_input.cpp: keys, pen, label editing
    void beginKeys() override;
    void takeKey(int key) override;
    bool takeSign(int sign);
    void moveTo(int row);
    void typed(WCHAR character) override;
    void findTyped();
    void turnCheck(HTREEITEM item);
    void penDown(POINT point) override;
    void penMoved(POINT point) override;
    void penUp(POINT point) override;
    void doubleTap(POINT point) override;
    void releasePen() override;
    void editCurrentLabel() override
    {
        editLabel(m_chosen);
    }
    HWND editLabel(HTREEITEM item);
    void labelEdited(bool keep);

    std::unordered_map<HTREEITEM, std::unique_ptr<Node>> m_nodes;
    Node m_root;
    ULONGLONG m_lastHandle = 0;
    std::vector<Node *> m_rows;
    bool m_rowsDue = false;
    HTREEITEM m_chosen = nullptr;
    HTREEITEM m_dropped = nullptr;
    HIMAGELIST m_images = nullptr;
    HIMAGELIST m_states = nullptr;
    COLORREF m_ground = CLR_NONE;
    COLORREF m_ink = CLR_NONE;
    HFONT m_bold = nullptr;
    int m_indent = 0; ///< that a host asked for
    int m_ownHeight = 0;
    bool m_sorting = false;
    HTREEITEM m_edited = nullptr;

    /// The pen since it went down.
    struct Press
    {
        bool held = false;
        bool dragged = false;
        bool edits = false; ///< a tap here edits
        HTREEITEM item = nullptr;
        POINT at{0, 0};
    };
    Press m_press;
};
} // namespace zb::internal
