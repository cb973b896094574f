// The file form of a list: its header, and a reader and writer for the sized items behind it.
//
// All numbers little-endian:
//
//     offset  size  field
//     0       1     version, 1
//     1       4     n, length of the signature with its zero
//     5       n     signature, narrow text with its zero
//     5 + n   4     number of elements
//     9 + n   4     index of the cursor (position + base - 1; base - 1 for an empty list)
//     13 + n  4     base of the list
//     17 + n  4     user value, or 0
//     21 + n  ...   for each element: 4 bytes size, then that many bytes
//
// A file appears whole or the old one stays. Threads: one object, one thread.
#pragma once

#include "core/api.h"
#include "platform/types.h"

#include <cstddef>
#include <vector>

inline constexpr int CELIST_OK = 0;
inline constexpr int CELIST_RANGE = 1;
inline constexpr int CELIST_MEMORY = 2;
inline constexpr int CELIST_LINKS = 3;
inline constexpr int CELIST_FILE = 4;
inline constexpr int CELIST_VERSION = 5;

/// What a pack callback is asked for.
enum _CELIST_STREAMTYPE
{
    CELIST_READ = 0,
    CELIST_WRITE = 1
};

struct CeListFileHeader
{
    int m_nCount;
    int m_nCursorIndex;
    int m_nBase;
    ULONG m_dwUser;
};

/// Collects a list file in memory and puts it on the device in one go.
class ZBTOOLS_API CeListFileWriter
{
  public:
    CeListFileWriter(const char *signature, const CeListFileHeader &header);
    void AddItem(const void *data, UINT size);
    /// 0, or 4 when the file can't be written; then the old one is still there.
    int Commit(const WCHAR *path) const;

  private:
    std::vector<BYTE> m_bytes;
};

/// Reads a list file. The whole file is in memory, so no count or size in it can ask for more than it holds.
class ZBTOOLS_API CeListFileReader
{
  public:
    /// 0, 2 without memory, 4 when the file can't be read or is cut short in its header, 5 for another version or
    /// signature.
    int Open(const WCHAR *path, const char *signature, CeListFileHeader &header);
    /// Most items that the rest of the file can hold.
    std::size_t MostItems() const;
    /// The next item, inside the reader's memory. *found is false at the end, also when only a part of a size word is
    /// left. 4 when the item is cut short.
    int NextItem(const BYTE **data, UINT *size, bool *found);

  private:
    int ReadWord(ULONG *value);
    int ReadHeader(const char *signature, CeListFileHeader &header);

    std::vector<BYTE> m_bytes;
    std::size_t m_nAt = 0;
};
