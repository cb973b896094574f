// The library "pimstore": what a program loads to enter the object model in the device's registry, when it is not
// there. The objects themselves live in the platform.
#include "platform/pim_objects.h"

extern "C" __attribute__((visibility("default"))) HRESULT DllRegisterServer()
{
    return zb::registerObjectModel();
}
