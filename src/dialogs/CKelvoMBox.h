// A question with up to three buttons of one's own words, which a user can ask not to see again.
//
// The answer that stands for a key is kept under Software\Kelvo\Zembrik\Ignore: 10 ask, 11 no, 12 yes. Anything else, or
// nothing, asks. Threads: the main thread.
#pragma once

#include "framework/CeBaseDialog.h"

#include <array>
#include <string>

/// The dialog: ends with 0, 1 or 2 for its buttons; Escape is the last one that there is.
class ZBTOOLS_API CKelvoMBoxDialog : public CeBaseDialog
{
  public:
    /// A button without text does not appear. With bCheck there is a box "Don't ask again".
    CKelvoMBoxDialog(std::u16string text, std::u16string title, std::array<std::u16string, 3> buttons, bool bCheck);
    ~CKelvoMBoxDialog() override;

    LONG_PTR Run(HWND hOwner);
    /// Whether the box was checked when the dialog ended.
    bool IsChecked() const
    {
        return m_bChecked;
    }

    LRESULT OnInitDialog(HWND hFocus, LPARAM lParam) override;
    LRESULT OnCommand(WPARAM wParam, LPARAM lParam, bool &handled) override;
    void OnOK() override;
    void OnCancel() override;

  private:
    int ClientWidth() const;
    void FitToText();
    int PlaceButtons(int nTop, int nWidth);
    int ButtonWidth(HDC hdc, HWND hButton) const;
    void EndWith(int nButton);

    std::u16string m_text;
    std::u16string m_title;
    std::array<std::u16string, 3> m_buttons;
    bool m_bCheck;
    bool m_bChecked = false;
};

class ZBTOOLS_API CKelvoMBox
{
  public:
    /// Asks the text of that number, with the words of nButton1 on the first button and those of nButton2 on the third
    /// (the second never appears; nButton3 is not looked at: hosts pass it). 1 for the first button, 0 otherwise. With a
    /// key the user may choose not to be asked again: the first button is then kept as yes, the third as no, unless
    /// bNoStaysQuestion. A null key always asks.
    static int MessageBoxW(const WCHAR *pszKey, const WCHAR *pszTitle, DWORD nText, DWORD nButton1, DWORD nButton2,
                           DWORD nButton3, HWND hOwner, bool bNoStaysQuestion);
    /// Runs the dialog with these words, null or empty ones without a button. pnCheck, if given, makes the box appear and
    /// gets 1 when it was checked. The number of the button, from 0.
    static int MakeKelvoMBox(HWND hOwner, const WCHAR *pszText, const WCHAR *pszTitle, const WCHAR *pszButton1,
                             const WCHAR *pszButton2, const WCHAR *pszButton3, int *pnCheck);
};
