// The engine's door to the object model of personal items, and the question for the device's password.
//
// The model is opened lazily: the first request that needs it does. Threads: the host's thread alone; loaders read the
// databases themselves. Failures are told in message boxes here; callers see -1 or a null item.
#pragma once

#include "core/api.h"
#include "platform/pim_objects.h"
#include "platform/types.h"

class ZBTOOLS_API COutlook
{
  public:
    /// Closed.
    COutlook() = default;
    virtual ~COutlook();
    COutlook(const COutlook &) = delete;
    COutlook &operator=(const COutlook &) = delete;

    /// Opens the model anew, for a window that may be null: then for the stored parent while it is a window, else for
    /// the foreground one. When the model was not open and its class is not known to the device, the library
    /// "pimstore.dll" is asked once to register it. Tells failures in boxes; the object is then closed.
    void Open(HWND window);
    /// Gives the application back. It is not logged off, so items that are still held go on working.
    void Close();
    void SetParentWindow(HWND window);
    bool IsOpen() const
    {
        return m_pApp != nullptr;
    }

    // -1 and null when the model can't be opened, else the platform's result. What comes out has a count of the
    // caller's.
    LONG GetItemFromOid(ULONG oid, IDispatch **item);
    /// 1 appointment, 2 contact, 3 task.
    LONG CreateItem(int kind, IDispatch **item);
    /// 102 is the infrared folder.
    LONG GetDefaultFolder(int folder, IFolder **result);
    /// The application, opened when it is not; null when it can't be. The count stays this object's.
    IPOutlookApp *GetApplication();

  private:
    HWND WindowFor(HWND window) const;
    void LogOn(HWND window);
    bool OpenLazily();

    IPOutlookApp *m_pApp = nullptr; ///< null while closed
    [[maybe_unused]] ULONG m_reserved = 0;
    HWND m_hwndParent = nullptr;
};
