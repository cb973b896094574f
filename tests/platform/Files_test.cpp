// The file tree: paths and names, opening, reading and writing, moving, copying, folders, attributes, finding.
#include "platform/files.h"

#include "platform/clock.h"
#include "platform/kernel.h"
#include "support/DeviceFiles.h"
#include "support/TestDevice.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{
namespace fs = std::filesystem;
using namespace zb::test;

class FilesTest : public DeviceTest
{
  protected:
    std::vector<std::string> find(const WCHAR *pattern)
    {
        std::vector<std::string> names;
        WIN32_FIND_DATAW data{};
        HANDLE handle = FindFirstFileW(pattern, &data);
        if (handle == INVALID_HANDLE_VALUE)
        {
            return names;
        }
        do
        {
            names.push_back(utf8(data.cFileName));
        } while (FindNextFileW(handle, &data) != FALSE);
        EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
        EXPECT_TRUE(FindClose(handle));
        return names;
    }

    /// The last error of opening an existing file; 0 when it opens.
    DWORD openingError(const std::u16string &path)
    {
        HANDLE file = openFile(path.c_str(), OPEN_EXISTING, GENERIC_READ);
        if (file == INVALID_HANDLE_VALUE)
        {
            return GetLastError();
        }
        CloseHandle(file);
        return 0;
    }

    DWORD creatingError(const std::u16string &path, DWORD disposition = CREATE_NEW)
    {
        HANDLE file = openFile(path.c_str(), disposition);
        if (file == INVALID_HANDLE_VALUE)
        {
            return GetLastError();
        }
        CloseHandle(file);
        return 0;
    }
};

using Names = std::vector<std::string>;

// --- Paths ---------------------------------------------------------------------------------------------------------

TEST_F(FilesTest, ADevicePathLeadsBelowTheFilesFolder)
{
    ASSERT_TRUE(putFile(u"\\My Documents\\x.txt", "hello"));
    EXPECT_EQ(hostBytes(device.files() / "My Documents" / "x.txt"), "hello");
}

TEST_F(FilesTest, ARelativePathCountsFromTheRoot)
{
    ASSERT_TRUE(putFile(u"My Documents\\x.txt", "hello"));
    EXPECT_EQ(getFile(u"\\My Documents\\x.txt"), "hello");
    ASSERT_TRUE(putFile(u"top.txt", "top"));
    EXPECT_EQ(hostBytes(device.files() / "top.txt"), "top");
}

TEST_F(FilesTest, EmptyPartsAndDotsSayNothing)
{
    ASSERT_TRUE(putFile(u"\\\\My Documents\\.\\\\x.txt", "hello"));
    EXPECT_EQ(getFile(u"\\My Documents\\x.txt"), "hello");
    EXPECT_EQ(GetFileAttributesW(u"\\My Documents\\"), FILE_ATTRIBUTE_DIRECTORY);
}

TEST_F(FilesTest, CaseIsDisregardedAndKept)
{
    ASSERT_TRUE(putFile(u"\\my DOCUMENTS\\ReadMe.TXT", "1"));
    EXPECT_EQ(hostNames(device.files() / "My Documents"), Names{"ReadMe.TXT"});
    EXPECT_EQ(getFile(u"\\MY DOCUMENTS\\readme.txt"), "1");
    ASSERT_TRUE(putFile(u"\\My Documents\\README.txt", "2"));
    EXPECT_EQ(hostNames(device.files() / "My Documents"), Names{"ReadMe.TXT"});
    EXPECT_EQ(getFile(u"\\My Documents\\ReadMe.TXT"), "2");
}

TEST_F(FilesTest, CaseIsDisregardedBeyondAscii)
{
    ASSERT_TRUE(putFile(u"\\\u00C4rger.txt", "x"));
    EXPECT_EQ(getFile(u"\\\u00E4RGER.TXT"), "x");
}

TEST_F(FilesTest, OfTwoNamesThatDifferInCaseTheExactOneIsTakenElseTheFirst)
{
    putHostFile(device.files() / "a.txt", "small");
    putHostFile(device.files() / "A.TXT", "large");
    EXPECT_EQ(getFile(u"\\a.txt"), "small");
    EXPECT_EQ(getFile(u"\\A.TXT"), "large");
    EXPECT_EQ(getFile(u"\\A.txt"), "large");
}

TEST_F(FilesTest, NamesInAnyScriptKeepTheirCharacters)
{
    ASSERT_TRUE(putFile(u"\\\u65E5\u672C\u8A9E \U0001F600.txt", "x"));
    EXPECT_TRUE(fs::exists(device.files() / "\u65E5\u672C\u8A9E \U0001F600.txt"));
    EXPECT_EQ(find(u"\\*.txt"), Names{"\u65E5\u672C\u8A9E \U0001F600.txt"});
}

TEST_F(FilesTest, BadPathsAreRefused)
{
    putHostFile(device.path() / "outside.txt", "secret");
    for (const std::u16string &path :
         std::vector<std::u16string>{u"", u"\\..\\outside.txt", u"..\\outside.txt", u"\\My Documents\\..\\top.txt",
                                     u"\\My Documents/x.txt", u"/outside.txt", u"\\a\nb", u"\\half\xD800.txt",
                                     u"\\wild*.txt", u"\\wild?.txt", u"\\.zb-new-0123456789abcdef", u"\\missing\\x.txt",
                                     std::u16string(5000, u'a'), u"\\" + std::u16string(300, u'\u00E4')})
    {
        EXPECT_EQ(creatingError(path), ERROR_PATH_NOT_FOUND) << utf8(path);
        EXPECT_NE(openingError(path), 0U) << utf8(path);
        EXPECT_EQ(GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES) << utf8(path);
    }
    EXPECT_EQ(openFile(nullptr, OPEN_EXISTING), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(hostBytes(device.path() / "outside.txt"), "secret");
}

TEST_F(FilesTest, AFileInPlaceOfAFolderIsNoFolder)
{
    ASSERT_TRUE(putFile(u"\\x", "1"));
    EXPECT_EQ(openingError(u"\\x\\y"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(CreateDirectoryW(u"\\x\\y", nullptr), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(FilesTest, LinksThatLeadOutAreRefused)
{
    const fs::path secret = device.path() / "secret";
    fs::create_directory(secret);
    putHostFile(secret / "key.txt", "secret");
    fs::create_symlink(secret / "key.txt", device.files() / "file-link");
    fs::create_directory_symlink(secret, device.files() / "folder-link");
    fs::create_directory_symlink("../..", device.files() / "up-link");
    fs::create_symlink("nowhere", device.files() / "dangling");

    EXPECT_EQ(openingError(u"\\file-link"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(creatingError(u"\\file-link", CREATE_ALWAYS), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(openingError(u"\\folder-link\\key.txt"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(creatingError(u"\\folder-link\\new.txt"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(openingError(u"\\up-link\\device\\secret\\key.txt"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(creatingError(u"\\dangling", CREATE_ALWAYS), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(DeleteFileW(u"\\folder-link\\key.txt"), FALSE);
    EXPECT_EQ(find(u"\\folder-link\\*"), Names{});
    EXPECT_EQ(find(u"\\*link"), Names{});
    EXPECT_EQ(hostNames(secret), Names{"key.txt"});
    EXPECT_EQ(hostBytes(secret / "key.txt"), "secret");
}

TEST_F(FilesTest, LinksThatStayInsideAreFollowed)
{
    ASSERT_TRUE(putFile(u"\\My Documents\\x.txt", "one"));
    fs::create_symlink("My Documents/x.txt", device.files() / "file-link");
    fs::create_directory_symlink("My Documents", device.files() / "folder-link");
    EXPECT_EQ(getFile(u"\\file-link"), "one");
    EXPECT_EQ(getFile(u"\\folder-link\\X.TXT"), "one");
    HANDLE file = openFile(u"\\file-link", OPEN_EXISTING);
    ASSERT_TRUE(writeText(file, "two"));
    ASSERT_TRUE(CloseHandle(file));
    EXPECT_EQ(hostBytes(device.files() / "My Documents" / "x.txt"), "two");
}

TEST_F(FilesTest, ThingsThatAreNoFilesDoNotOpen)
{
    ASSERT_EQ(mkfifo((device.files() / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(openingError(u"\\pipe"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(creatingError(u"\\pipe", CREATE_ALWAYS), ERROR_ACCESS_DENIED);
    EXPECT_EQ(find(u"\\pipe"), Names{});
    EXPECT_EQ(openingError(u"\\My Documents"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(creatingError(u"\\My Documents", CREATE_ALWAYS), ERROR_ACCESS_DENIED);
    EXPECT_EQ(openingError(u"\\"), ERROR_ACCESS_DENIED);
}

TEST_F(FilesTest, WithoutADeviceThereAreNoFiles)
{
    ASSERT_TRUE(putFile(u"\\x", "1"));
    device.close();
    EXPECT_EQ(openingError(u"\\x"), ERROR_PATH_NOT_FOUND);
    WIN32_FIND_DATAW data{};
    EXPECT_EQ(FindFirstFileW(u"\\*", &data), INVALID_HANDLE_VALUE);
}

// --- Opening -------------------------------------------------------------------------------------------------------

TEST_F(FilesTest, EachDispositionDoesWhatItSays)
{
    struct Case
    {
        DWORD disposition;
        bool existsBefore;
        DWORD error; ///< 0: opens
        DWORD lastErrorOnSuccess;
        const char *after; ///< content when closed without a write
    };
    const Case cases[] = {
        {CREATE_NEW, false, 0, 0, ""},
        {CREATE_NEW, true, ERROR_FILE_EXISTS, 0, "old"},
        {CREATE_ALWAYS, false, 0, 0, ""},
        {CREATE_ALWAYS, true, 0, ERROR_ALREADY_EXISTS, ""},
        {OPEN_EXISTING, false, ERROR_FILE_NOT_FOUND, 0, nullptr},
        {OPEN_EXISTING, true, 0, 0, "old"},
        {OPEN_ALWAYS, false, 0, 0, ""},
        {OPEN_ALWAYS, true, 0, ERROR_ALREADY_EXISTS, "old"},
        {TRUNCATE_EXISTING, false, ERROR_FILE_NOT_FOUND, 0, nullptr},
        {TRUNCATE_EXISTING, true, 0, 0, ""},
        {0, true, ERROR_INVALID_PARAMETER, 0, "old"},
        {6, true, ERROR_INVALID_PARAMETER, 0, "old"},
    };
    for (const Case &each : cases)
    {
        SCOPED_TRACE(testing::Message() << "disposition " << each.disposition << " exists " << each.existsBefore);
        DeleteFileW(u"\\x");
        if (each.existsBefore)
        {
            ASSERT_TRUE(putFile(u"\\x", "old"));
        }
        SetLastError(4711);
        HANDLE file = openFile(u"\\x", each.disposition);
        const DWORD error = GetLastError();
        EXPECT_EQ(file == INVALID_HANDLE_VALUE, each.error != 0);
        EXPECT_EQ(error, each.error != 0 ? each.error : each.lastErrorOnSuccess);
        if (file != INVALID_HANDLE_VALUE)
        {
            EXPECT_TRUE(CloseHandle(file));
        }
        const auto after = getFile(u"\\x");
        EXPECT_EQ(after, each.after == nullptr ? std::nullopt : std::optional<std::string>(each.after));
    }
}

TEST_F(FilesTest, ANewFileAppearsWhenItIsClosed)
{
    HANDLE file = openFile(u"\\x.txt", CREATE_NEW);
    ASSERT_TRUE(writeText(file, "whole"));
    EXPECT_EQ(openingError(u"\\x.txt"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(find(u"\\*"), (Names{"My Documents", "Storage Card", "Temp", "Windows"}));
    ASSERT_TRUE(CloseHandle(file));
    EXPECT_EQ(getFile(u"\\x.txt"), "whole");
    EXPECT_EQ(hostNames(device.files()), (Names{"My Documents", "Storage Card", "Temp", "Windows", "x.txt"}));
}

TEST_F(FilesTest, TheOldFileStaysUntilTheNewOneIsClosed)
{
    ASSERT_TRUE(putFile(u"\\x.txt", "old"));
    for (const DWORD disposition : {CREATE_ALWAYS, TRUNCATE_EXISTING})
    {
        HANDLE file = openFile(u"\\x.txt", disposition);
        ASSERT_TRUE(writeText(file, "new"));
        ASSERT_TRUE(FlushFileBuffers(file));
        EXPECT_EQ(getFile(u"\\x.txt"), "old");
        ASSERT_TRUE(CloseHandle(file));
        EXPECT_EQ(getFile(u"\\x.txt"), "new");
        ASSERT_TRUE(putFile(u"\\x.txt", "old"));
    }
}

TEST_F(FilesTest, AReaderKeepsTheFileThatItOpened)
{
    ASSERT_TRUE(putFile(u"\\x.txt", "old"));
    HANDLE reader = openFile(u"\\x.txt", OPEN_EXISTING, GENERIC_READ);
    ASSERT_TRUE(putFile(u"\\x.txt", "new"));
    char buffer[8] = {};
    DWORD done = 0;
    ASSERT_TRUE(ReadFile(reader, buffer, sizeof buffer, &done, nullptr));
    EXPECT_EQ(std::string(buffer, done), "old");
    CloseHandle(reader);
}

TEST_F(FilesTest, OfTwoWritersTheLastToCloseWinsWhole)
{
    HANDLE first = openFile(u"\\x.txt", CREATE_ALWAYS);
    HANDLE second = openFile(u"\\x.txt", CREATE_ALWAYS);
    ASSERT_TRUE(writeText(first, "first, and longer"));
    ASSERT_TRUE(writeText(second, "second"));
    ASSERT_TRUE(CloseHandle(second));
    EXPECT_EQ(getFile(u"\\x.txt"), "second");
    ASSERT_TRUE(CloseHandle(first));
    EXPECT_EQ(getFile(u"\\x.txt"), "first, and longer");
}

TEST_F(FilesTest, ThreadsThatWriteTheSameFileLeaveOneOfTheirsWhole)
{
    std::vector<std::thread> writers;
    std::atomic<int> failures = 0;
    for (int writer = 0; writer < 4; ++writer)
    {
        writers.emplace_back(
            [&failures, writer]
            {
                for (int i = 0; i < 10; ++i)
                {
                    const std::string text(5000, static_cast<char>('a' + writer));
                    failures += putFile(u"\\Shared.txt", text) ? 0 : 1;
                    const auto seen = getFile(u"\\shared.TXT");
                    const bool whole =
                        seen && seen->size() == 5000 && seen->find_first_not_of(seen->front()) == std::string::npos;
                    failures += whole ? 0 : 1;
                }
            });
    }
    for (std::thread &writer : writers)
    {
        writer.join();
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(hostNames(device.files()), (Names{"My Documents", "Shared.txt", "Storage Card", "Temp", "Windows"}));
}

TEST_F(FilesTest, CreateNewDoesNotReplaceWhatCameMeanwhile)
{
    HANDLE file = openFile(u"\\x.txt", CREATE_NEW);
    ASSERT_TRUE(writeText(file, "late"));
    ASSERT_TRUE(putFile(u"\\x.txt", "early"));
    SetLastError(0);
    EXPECT_FALSE(CloseHandle(file));
    EXPECT_EQ(GetLastError(), ERROR_FILE_EXISTS);
    EXPECT_EQ(getFile(u"\\x.txt"), "early");
    EXPECT_EQ(hostNames(device.files()), (Names{"My Documents", "Storage Card", "Temp", "Windows", "x.txt"}));
}

TEST_F(FilesTest, AnExistingFileIsChangedInPlace)
{
    ASSERT_TRUE(putFile(u"\\x.txt", "0123456789"));
    HANDLE file = openFile(u"\\x.txt", OPEN_ALWAYS);
    ASSERT_EQ(SetFilePointer(file, 2, nullptr, FILE_BEGIN), 2U);
    ASSERT_TRUE(writeText(file, "ab"));
    EXPECT_EQ(hostBytes(device.files() / "x.txt"), "01ab456789");
    CloseHandle(file);
}

TEST_F(FilesTest, ClosingTheDeviceKeepsTheOldFileAndClosesTheHandles)
{
    ASSERT_TRUE(putFile(u"\\x.txt", "old"));
    HANDLE writer = openFile(u"\\x.txt", CREATE_ALWAYS);
    HANDLE reader = openFile(u"\\x.txt", OPEN_EXISTING, GENERIC_READ);
    WIN32_FIND_DATAW data{};
    HANDLE finder = FindFirstFileW(u"\\*", &data);
    ASSERT_TRUE(writeText(writer, "half"));
    device.reopen();
    DWORD done = 7;
    char byte = 0;
    EXPECT_FALSE(ReadFile(reader, &byte, 1, &done, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(done, 0U);
    EXPECT_FALSE(CloseHandle(writer));
    EXPECT_FALSE(FindNextFileW(finder, &data));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(getFile(u"\\x.txt"), "old");
    EXPECT_EQ(hostNames(device.files()), (Names{"My Documents", "Storage Card", "Temp", "Windows", "x.txt"}));
}

TEST_F(FilesTest, AReplacedFileKeepsWhoMayReadIt)
{
    ASSERT_TRUE(putFile(u"\\diary.txt", "old"));
    ASSERT_EQ(chmod((device.files() / "diary.txt").c_str(), 0600), 0);
    HANDLE file = openFile(u"\\diary.txt", CREATE_ALWAYS);
    for (const std::string &name : hostNames(device.files()))
    {
        struct stat status = {};
        ASSERT_EQ(stat((device.files() / name).c_str(), &status), 0);
        EXPECT_TRUE(S_ISDIR(status.st_mode) || (status.st_mode & 0777) == 0600) << name;
    }
    ASSERT_TRUE(CloseHandle(file));
    struct stat status = {};
    ASSERT_EQ(stat((device.files() / "diary.txt").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

// --- Reading and writing -------------------------------------------------------------------------------------------

TEST_F(FilesTest, ReadingAtTheEndSucceedsWithNothing)
{
    ASSERT_TRUE(putFile(u"\\x", "abc"));
    HANDLE file = openFile(u"\\x", OPEN_EXISTING, GENERIC_READ);
    char buffer[8];
    DWORD done = 99;
    EXPECT_TRUE(ReadFile(file, buffer, 2, &done, nullptr));
    EXPECT_EQ(done, 2U);
    EXPECT_TRUE(ReadFile(file, buffer, 8, &done, nullptr));
    EXPECT_EQ(done, 1U);
    EXPECT_TRUE(ReadFile(file, buffer, 8, &done, nullptr));
    EXPECT_EQ(done, 0U);
    EXPECT_TRUE(ReadFile(file, buffer, 0, nullptr, nullptr));
    CloseHandle(file);
}

TEST_F(FilesTest, AHandleAllowsWhatItWasOpenedFor)
{
    ASSERT_TRUE(putFile(u"\\x", "abc"));
    char byte = 'z';
    DWORD done = 99;
    HANDLE reader = openFile(u"\\x", OPEN_EXISTING, GENERIC_READ);
    EXPECT_FALSE(WriteFile(reader, &byte, 1, &done, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(done, 0U);
    EXPECT_FALSE(SetEndOfFile(reader));
    EXPECT_FALSE(FlushFileBuffers(reader));
    EXPECT_FALSE(SetFileTime(reader, nullptr, nullptr, nullptr));
    CloseHandle(reader);
    for (const DWORD disposition : {OPEN_EXISTING, CREATE_ALWAYS})
    {
        HANDLE writer = openFile(u"\\x", disposition, GENERIC_WRITE);
        done = 99;
        EXPECT_FALSE(ReadFile(writer, &byte, 1, &done, nullptr));
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
        EXPECT_EQ(done, 0U);
        CloseHandle(writer);
    }
}

TEST_F(FilesTest, NullBuffersAndStaleHandlesAreRefused)
{
    ASSERT_TRUE(putFile(u"\\x", "abc"));
    HANDLE file = openFile(u"\\x", OPEN_EXISTING);
    DWORD done = 99;
    EXPECT_FALSE(ReadFile(file, nullptr, 1, &done, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(done, 0U);
    done = 99;
    EXPECT_FALSE(WriteFile(file, nullptr, 1, &done, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(done, 0U);
    ASSERT_TRUE(CloseHandle(file));
    for (HANDLE stale : {file, static_cast<HANDLE>(nullptr), INVALID_HANDLE_VALUE})
    {
        done = 99;
        EXPECT_FALSE(WriteFile(stale, "x", 1, &done, nullptr));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_EQ(done, 0U);
        EXPECT_EQ(SetFilePointer(stale, 0, nullptr, FILE_BEGIN), 0xFFFFFFFFU);
        EXPECT_EQ(GetFileSize(stale, nullptr), INVALID_FILE_SIZE);
        EXPECT_FALSE(SetEndOfFile(stale));
        EXPECT_FALSE(FlushFileBuffers(stale));
        EXPECT_FALSE(GetFileTime(stale, nullptr, nullptr, nullptr));
        EXPECT_FALSE(CloseHandle(stale));
    }
}

TEST_F(FilesTest, ThePositionMovesFromEachOrigin)
{
    ASSERT_TRUE(putFile(u"\\x", "0123456789"));
    HANDLE file = openFile(u"\\x", OPEN_EXISTING);
    EXPECT_EQ(SetFilePointer(file, 4, nullptr, FILE_BEGIN), 4U);
    EXPECT_EQ(SetFilePointer(file, -1, nullptr, FILE_CURRENT), 3U);
    EXPECT_EQ(SetFilePointer(file, -2, nullptr, FILE_END), 8U);
    EXPECT_EQ(SetFilePointer(file, 5, nullptr, FILE_END), 15U);
    EXPECT_EQ(SetFilePointer(file, -16, nullptr, FILE_CURRENT), 0xFFFFFFFFU);
    EXPECT_EQ(GetLastError(), 131U);
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 15U);
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, 3), 0xFFFFFFFFU);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    CloseHandle(file);
}

TEST_F(FilesTest, PositionsAndSizesGoBeyondFourGigabytes)
{
    HANDLE file = openFile(u"\\x", CREATE_NEW);
    LONG high = 1;
    SetLastError(4711);
    EXPECT_EQ(SetFilePointer(file, 16, &high, FILE_BEGIN), 16U);
    EXPECT_EQ(high, 1);
    EXPECT_EQ(GetLastError(), 0U);
    ASSERT_TRUE(SetEndOfFile(file));
    DWORD sizeHigh = 0;
    EXPECT_EQ(GetFileSize(file, &sizeHigh), 16U);
    EXPECT_EQ(sizeHigh, 1U);
    EXPECT_EQ(GetFileSize(file, nullptr), INVALID_FILE_SIZE);
    // Without the high word such a position can't be told, so it isn't taken.
    high = 0;
    ASSERT_EQ(SetFilePointer(file, 5, &high, FILE_BEGIN), 5U);
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_END), 0xFFFFFFFFU);
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 5U);
    // Downwards by a 64-bit distance: -1 in both halves.
    high = -1;
    EXPECT_EQ(SetFilePointer(file, -1, &high, FILE_CURRENT), 4U);
    EXPECT_EQ(high, 0);
    CloseHandle(file);
}

TEST_F(FilesTest, TheEndCanBeSetBothWays)
{
    ASSERT_TRUE(putFile(u"\\x", "0123456789"));
    HANDLE file = openFile(u"\\x", OPEN_EXISTING);
    SetFilePointer(file, 3, nullptr, FILE_BEGIN);
    EXPECT_TRUE(SetEndOfFile(file));
    EXPECT_EQ(GetFileSize(file, nullptr), 3U);
    SetFilePointer(file, 5, nullptr, FILE_BEGIN);
    EXPECT_TRUE(SetEndOfFile(file));
    CloseHandle(file);
    EXPECT_EQ(getFile(u"\\x"), std::string("012\0\0", 5));
}

TEST_F(FilesTest, AMegabyteComesBackAsItWent)
{
    std::string bytes;
    for (unsigned i = 0; i < 1'000'003; ++i)
    {
        bytes.push_back(static_cast<char>((i * 2654435761U) >> 24U));
    }
    ASSERT_TRUE(putFile(u"\\large", bytes));
    EXPECT_EQ(getFile(u"\\large"), bytes);
}

TEST_F(FilesTest, TimesOfWritingCanBeReadAndSet)
{
    const FILETIME moment = makeFileTime(2004, 2, 29, 13, 45, 7);
    HANDLE file = openFile(u"\\x", CREATE_NEW);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &moment));
    FILETIME written{};
    ASSERT_TRUE(GetFileTime(file, nullptr, nullptr, &written));
    EXPECT_EQ(describe(written), "2004-02-29 13:45:07");
    ASSERT_TRUE(CloseHandle(file));
    WIN32_FIND_DATAW data{};
    HANDLE found = FindFirstFileW(u"\\x", &data);
    EXPECT_EQ(describe(data.ftLastWriteTime), "2004-02-29 13:45:07");
    FindClose(found);
    EXPECT_EQ(fs::last_write_time(device.files() / "x"),
              fs::file_time_type(std::chrono::file_clock::from_sys(
                  std::chrono::sys_seconds(std::chrono::sys_days(std::chrono::year(2004) / 2 / 29)) +
                  std::chrono::hours(13) + std::chrono::minutes(45) + std::chrono::seconds(7))));
}

// --- Deleting, moving, copying -------------------------------------------------------------------------------------

TEST_F(FilesTest, FilesAreDeletedFoldersAreNot)
{
    ASSERT_TRUE(putFile(u"\\X.txt", "1"));
    EXPECT_TRUE(DeleteFileW(u"\\x.TXT"));
    EXPECT_FALSE(fs::exists(device.files() / "X.txt"));
    EXPECT_FALSE(DeleteFileW(u"\\x.txt"));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(DeleteFileW(u"\\none\\x.txt"));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE(DeleteFileW(u"\\Temp"));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(DeleteFileW(u"\\"));
}

TEST_F(FilesTest, MovingGivesANewNameAndNeverReplaces)
{
    ASSERT_TRUE(putFile(u"\\a.txt", "a"));
    ASSERT_TRUE(putFile(u"\\b.txt", "b"));
    EXPECT_FALSE(MoveFileW(u"\\a.txt", u"\\B.TXT"));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_TRUE(MoveFileW(u"\\a.txt", u"\\Temp\\c.txt"));
    EXPECT_EQ(getFile(u"\\Temp\\c.txt"), "a");
    EXPECT_FALSE(fs::exists(device.files() / "a.txt"));
    EXPECT_FALSE(MoveFileW(u"\\a.txt", u"\\d.txt"));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(MoveFileW(u"\\b.txt", u"\\none\\b.txt"));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(getFile(u"\\b.txt"), "b");
}

TEST_F(FilesTest, MovingCanChangeTheCaseOfAName)
{
    ASSERT_TRUE(putFile(u"\\Temp\\readme.txt", "x"));
    EXPECT_TRUE(MoveFileW(u"\\Temp\\readme.txt", u"\\Temp\\ReadMe.txt"));
    EXPECT_EQ(hostNames(device.files() / "Temp"), Names{"ReadMe.txt"});
}

TEST_F(FilesTest, TwoNamesOfOneFileAreTwoFilesToMove)
{
    ASSERT_TRUE(putFile(u"\\a", "x"));
    fs::create_hard_link(device.files() / "a", device.files() / "b");
    EXPECT_FALSE(MoveFileW(u"\\a", u"\\b"));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
}

TEST_F(FilesTest, FoldersMoveWithWhatTheyHold)
{
    ASSERT_TRUE(CreateDirectoryW(u"\\Temp\\f", nullptr));
    ASSERT_TRUE(putFile(u"\\Temp\\f\\x", "1"));
    EXPECT_TRUE(MoveFileW(u"\\Temp\\f", u"\\Storage Card\\g"));
    EXPECT_EQ(getFile(u"\\Storage Card\\g\\x"), "1");
    EXPECT_FALSE(MoveFileW(u"\\Storage Card\\g", u"\\Storage Card\\g\\inside"));
    EXPECT_EQ(getFile(u"\\Storage Card\\g\\x"), "1");
    EXPECT_FALSE(MoveFileW(u"\\", u"\\h"));
}

TEST_F(FilesTest, CopyingMakesASecondFile)
{
    ASSERT_TRUE(putFile(u"\\a", std::string(700'000, 'q')));
    EXPECT_TRUE(CopyFileW(u"\\a", u"\\b", TRUE));
    EXPECT_EQ(getFile(u"\\b"), std::string(700'000, 'q'));
    ASSERT_TRUE(putFile(u"\\a", "new"));
    EXPECT_FALSE(CopyFileW(u"\\a", u"\\B", TRUE));
    EXPECT_EQ(GetLastError(), ERROR_FILE_EXISTS);
    EXPECT_EQ(getFile(u"\\b"), std::string(700'000, 'q'));
    EXPECT_TRUE(CopyFileW(u"\\a", u"\\B", FALSE));
    EXPECT_EQ(getFile(u"\\b"), "new");
    EXPECT_FALSE(CopyFileW(u"\\none", u"\\c", FALSE));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(CopyFileW(u"\\Temp", u"\\c", FALSE));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(CopyFileW(u"\\a", u"\\Temp", FALSE));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(CopyFileW(u"\\a", u"\\A", FALSE));
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(getFile(u"\\a"), "new");
    EXPECT_EQ(find(u"\\*"), (Names{"a", "b", "My Documents", "Storage Card", "Temp", "Windows"}));
}

TEST_F(FilesTest, ACopyTakesAttributesAndTheTimeOfWritingAlong)
{
    const FILETIME moment = makeFileTime(2010, 5, 6, 7, 8, 9);
    HANDLE file = openFile(u"\\a", CREATE_NEW);
    ASSERT_TRUE(SetFileTime(file, nullptr, nullptr, &moment));
    ASSERT_TRUE(CloseHandle(file));
    ASSERT_TRUE(SetFileAttributesW(u"\\a", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN));
    ASSERT_TRUE(CopyFileW(u"\\a", u"\\b", TRUE));
    EXPECT_EQ(GetFileAttributesW(u"\\b"), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    WIN32_FIND_DATAW data{};
    FindClose(FindFirstFileW(u"\\b", &data));
    EXPECT_EQ(describe(data.ftLastWriteTime), "2010-05-06 07:08:09");
}

// --- Folders and attributes ----------------------------------------------------------------------------------------

TEST_F(FilesTest, FoldersAreMadeAndRemovedWhenEmpty)
{
    EXPECT_TRUE(CreateDirectoryW(u"\\New", nullptr));
    EXPECT_EQ(GetFileAttributesW(u"\\new"), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_FALSE(CreateDirectoryW(u"\\NEW", nullptr));
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_FALSE(CreateDirectoryW(u"\\a\\b", nullptr));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    ASSERT_TRUE(putFile(u"\\New\\x", "1"));
    EXPECT_FALSE(RemoveDirectoryW(u"\\New"));
    EXPECT_EQ(GetLastError(), ERROR_DIR_NOT_EMPTY);
    EXPECT_FALSE(RemoveDirectoryW(u"\\New\\x"));
    EXPECT_EQ(GetLastError(), 267U);
    ASSERT_TRUE(DeleteFileW(u"\\New\\x"));
    EXPECT_TRUE(RemoveDirectoryW(u"\\NEW"));
    EXPECT_FALSE(RemoveDirectoryW(u"\\New"));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(RemoveDirectoryW(u"\\"));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

TEST_F(FilesTest, AttributesAreKept)
{
    ASSERT_TRUE(putFile(u"\\x", "1"));
    EXPECT_EQ(GetFileAttributesW(u"\\x"), FILE_ATTRIBUTE_NORMAL);
    for (const DWORD attributes : {FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_HIDDEN,
                                   FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_NORMAL})
    {
        EXPECT_TRUE(SetFileAttributesW(u"\\x", attributes));
        EXPECT_EQ(GetFileAttributesW(u"\\X"), attributes);
    }
    EXPECT_TRUE(SetFileAttributesW(u"\\Temp", FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ(GetFileAttributesW(u"\\Temp"), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesW(u"\\none"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(GetFileAttributesW(u"\\none\\x"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE(SetFileAttributesW(u"\\none", 0));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(GetFileAttributesW(u"\\"), FILE_ATTRIBUTE_DIRECTORY);
}

TEST_F(FilesTest, ANewFileHasTheAttributesItIsMadeWith)
{
    HANDLE file = CreateFileW(u"\\x", GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY, nullptr);
    ASSERT_TRUE(writeText(file, "content"));
    ASSERT_TRUE(CloseHandle(file));
    EXPECT_EQ(GetFileAttributesW(u"\\x"), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY);
    ASSERT_TRUE(SetFileAttributesW(u"\\x", FILE_ATTRIBUTE_HIDDEN));
    // Made anew without it, the file is hidden no more; only cut, it stays so.
    HANDLE cut = openFile(u"\\x", TRUNCATE_EXISTING);
    ASSERT_TRUE(CloseHandle(cut));
    EXPECT_EQ(GetFileAttributesW(u"\\x"), FILE_ATTRIBUTE_HIDDEN);
    ASSERT_TRUE(putFile(u"\\x", "1"));
    EXPECT_EQ(GetFileAttributesW(u"\\x"), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FilesTest, AReadOnlyFileIsReadAndNothingElse)
{
    ASSERT_TRUE(putFile(u"\\x", "keep"));
    ASSERT_TRUE(putFile(u"\\y", "other"));
    ASSERT_TRUE(SetFileAttributesW(u"\\x", FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(getFile(u"\\x"), "keep");
    for (const DWORD disposition : {CREATE_ALWAYS, OPEN_EXISTING, OPEN_ALWAYS, TRUNCATE_EXISTING})
    {
        EXPECT_EQ(openFile(u"\\x", disposition), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    }
    EXPECT_FALSE(DeleteFileW(u"\\x"));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_FALSE(CopyFileW(u"\\y", u"\\x", FALSE));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(getFile(u"\\x"), "keep");
}

// --- Finding -------------------------------------------------------------------------------------------------------

TEST_F(FilesTest, PatternsMatchWithoutRegardToCase)
{
    struct Case
    {
        const char16_t *pattern;
        Names found;
    };
    for (const char *name : {"a.txt", "B.TXT", "ab.doc", "abc", "x.y.z"})
    {
        putHostFile(device.files() / "Temp" / name, "");
    }
    const Case cases[] = {
        {u"\\Temp\\*", {"a.txt", "ab.doc", "abc", "B.TXT", "x.y.z"}},
        {u"\\Temp\\*.*", {"a.txt", "ab.doc", "abc", "B.TXT", "x.y.z"}},
        {u"\\temp\\*.txt", {"a.txt", "B.TXT"}},
        {u"\\Temp\\a*", {"a.txt", "ab.doc", "abc"}},
        {u"\\Temp\\?.txt", {"a.txt", "B.TXT"}},
        {u"\\Temp\\??c", {"abc"}},
        {u"\\Temp\\*b*c", {"ab.doc", "abc"}},
        {u"\\Temp\\A.TXT", {"a.txt"}},
        {u"\\Temp\\x.*.z", {"x.y.z"}},
        {u"\\Temp\\*.z*", {"x.y.z"}},
        {u"\\Temp\\?", {}},
        {u"\\Temp\\**c**", {"ab.doc", "abc"}},
        {u"Temp\\abc", {"abc"}},
    };
    for (const Case &each : cases)
    {
        EXPECT_EQ(find(each.pattern), each.found) << utf8(each.pattern);
    }
}

TEST_F(FilesTest, FindingTellsSizeAttributesAndKind)
{
    ASSERT_TRUE(putFile(u"\\Temp\\x.txt", "12345"));
    ASSERT_TRUE(SetFileAttributesW(u"\\Temp\\x.txt", FILE_ATTRIBUTE_HIDDEN));
    WIN32_FIND_DATAW data{};
    HANDLE handle = FindFirstFileW(u"\\Temp\\*", &data);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    EXPECT_EQ(utf8(data.cFileName), "x.txt");
    EXPECT_EQ(data.nFileSizeLow, 5U);
    EXPECT_EQ(data.nFileSizeHigh, 0U);
    EXPECT_EQ(data.dwFileAttributes, FILE_ATTRIBUTE_HIDDEN);
    EXPECT_NE(zb::ticksOf(data.ftCreationTime), 0);
    EXPECT_FALSE(FindNextFileW(handle, &data));
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(FindClose(handle));
    EXPECT_FALSE(FindClose(handle));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    handle = FindFirstFileW(u"\\Temp", &data);
    EXPECT_EQ(data.dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(data.nFileSizeLow, 0U);
    FindClose(handle);
}

TEST_F(FilesTest, FindingNothingTellsWhy)
{
    WIN32_FIND_DATAW data{};
    EXPECT_EQ(FindFirstFileW(u"\\Temp\\*", &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(FindFirstFileW(u"\\none\\*", &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindFirstFileW(u"\\..\\*", &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FindFirstFileW(u"\\", &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindFirstFileW(nullptr, &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindFirstFileW(u"\\*", nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(FilesTest, WhatIsDeletedMeanwhileIsLeftOut)
{
    for (const WCHAR *name : {u"\\Temp\\a", u"\\Temp\\b", u"\\Temp\\c"})
    {
        ASSERT_TRUE(putFile(name, ""));
    }
    WIN32_FIND_DATAW data{};
    HANDLE handle = FindFirstFileW(u"\\Temp\\*", &data);
    ASSERT_TRUE(DeleteFileW(u"\\Temp\\b"));
    ASSERT_TRUE(FindNextFileW(handle, &data));
    EXPECT_EQ(utf8(data.cFileName), "c");
    FindClose(handle);
}

TEST_F(FilesTest, NamesThatAPathCannotSayAreNotShown)
{
    putHostFile(device.files() / "Temp" / "back\\slash", "");
    putHostFile(device.files() / "Temp" / "fine", "");
    EXPECT_EQ(find(u"\\Temp\\*"), Names{"fine"});
}

TEST_F(FilesTest, ANameThatIsNoUtf8IsShownAndOpensByWhatIsShown)
{
    putHostFile(device.files() / "Temp" / "caf\xE9", "latin");
    EXPECT_EQ(find(u"\\Temp\\*"), Names{"caf\uFFFD"});
    EXPECT_EQ(getFile(u"\\Temp\\caf\uFFFD"), "latin");
}

TEST_F(FilesTest, ASlowPatternDoesNotHang)
{
    putHostFile(device.files() / "Temp" / std::string(200, 'a'), "");
    std::u16string pattern = u"\\Temp\\";
    for (int i = 0; i < 60; ++i)
    {
        pattern += u"*a";
    }
    EXPECT_EQ(find((pattern + u"*b").c_str()), Names{});
    EXPECT_EQ(find((pattern + u"*").c_str()).size(), 1U);
}
} // namespace
