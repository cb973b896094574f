// One desktop for all tests of a suite.
#pragma once

#include "apps/Desktop.h"

#include <gtest/gtest.h>

#include <memory>

namespace zb::test
{
/// The suite's own desktop, from its first test to its last.
template <typename Base>
class WithDesktop : public Base
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop().isRunning()) << "Xvfb is needed (tools/prepare.sh names it)";
    }
    static void TearDownTestSuite()
    {
        held().reset();
    }
    static Desktop &desktop()
    {
        if (held() == nullptr)
        {
            held() = std::make_unique<Desktop>();
        }
        return *held();
    }

  private:
    static std::unique_ptr<Desktop> &held()
    {
        static std::unique_ptr<Desktop> desktop;
        return desktop;
    }
};
} // namespace zb::test
