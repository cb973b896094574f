#include "records/COutlook.h"

#include "core/ShowError.h"
#include "platform/kernel.h"
#include "platform/user.h"

namespace
{
constexpr const WCHAR *noObject = u"Cannot create the object";
constexpr const WCHAR *noLogon = u"Cannot logon to the Pocket Outlook Database.";
constexpr const WCHAR *noRegistration =
    u"Failed to register pimstore.DLL. Please make sure its in the \\WINDOWS directory.";
constexpr LONG notOpen = -1;

IPOutlookApp *createApplication()
{
    void *application = nullptr;
    CoCreateInstance(CLSID_Application, nullptr, CLSCTX_INPROC_SERVER, IID_IPOutlookApp, &application);
    return static_cast<IPOutlookApp *>(application);
}

/// False, and told, when the library or its entry is missing. What registering itself gives does not matter: the next
/// attempt to make the object shows it.
bool registerModel()
{
    using Register = HRESULT (*)();
    const HMODULE module = LoadLibraryW(u"pimstore.dll");
    void *const entry = module == nullptr ? nullptr : GetProcAddressW(module, u"DllRegisterServer");
    if (entry != nullptr)
    {
        reinterpret_cast<Register>(entry)();
    }
    else
    {
        ShowError(noRegistration, showErrorFlags);
    }
    if (module != nullptr)
    {
        FreeLibrary(module);
    }
    return entry != nullptr;
}
} // namespace

COutlook::~COutlook()
{
    Close();
}

HWND COutlook::WindowFor(HWND window) const
{
    if (window != nullptr)
    {
        return window;
    }
    return IsWindow(m_hwndParent) != FALSE ? m_hwndParent : GetForegroundWindow();
}

void COutlook::Open(HWND window)
{
    const HWND owner = WindowFor(window);
    const bool again = IsOpen();
    Close();
    m_pApp = createApplication();
    if (m_pApp == nullptr && !again)
    {
        if (!registerModel())
        {
            return;
        }
        m_pApp = createApplication();
    }
    LogOn(owner);
}

void COutlook::LogOn(HWND window)
{
    if (m_pApp == nullptr)
    {
        ShowError(noObject, showErrorFlags);
    }
    else if (FAILED(m_pApp->Logon(window)))
    {
        Close();
        ShowError(noLogon, showErrorFlags);
    }
}

void COutlook::Close()
{
    if (m_pApp != nullptr)
    {
        m_pApp->Release();
        m_pApp = nullptr;
    }
}

void COutlook::SetParentWindow(HWND window)
{
    m_hwndParent = window;
}

bool COutlook::OpenLazily()
{
    if (!IsOpen())
    {
        Open(nullptr);
    }
    return IsOpen();
}

LONG COutlook::GetItemFromOid(ULONG oid, IDispatch **item)
{
    *item = nullptr;
    return OpenLazily() ? m_pApp->GetItemFromOid(static_cast<LONG>(oid), item) : notOpen;
}

LONG COutlook::CreateItem(int kind, IDispatch **item)
{
    *item = nullptr;
    return OpenLazily() ? m_pApp->CreateItem(kind, item) : notOpen;
}

LONG COutlook::GetDefaultFolder(int folder, IFolder **result)
{
    *result = nullptr;
    return OpenLazily() ? m_pApp->GetDefaultFolder(folder, result) : notOpen;
}

IPOutlookApp *COutlook::GetApplication()
{
    return OpenLazily() ? m_pApp : nullptr;
}
