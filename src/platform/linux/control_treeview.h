// The tree view's object.
//
// Invariants: items are found by their handles alone, which are counted up and never used again, so a stale one finds
// nothing; whoever tells the parent something looks its items up anew afterwards. m_rows holds the open rows from the top
// while m_rowsDue is false, and each node in it knows its number; a change of the tree makes it due and leaves it for
// whoever needs rows next, so building up a tree takes no longer than its items.
#pragma once

#include "platform/linux/control_notifying.h"
#include "platform/linux/label_edit.h"
#include "platform/linux/type_ahead.h"
#include "platform/tree_view.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace zb::internal
{
class TreeView final : public NotifyingControl
{
  public:
    explicit TreeView(HWND window);
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

    struct Bar
    {
        int most = -1;
        int page = 0;
        int position = 0;
        bool operator==(const Bar &) const = default;
    };

    // control_treeview.cpp: messages
    LRESULT takeItems(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takePlaces(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeLooks(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeWindow(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takeScrolling(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT selectItem(WPARAM which, HTREEITEM item);
    LRESULT itemRect(bool textOnly, RECT *box);

    // control_treeview_items.cpp: the tree, texts, opening, choosing, sorting
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
    bool choose(HTREEITEM item, UINT how);
    bool expand(HTREEITEM item, WPARAM how, By by);
    bool setOpen(HTREEITEM item, bool open, By by);
    void openAbove(HTREEITEM item);
    void openAllBelow(HTREEITEM item);
    bool sortByText(HTREEITEM parent);
    bool sortBy(const TVSORTCB &order);

    // control_treeview_places.cpp: rows, places, scrolling, looks
    void changed();
    const std::vector<Node *> &rows();
    int rowOf(HTREEITEM item);
    HTREEITEM rowAt(int row);
    int rowCount()
    {
        return static_cast<int>(rows().size());
    }
    void measure();
    void arrange();
    void setBar(int bar, const Bar &wanted);
    int pageRows() const;
    int highestTop();
    int textWidth(const Node &node, std::u16string_view text) const;
    void measureShown();
    int widest();
    int buttonColumns(const Node &node) const;
    int rowLeft(const Node &node) const;
    Parts partsOf(const Node &node) const;
    RECT rowBox(int row) const;
    HTREEITEM hitTest(TVHITTESTINFO &hit);
    void scrollTo(LONGLONG top);
    void scrollRightTo(LONGLONG left);
    bool show(HTREEITEM item);
    void redraw(HTREEITEM item);
    bool hasCheckBoxes() const
    {
        return (style() & TVS_CHECKBOXES) != 0;
    }
    HFONT fontOf(const Node &node) const;
    void draw(HDC context);
    void drawRow(HDC context, HTREEITEM item);
    void drawLines(HDC context, const Node &node, const RECT &box) const;
    void drawButton(HDC context, const Node &node, const RECT &box) const;
    void drawState(HDC context, const Node &node, const RECT &box) const;
    void drawLabel(HDC context, HTREEITEM item, const RECT &box);

    // control_treeview_input.cpp: keys, pen, label editing
    LRESULT takeInput(UINT message, WPARAM wParam, LPARAM lParam);
    void takeKey(int key);
    bool takeSign(int sign);
    void moveTo(int row);
    void typed(WCHAR character);
    void findTyped();
    void turnCheck(HTREEITEM item);
    void penDown(POINT point);
    void penMoved(POINT point);
    void penUp(POINT point);
    void doubleTap(POINT point);
    void releasePen();
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
    int m_rowHeight = 1;
    int m_top = 0;
    int m_left = 0;
    Bar m_bars[2]; ///< as the window knows them
    bool m_arranging = false;
    bool m_sorting = false;
    TypeAhead m_typed;
    LabelEdit m_edit;
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
