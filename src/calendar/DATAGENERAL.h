// One row of a search result list: an item of any kind. Owns its texts (BSTRs and malloc categories). Rows are made on
// the searching thread and read by the host once they are published; they are not copied.
#pragma once

#include "core/api.h"
#include "platform/types.h"

class ZBTOOLS_API DATAGENERAL
{
  public:
    DATAGENERAL() = default;
    DATAGENERAL(const DATAGENERAL &) = delete;
    DATAGENERAL &operator=(const DATAGENERAL &) = delete;
    virtual ~DATAGENERAL();

    /// Releases the texts and puts every field back to its first value.
    void NullData();

    CEOID m_oid = 0;
    LONG m_nSecond = 0;
    LONG m_nItemKind = 0;
    BSTR m_bstrTitle = nullptr;
    BSTR m_bstrKindLabel = nullptr;
    WCHAR *m_pszCategories = nullptr;
    BSTR m_bstrText1 = nullptr;
    BSTR m_bstrText2 = nullptr;
    double m_dtDate = 0.0;
    WORD m_wFlag1 = 0;
    WORD m_bHasNotes = 0; ///< the notes have more than 4 bytes
    WORD m_wFlag3 = 0;
    WORD m_wFlag4 = 0;
    WORD m_wFlag5 = 0;
    WORD m_wFlag6 = 0;
    WORD m_wFlag7 = 0;
    WORD m_wFlag8 = 0;
    WORD m_wFlag9 = 0;
    LONG m_nKind = 0;
    LONG m_nState = 1;
    bool m_bComplete = false;

  private:
    void releaseTexts();
};
