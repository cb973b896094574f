// What the pictures take that stand in a row, with nothing between them: a line is measured ahead of each of its parts, and
// pictures never end it, so a long row of them would be gone through again for each line that it fills.
//
// Belongs to a parser, for the time of one drawing: sizes of bitmaps are asked for once then.
#pragma once

#include "platform/types.h"

#include <vector>

class CHTMLParser;

namespace zb
{
/// From one picture to the end of its row.
struct ImageStretch
{
    LONGLONG width = 0; ///< of all of them
    LONG height = 0;    ///< of the highest; 0 when none of them has a bitmap
    int end = 0;        ///< the token behind the row
};

class ImageStretches
{
  public:
    /// From the picture at the parser's cursor, which stays there. A row ends where the alignment changes.
    const ImageStretch &from(CHTMLParser &parser);
    void clear()
    {
        m_stretches.clear();
    }

  private:
    void read(CHTMLParser &parser);

    int m_first = 0; ///< token of the first one
    std::vector<ImageStretch> m_stretches;
};
} // namespace zb
