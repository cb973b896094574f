#include "display/ImageStretches.h"

#include "display/HTMLLine.h"

#include <algorithm>

namespace zb
{
const ImageStretch &ImageStretches::from(CHTMLParser &parser)
{
    const int at = parser.CursorIndex() - m_first;
    if (at >= 0 && static_cast<std::size_t>(at) < m_stretches.size())
    {
        return m_stretches[static_cast<std::size_t>(at)];
    }
    read(parser);
    return m_stretches.front();
}

void ImageStretches::read(CHTMLParser &parser)
{
    m_stretches.clear();
    m_first = parser.CursorIndex();
    const UINT align = parser.GetCurrTextAlign();
    while (parser.EndOfTokens() == FALSE && parser.GetCurrTokenType() == TOKEN_IMAGE &&
           parser.GetCurrTextAlign() == align)
    {
        ImagePlace place{};
        const bool shows = currentImage(parser, place);
        m_stretches.push_back({shows ? place.width : 0, shows ? place.height : 0, 0});
        parser.NextToken();
    }
    const int end = parser.CursorIndex();
    parser.MoveCursor(m_first);
    ImageStretch behind{0, 0, end};
    for (auto stretch = m_stretches.rbegin(); stretch != m_stretches.rend(); ++stretch)
    {
        stretch->width += behind.width;
        stretch->height = std::max(stretch->height, behind.height);
        stretch->end = end;
        behind = *stretch;
    }
}
} // namespace zb
