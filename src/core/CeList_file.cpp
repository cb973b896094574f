// The file form of a list.
#include "core/CeList_file.h"

#include "platform/files.h"
#include "platform/kernel.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace
{
constexpr BYTE VERSION = 1;
constexpr DWORD LARGEST_STEP = 1U << 20U;

/// A file handle that is closed on every way out.
class File
{
  public:
    explicit File(HANDLE handle) : m_handle(handle)
    {
    }
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    ~File()
    {
        Close();
    }
    bool IsOpen() const
    {
        return m_handle != INVALID_HANDLE_VALUE;
    }
    HANDLE Get() const
    {
        return m_handle;
    }
    bool Close()
    {
        const HANDLE handle = m_handle;
        m_handle = INVALID_HANDLE_VALUE;
        return handle != INVALID_HANDLE_VALUE && CloseHandle(handle) != FALSE;
    }

  private:
    HANDLE m_handle;
};

/// Its length with the zero; null counts as empty.
std::size_t signatureBytes(const char *signature)
{
    return (signature != nullptr ? std::strlen(signature) : 0) + 1;
}

void addWord(std::vector<BYTE> &bytes, ULONG value)
{
    for (unsigned shift = 0; shift < 32; shift += 8)
    {
        bytes.push_back(static_cast<BYTE>(value >> shift));
    }
}

int readAll(HANDLE file, std::vector<BYTE> &bytes)
{
    DWORD high = 0;
    const DWORD size = GetFileSize(file, &high);
    if (high != 0 || size > static_cast<DWORD>(std::numeric_limits<int>::max()))
    {
        return CELIST_MEMORY;
    }
    bytes.resize(size);
    std::size_t done = 0;
    while (done < bytes.size())
    {
        const auto step = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - done, LARGEST_STEP));
        DWORD got = 0;
        if (ReadFile(file, bytes.data() + done, step, &got, nullptr) == FALSE)
        {
            return CELIST_FILE;
        }
        if (got == 0)
        {
            break;
        }
        done += got;
    }
    bytes.resize(done);
    return CELIST_OK;
}
} // namespace

CeListFileWriter::CeListFileWriter(const char *signature, const CeListFileHeader &header)
{
    const std::size_t length = signatureBytes(signature);
    m_bytes.push_back(VERSION);
    addWord(m_bytes, static_cast<ULONG>(length));
    m_bytes.insert(m_bytes.end(), signature, signature + length - 1);
    m_bytes.push_back(0);
    addWord(m_bytes, static_cast<ULONG>(header.m_nCount));
    addWord(m_bytes, static_cast<ULONG>(header.m_nCursorIndex));
    addWord(m_bytes, static_cast<ULONG>(header.m_nBase));
    addWord(m_bytes, header.m_dwUser);
}

void CeListFileWriter::AddItem(const void *data, UINT size)
{
    addWord(m_bytes, size);
    const auto *first = static_cast<const BYTE *>(data);
    if (size != 0)
    {
        m_bytes.insert(m_bytes.end(), first, first + size);
    }
}

int CeListFileWriter::Commit(const WCHAR *path) const
{
    File file(
        CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen())
    {
        return CELIST_FILE;
    }
    bool written = true;
    for (std::size_t done = 0; written && done < m_bytes.size();)
    {
        const auto step = static_cast<DWORD>(std::min<std::size_t>(m_bytes.size() - done, LARGEST_STEP));
        DWORD put = 0;
        written = WriteFile(file.Get(), m_bytes.data() + done, step, &put, nullptr) != FALSE && put == step;
        done += step;
    }
    return file.Close() && written ? CELIST_OK : CELIST_FILE;
}

int CeListFileReader::Open(const WCHAR *path, const char *signature, CeListFileHeader &header)
{
    File file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen())
    {
        return CELIST_FILE;
    }
    try
    {
        const int error = readAll(file.Get(), m_bytes);
        return error != CELIST_OK ? error : ReadHeader(signature, header);
    }
    catch (const std::bad_alloc &)
    {
        return CELIST_MEMORY;
    }
}

int CeListFileReader::ReadWord(ULONG *value)
{
    if (m_bytes.size() - m_nAt < sizeof(ULONG))
    {
        return CELIST_FILE;
    }
    *value = 0;
    for (unsigned shift = 0; shift < 32; shift += 8)
    {
        *value |= static_cast<ULONG>(m_bytes[m_nAt++]) << shift;
    }
    return CELIST_OK;
}

int CeListFileReader::ReadHeader(const char *signature, CeListFileHeader &header)
{
    if (m_bytes.empty())
    {
        return CELIST_FILE;
    }
    if (m_bytes[m_nAt++] != VERSION)
    {
        return CELIST_VERSION;
    }
    ULONG length = 0;
    if (ReadWord(&length) != CELIST_OK)
    {
        return CELIST_FILE;
    }
    const std::size_t expected = signatureBytes(signature);
    if (length != expected)
    {
        return CELIST_VERSION;
    }
    if (m_bytes.size() - m_nAt < expected)
    {
        return CELIST_FILE;
    }
    if (std::memcmp(m_bytes.data() + m_nAt, signature != nullptr ? signature : "", expected) != 0)
    {
        return CELIST_VERSION;
    }
    m_nAt += expected;
    ULONG words[4] = {};
    for (ULONG &word : words)
    {
        if (ReadWord(&word) != CELIST_OK)
        {
            return CELIST_FILE;
        }
    }
    header = {static_cast<int>(words[0]), static_cast<int>(words[1]), static_cast<int>(words[2]), words[3]};
    return CELIST_OK;
}

std::size_t CeListFileReader::MostItems() const
{
    return (m_bytes.size() - m_nAt) / sizeof(ULONG);
}

int CeListFileReader::NextItem(const BYTE **data, UINT *size, bool *found)
{
    *found = ReadWord(size) == CELIST_OK;
    if (!*found)
    {
        return CELIST_OK;
    }
    if (m_bytes.size() - m_nAt < *size)
    {
        return CELIST_FILE;
    }
    *data = m_bytes.data() + m_nAt;
    m_nAt += *size;
    return CELIST_OK;
}
