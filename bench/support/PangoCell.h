// A peer: a new Pango layout for each cell, drawn by Cairo. Only where both happen to be installed.
#pragma once

#include <memory>
#include <string>

namespace zb::bench
{
class PangoCell
{
  public:
    /// A picture of this size; the face by name, its em in pixels.
    PangoCell(int width, int height, const std::string &family, int pixelsPerEm);
    ~PangoCell();
    PangoCell(const PangoCell &) = delete;
    PangoCell &operator=(const PangoCell &) = delete;

    /// Wraps, measures and draws the text, UTF-8. Returns the height.
    int cell(const std::string &text);

  private:
    struct State;
    std::unique_ptr<State> m_state;
};
} // namespace zb::bench
