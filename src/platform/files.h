// The device's file tree: paths with '\' below the device's folder `files`, looked up without regard to case.
//
// "\My Documents\x.txt" is files/My Documents/x.txt. No path leaves that folder: "..", links that lead out and names
// with '/' or zeros are refused with last error 3. A name made anew keeps the case it was given.
// A path that does not begin with '\' counts from the same root. Empty parts and "." say nothing.
//
// A file that is created or truncated appears whole: it is written to a temporary beside it, which CloseHandle syncs
// and renames over the old one. A kill before that leaves the old file, and so do a write that failed and the closing
// of the device. The calls never show such temporaries; those of killed processes are removed when the device is next
// opened or their folder listed. A file opened for change in place (OPEN_EXISTING, OPEN_ALWAYS on one that exists) is
// changed in place.
//
// Share modes are not enforced: of two that write a file anew the last to close it wins, whole.
//
// Attributes: read-only (not to be written, replaced or deleted), hidden and directory are kept; an entry with none of
// them is "normal".
//
// Threads: any; one handle by one thread at a time.
#pragma once

#include "platform/types.h"

inline constexpr DWORD GENERIC_READ = 0x80000000U;
inline constexpr DWORD GENERIC_WRITE = 0x40000000U;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD CREATE_NEW = 1;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD OPEN_ALWAYS = 4;
inline constexpr DWORD TRUNCATE_EXISTING = 5;
inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 1;
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 2;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;
inline constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFFU;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFFU;

struct WIN32_FIND_DATAW
{
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    CEOID dwOID;
    WCHAR cFileName[MAX_PATH];
};

/// INVALID_HANDLE_VALUE on failure, with last error 2 (no file), 3 (no folder, bad path), 5 (a folder, or read-only),
/// 80 (CREATE_NEW on a file that exists), 112. CREATE_ALWAYS and OPEN_ALWAYS set last error 183 when the file was
/// there, 0 when not. `attributes` are those of a new file. CloseHandle puts a new file in place: false, with 112 and
/// the like, when that fails or a write had failed; with 80 when CREATE_NEW finds the name taken by then.
ZBPLATFORM_API HANDLE CreateFileW(const WCHAR *path, DWORD access, DWORD share, const void *security, DWORD disposition,
                                  DWORD attributes, HANDLE templateFile);
/// *done is written in every case. Reading at the end succeeds with 0 bytes.
ZBPLATFORM_API BOOL ReadFile(HANDLE file, void *buffer, DWORD bytes, DWORD *done, void *overlapped);
ZBPLATFORM_API BOOL WriteFile(HANDLE file, const void *buffer, DWORD bytes, DWORD *done, void *overlapped);
/// New position (low word); 0xFFFFFFFF on failure, the position unchanged. high may be null for positions below 4 GiB;
/// with high, the last error is 0 on success. In front of the file: last error 131.
ZBPLATFORM_API DWORD SetFilePointer(HANDLE file, LONG distance, LONG *high, DWORD from);
ZBPLATFORM_API BOOL SetEndOfFile(HANDLE file);
ZBPLATFORM_API DWORD GetFileSize(HANDLE file, DWORD *high);
ZBPLATFORM_API BOOL FlushFileBuffers(HANDLE file);
/// UTC. Any of the three may be null. The time of creation can't be set; SetFileTime leaves it.
ZBPLATFORM_API BOOL GetFileTime(HANDLE file, FILETIME *created, FILETIME *accessed, FILETIME *written);
ZBPLATFORM_API BOOL SetFileTime(HANDLE file, const FILETIME *created, const FILETIME *accessed,
                                const FILETIME *written);

/// Last error 5 for a folder or a read-only file.
ZBPLATFORM_API BOOL DeleteFileW(const WCHAR *path);
/// Files and folders. Fails with last error 183 when the target exists; a change of case alone is no such target.
ZBPLATFORM_API BOOL MoveFileW(const WCHAR *from, const WCHAR *to);
/// The target appears whole or not at all, with the attributes and the time of writing of the source. Last error 80
/// when failIfExists and the target is there.
ZBPLATFORM_API BOOL CopyFileW(const WCHAR *from, const WCHAR *to, BOOL failIfExists);
ZBPLATFORM_API BOOL CreateDirectoryW(const WCHAR *path, const void *security);
/// Only an empty one (145).
ZBPLATFORM_API BOOL RemoveDirectoryW(const WCHAR *path);
ZBPLATFORM_API DWORD GetFileAttributesW(const WCHAR *path);
ZBPLATFORM_API BOOL SetFileAttributesW(const WCHAR *path, DWORD attributes);

/// The last part may hold '*' and '?', matched without regard to case; "*.*" matches every name. Entries come in order
/// of their names without regard to case; "." and ".." never. INVALID_HANDLE_VALUE with last error 2 when nothing fits,
/// 3 when there is no such folder. Entries removed meanwhile are left out. FindNextFileW ends with last error 18.
/// Closed with FindClose.
ZBPLATFORM_API HANDLE FindFirstFileW(const WCHAR *pattern, WIN32_FIND_DATAW *data);
ZBPLATFORM_API BOOL FindNextFileW(HANDLE find, WIN32_FIND_DATAW *data);
ZBPLATFORM_API BOOL FindClose(HANDLE find);
