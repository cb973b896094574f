// A dialog whose client area scrolls where it is smaller than the template laid it out for.
//
// Threads, ownership, errors: as CeBaseDialog.
#pragma once

#include "framework/CeBaseDialog.h"

class ZBTOOLS_API CeDialog : public CeBaseDialog
{
  public:
    explicit CeDialog(UINT nSHInitFlags = 0);
    ~CeDialog() override;

    /// Size of the window in pixels that it is given when it is made; 0 leaves a side as the template has it, with room
    /// for a scroll bar.
    void SetDefaultSize(int cx, int cy);

    LRESULT OnInitDialog(HWND hFocus, LPARAM lParam) override;
    LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, bool &handled) override;
    void OnSize(UINT nType, int cx, int cy, bool &handled) override;
    virtual void OnHScroll(UINT nCode, int nPos, bool &handled);
    virtual void OnVScroll(UINT nCode, int nPos, bool &handled);
    /// Brings the default size into force; nothing when neither side has one.
    virtual void SetDefaultWidthHeight();

  protected:
    int m_nDefaultWidth = 0;
    int m_nDefaultHeight = 0;

  private:
    void UpdateBar(int nBar, int nContent, int nPage);
    void Scroll(int nBar, UINT nCode, int nPos);
    void MoveChildren(int dx, int dy);

    /// Of the client area that the template was laid out for.
    SIZE m_content{0, 0};
    POINT m_offset{0, 0};
};
