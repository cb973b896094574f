// A device for tests of very many writes that are not about durability: nothing is synced to the disk.
#pragma once

#include "support/FaultyFileLayer.h"
#include "support/TestDevice.h"

namespace zb::test
{
/// Options that open the store through the layer, which then reads as usual and never syncs.
inline DeviceOptions quickOptions(FaultyFileLayer &layer)
{
    layer.setQuick(true);
    layer.setMapped(true);
    DeviceOptions options;
    options.storeFileLayer = layer.name();
    return options;
}

class QuickDeviceTest : public ::testing::Test
{
  protected:
    FaultyFileLayer layer;
    TestDevice device{quickOptions(layer)};
};
} // namespace zb::test
