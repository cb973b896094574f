// How tree views look, at two densities.
#include "platform/tree_view.h"
#include "support/ControlSheet.h"

namespace
{
using namespace zb::test;

class TreeViewPictures : public ControlSheet
{
  protected:
    ~TreeViewPictures() override
    {
        if (images != nullptr)
        {
            ImageList_Destroy(images);
        }
    }
    static HTREEITEM item(HWND tree, HTREEITEM parent, const WCHAR *text, int image = 0, UINT state = 0)
    {
        std::u16string own = text;
        TVINSERTSTRUCTW given{};
        given.hParent = parent;
        given.hInsertAfter = TVI_LAST;
        given.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | (state != 0 ? TVIF_STATE : 0);
        given.item.pszText = own.data();
        given.item.iImage = given.item.iSelectedImage = image;
        given.item.state = given.item.stateMask = state;
        return reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&given)));
    }
    static void choose(HWND tree, HTREEITEM which)
    {
        SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(which));
    }
    /// Three levels, the second branch closed.
    struct Tree
    {
        HWND window;
        HTREEITEM first;
        HTREEITEM below;
        HTREEITEM deepest;
        HTREEITEM closed;
        HTREEITEM last;
    };
    Tree tree(DWORD style, int x, int y, int width, int height)
    {
        Tree made{};
        made.window = add(WC_TREEVIEWW, u"", style | WS_BORDER, x, y, width, height);
        if ((style & TVS_CHECKBOXES) == 0)
        {
            addImages(made.window);
        }
        made.first = item(made.window, TVI_ROOT, u"Projects", 0, TVIS_EXPANDED | TVIS_BOLD);
        made.below = item(made.window, made.first, u"House", 1, TVIS_EXPANDED);
        made.deepest = item(made.window, made.below, u"Paint the kitchen");
        item(made.window, made.below, u"Call the plumber", 0, TVIS_CUT);
        made.closed = item(made.window, made.first, u"Garden", 1);
        item(made.window, made.closed, u"Apple tree");
        item(made.window, made.first, u"Car");
        made.last = item(made.window, TVI_ROOT, u"Someday, when there is time for it");
        return made;
    }
    void addImages(HWND window)
    {
        if (images == nullptr)
        {
            const int side = dots(16);
            std::vector<std::uint32_t> pixels(static_cast<std::size_t>(2 * side * side), 0xFF00FF);
            for (int y = dots(3); y < side - dots(3); ++y)
            {
                for (int x = dots(2); x < side - dots(2); ++x)
                {
                    pixels[static_cast<std::size_t>(y * 2 * side + x)] = 0xC08030;
                    pixels[static_cast<std::size_t>(y * 2 * side + side + x)] = 0x308050;
                }
            }
            const HBITMAP bitmap = CreateBitmap(2 * side, side, 1, 32, pixels.data());
            images = ImageList_Create(side, side, ILC_COLOR32 | ILC_MASK, 2, 0);
            ImageList_AddMasked(images, bitmap, RGB(255, 0, 255));
            DeleteObject(bitmap);
        }
        SendMessageW(window, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images));
    }
    HIMAGELIST images = nullptr;
};

constexpr DWORD full = TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT;
} // namespace

TEST_P(TreeViewPictures, EveryState)
{
    // Left: the focus among lines, buttons and pictures; below it check boxes and whole rows.
    const Tree first = tree(full | TVS_EDITLABELS, 6, 6, 232, 150);
    choose(first.window, first.closed);
    SendMessageW(first.window, TVM_SELECTITEM, TVGN_DROPHILITE, reinterpret_cast<LPARAM>(first.deepest));
    const Tree checks = tree(full | TVS_CHECKBOXES | TVS_FULLROWSELECT | TVS_SHOWSELALWAYS, 6, 162, 232, 152);
    choose(checks.window, checks.below);
    TVITEMW set{TVIF_STATE, checks.deepest, 0x2000, TVIS_STATEIMAGEMASK, nullptr, 0, 0, 0, 0, 0};
    SendMessageW(checks.window, TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&set));
    // Right: buttons alone, not at the root; disabled; too small and scrolled to the last one.
    const Tree plain = tree(TVS_HASBUTTONS | TVS_SHOWSELALWAYS, 244, 6, 230, 100);
    choose(plain.window, plain.below);
    const Tree disabled = tree(full | WS_DISABLED, 244, 112, 230, 100);
    choose(disabled.window, nullptr);
    const Tree narrow = tree(full | TVS_SHOWSELALWAYS, 244, 218, 130, 96);
    choose(narrow.window, narrow.last);
    SetFocus(first.window);
    expectSheet("tree-view");
    SendMessageW(first.window, TVM_SELECTITEM, TVGN_DROPHILITE, 0);
    SendMessageW(first.window, TVM_EDITLABELW, 0, reinterpret_cast<LPARAM>(first.below));
    expectSheet("tree-view-edit");
}

INSTANTIATE_TEST_SUITE_P(Densities, TreeViewPictures, ::testing::Values(96, 192));
