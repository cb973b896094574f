// The tokeniser that keeps empty fields.
#include "core/xstrtok.h"

WCHAR *xstrtok(XSTRTOK *state)
{
    WCHAR *field = state->m_pszRest;
    if (state->m_pszStart != nullptr)
    {
        field = state->m_pszStart;
        state->m_pszStart = nullptr;
        state->m_pszRest = nullptr;
        if (*field == 0)
        {
            return nullptr;
        }
    }
    if (field == nullptr)
    {
        return nullptr;
    }
    const WCHAR delimiter = state->m_pszDelimiter != nullptr ? *state->m_pszDelimiter : u'\0';
    WCHAR *end = field;
    while (*end != 0 && *end != delimiter)
    {
        ++end;
    }
    // A delimiter leaves a rest, if only an empty one: that is the last field of "a,".
    state->m_pszRest = *end != 0 ? end + 1 : nullptr;
    *end = 0;
    return field;
}
