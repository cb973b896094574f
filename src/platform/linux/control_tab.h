// The tab control behind its window: its tabs, where they lie, how they look, how one is chosen.
#pragma once

#include "platform/linux/control.h"
#include "platform/tab_control.h"

#include <optional>
#include <string>
#include <vector>

namespace zb::internal
{
class TabControl final : public Control
{
  public:
    using Control::Control;

    LRESULT take(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    struct Tab
    {
        std::u16string text;
        int image = -1;
        LPARAM data = 0;
        int content = 0; ///< pixels of text and picture
    };

    int count() const
    {
        return static_cast<int>(m_tabs.size());
    }
    bool isTab(int index) const
    {
        return index >= 0 && index < count();
    }
    const Tab &tab(int index) const
    {
        return m_tabs[static_cast<std::size_t>(index)];
    }
    bool isBelow() const
    {
        return (style() & TCS_BOTTOM) != 0;
    }

    // control_tab.cpp: messages, keys, pen
    LRESULT takeTabs(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT takePlaces(UINT message, WPARAM wParam, LPARAM lParam);
    static void takeOver(Tab &tab, const TCITEMW &item);
    LRESULT insert(int before, const TCITEMW &item);
    bool set(int index, const TCITEMW &item);
    bool get(int index, TCITEMW &item) const;
    bool erase(int index);
    /// The former one; -1 as the index chooses none, another that is no tab nothing.
    LRESULT choose(int index);
    bool notify(UINT code, LRESULT &answer) const;
    void chooseByUser(int index);

    static LRESULT dialogCode(const MSG *about);
    void takeKey(int key);
    void takePen(UINT message, LPARAM place);
    void release();
    void repeat();
    void scroll(int step);

    // control_tab_looks.cpp: places and looks
    int widthOf(int index, int padding) const;
    int widthOf(int index) const
    {
        return widthOf(index, m_shownPadding);
    }
    int total(int padding) const;
    int arrowWidth() const
    {
        return scaledPixels(20);
    }
    /// What tabs have beside the arrows.
    int room() const
    {
        return client().right - (m_scrolls ? 2 * arrowWidth() : 0);
    }
    void measureAll();
    static int gap()
    {
        return scaledPixels(4);
    }
    /// Where not all fit, they give up room first, then they scroll.
    void arrange();
    /// The first tab shown when the last one is just seen whole.
    int lastFirst() const;
    void show(int index);
    int stripHeight() const;
    RECT strip() const;
    RECT boxOf(int index) const;
    RECT arrowBox(int step) const;
    int tabAt(POINT point) const;
    LRESULT hitTest(TCHITTESTINFO &info) const;
    void adjust(bool grow, RECT &box) const;

    int contentLeft(int index) const;
    static void fill(HDC context, const RECT &box, int color)
    {
        FillRect(context, &box, GetSysColorBrush(color));
    }
    void draw(HDC context) const;
    void drawArrow(HDC context, int step, bool useful) const;
    /// The chosen one is open towards the area and marked on its outer edge.
    void drawTab(HDC context, int index) const;
    void drawContent(HDC context, int index, const RECT &box) const;

    std::vector<Tab> m_tabs;
    int m_current = -1;
    int m_first = 0; ///< shown at the left
    bool m_scrolls = false;
    int m_pressed = 0;      ///< the arrow under the pen, by its step
    int m_shownPadding = 0; ///< beside the words, as it fits
    int m_lineHeight = 0;
    int m_width = 0; ///< as a host has set them; 0 for none
    int m_height = 0;
    std::optional<POINT> m_padding;
    HIMAGELIST m_images = nullptr;
};
} // namespace zb::internal
