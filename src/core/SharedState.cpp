#include "core/SharedState.h"

#include "platform/modules.h"

zb::SharedState &zb::sharedState()
{
    // Never destroyed: hosts may shut the library down in their own last moments.
    static auto *const state = new SharedState;
    return *state;
}

DWORD GetLeftDefine()
{
    return zb::sharedState().leftDefine;
}

DWORD GetRightDefine()
{
    return zb::sharedState().rightDefine;
}

COutlook *GetOutlookObject()
{
    return zb::sharedState().outlook;
}

HINSTANCE CeGetAppInstance()
{
    return GetModuleHandleW(nullptr);
}
