// Tells when another day begins.
//
// Once a minute it is looked at, and at midnight: clocks are set, devices sleep, and zones change. Threads: the main
// thread.
#pragma once

#include "framework/CeWnd.h"

#include <functional>

namespace zb::screens
{
class DayWatch final : public CeWnd
{
  public:
    ~DayWatch() override;

    /// `changed` is called when it is another today than before, with the former one. False when there is no window to
    /// be had.
    bool open(std::function<void(int former)> changed);

    void OnTimer(UINT_PTR nId, bool &handled) override;

  private:
    void await();

    std::function<void(int former)> m_changed;
    int m_today = 0;
};
} // namespace zb::screens
