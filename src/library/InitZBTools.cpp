// The order of the steps is part of the contract: what a message of an early step shows may look at the earlier ones.
#include "library/InitZBTools.h"

#include "core/CRegistry.h"
#include "core/CeString.h"
#include "core/KelvoDirectory.h"
#include "core/SharedState.h"
#include "core/ShowError.h"
#include "framework/GetFont.h"
#include "framework/HIDPI.h"
#include "platform/kernel.h"
#include "platform/modules.h"
#include "platform/shell.h"
#include "records/COutlook.h"
#include "records/FullCategories.h"

#include <utility>

namespace
{
using zb::SharedState;
using zb::sharedState;

constexpr DWORD processAttach = 1;
constexpr int backgroundColor = 0x40000005;
constexpr LONG boldWeight = 700;
constexpr int boldSize = 13;
constexpr DWORD controlClasses = 0x11F;

void loadResources()
{
    SharedState &state = sharedState();
    if (state.resources == nullptr)
    {
        state.resources = LoadLibraryW(u"ZBResources.dll");
    }
    if (state.resources == nullptr)
    {
        CeString reason;
        reason.FormatMessageW(GetLastError());
        ShowError(reason, showErrorFlags);
    }
}

/// Only the two flags that a text format knows are taken.
void readDefine(const WCHAR *name, DWORD &define)
{
    DWORD value = 0;
    if (GetFromRegistry(HKEY_LOCAL_MACHINE, u"\\Software\\Kelvo", name, &value) == 0 && (value == 0 || value == 2))
    {
        define = value;
    }
}

void makeDrawingThings()
{
    SharedState &state = sharedState();
    state.scratch = std::make_unique<std::array<BYTE, zb::scratchBytes>>();
    state.background = GetSysColorBrush(backgroundColor);
    state.bold = GetFont(boldWeight, boldSize, u"Tahoma");
}

void initControls()
{
    const INITCOMMONCONTROLSEX controls{sizeof(INITCOMMONCONTROLSEX), controlClasses};
    InitCommonControlsEx(&controls);
    SHInitExtraControls();
}

/// The loader of the library runs this.
[[maybe_unused]] const int attached = ZBToolsEntry(zb::moduleAt(&attached), processAttach, nullptr);
} // namespace

int ZBToolsEntry(HINSTANCE instance, DWORD reason, void *)
{
    if (reason == processAttach)
    {
        sharedState().module = instance;
        InitKelvoDirectory();
    }
    return 1;
}

void InitZBTools(COutlook *outlook)
{
    SharedState &state = sharedState();
    if (state.initialized)
    {
        return;
    }
    ResetFullCategoryList();
    HIDPI_InitScaling();
    loadResources();
    readDefine(u"ZBGridLeft", state.leftDefine);
    readDefine(u"ZBGridRight", state.rightDefine);
    makeDrawingThings();
    state.outlook = outlook != nullptr ? outlook : new COutlook;
    initControls();
    InitKelvoDirectory();
    state.initialized = true;
}

void UnInitZBTools()
{
    SharedState &state = sharedState();
    if (!state.initialized)
    {
        return;
    }
    delete std::exchange(state.outlook, nullptr);
    state.background = nullptr;
    DeleteObject(std::exchange(state.bold, nullptr));
    FreeLibrary(std::exchange(state.resources, nullptr));
    state.scratch.reset();
    zb::forgetKelvoDirectory();
    state.initialized = false;
}
