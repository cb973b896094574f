// The file of parent links: reading and writing it, and keeping one that can't be read.
#include "platform/files.h"
#include "platform/kernel.h"
#include "tasks/TaskHierarchy.h"

#include <algorithm>
#include <array>
#include <new>

namespace
{
constexpr LONG fileNotFound = 2;
constexpr LONG pathNotFound = 3;
constexpr std::size_t offsetParent = 4;
constexpr std::size_t offsetExpanded = 8;

using LinkBytes = std::array<BYTE, zb::TaskHierarchy::LINK_SIZE>;

void putWord(LinkBytes &bytes, std::size_t at, ULONG value)
{
    for (unsigned shift = 0; shift < 32; shift += 8)
    {
        bytes[at++] = static_cast<BYTE>(value >> shift);
    }
}

ULONG wordAt(const LinkBytes &bytes, std::size_t at)
{
    ULONG value = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
    {
        value |= static_cast<ULONG>(bytes[at++]) << shift;
    }
    return value;
}

LinkBytes packed(const _HIERSTRUCT &link)
{
    LinkBytes bytes{};
    putWord(bytes, 0, link.m_oid);
    putWord(bytes, offsetParent, link.m_oidParent);
    bytes[offsetExpanded] = link.m_bExpanded;
    return bytes;
}

_HIERSTRUCT unpacked(const BYTE *data, UINT size)
{
    LinkBytes bytes{};
    std::copy_n(data, std::min<std::size_t>(size, bytes.size()), bytes.begin());
    return {wordAt(bytes, 0), wordAt(bytes, offsetParent), bytes[offsetExpanded], {}};
}

bool isMissing(const WCHAR *path)
{
    if (GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES)
    {
        return false;
    }
    const auto error = static_cast<LONG>(GetLastError());
    return error == fileNotFound || error == pathNotFound;
}

void createFoldersOf(const std::u16string &path)
{
    for (std::size_t at = path.find(u'\\', 1); at != std::u16string::npos; at = path.find(u'\\', at + 1))
    {
        CreateDirectoryW(path.substr(0, at).c_str(), nullptr);
    }
}
} // namespace

namespace zb
{
int TaskHierarchy::Load(const WCHAR *path)
{
    RemoveAll();
    m_base = 0;
    int error = CELIST_OK;
    try
    {
        error = Read(path);
    }
    catch (const std::bad_alloc &)
    {
        error = CELIST_MEMORY;
    }
    if (error != CELIST_OK)
    {
        RemoveAll();
        m_base = 0;
    }
    m_bRefused = error != CELIST_OK;
    m_bChanged = false;
    return error;
}

int TaskHierarchy::Read(const WCHAR *path)
{
    if (isMissing(path))
    {
        return CELIST_OK;
    }
    CeListFileReader reader;
    CeListFileHeader header{};
    int error = reader.Open(path, SIGNATURE, header);
    if (error != CELIST_OK)
    {
        return error;
    }
    if (header.m_nBase != 0 && header.m_nBase != 1)
    {
        return CELIST_FILE;
    }
    m_base = header.m_nBase;
    error = ReadLinks(reader);
    if (error == CELIST_OK)
    {
        MoveCursorTo(static_cast<LONGLONG>(header.m_nCursorIndex) - m_base);
    }
    return error;
}

int TaskHierarchy::ReadLinks(CeListFileReader &reader)
{
    for (;;)
    {
        const BYTE *data = nullptr;
        UINT size = 0;
        bool found = false;
        const int error = reader.NextItem(&data, &size, &found);
        if (error != CELIST_OK || !found)
        {
            return error;
        }
        Append(unpacked(data, size));
    }
}

/// An index that is not in the list leaves the cursor on the last link.
void TaskHierarchy::MoveCursorTo(LONGLONG index)
{
    if (index < 0 || index >= m_count)
    {
        return;
    }
    m_cursor = m_order.first;
    for (; index > 0; --index)
    {
        m_cursor = At(m_cursor).next;
    }
}

int TaskHierarchy::Save(const WCHAR *path)
{
    if (m_bRefused && !MoveRefusedFileAside(path))
    {
        return CELIST_FILE;
    }
    m_bRefused = false;
    int error = CELIST_OK;
    try
    {
        error = IsEmpty() ? Delete(path) : Write(path);
    }
    catch (const std::bad_alloc &)
    {
        error = CELIST_MEMORY;
    }
    m_bChanged = m_bChanged && error != CELIST_OK;
    return error;
}

int TaskHierarchy::Delete(const WCHAR *path)
{
    return DeleteFileW(path) != FALSE || isMissing(path) ? CELIST_OK : CELIST_FILE;
}

bool TaskHierarchy::MoveRefusedFileAside(const WCHAR *path)
{
    if (isMissing(path))
    {
        return true;
    }
    std::u16string aside(path);
    const std::size_t dot = aside.find_last_of(u".\\");
    const bool hasExtension = dot != std::u16string::npos && aside[dot] == u'.';
    aside.insert(hasExtension ? dot : aside.size(), u".damaged");
    DeleteFileW(aside.c_str());
    return MoveFileW(path, aside.c_str()) != FALSE;
}

int TaskHierarchy::Write(const WCHAR *path) const
{
    createFoldersOf(path);
    CeListFileWriter writer(SIGNATURE, {m_count, GetCursor() + m_base, m_base, 0});
    for (int at = m_order.first; at != none; at = At(at).next)
    {
        const LinkBytes bytes = packed({At(at).oid, At(at).oidParent, At(at).expanded, {}});
        writer.AddItem(bytes.data(), LINK_SIZE);
    }
    return writer.Commit(path);
}
} // namespace zb
