// The window that stands for the application.
#pragma once

#include "core/api.h"
#include "platform/user.h"

/// From the active window up through its parents and owners; null while no window of the calling thread is active.
ZBTOOLS_API HWND CeGetAppWindow();
