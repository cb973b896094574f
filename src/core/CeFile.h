// A file of the device by its handle, with text lines in and out.
//
// Lines are read in either of two encodings: the device's code page, or wide text (UTF-16, little-endian) for a file
// that was flagged so. All of the file is read with the first line; after its last line comes one empty result, and the
// next call begins anew. So a caller stops at an empty result; one that an empty line gives looks alike.
//
// Threads: one object by one thread at a time. Failures are false, 0 or an empty result, with the platform's last error.
#pragma once

#include "core/api.h"
#include "platform/files.h"

#include <optional>
#include <string>

class ZBTOOLS_API CeFile
{
  public:
    CeFile() = default;
    /// Closes.
    ~CeFile();
    CeFile(const CeFile &) = delete;
    CeFile &operator=(const CeFile &) = delete;

    /// Makes the file, or empties the one that is there, once the former file is closed. It appears when it is closed.
    bool Create(const WCHAR *path, DWORD access = GENERIC_READ | GENERIC_WRITE);
    /// Opens one that is there.
    bool Open(const WCHAR *path, DWORD access = GENERIC_READ | GENERIC_WRITE);
    /// False when nothing was open, or when what was written could not be put in place. Forgets the Unicode flag.
    bool Close();
    bool IsOpen() const
    {
        return m_handle != INVALID_HANDLE_VALUE;
    }
    /// Access that it was opened for; 0 while closed.
    DWORD OpenFlags() const
    {
        return m_openFlags;
    }
    bool IsUnicode() const
    {
        return m_bUnicode;
    }
    void SetUnicode(bool bUnicode);

    /// From the file's position; BytesRead tells how much came. True with fewer bytes only at the end of the file.
    bool Read(void *buffer, DWORD bytes);
    DWORD BytesRead() const
    {
        return m_bytesRead;
    }
    /// All of it or false.
    bool Write(const void *buffer, DWORD bytes);
    /// In bytes; INVALID_FILE_SIZE while closed.
    DWORD Size() const;
    /// The new position.
    DWORD SetPositionEnd();
    static bool Exists(const WCHAR *path);

    /// The next line into a buffer of `max` characters, its end included; the rest of a longer line is lost. Returns
    /// the characters. A line ends at a carriage return; a line feed behind that belongs to it.
    int ReadLine(WCHAR *buffer, int max);
    /// The same for wide text, whatever the flag says. A byte order mark at the start is no text.
    int ReadULine(WCHAR *buffer, int max);
    /// Writes the text, a carriage return and a line feed at the file's position: in the device's code page, or as wide
    /// text, which sets the Unicode flag.
    bool WriteLine(const WCHAR *text, bool bAnsi);

    /// Makes the folder that `path` lies in, with all that lead to it, unless it is there. False when it is not there
    /// afterwards.
    static bool CreatePath(const WCHAR *path);

  private:
    bool OpenAs(const WCHAR *path, DWORD access, DWORD disposition);
    std::optional<std::string> ReadWhole();
    int NextLine(WCHAR *buffer, int max);
    void ForgetLines();

    HANDLE m_handle = INVALID_HANDLE_VALUE;
    DWORD m_openFlags = 0;
    bool m_bUnicode = false;
    DWORD m_bytesRead = 0;
    std::optional<std::u16string> m_lines; ///< the whole text once a line was asked for
    std::size_t m_position = 0;            ///< in it
};
