#include "framework/GetFont.h"

#include "framework/HIDPI.h"
#include "platform/text.h"

HFONT GetFont(LONG weight, int size, const WCHAR *face, BYTE quality)
{
    LOGFONTW font{};
    font.lfHeight = size * g_HIDPI_ZBFontScale;
    font.lfWeight = weight;
    font.lfQuality = quality;
    wcsncpy(font.lfFaceName, face, LF_FACESIZE - 1);
    return CreateFontIndirectW(&font);
}
