// The settings store: the text file, its sharing and merging, the registry behind the same interface, transfers.
#include "core/CRegistry.h"
#include "core/CRegistry_file.h"
#include "core/textfile.h"
#include "platform/files.h"
#include "platform/text.h"
#include "support/TestDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <thread>

namespace
{
constexpr const WCHAR *area = u"Software\\Kelvo\\Zembrik\\CAV";
constexpr const WCHAR *file = u"\\My Documents\\Kelvo\\Settings.txt";

class CRegistryTest : public zb::test::DeviceTest
{
  protected:
    /// Writes the settings file as some other program would.
    static void write(const std::u16string &text, const WCHAR *path = file)
    {
        ASSERT_TRUE(zb::writeTextFile(path, text));
    }

    static std::u16string content(const WCHAR *path = file)
    {
        return zb::readTextFile(path).value_or(u"(none)");
    }

    void writeBytes(const std::string &bytes)
    {
        const auto folder = device.path() / "files" / "My Documents" / "Kelvo";
        std::filesystem::create_directories(folder);
        std::ofstream stream(folder / "Settings.txt", std::ios::binary);
        stream << bytes;
    }

    std::string bytesOf(const std::filesystem::path &below)
    {
        std::ifstream stream(device.path() / "files" / below, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    static std::u16string text(const CRegistry &registry, const WCHAR *name)
    {
        WCHAR buffer[3000] = u"unchanged";
        return registry.QueryValue(name, buffer, 3000) == 0 ? std::u16string(buffer) : std::u16string(u"(missing)");
    }

    static DWORD number(const CRegistry &registry, const WCHAR *name)
    {
        DWORD value = 0xDEADBEEF;
        registry.QueryValue(name, &value);
        return value;
    }
};

TEST_F(CRegistryTest, aMissingValueIsNegativeAndLeavesTheTargetAsItWas)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, area);
    LONG signedValue = 7;
    DWORD value = 8;
    WCHAR buffer[10] = u"same";
    EXPECT_EQ(registry.QueryValue(u"None", &signedValue), static_cast<LONG>(0x80004005U));
    EXPECT_LT(registry.QueryValue(u"None", &value), 0);
    EXPECT_LT(registry.QueryValue(u"None", buffer, 10), 0);
    EXPECT_EQ(signedValue, 7);
    EXPECT_EQ(value, 8U);
    EXPECT_EQ(std::u16string(buffer), u"same");
}

TEST_F(CRegistryTest, theFileHasAMarkAnEmptyLineAndOneSectionAKey)
{
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, area);
        registry.SetValue(u"Answer", DWORD{42});
        registry.SetValue(u"Name", u"a \"quoted\" word = x");
        registry.SetValue(nullptr, u"default");
        registry.OpenKey(HKEY_LOCAL_MACHINE, u"Software\\Empty");
    }
    EXPECT_EQ(content(), u"\r\n[HKEY_CURRENT_USER\\Software\\Kelvo\\Zembrik\\CAV]\r\n\"Answer\"=dword:0000002A\r\n"
                         u"\"Name\"=\"a \"quoted\" word = x\"\r\n@=\"default\"\r\n\r\n");
    EXPECT_EQ(bytesOf("My Documents/Kelvo/Settings.txt").substr(0, 2), "\xFF\xFE");
}

TEST_F(CRegistryTest, whatWasWrittenIsReadByALaterProcess)
{
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, area);
        registry.SetValue(u"Answer", DWORD{0xFFFFFFFE});
        registry.SetValue(u"Name", u"a \"quoted\" word = x");
        registry.SetValue(u"", u"default");
    }
    device.reopen();
    CRegistry registry;
    DWORD disposition = 0;
    EXPECT_EQ(registry.OpenKey(HKEY_CURRENT_USER, area, &disposition), 0);
    EXPECT_EQ(disposition, 2U);
    EXPECT_EQ(number(registry, u"Answer"), 0xFFFFFFFEU);
    LONG asSigned = 0;
    EXPECT_EQ(registry.QueryValue(u"Answer", &asSigned), 0);
    EXPECT_EQ(asSigned, -2);
    EXPECT_EQ(text(registry, u"Name"), u"a \"quoted\" word = x");
    EXPECT_EQ(text(registry, u"@"), u"default");
    EXPECT_EQ(registry.OpenKey(HKEY_CURRENT_USER, u"Software\\New", &disposition), 0);
    EXPECT_EQ(disposition, 1U);
}

TEST_F(CRegistryTest, readingTakesWordsInAnyCaseAndTextThatHoldsTheMarkAsANumber)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"x\"=dword:2a\r\n\"y\"=DWORD:2A\r\n\"z\"=\"dword:10\"\r\n  \"w\" = \"  padded  "
          u"\" \r\n"
          u"no equals sign\r\n\"cut\"=\"one\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    EXPECT_EQ(number(registry, u"x"), 42U);
    EXPECT_EQ(number(registry, u"y"), 42U);
    EXPECT_EQ(number(registry, u"z"), 16U);
    EXPECT_EQ(text(registry, u"w"), u"  padded  ");
    EXPECT_EQ(text(registry, u"cut"), u"one");
    EXPECT_EQ(registry.ValueCount(), 5U);
    registry.SetValue(u"s", u"see dword:5");
    registry.SaveINIFile(1);
    device.reopen();
    CRegistry later;
    later.OpenKey(HKEY_CURRENT_USER, u"A");
    DWORD type = 0;
    EXPECT_EQ(later.QueryValueType(u"s", &type), 0);
    EXPECT_EQ(type, REG_DWORD);
}

TEST_F(CRegistryTest, aLineOf2050CharactersIsReadAndOneOf2051IsDropped)
{
    const std::u16string prefix = u"\"long\"=\"";
    const std::u16string fits = prefix + std::u16string(2050 - prefix.size() - 1, u'x') + u"\"";
    const std::u16string tooLong = u"\"more\"=\"" + std::u16string(2051 - prefix.size() - 1, u'x') + u"\"";
    ASSERT_EQ(fits.size(), 2050U);
    ASSERT_EQ(tooLong.size(), 2051U);
    write(u"[HKEY_CURRENT_USER\\A]\r\n" + fits + u"\r\n" + tooLong + u"\r\n\"after\"=\"1\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    EXPECT_EQ(text(registry, u"long").size(), 2050 - prefix.size() - 1);
    EXPECT_EQ(text(registry, u"more"), u"(missing)");
    EXPECT_EQ(text(registry, u"after"), u"1");
}

TEST_F(CRegistryTest, aTextTooLongForItsLineIsCutSoThatTheLineCanBeReadAgain)
{
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, u"A");
        registry.SetValue(u"v", std::u16string(5000, u'x').c_str());
    }
    device.reopen();
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    EXPECT_EQ(text(registry, u"v").size(), 2050U - std::u16string(u"\"v\"=\"\"").size());
}

TEST_F(CRegistryTest, aTextNeverBecomesALineOfItsOwn)
{
    {
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, u"A");
        registry.SetValue(u"v", u"one\r\n[HKEY_CURRENT_USER\\B]\r\n\"w\"=\"2\"");
    }
    device.reopen();
    CRegistry registry;
    EXPECT_FALSE(registry.Exists(HKEY_CURRENT_USER, u"B"));
}

TEST_F(CRegistryTest, otherEncodingsAreReadAndTheNextSaveWritesTheMark)
{
    const std::array<std::string, 3> forms = {"[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"caf\xE9\"\r\n",
                                              "\xEF\xBB\xBF[HKEY_CURRENT_USER\\A]\n\"v\"=\"caf\xC3\xA9\"\n", ""};
    for (std::size_t i = 0; i < 2; ++i)
    {
        writeBytes(forms[i]);
        device.reopen();
        CRegistry registry;
        registry.OpenKey(HKEY_CURRENT_USER, u"A");
        EXPECT_EQ(text(registry, u"v"), u"café") << i;
        registry.SetValue(u"w", DWORD{1});
        EXPECT_EQ(registry.SaveINIFile(1), 0);
        EXPECT_EQ(bytesOf("My Documents/Kelvo/Settings.txt").substr(0, 2), "\xFF\xFE") << i;
    }
}

TEST_F(CRegistryTest, aSectionThatStandsTwiceIsContinued)
{
    write(
        u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n[HKEY_CURRENT_USER\\B]\r\n\"b\"=\"2\"\r\n[HKEY_CURRENT_USER\\A]\r\n"
        u"\"a\"=\"3\"\r\n\"c\"=\"4\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    EXPECT_EQ(text(registry, u"a"), u"3");
    EXPECT_EQ(text(registry, u"c"), u"4");
    EXPECT_EQ(registry.ValueCount(), 2U);
}

TEST_F(CRegistryTest, sectionAndValueNamesAreComparedExactly)
{
    write(u"[HKEY_CURRENT_USER\\Software]\r\n\"a\"=\"1\"\r\n[hkey_current_user\\software]\r\n\"a\"=\"2\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"Software");
    EXPECT_EQ(text(registry, u"a"), u"1");
    EXPECT_EQ(text(registry, u"A"), u"(missing)");
    EXPECT_FALSE(registry.Exists(HKEY_CURRENT_USER, u"software"));
}

TEST_F(CRegistryTest, twoObjectsOnOneFileSeeEachOthersUnsavedChanges)
{
    CRegistry writer;
    CRegistry reader;
    writer.OpenKey(HKEY_CURRENT_USER, area);
    reader.OpenKey(HKEY_CURRENT_USER, area);
    writer.SetValue(u"v", DWORD{5});
    EXPECT_EQ(number(reader, u"v"), 5U);
    EXPECT_EQ(content(), u"(none)");
    EXPECT_EQ(writer.GetINIFile(), reader.GetINIFile());
    EXPECT_TRUE(CRegistry::INIFileInCache(nullptr));
    EXPECT_FALSE(CRegistry::INIFileInCache(u"\\Other.txt"));
}

TEST_F(CRegistryTest, aDirtyFileIsSavedByTheLastObjectThatUsesIt)
{
    auto first = std::make_unique<CRegistry>();
    auto second = std::make_unique<CRegistry>();
    first->OpenKey(HKEY_CURRENT_USER, u"A");
    first->SetValue(u"v", DWORD{5});
    first->SaveINIFile(0);
    EXPECT_EQ(content(), u"(none)");
    first.reset();
    EXPECT_EQ(content(), u"(none)");
    second.reset();
    EXPECT_NE(content().find(u"\"v\"=dword:00000005"), std::u16string::npos);
}

TEST_F(CRegistryTest, flushKeySavesAtOnce)
{
    CRegistry registry;
    CRegistry other;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"v", DWORD{5});
    EXPECT_EQ(registry.FlushKey(), 0);
    EXPECT_NE(content().find(u"\"v\"=dword:00000005"), std::u16string::npos);
}

TEST_F(CRegistryTest, savingKeepsWhatAnotherProcessWroteMeanwhile)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"mine\"=\"1\"\r\n\"theirs\"=\"1\"\r\n\"gone\"=\"1\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"mine", u"2");
    registry.DeleteValue(u"gone");
    write(
        u"[HKEY_CURRENT_USER\\A]\r\n\"mine\"=\"1\"\r\n\"theirs\"=\"9\"\r\n\"gone\"=\"1\"\r\n[HKEY_CURRENT_USER\\B]\r\n"
        u"\"new\"=\"1\"\r\n");
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(text(registry, u"mine"), u"2");
    EXPECT_EQ(text(registry, u"theirs"), u"9");
    EXPECT_EQ(text(registry, u"gone"), u"(missing)");
    EXPECT_TRUE(registry.Exists(HKEY_CURRENT_USER, u"B"));
}

TEST_F(CRegistryTest, aDeletedKeyIsGoneFromTheFileWithAllBelowIt)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"a\"=\"1\"\r\n[HKEY_CURRENT_USER\\A\\B]\r\n\"b\"=\"1\"\r\n[HKEY_CURRENT_"
          u"USER\\AB]\r\n"
          u"\"c\"=\"1\"\r\n");
    CRegistry registry;
    EXPECT_EQ(registry.DeleteKey(HKEY_CURRENT_USER, u"A"), 0);
    EXPECT_FALSE(registry.Exists(HKEY_CURRENT_USER, u"A"));
    registry.SaveINIFile(1);
    EXPECT_EQ(content(), u"\r\n[HKEY_CURRENT_USER\\AB]\r\n\"c\"=\"1\"\r\n\r\n");
}

TEST_F(CRegistryTest, aKeyDeletedAndMadeAnewBeforeASaveExistsAfterItWithItsNewValuesAlone)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"old\"=\"1\"\r\n");
    CRegistry registry;
    registry.DeleteKey(HKEY_CURRENT_USER, u"A");
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"new", u"2");
    registry.SaveINIFile(1);
    EXPECT_EQ(content(), u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"new\"=\"2\"\r\n\r\n");
}

TEST_F(CRegistryTest, aDeletedValueThatIsSetAgainIsKept)
{
    write(u"[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"1\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.DeleteValue(u"v");
    registry.SetValue(u"v", u"2");
    registry.SaveINIFile(1);
    EXPECT_EQ(content(), u"\r\n[HKEY_CURRENT_USER\\A]\r\n\"v\"=\"2\"\r\n\r\n");
}

TEST_F(CRegistryTest, anObjectGoesOnWithItsKeyAfterASave)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(registry.SetValue(u"v", DWORD{1}), 0);
    EXPECT_EQ(number(registry, u"v"), 1U);
}

TEST_F(CRegistryTest, theBackupHoldsTheSameBytes)
{
    // The backup's path is the word Backup in front of the whole path: a folder of that name at the top.
    zb::createFolderOf(u"\\Backup\\My Documents\\Kelvo\\x");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"v", DWORD{1});
    EXPECT_EQ(registry.SaveINIFile(1), 0);
    EXPECT_EQ(bytesOf("Backup/My Documents/Kelvo/Settings.txt"), bytesOf("My Documents/Kelvo/Settings.txt"));
    EXPECT_FALSE(bytesOf("Backup/My Documents/Kelvo/Settings.txt").empty());
}

TEST_F(CRegistryTest, aBackupThatFailsIsIgnored)
{
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"v", DWORD{1});
    EXPECT_EQ(registry.SaveINIFile(1), 0);
}

TEST_F(CRegistryTest, aFileThatCannotBeWrittenStaysDirty)
{
    ASSERT_TRUE(CreateDirectoryW(u"\\Blocked.txt", nullptr));
    CRegistry registry(u"\\Blocked.txt");
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    registry.SetValue(u"v", DWORD{1});
    EXPECT_EQ(registry.SaveINIFile(1), static_cast<LONG>(0x80004005U));
    EXPECT_TRUE(registry.GetINIFile()->dirty());
}

TEST_F(CRegistryTest, theBaseFolderComesFromTheRegistry)
{
    EXPECT_EQ(SettingsBaseFolder(), u"\\My Documents");
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik", u"Kelvo_Folder", u"\\Storage Card");
    device.reopen();
    EXPECT_EQ(SettingsBaseFolder(), u"\\Storage Card");
    EXPECT_EQ(CRegistry().INIFileName(), u"\\Storage Card\\Kelvo\\Settings.txt");
    EXPECT_EQ(CRegistry(u"\\Fixed.txt").INIFileName(), u"\\Fixed.txt");
}

TEST_F(CRegistryTest, aFileWithoutPathIsRefusedAndEveryCallOnItFails)
{
    CRegistry registry;
    EXPECT_EQ(registry.SetRegistryType(RegistryTypeFile, nullptr), static_cast<LONG>(0x80070057U));
    EXPECT_EQ(registry.OpenKey(HKEY_CURRENT_USER, u"A"), static_cast<LONG>(0x80004005U));
    EXPECT_EQ(registry.SetValue(u"v", DWORD{1}), static_cast<LONG>(0x80004005U));
    EXPECT_EQ(registry.DeleteKey(HKEY_CURRENT_USER, u"A"), static_cast<LONG>(0x80004005U));
    EXPECT_EQ(registry.SaveINIFile(1), static_cast<LONG>(0x80004005U));
}

TEST_F(CRegistryTest, aFileThatIsNotSharedBelongsToItsObject)
{
    CRegistry own(RegistryTypeFile, u"\\Own.txt", 0);
    EXPECT_FALSE(CRegistry::INIFileInCache(u"\\Own.txt"));
    EXPECT_EQ(own.RegistryType(), RegistryTypeFile);
    own.OpenKey(HKEY_CURRENT_USER, u"A");
    own.SetValue(u"v", DWORD{3});
    EXPECT_EQ(own.SaveINIFile(1), 0);
    EXPECT_NE(content(u"\\Own.txt").find(u"00000003"), std::u16string::npos);
}

TEST_F(CRegistryTest, rootsAndSectionNamesTurnIntoEachOther)
{
    EXPECT_EQ(std::u16string(CRegistry::GetKeySection(HKEY_CURRENT_USER, u"a\\b")), u"HKEY_CURRENT_USER\\a\\b");
    EXPECT_EQ(std::u16string(CRegistry::GetKeySection(HKEY_LOCAL_MACHINE, u"a")), u"HKEY_LOCAL_MACHINE\\a");
    EXPECT_EQ(std::u16string(CRegistry::GetKeySection(HKEY_CLASSES_ROOT, u"a")), u"HKEY_CLASSES_ROOT\\a");
    EXPECT_EQ(std::u16string(CRegistry::GetKeySection(HKEY_USERS, u"a")), u"HKEY_USERS\\a");
    EXPECT_EQ(std::u16string(CRegistry::GetKeySection(nullptr, u"a")), u"HKEY_CURRENT_USER\\a");
    HKEY root = nullptr;
    const WCHAR *path = nullptr;
    CRegistry::GetSectionKey(u"HKEY_LOCAL_MACHINE\\Software\\X", root, path);
    EXPECT_EQ(root, HKEY_LOCAL_MACHINE);
    EXPECT_EQ(std::u16string(path), u"Software\\X");
    CRegistry::GetSectionKey(u"Elsewhere\\X", root, path);
    EXPECT_EQ(root, HKEY_CURRENT_USER);
    EXPECT_EQ(path, nullptr);
}

TEST_F(CRegistryTest, theRegistryStandsBehindTheSameCalls)
{
    CRegistry registry(RegistryTypeRegistry);
    EXPECT_EQ(registry.RegistryType(), RegistryTypeRegistry);
    DWORD disposition = 0;
    EXPECT_EQ(registry.OpenKey(HKEY_CURRENT_USER, area, &disposition), 0);
    EXPECT_EQ(disposition, 1U);
    EXPECT_NE(registry.KeyRef(), nullptr);
    EXPECT_EQ(registry.SetValue(u"n", DWORD{9}), 0);
    EXPECT_EQ(registry.SetValue(u"t", u"text"), 0);
    EXPECT_EQ(number(registry, u"n"), 9U);
    EXPECT_EQ(text(registry, u"t"), u"text");
    WCHAR name[50] = {};
    EXPECT_EQ(registry.ValueCount(), 2U);
    EXPECT_EQ(registry.ValueName(1, name, 50), 0);
    EXPECT_EQ(std::u16string(name), u"t");
    EXPECT_LT(registry.ValueName(2, name, 50), 0);
    EXPECT_EQ(registry.DeleteValue(u"n"), 0);
    EXPECT_EQ(registry.DeleteValue(u"n"), -2);
    LONG value = 1;
    EXPECT_EQ(registry.QueryValue(u"n", &value), -2);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(content(), u"(none)");
}

TEST_F(CRegistryTest, aRegistryTextIsReadUpTo200CharactersWhenNoSizeIsGiven)
{
    CRegistry registry(RegistryTypeRegistry);
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    WCHAR buffer[300] = u"";
    registry.SetValue(u"fits", std::u16string(199, u'x').c_str());
    registry.SetValue(u"long", std::u16string(200, u'x').c_str());
    EXPECT_EQ(registry.QueryValue(u"fits", buffer, 0), 0);
    EXPECT_EQ(wcslen(buffer), 199U);
    EXPECT_LT(registry.QueryValue(u"long", buffer, 0), 0);
}

TEST_F(CRegistryTest, transfersCopyKeysWithAllBelowThemAndAlwaysGiveTheSameCode)
{
    SetToRegistry(HKEY_CURRENT_USER, u"Top", u"n", 1);
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Top\\Sub", u"t", u"text");
    EXPECT_EQ(CRegistry::ExportRegistry(HKEY_CURRENT_USER, u"Top", u"\\Out.txt", nullptr),
              static_cast<LONG>(0x80004005U));
    EXPECT_EQ(content(u"\\Out.txt"), u"\r\n[HKEY_CURRENT_USER\\Top]\r\n\"n\"=dword:00000001\r\n\r\n"
                                     u"[HKEY_CURRENT_USER\\Top\\Sub]\r\n\"t\"=\"text\"\r\n\r\n");
    DeleteRegistryValue(HKEY_CURRENT_USER, u"Top", u"n");
    EXPECT_EQ(CRegistry::ImportINIFile(u"\\Out.txt"), static_cast<LONG>(0x80004005U));
    DWORD value = 0;
    EXPECT_EQ(GetFromRegistry(HKEY_CURRENT_USER, u"Top", u"n", &value), 0);
    EXPECT_EQ(value, 1U);

    CRegistry store;
    EXPECT_EQ(store.AppendINIFile(u"\\Out.txt", u"Top", u"Renamed"), static_cast<LONG>(0x80004005U));
    store.OpenKey(HKEY_CURRENT_USER, u"Renamed\\Sub");
    EXPECT_EQ(text(store, u"t"), u"text");
    EXPECT_EQ(CRegistry::ExportINIFile(HKEY_CURRENT_USER, u"Renamed", u"\\Second.txt", nullptr),
              static_cast<LONG>(0x80004005U));
    EXPECT_NE(content(u"\\Second.txt").find(u"[HKEY_CURRENT_USER\\Renamed\\Sub]"), std::u16string::npos);
}

TEST_F(CRegistryTest, helpersGiveThePlatformsCode)
{
    DWORD value = 5;
    WCHAR buffer[401] = u"same";
    EXPECT_EQ(GetFromRegistry(HKEY_CURRENT_USER, u"None", u"v", &value), 2);
    EXPECT_EQ(value, 5U);
    EXPECT_EQ(GetFromRegistrySZ(HKEY_CURRENT_USER, u"None", u"v", buffer), 2);
    EXPECT_EQ(SetToRegistrySZ(HKEY_CURRENT_USER, u"K", u"v", u"text"), 0);
    EXPECT_EQ(SetToRegistry(HKEY_CURRENT_USER, u"K\\Sub", u"v", 3), 0);
    EXPECT_EQ(GetFromRegistrySZ(HKEY_CURRENT_USER, u"K", u"v", buffer), 0);
    EXPECT_EQ(std::u16string(buffer), u"text");
    SetToRegistrySZ(HKEY_CURRENT_USER, u"K", u"long", std::u16string(400, u'x').c_str());
    EXPECT_EQ(GetFromRegistrySZ(HKEY_CURRENT_USER, u"K", u"long", buffer), 234);
    DWORD subKeys = 0;
    DWORD values = 0;
    EXPECT_EQ(QueryKey(HKEY_CURRENT_USER, u"K", &subKeys, &values), 0);
    EXPECT_EQ(subKeys, 1U);
    EXPECT_EQ(values, 2U);
    WCHAR name[75] = {};
    EXPECT_EQ(EnumRegistryKeysSZ(HKEY_CURRENT_USER, u"K", name, 0), 0);
    EXPECT_EQ(std::u16string(name), u"Sub");
    EXPECT_EQ(EnumRegistryKeysSZ(HKEY_CURRENT_USER, u"K", name, 1), 259);
    EXPECT_EQ(DeleteRegistryValue(HKEY_CURRENT_USER, u"K", u"v"), 0);
    EXPECT_EQ(DeleteRegistryValue(HKEY_CURRENT_USER, u"K", u"v"), 2);
}

TEST_F(CRegistryTest, helpersTakeNamesBelow75CharactersAndTextsOf800Bytes)
{
    WCHAR name[75] = {};
    const std::u16string fits(74, u'k');
    SetToRegistry(HKEY_CURRENT_USER, (u"Short\\" + fits).c_str(), u"v", 3);
    EXPECT_EQ(EnumRegistryKeysSZ(HKEY_CURRENT_USER, u"Short", name, 0), 0);
    EXPECT_EQ(std::u16string(name), fits);
    SetToRegistry(HKEY_CURRENT_USER, (u"Long\\" + fits + u"k").c_str(), u"v", 3);
    EXPECT_EQ(EnumRegistryKeysSZ(HKEY_CURRENT_USER, u"Long", name, 0), 234);
    WCHAR buffer[401] = {};
    SetToRegistrySZ(HKEY_CURRENT_USER, u"K", u"v", std::u16string(399, u'x').c_str());
    EXPECT_EQ(GetFromRegistrySZ(HKEY_CURRENT_USER, u"K", u"v", buffer), 0);
    EXPECT_EQ(wcslen(buffer), 399U);
}

TEST_F(CRegistryTest, sectionsOfEachRootGoToThatRootOfTheRegistry)
{
    const std::pair<HKEY, const WCHAR *> roots[] = {{HKEY_CURRENT_USER, u"HKEY_CURRENT_USER"},
                                                    {HKEY_LOCAL_MACHINE, u"HKEY_LOCAL_MACHINE"},
                                                    {HKEY_CLASSES_ROOT, u"HKEY_CLASSES_ROOT"},
                                                    {HKEY_USERS, u"HKEY_USERS"}};
    std::u16string all;
    for (const auto &[root, name] : roots)
    {
        all += u"[" + std::u16string(name) + u"\\K]\r\n\"v\"=\"" + name + u"\"\r\n";
        HKEY found = nullptr;
        const WCHAR *path = nullptr;
        CRegistry::GetSectionKey((std::u16string(name) + u"\\a\\b").c_str(), found, path);
        EXPECT_EQ(found, root);
    }
    write(all, u"\\In.txt");
    EXPECT_EQ(CRegistry::ImportINIFile(u"\\In.txt"), static_cast<LONG>(0x80004005U));
    for (const auto &[root, name] : roots)
    {
        WCHAR buffer[401] = {};
        EXPECT_EQ(GetFromRegistrySZ(root, u"K", u"v", buffer), 0);
        EXPECT_EQ(std::u16string(buffer), name);
    }
}

TEST_F(CRegistryTest, appendingReplacesInSectionPathsWithRegardToCase)
{
    write(u"[HKEY_CURRENT_USER\\Top\\top\\Top]\r\n\"n\"=dword:7\r\n\"t\"=\"Top\"\r\n", u"\\In.txt");
    CRegistry store;
    store.AppendINIFile(u"\\In.txt", u"Top", u"New");
    EXPECT_TRUE(store.Exists(HKEY_CURRENT_USER, u"New\\top\\New"));
    store.OpenKey(HKEY_CURRENT_USER, u"New\\top\\New");
    EXPECT_EQ(number(store, u"n"), 7U);
    EXPECT_EQ(text(store, u"t"), u"Top");
    store.AppendINIFile(u"\\In.txt", u"Top", nullptr);
    EXPECT_TRUE(store.Exists(HKEY_CURRENT_USER, u"Top\\top\\Top"));
}

TEST_F(CRegistryTest, subKeysOfAFileAreThoseOneLevelBelow)
{
    write(u"[HKEY_CURRENT_USER\\A\\B\\C]\r\n\"v\"=\"1\"\r\n[HKEY_CURRENT_USER\\A\\D]\r\n\"v\"=\"1\"\r\n[HKEY_CURRENT_"
          u"USER\\A\\B]\r\n"
          u"\"v\"=\"1\"\r\n");
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"A");
    EXPECT_EQ(registry.SubKeyNames(), (std::vector<std::u16string>{u"B", u"D"}));
    EXPECT_EQ(registry.SubKeyCount(), 2U);
    WCHAR name[10] = {};
    EXPECT_EQ(registry.SubKeyName(1, name, 10), 0);
    EXPECT_EQ(std::u16string(name), u"D");
    EXPECT_LT(registry.SubKeyName(2, name, 10), 0);
}

TEST_F(CRegistryTest, manyThreadsReadAndWriteOneFile)
{
    std::vector<std::thread> threads;
    for (DWORD worker = 0; worker < 4; ++worker)
    {
        threads.emplace_back(
            [worker]
            {
                for (DWORD step = 0; step < 50; ++step)
                {
                    CRegistry registry;
                    registry.OpenKey(HKEY_CURRENT_USER, u"Shared");
                    const std::u16string name = u"w" + std::u16string(1, static_cast<char16_t>(u'0' + worker));
                    registry.SetValue(name.c_str(), step);
                    DWORD value = 0;
                    registry.QueryValue(name.c_str(), &value);
                    EXPECT_EQ(value, step);
                }
            });
    }
    for (std::thread &thread : threads)
    {
        thread.join();
    }
    CRegistry registry;
    registry.OpenKey(HKEY_CURRENT_USER, u"Shared");
    for (const WCHAR *name : {u"w0", u"w1", u"w2", u"w3"})
    {
        EXPECT_EQ(number(registry, name), 49U);
    }
}
} // namespace
