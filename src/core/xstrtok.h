// A tokeniser that keeps empty fields: "a,,b," is "a", "", "b", "".
#pragma once

#include "core/api.h"
#include "platform/types.h"

/// State of one pass. The caller sets m_pszStart and m_pszDelimiter; the text is cut up in place and must outlive the
/// pass. Set m_pszStart again to begin another one.
struct XSTRTOK
{
    /// What has not been read yet; null when all is read.
    WCHAR *m_pszRest = nullptr;
    /// The text, until the first call takes it.
    WCHAR *m_pszStart = nullptr;
    /// Only the first character counts.
    const WCHAR *m_pszDelimiter = nullptr;
};

/// The next field, or null when there is none. An empty start text has no field at all; a text that ends in a delimiter
/// has an empty last one.
ZBTOOLS_API WCHAR *xstrtok(XSTRTOK *state);
