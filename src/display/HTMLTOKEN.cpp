#include "display/HTMLTOKEN.h"

#include <algorithm>

HTMLTOKEN::~HTMLTOKEN()
{
    if (m_hFont != nullptr)
    {
        DeleteObject(m_hFont);
    }
}

void HTMLTOKEN::SetText(std::u16string_view text)
{
    m_pText = std::make_unique<WCHAR[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), m_pText.get());
}
