// Texts by number: of a module, of the application, of the system; and the compiler of the tables.
#include "platform/resources.h"

#include "platform/kernel.h"
#include "support/DeviceFiles.h"
#include "support/TestDevice.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

namespace
{
namespace fs = std::filesystem;
using namespace zb::test;

class ResourcesTest : public DeviceTest
{
  protected:
    void SetUp() override
    {
        module = LoadLibraryW(u"ZBTestModule.dll");
        ASSERT_NE(module, nullptr);
    }
    void TearDown() override
    {
        zb::setApplicationResources(nullptr);
        FreeLibrary(module);
    }

    std::string text(HINSTANCE instance, UINT id)
    {
        WCHAR buffer[64];
        return LoadStringW(instance, id, buffer, 64) > 0 ? utf8(buffer) : "(none)";
    }

    HMODULE module = nullptr;
};

TEST_F(ResourcesTest, ATextOfAModuleIsCopied)
{
    WCHAR buffer[32];
    std::fill(std::begin(buffer), std::end(buffer), u'#');
    EXPECT_EQ(LoadStringW(module, 0x1234, buffer, 32), 15);
    EXPECT_EQ(utf8(buffer), "from the module");
    EXPECT_EQ(buffer[16], u'#');
}

TEST_F(ResourcesTest, ATextIsCutToTheBuffer)
{
    WCHAR buffer[16];
    std::fill(std::begin(buffer), std::end(buffer), u'#');
    EXPECT_EQ(LoadStringW(module, 0x1234, buffer, 5), 4);
    EXPECT_EQ(utf8(buffer), "from");
    EXPECT_EQ(buffer[5], u'#');
    EXPECT_EQ(LoadStringW(module, 0x1234, buffer, 16), 15);
    EXPECT_EQ(buffer[15], 0);
    EXPECT_EQ(LoadStringW(module, 0x1234, buffer, 1), 0);
    EXPECT_EQ(buffer[0], 0);
}

TEST_F(ResourcesTest, WithSizeZeroTheTextIsGivenInPlace)
{
    const WCHAR *place = nullptr;
    EXPECT_EQ(LoadStringW(module, 0x1234, reinterpret_cast<WCHAR *>(&place), 0), 15);
    ASSERT_NE(place, nullptr);
    EXPECT_EQ(utf8(std::u16string_view(place, 15)), "from the module");
    const WCHAR *again = nullptr;
    LoadStringW(module, 0x1234, reinterpret_cast<WCHAR *>(&again), 0);
    EXPECT_EQ(place, again);
    // The stored length counts, not a terminator.
    EXPECT_EQ(LoadStringW(module, 4, reinterpret_cast<WCHAR *>(&place), 0), 3);
    EXPECT_EQ(utf8(std::u16string_view(place, 3)), "cut");
    EXPECT_EQ(LoadStringW(module, 3, reinterpret_cast<WCHAR *>(&place), 0), 3);
    EXPECT_EQ(std::u16string_view(place, 3), std::u16string_view(u"a\0b", 3));
}

TEST_F(ResourcesTest, AMissingTextFails)
{
    WCHAR buffer[8] = {u'x', 0};
    SetLastError(0);
    EXPECT_EQ(LoadStringW(module, 99, buffer, 8), 0);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(buffer[0], 0);
    const WCHAR *place = buffer;
    SetLastError(0);
    EXPECT_EQ(LoadStringW(module, 99, reinterpret_cast<WCHAR *>(&place), 0), 0);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    SetLastError(0);
    EXPECT_EQ(LoadStringW(module, 0x1234, nullptr, 8), 0);
    EXPECT_EQ(GetLastError(), ERROR_RESOURCE_NAME_NOT_FOUND);
    EXPECT_EQ(LoadStringW(module, 0x1234, buffer, -1), 0);
}

TEST_F(ResourcesTest, AnEmptyTextIsNoFailure)
{
    WCHAR buffer[8] = {u'x', 0};
    SetLastError(0);
    EXPECT_EQ(LoadStringW(module, 2, buffer, 8), 0);
    EXPECT_EQ(GetLastError(), 0U);
    EXPECT_EQ(buffer[0], 0);
}

TEST_F(ResourcesTest, TheModuleIsAskedInTheDevicesLanguage)
{
    EXPECT_EQ(text(module, 5), "en-US");
    EXPECT_EQ(text(module, 1), "first");
    device.setLocale("de-DE");
    EXPECT_EQ(text(module, 5), "de-DE");
    EXPECT_EQ(text(module, 1), "erste");
}

TEST_F(ResourcesTest, ANullInstanceMeansTheSystemsTextsUntilTheHostSetsItsOwn)
{
    EXPECT_EQ(text(nullptr, 44038), "years");
    EXPECT_EQ(text(nullptr, 0x1234), "(none)");
    zb::setApplicationResources(module);
    EXPECT_EQ(text(nullptr, 0x1234), "from the module");
    EXPECT_EQ(text(nullptr, 44038), "(none)");
    zb::setApplicationResources(nullptr);
    EXPECT_EQ(text(nullptr, 44038), "years");
}

TEST_F(ResourcesTest, TheSystemsTextsCanBeLoadedByName)
{
    HMODULE resources = LoadLibraryW(u"ZBResources.dll");
    ASSERT_NE(resources, nullptr);
    EXPECT_EQ(text(resources, 44038), "years");
    device.setLocale("xx-YY");
    EXPECT_EQ(text(resources, 44038), "years");
    FreeLibrary(resources);
}

TEST(Resources, NeedNoDevice)
{
    WCHAR buffer[16];
    EXPECT_EQ(LoadStringW(nullptr, 44038, buffer, 16), 5);
    EXPECT_EQ(utf8(buffer), "years");
}

// --- The compiler of the tables ------------------------------------------------------------------------------------

class CompileTextsTest : public testing::Test
{
  protected:
    /// Runs the compiler on the tables and returns its exit code; `messages` gets what it said.
    int compile(const std::string &tables)
    {
        const fs::path program = fs::read_symlink("/proc/self/exe").parent_path() / "compile_texts";
        const std::string command =
            "cd '" + folder.path().string() + "' && '" + program.string() + "' out.cpp " + tables + " 2>&1";
        FILE *pipe = popen(command.c_str(), "r");
        std::array<char, 256> buffer{};
        messages.clear();
        while (fgets(buffer.data(), buffer.size(), pipe) != nullptr)
        {
            messages += buffer.data();
        }
        const int status = pclose(pipe);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// Compiles one English table.
    int compileEnglish(const std::string &table)
    {
        putHostFile(folder.path() / "en.txt", table);
        return compile("en.txt");
    }

    std::string output() const
    {
        return hostBytes(folder.path() / "out.cpp");
    }

    TemporaryFolder folder;
    std::string messages;
};

TEST_F(CompileTextsTest, TextsAreSortedByNumberAndCommentsLeftOut)
{
    ASSERT_EQ(compileEnglish("# a comment\n20\tsecond\n\n3\tfirst\r\n65535\tlast"), 0) << messages;
    const std::string source = output();
    const auto first = source.find("{3, 5, u\"first\"}");
    const auto second = source.find("{20, 6, u\"second\"}");
    const auto last = source.find("{65535, 4, u\"last\"}");
    EXPECT_LT(first, second);
    EXPECT_LT(second, last);
    EXPECT_NE(last, std::string::npos);
    EXPECT_EQ(source.find("comment\n20"), std::string::npos);
}

TEST_F(CompileTextsTest, EscapesAndForeignLettersKeepTheirMeaningAndLength)
{
    ASSERT_EQ(compileEnglish("1\ta\\nb\\tc\\\\d\n2\t\u00E4\u20AC\n3\t\U0001F600\n4\tsay \"hi\"\n5\t a b \n6\ta\tb\n"),
              1);
    ASSERT_EQ(compileEnglish("1\ta\\nb\\tc\\\\d\n2\t\u00E4\u20AC\n3\t\U0001F600\n4\tsay \"hi\"\n5\t a b \n"), 0)
        << messages;
    const std::string source = output();
    EXPECT_NE(source.find("{1, 7, u\"a\\012b\\011c\\134d\"}"), std::string::npos) << source;
    EXPECT_NE(source.find("{2, 2, u\"\\x00e4\" u\"\\x20ac\" u\"\"}"), std::string::npos) << source;
    EXPECT_NE(source.find("{3, 2, u\"\\xd83d\" u\"\\xde00\" u\"\"}"), std::string::npos) << source;
    EXPECT_NE(source.find("{4, 8, u\"say \\042hi\\042\"}"), std::string::npos) << source;
    EXPECT_NE(source.find("{5, 5, u\" a b \"}"), std::string::npos) << source;
}

TEST_F(CompileTextsTest, EveryBadLineIsToldWithFileAndLine)
{
    struct Case
    {
        const char *table;
        const char *place;
    };
    const Case cases[] = {
        {"1\tone\n1\tagain\n", "en.txt:2: error: number 1 stands in line 1 already"},
        {"1 one\n", "en.txt:1: error: number and text must be parted by a tab"},
        {"# fine\n\none\tone\n", "en.txt:3: error: a line must begin with a number"},
        {"0\tone\n", "en.txt:1: error: a line must begin with a number"},
        {"65536\tone\n", "en.txt:1: error: a line must begin with a number"},
        {"-1\tone\n", "en.txt:1: error: a line must begin with a number"},
        {" 1\tone\n", "en.txt:1: error: a line must begin with a number"},
        {"1\t\n", "en.txt:1: error: the text is empty"},
        {"1\tone\\\n", "en.txt:1: error: a backslash"},
        {"1\tone\\x\n", "en.txt:1: error: a backslash"},
        {"1\tone\x01\n", "en.txt:1: error: control characters"},
        {"1\tcaf\xE9\n", "en.txt:1: error: the text is not UTF-8"},
        {"1\t\xC0\xAF\n", "en.txt:1: error: the text is not UTF-8"},
        {"1\t\xED\xA0\x80\n", "en.txt:1: error: the text is not UTF-8"},
        {"1\t\xF4\x90\x80\x80\n", "en.txt:1: error: the text is not UTF-8"},
        {"", "en.txt:1: error: the table has no texts"},
    };
    for (const Case &each : cases)
    {
        EXPECT_EQ(compileEnglish(each.table), 1) << each.table;
        EXPECT_NE(messages.find(each.place), std::string::npos) << messages;
        EXPECT_FALSE(fs::exists(folder.path() / "out.cpp")) << each.table;
    }
}

TEST_F(CompileTextsTest, AllErrorsOfAllTablesAreToldAtOnce)
{
    putHostFile(folder.path() / "en.txt", "1\tone\nbad\n2\ttwo\n2\ttwo\n");
    putHostFile(folder.path() / "de.txt", "bad\n");
    EXPECT_EQ(compile("en.txt de.txt missing.txt"), 1);
    for (const char *place : {"en.txt:2: error", "en.txt:4: error", "de.txt:1: error", "missing.txt: error"})
    {
        EXPECT_NE(messages.find(place), std::string::npos) << messages;
    }
}

TEST_F(CompileTextsTest, EnglishMustBeThere)
{
    putHostFile(folder.path() / "de.txt", "1\teins\n");
    EXPECT_EQ(compile("de.txt"), 1);
    EXPECT_NE(messages.find("en.txt"), std::string::npos);
    putHostFile(folder.path() / "en.txt", "1\tone\n");
    putHostFile(folder.path() / "pt-BR.txt", "1\tum\n");
    EXPECT_EQ(compile("de.txt en.txt pt-BR.txt"), 0) << messages;
    for (const char *language : {"{\"de\", texts_de, 1}", "{\"en\", texts_en, 1}", "{\"pt-BR\", texts_pt_BR, 1}"})
    {
        EXPECT_NE(output().find(language), std::string::npos) << output();
    }
}
} // namespace
