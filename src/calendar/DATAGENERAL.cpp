// Search rows: release and first values.
#include "calendar/DATAGENERAL.h"

#include "platform/text.h"

#include <cstdlib>

DATAGENERAL::~DATAGENERAL()
{
    releaseTexts();
}

void DATAGENERAL::releaseTexts()
{
    for (BSTR *text : {&m_bstrTitle, &m_bstrKindLabel, &m_bstrText1, &m_bstrText2})
    {
        SysFreeString(*text);
        *text = nullptr;
    }
    std::free(m_pszCategories);
    m_pszCategories = nullptr;
}

void DATAGENERAL::NullData()
{
    releaseTexts();
    m_oid = 0;
    m_nSecond = m_nItemKind = m_nKind = 0;
    m_dtDate = 0.0;
    m_wFlag1 = m_bHasNotes = m_wFlag3 = m_wFlag4 = m_wFlag5 = 0;
    m_wFlag6 = m_wFlag7 = m_wFlag8 = m_wFlag9 = 0;
    m_nState = 1;
    m_bComplete = false;
}
