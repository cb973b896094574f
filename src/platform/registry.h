// The device's registry: keys in a tree, each with typed values, kept in the store.
//
// Names of keys and values are compared without regard to case and keep the case they were made with. Every call
// returns an error code (0 is success) and leaves the last error alone. A write that returned 0 is durable. Threads:
// any call from any thread; keys are handles of their own kind, closed with RegCloseKey.
#pragma once

#include "platform/types.h"

struct HKEY__;
using HKEY = HKEY__ *;

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<DWORD_PTR>(0x80000000U)))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<DWORD_PTR>(0x80000001U)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<DWORD_PTR>(0x80000002U)))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<DWORD_PTR>(0x80000003U)))

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_MULTI_SZ = 7;

inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

inline constexpr LONG ERROR_MORE_DATA = 234;
inline constexpr LONG ERROR_BADKEY = 1010;
inline constexpr LONG ERROR_KEY_HAS_CHILDREN = 1020;

/// Opens the key below `root`, and makes it and all that lead to it when missing. *disposition (may be null) says
/// which.
ZBPLATFORM_API LONG RegCreateKeyExW(HKEY root, const WCHAR *path, DWORD reserved, const WCHAR *keyClass, DWORD options,
                                    DWORD access, const void *security, HKEY *key, DWORD *disposition);
/// 2 when there is no such key. An empty or null path opens the key itself once more.
ZBPLATFORM_API LONG RegOpenKeyExW(HKEY root, const WCHAR *path, DWORD options, DWORD access, HKEY *key);
ZBPLATFORM_API LONG RegCloseKey(HKEY key);

/// A null or empty name is the key's default value. *size is in bytes: in, the room; out, the value's size (strings
/// with their terminator). 234 when the room is too small, 2 when there is no such value. Type and data may be null.
ZBPLATFORM_API LONG RegQueryValueExW(HKEY key, const WCHAR *name, DWORD *reserved, DWORD *type, BYTE *data,
                                     DWORD *size);
ZBPLATFORM_API LONG RegSetValueExW(HKEY key, const WCHAR *name, DWORD reserved, DWORD type, const BYTE *data,
                                   DWORD size);
ZBPLATFORM_API LONG RegDeleteValueW(HKEY key, const WCHAR *name);
/// With all that lies below it.
ZBPLATFORM_API LONG RegDeleteKeyW(HKEY root, const WCHAR *path);

/// Names in order; 259 behind the last. Sizes are in characters, out without the terminator.
ZBPLATFORM_API LONG RegEnumKeyExW(HKEY key, DWORD index, WCHAR *name, DWORD *nameSize, DWORD *reserved, WCHAR *keyClass,
                                  DWORD *classSize, FILETIME *lastWrite);
ZBPLATFORM_API LONG RegEnumValueW(HKEY key, DWORD index, WCHAR *name, DWORD *nameSize, DWORD *reserved, DWORD *type,
                                  BYTE *data, DWORD *dataSize);
/// Every out pointer may be null. Lengths are in characters, without terminators; the data length is in bytes.
ZBPLATFORM_API LONG RegQueryInfoKeyW(HKEY key, WCHAR *keyClass, DWORD *classSize, DWORD *reserved, DWORD *subKeys,
                                     DWORD *longestSubKey, DWORD *longestClass, DWORD *values, DWORD *longestValueName,
                                     DWORD *longestValue, DWORD *security, FILETIME *lastWrite);
ZBPLATFORM_API LONG RegFlushKey(HKEY key);
