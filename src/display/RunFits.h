// How far runs of text go on lines of some width: the last few answers, since a line is measured before it is painted,
// and a cell measured before it is drawn. Belongs to a parser and goes with its tokens.
#pragma once

#include "platform/device.h"
#include "platform/gdi.h"

#include <array>
#include <cstddef>

namespace zb
{
struct RunFit
{
    /// Where in its token the run begins, and the width that it was given.
    const WCHAR *text;
    LONG width;
    /// Characters that go on the line, all of them if `whole`, and what they take.
    std::size_t chars;
    SIZE size;
    bool whole;
    /// Of the font.
    LONG descent;
};

class RunFits
{
  public:
    /// Null when it is not known (any more).
    const RunFit *find(const WCHAR *text, LONG width)
    {
        if (m_generation != deviceGeneration())
        {
            clear(); // another device may have other faces
        }
        for (const RunFit &fit : m_fits)
        {
            if (fit.text == text && fit.width == width)
            {
                return &fit;
            }
        }
        return nullptr;
    }
    /// In the place of the oldest one.
    const RunFit &add(const RunFit &fit)
    {
        RunFit &kept = m_fits[m_next++ % m_fits.size()];
        kept = fit;
        return kept;
    }
    void clear()
    {
        m_fits.fill({});
        m_generation = deviceGeneration();
    }

  private:
    std::array<RunFit, 8> m_fits{};
    std::size_t m_next = 0;
    std::uint64_t m_generation = 0;
};
} // namespace zb
