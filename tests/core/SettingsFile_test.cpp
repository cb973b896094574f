// The text file of settings where it is odd, damaged, written by others or by a process that dies: what is read from
// it, what a save makes of it, and that nothing is lost.
#include "core/CRegistry.h"
#include "core/CRegistry_file.h"
#include "core/textfile.h"
#include "platform/files.h"
#include "platform/kernel.h"
#include "platform/linux/file_faults.h"
#include "platform/text.h"
#include "support/Child.h"
#include "support/DeviceFiles.h"
#include "support/TestDevice.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <random>
#include <thread>

namespace zb::test
{
namespace
{
namespace fs = std::filesystem;

constexpr const WCHAR *file = u"\\My Documents\\Kelvo\\Settings.txt";

class SettingsFileTest : public DeviceTest
{
  protected:
    void TearDown() override
    {
        setFileFaults({});
    }

    fs::path onHost() const
    {
        return device.files() / "My Documents" / "Kelvo" / "Settings.txt";
    }
    void writeBytes(const std::string &bytes)
    {
        fs::create_directories(onHost().parent_path());
        putHostFile(onHost(), bytes);
        device.reopen();
    }
    static void write(const std::u16string &text)
    {
        ASSERT_TRUE(writeTextFile(file, text));
    }
    static std::u16string content()
    {
        return readTextFile(file).value_or(u"(none)");
    }
    static std::u16string text(const CRegistry &registry, const WCHAR *name)
    {
        std::vector<WCHAR> buffer(3000);
        return registry.QueryValue(name, buffer.data(), 3000) == 0 ? std::u16string(buffer.data()) : u"(missing)";
    }
    /// What a later process reads.
    std::u16string stored(const WCHAR *key, const WCHAR *name)
    {
        device.reopen();
        CRegistry registry(RegistryTypeFile, CRegistry::DefaultFile, 0);
        registry.OpenKey(HKEY_CURRENT_USER, key);
        return text(registry, name);
    }
};

TEST_F(SettingsFileTest, EachEncodingIsReadByItsMark)
{
    const std::string wide = "[HKEY_CURRENT_USER\\A]\n\"v\"=\"caf";
    std::string littleEndian = "\xFF\xFE";
    std::string bigEndian = "\xFE\xFF";
    for (const char ch : wide)
    {
        littleEndian += {ch, '\0'};
        bigEndian += {'\0', ch};
    }
    littleEndian += std::string("\xE9\0\"\0", 4);
    bigEndian += std::string("\0\xE9\0\"", 4);
    const std::vector<std::string> same = {littleEndian, bigEndian, littleEndian + "\n",
                                           "\xEF\xBB\xBF" + wide + "\xC3\xA9\"", wide + "\xE9\""};
    for (const std::string &bytes : same)
    {
        writeBytes(bytes);
        EXPECT_EQ(stored(u"A", u"v"), u"café");
    }
    // Without a mark the bytes are the code page's, whatever else they could be.
    writeBytes(wide + "\xC3\xA9\"");
    EXPECT_EQ(stored(u"A", u"v"), u"cafÃ©");
}

TEST_F(SettingsFileTest, AFileOfNothingButItsMarkIsEmpty)
{
    for (const char *bytes : {"", "\xFF", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB\xBF"})
    {
        writeBytes(bytes);
        CRegistry registry;
        EXPECT_TRUE(registry.GetINIFile()->sectionNames().empty());
    }
}

TEST_F(SettingsFileTest, CommentsAndLinesWithoutASectionOrAnEqualsSignAreGoneAfterTheNextSave)
{
    write(u"\"early\"=\"1\"\r\n; first\r\n[HKEY_CURRENT_USER\\A]\r\n; second\r\njunk\r\n\r\n\r\n\"v\"=\"1\"\r\n");
    CRegistry registry;
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(content(), u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"1\"\r\n\r\n");
}

TEST_F(SettingsFileTest, ASectionLinesNameLiesBetweenItsFirstAndItsLastCharacter)
{
    write(u" [HKEY_CURRENT_USER\\A[1]] "
          u"\t\r\n\"v\"=\"1\"\r\n[HKEY_CURRENT_USER\\Bx\r\n\"v\"=\"2\"\r\n[\r\n\"v\"=\"3\"\r\n");
    CRegistry registry;
    EXPECT_EQ(registry.GetINIFile()->sectionNames(),
              (std::vector<std::u16string>{u"HKEY_CURRENT_USER\\A[1]", u"HKEY_CURRENT_USER\\B", u""}));
}

TEST_F(SettingsFileTest, NameAndValuePartAtTheFirstEqualsSignAndLoseOneQuoteAtEachEnd)
{
    write(
        u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1=2=\"3\"\"\r\nbare = plain = text \r\n\"q\"uote\"=\"\"\"\r\n=nameless\r\n"
        u"\"e\"=\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    EXPECT_EQ(registry.ValueNames(), (std::vector<std::u16string>{u"a", u"bare", u"q\"uote", u"@", u"e"}));
    EXPECT_EQ(text(registry, u"a"), u"1=2=\"3\"");
    EXPECT_EQ(text(registry, u"bare"), u"plain = text");
    EXPECT_EQ(text(registry, u"q\"uote"), u"\"");
    EXPECT_EQ(text(registry, nullptr), u"nameless");
    EXPECT_EQ(text(registry, u"e"), u"");
}

TEST_F(SettingsFileTest, QuotesInNamesAndValuesSurviveReopening)
{
    const std::vector<std::u16string> awkward = {u"\"", u"\"\"", u"a\"b", u"\"a", u"a\"", u" a ", u";a", u"[a]", u"#"};
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, u"A");
        for (const std::u16string &word : awkward)
        {
            EXPECT_EQ(registry.SetValue(word.c_str(), (word + u"=" + word).c_str()), 0);
        }
    }
    for (const std::u16string &word : awkward)
    {
        EXPECT_EQ(stored(u"A", word.c_str()), word + u"=" + word) << utf8(word);
    }
}

TEST_F(SettingsFileTest, TheNumberStandsBehindTheSixthCharacterWhereverTheMarkIs)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=dword:0000002A\r\n\"b\"=DWord:ffffffff\r\n\"c\"=\"12345610dword:\"\r\n"
          u"\"d\"=dword:\r\n\"e\"=dword:xyz\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    const std::pair<const WCHAR *, DWORD> expected[] = {
        {u"a", 42}, {u"b", 0xFFFFFFFF}, {u"c", 0x10D}, {u"d", 0}, {u"e", 0}};
    for (const auto &[name, number] : expected)
    {
        DWORD value = 99;
        EXPECT_EQ(registry.QueryValue(name, &value), 0);
        EXPECT_EQ(value, number) << utf8(name);
    }
}

TEST_F(SettingsFileTest, WhiteSpaceAroundALineDoesNotCountForItsLength)
{
    const std::u16string line = u"\"v\"=\"" + std::u16string(2050 - 6, u'x') + u"\"";
    ASSERT_EQ(line.size(), 2050U);
    write(u"[HKEY_CURRENT_USER\\A]\r\n \t" + line + u"  \r\n");
    EXPECT_EQ(stored(u"A", u"v").size(), 2044U);
}

TEST_F(SettingsFileTest, ALineIsWrittenWithUpTo2050Characters)
{
    for (const auto &[length, kept] : {std::pair<std::size_t, std::size_t>{2043, 2043}, {2044, 2044}, {2045, 2044}})
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, u"A");
        registry.SetValue(u"v", std::u16string(length, u'x').c_str());
        ASSERT_EQ(registry.SaveINIFile(1), 0);
        EXPECT_EQ(stored(u"A", u"v"), std::u16string(kept, u'x'));
        EXPECT_NE(content().find(u"\r\n\"v\"=\"" + std::u16string(kept, u'x') + u"\"\r\n"), std::u16string::npos);
    }
}

TEST_F(SettingsFileTest, NamesThatNoLineCanHoldAreRefused)
{
    CRegistry registry;
    ASSERT_EQ(registry.OpenKey(HKEY_CURRENT_USER, u"A"), 0);
    EXPECT_EQ(registry.SetValue(u"a=b", u"x"), CRegistry::Failed);
    EXPECT_EQ(registry.SetValue(u"a\nb", DWORD{1}), CRegistry::Failed);
    EXPECT_EQ(registry.SetValue(std::u16string(2045, u'n').c_str(), u""), 0);
    EXPECT_EQ(registry.SetValue(std::u16string(2046, u'n').c_str(), u""), CRegistry::Failed);
    EXPECT_EQ(registry.SetValue(std::u16string(2033, u'd').c_str(), DWORD{1}), 0);
    EXPECT_EQ(registry.SetValue(std::u16string(2034, u'd').c_str(), DWORD{1}), CRegistry::Failed);
    EXPECT_EQ(registry.OpenKey(HKEY_CURRENT_USER, u"A\r\n[B"), CRegistry::Failed);
    const std::size_t root = std::u16string(u"HKEY_CURRENT_USER\\").size();
    EXPECT_EQ(registry.OpenKey(HKEY_CURRENT_USER, std::u16string(2049 - root, u'k').c_str()), CRegistry::Failed);
    EXPECT_EQ(registry.SetValue(u"v", u"nowhere"), CRegistry::Failed);
    EXPECT_EQ(registry.OpenKey(HKEY_CURRENT_USER, std::u16string(2048 - root, u'k').c_str()), 0);
    EXPECT_EQ(registry.SetValue(u"v", u"x"), 0);
    ASSERT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(stored(u"A", std::u16string(2045, u'n').c_str()), u"");
    EXPECT_EQ(stored(std::u16string(2048 - root, u'k').c_str(), u"v"), u"x");
}

TEST_F(SettingsFileTest, ATextLongerThanTheBufferIsCutAndASizeOfNothingMeansNoLimit)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"v", std::u16string(300, u'x').c_str());
    WCHAR buffer[400] = {};
    EXPECT_EQ(registry.QueryValue(u"v", buffer, 3), 0);
    EXPECT_EQ(std::u16string(buffer), u"xx");
    EXPECT_EQ(registry.QueryValue(u"v", buffer, 0), 0);
    EXPECT_EQ(wcslen(buffer), 300U);
}

// --- Merging ---------------------------------------------------------------------------------------------------------

TEST_F(SettingsFileTest, WhatAnotherProcessChangesBetweenReadingAndSavingIsKept)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"mine\"=\"1\"\r\n\"theirs\"=\"1\"\r\n[HKEY_CURRENT_USER\\B]\r\n\"b\"=\"1\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"mine", u"2");
    Child child(
        []
        {
            CRegistry other(RegistryTypeFile, CRegistry::DefaultFile, 0);
            other.OpenKey(HKEY_CURRENT_USER, u"A");
            other.SetValue(u"theirs", u"2");
            other.SetValue(u"new", u"2");
            other.OpenKey(HKEY_CURRENT_USER, u"B");
            other.SetValue(u"b", u"2");
            other.OpenKey(HKEY_CURRENT_USER, u"C");
            other.SetValue(u"c", u"2");
            return other.SaveINIFile(1) == 0 ? 0 : 1;
        });
    ASSERT_EQ(child.wait(), 0);
    EXPECT_EQ(text(registry, u"theirs"), u"1"); // reads never touch the disk
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(content(), u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"mine\"=\"2\"\r\n\"theirs\"=\"2\"\r\n\"new\"=\"2\"\r\n\r\n"
                         u"[HKEY_CURRENT_USER\\B]\r\n\"b\"=\"2\"\r\n\r\n[HKEY_CURRENT_USER\\C]\r\n\"c\"=\"2\"\r\n\r\n");
    EXPECT_EQ(text(registry, u"theirs"), u"2");
}

TEST_F(SettingsFileTest, AValueAndASectionThatOnlyThisProcessKnowsAreWrittenAgain)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n\"b\"=\"1\"\r\n[HKEY_CURRENT_USER\\B]\r\n\"b\"=\"1\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"a", u"2");
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"x\"=\"1\"\r\n");
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(content(), u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"x\"=\"1\"\r\n\"a\"=\"2\"\r\n\"b\"=\"1\"\r\n\r\n"
                         u"[HKEY_CURRENT_USER\\B]\r\n\"b\"=\"1\"\r\n\r\n");
}

TEST_F(SettingsFileTest, AnUnchangedSectionTakesNothingFromThisProcess)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n\"b\"=\"1\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"Other");
    registry.SetValue(u"o", u"1");
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"9\"\r\n");
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(content(),
              u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"9\"\r\n\r\n[HKEY_CURRENT_USER\\Other]\r\n\"o\"=\"1\"\r\n\r\n");
}

TEST_F(SettingsFileTest, AKeyMadeBelowADeletedOneSurvivesTheSave)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n[HKEY_CURRENT_USER\\A\\B]\r\n\"b\"=\"1\"\r\n");
    CRegistry registry;
    registry.DeleteKey(HKEY_CURRENT_USER, u"A");
    registry.OpenKey(HKEY_CURRENT_USER, u"A\\B");
    registry.SetValue(u"b", u"2");
    registry.OpenKey(HKEY_CURRENT_USER, u"A\\C");
    registry.SetValue(u"c", u"2");
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    const std::u16string kept =
        u"\r\n[HKEY_CURRENT_USER\\A\\B]\r\n\"b\"=\"2\"\r\n\r\n[HKEY_CURRENT_USER\\A\\C]\r\n\"c\"=\"2\"\r\n\r\n";
    EXPECT_EQ(content(), kept);
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"a", u"2");
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(content(), kept + u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"2\"\r\n\r\n");
}

TEST_F(SettingsFileTest, AKeyDeletedAndMadeAnewTwiceHasItsLastValuesAlone)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n");
    CRegistry registry;
    for (const WCHAR *name : {u"b", u"c"})
    {
        registry.DeleteKey(HKEY_CURRENT_USER, u"A");
        registry.OpenKey(HKEY_CURRENT_USER, u"A");
        registry.SetValue(name, u"2");
    }
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(content(), u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"c\"=\"2\"\r\n\r\n");
}

TEST_F(SettingsFileTest, ASaveWithoutForceWritesNothingThatIsClean)
{
    write(u"; note\r\n[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n");
    CRegistry registry;
    EXPECT_EQ(registry.SaveINIFile(0), 0);
    EXPECT_EQ(content().substr(0, 6), u"; note");
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(content().substr(0, 3), u"\r\n[");
    EXPECT_FALSE(registry.GetINIFile()->dirty());
}

TEST_F(SettingsFileTest, SharedFilesAreCountedAndOwnOnesAreNot)
{
    CRegistry first;
    EXPECT_EQ(first.GetINIFile()->references(), 1);
    {
        const CRegistry second(RegistryTypeFile, CRegistry::DefaultFile, 0); // shared since it is in the cache
        EXPECT_EQ(first.GetINIFile(), second.GetINIFile());
        EXPECT_EQ(first.GetINIFile()->references(), 2);
    }
    EXPECT_EQ(first.GetINIFile()->references(), 1);
    const CRegistry own(RegistryTypeFile, u"\\Own.txt", 0);
    EXPECT_EQ(own.GetINIFile()->references(), 0);
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(own.KeyRef()), -1);
}

TEST_F(SettingsFileTest, TheBackupIsOverwrittenByTheNextSave)
{
    createFolderOf(u"\\Backup\\My Documents\\Kelvo\\x");
    for (const DWORD value : {1U, 2U})
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, u"A");
        registry.SetValue(u"v", value);
        EXPECT_EQ(registry.SaveINIFile(1), 0);
        EXPECT_EQ(hostBytes(device.files() / "Backup" / "My Documents" / "Kelvo" / "Settings.txt"),
                  hostBytes(onHost()));
    }
}

// --- Faults ----------------------------------------------------------------------------------------------------------

TEST_F(SettingsFileTest, AFileThatCannotBeReadIsEmptyAndIsNotWrittenOver)
{
    fs::create_directories(onHost().parent_path());
    putHostFile(onHost(), "\xFF\xFE");
    fs::resize_file(onHost(), (64U << 20U) + 2);
    device.reopen();
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    EXPECT_EQ(text(registry, u"v"), u"(missing)");
    registry.SetValue(u"v", u"1");
    EXPECT_EQ(registry.SaveINIFile(1), CRegistry::Failed);
    EXPECT_TRUE(registry.GetINIFile()->dirty());
    EXPECT_EQ(fs::file_size(onHost()), (64U << 20U) + 2);
    fs::remove(onHost());
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(stored(u"A", u"v"), u"1");
}

TEST_F(SettingsFileTest, AFullDiskLeavesTheOldFileAndTheChangesForTheNextSave)
{
    write(u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"1\"\r\n\r\n");
    const std::u16string old = content();
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"v", u"2");
    for (const FileStep failing : {FileStep::Create, FileStep::Write, FileStep::Sync, FileStep::Rename})
    {
        setFileFaults([=](FileStep step, std::size_t) { return FileFault{step == failing ? ENOSPC : 0}; });
        EXPECT_EQ(registry.SaveINIFile(1), static_cast<LONG>(0x80004005U));
        EXPECT_TRUE(registry.GetINIFile()->dirty());
        EXPECT_EQ(content(), old);
    }
    setFileFaults({});
    EXPECT_EQ(registry.SaveINIFile(0), 0);
    EXPECT_EQ(stored(u"A", u"v"), u"2");
}

TEST_F(SettingsFileTest, AKillAtAnyStepOfASaveLeavesTheOldFileOrTheNew)
{
    createFolderOf(u"\\Backup\\My Documents\\Kelvo\\x");
    const std::u16string old = u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"1\"\r\n\r\n";
    const std::u16string fresh = u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"2\"\r\n\r\n";
    bool finished = false;
    int killed = 0;
    for (int at = 0; !finished; ++at)
    {
        write(old);
        Child child(
            [at]
            {
                CRegistry registry(RegistryTypeFile, CRegistry::DefaultFile, 0);
                registry.OpenKey(HKEY_CURRENT_USER, u"A");
                registry.SetValue(u"v", u"2");
                setFileFaults(
                    [at, steps = 0](FileStep, std::size_t) mutable
                    {
                        if (steps++ == at)
                        {
                            raise(SIGKILL);
                        }
                        return FileFault{};
                    });
                return registry.SaveINIFile(1) == 0 ? 0 : 1;
            });
        const int result = child.wait();
        finished = result == 0;
        ASSERT_TRUE(finished || result == -SIGKILL) << result;
        killed += finished ? 0 : 1;
        const std::u16string now = content();
        EXPECT_TRUE(now == old || now == fresh) << "killed at step " << at;
        EXPECT_TRUE(!finished || now == fresh);
    }
    // The file and its backup: create, write, sync, rename and sync of the folder each.
    EXPECT_GE(killed, 10);
}

TEST_F(SettingsFileTest, SavesAndChangesFromManyThreadsLoseNothing)
{
    std::vector<std::thread> threads;
    for (DWORD worker = 0; worker < 4; ++worker)
    {
        threads.emplace_back(
            [worker]
            {
                const WCHAR name[] = {static_cast<WCHAR>(u'a' + worker), 0};
                for (DWORD step = 1; step <= 40; ++step)
                {
                    CRegistry registry;
                    registry.OpenKey(HKEY_CURRENT_USER, u"A");
                    registry.SetValue(name, step);
                    EXPECT_EQ(registry.SaveINIFile(1), 0);
                }
            });
    }
    for (std::thread &thread : threads)
    {
        thread.join();
    }
    device.reopen();
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    for (const WCHAR *name : {u"a", u"b", u"c", u"d"})
    {
        DWORD value = 0;
        EXPECT_EQ(registry.QueryValue(name, &value), 0);
        EXPECT_EQ(value, 40U);
    }
}

// --- Any file --------------------------------------------------------------------------------------------------------

/// A file that was read and saved holds all that was read from it: read and saved again it has the same bytes.
void expectThatASaveIsAll(const fs::path &onHost, const std::string &bytes)
{
    putHostFile(onHost, bytes);
    std::array<std::string, 2> saved;
    for (std::string &each : saved)
    {
        CRegistry registry(RegistryTypeFile, file, 0);
        ASSERT_EQ(registry.SaveINIFile(1), 0);
        each = hostBytes(onHost);
    }
    EXPECT_EQ(saved[0], saved[1]);
}

TEST_F(SettingsFileTest, CollectedFilesAreReadAndWrittenWhole)
{
    fs::create_directories(onHost().parent_path());
    int files = 0;
    for (const auto &entry : fs::directory_iterator(fs::path(ZB_SOURCE_DIR) / "tests" / "data" / "settings"))
    {
        SCOPED_TRACE(entry.path().filename().string());
        expectThatASaveIsAll(onHost(), hostBytes(entry.path()));
        ++files;
    }
    EXPECT_GE(files, 5);
}

TEST_F(SettingsFileTest, RandomFilesAreReadAndWrittenWhole)
{
    fs::create_directories(onHost().parent_path());
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const std::vector<std::string> pieces = {"[HKEY_CURRENT_USER\\A]",
                                             "[",
                                             "]",
                                             "\"",
                                             "=",
                                             "dword:",
                                             "2a",
                                             "@",
                                             "\r",
                                             "\n",
                                             " ",
                                             "\\",
                                             "text",
                                             "\xE9",
                                             ";",
                                             std::string(1, '\0'),
                                             std::string(700, 'x')};
    for (int round = 0; round < 150; ++round)
    {
        std::string bytes;
        for (unsigned left = random() % 60; left != 0; --left)
        {
            bytes += pieces[random() % pieces.size()];
        }
        expectThatASaveIsAll(onHost(), bytes);
        ASSERT_FALSE(HasFailure()) << testing::PrintToString(bytes);
    }
}
} // namespace
} // namespace zb::test
