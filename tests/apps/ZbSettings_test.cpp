// zb settings.
#include "apps/ZbFixture.h"

namespace
{
using Json = nlohmann::json;
using zb::test::ProgramResult;

class ZbSettingsTest : public zb::test::ZbTest
{
  protected:
    ZbSettingsTest()
    {
        zb({"init"});
    }
    ProgramResult settings(std::vector<std::string> words) const
    {
        words.insert(words.begin(), "settings");
        return zb(words);
    }
    std::string get(const std::string &name) const
    {
        return settings({"get", name}).out;
    }
    /// The store's file in UTF-8; empty when there is none.
    std::string store() const
    {
        const std::string bytes = zb::test::readFile(device() / "files/My Documents/Kelvo/Settings.txt");
        std::string text;
        for (std::size_t n = 2; n + 1 < bytes.size(); n += 2)
        {
            text.push_back(bytes[n]);
        }
        return text;
    }
    Json entry(const std::string &name) const
    {
        const Json list = json({"settings", "list", "--json"});
        for (const Json &setting : list["settings"])
        {
            if (setting["name"] == name)
            {
                return setting;
            }
        }
        return {};
    }
};

TEST_F(ZbSettingsTest, WithoutAWordItListsWhatTheSystemReadsWithItsDefaults)
{
    const ProgramResult result = settings({});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, settings({"list"}).out);
    EXPECT_NE(result.out.find("Software\\Kelvo\\Zembrik\\CAV\n"), std::string::npos);
    EXPECT_NE(result.out.find("  CAV_StatusFilter             42169            (default) "), std::string::npos);
    EXPECT_NE(result.out.find("  HolidaySubName               \" day\"           (default) "), std::string::npos);
    EXPECT_EQ(store(), "") << "looking changes nothing";
}

TEST_F(ZbSettingsTest, AValueThatWasSetIsReadAndStored)
{
    EXPECT_EQ(settings({"set", "CAV_StatusFilter", "42165"}).exitCode, 0);
    EXPECT_EQ(get("CAV_StatusFilter"), "42165\n");
    EXPECT_EQ(settings({"set", "AnnCatName", "Tag = \"Jahr\""}).exitCode, 0);
    EXPECT_EQ(get("AnnCatName"), "Tag = \"Jahr\"\n");
    EXPECT_EQ(store(), "\r\n[HKEY_CURRENT_USER\\Software\\Kelvo\\Zembrik\\CAV]\r\n"
                       "\"TaskSort\"=dword:0000A4F3\r\n\"CAV_StatusFilter\"=dword:0000A4B5\r\n\"AnnCatName\"=\"Tag = \"Jahr\"\"\r\n\r\n");
    EXPECT_EQ(entry("CAV_StatusFilter")["value"], 42165);
    EXPECT_EQ(entry("CAV_StatusFilter")["stored"], true);
    EXPECT_EQ(entry("AnnCatName")["value"], "Tag = \"Jahr\"");
    EXPECT_EQ(entry("BDayCatName")["stored"], false);
}

TEST_F(ZbSettingsTest, NumbersComeInBothForms)
{
    settings({"set", "TaskSort", "0xA4F4"});
    EXPECT_EQ(get("TaskSort"), "42228\n");
    settings({"set", "bHideCategories", "4294967295"});
    EXPECT_EQ(get("bHideCategories"), "4294967295\n");
}

TEST_F(ZbSettingsTest, AValueThatWasTakenOutHasItsDefaultAgain)
{
    settings({"set", "TaskSort", "42228"});
    EXPECT_EQ(settings({"unset", "TaskSort"}).exitCode, 0);
    EXPECT_EQ(get("TaskSort"), "42227\n");
    EXPECT_EQ(settings({"unset", "TaskSort"}).exitCode, 0) << "nothing to do is done";
}

TEST_F(ZbSettingsTest, KeysAreBelowTheSystemsOwnOrWhole)
{
    settings({"set", "Colour", "7", "--key", "."});
    settings({"set", "Colour", "8", "--key", "Menus/Main"});
    settings({"set", "Colour", "9", "--key", "Software\\Other"});
    EXPECT_NE(store().find("[HKEY_CURRENT_USER\\Software\\Kelvo\\Zembrik]\r\n\"Colour\"=dword:00000007"),
              std::string::npos);
    EXPECT_NE(store().find("[HKEY_CURRENT_USER\\Software\\Kelvo\\Zembrik\\Menus\\Main]\r\n\"Colour\"=dword:00000008"),
              std::string::npos);
    EXPECT_NE(store().find("[HKEY_CURRENT_USER\\Software\\Other]\r\n\"Colour\"=dword:00000009"), std::string::npos);
    EXPECT_EQ(settings({"get", "Colour", "--key", "Menus\\Main"}).out, "8\n");
    const Json list = json({"settings", "list", "--json", "--key", "Menus"});
    ASSERT_EQ(list["settings"].size(), 1U);
    EXPECT_EQ(list["settings"][0]["key"], "Software\\Kelvo\\Zembrik\\Menus\\Main");
}

TEST_F(ZbSettingsTest, DigitsCanBeAText)
{
    settings({"set", "Shape", "12", "--text"});
    EXPECT_EQ(json({"settings", "get", "Shape", "--json"})["setting"]["value"], "12");
    settings({"set", "Shape", "12"});
    EXPECT_EQ(json({"settings", "get", "Shape", "--json"})["setting"]["value"], 12);
}

TEST_F(ZbSettingsTest, WhatTheStoreCantCarryIsRefused)
{
    const std::vector<std::vector<std::string>> refused = {{"set", "CAV_StatusFilter", "busy"},
                                                           {"set", "CAV_StatusFilter", "-1"},
                                                           {"set", "CAV_StatusFilter", "4294967296"},
                                                           {"set", "CAV_StatusFilter", "42165", "--text"},
                                                           {"set", "AnnCatName", "two\nlines"},
                                                           {"set", "AnnCatName", "My DWORD:7"},
                                                           {"set", "a=b", "1"},
                                                           {"set", "", "1"},
                                                           {"set", "[section]", "1"},
                                                           {"set", "AnnCatName", std::string(2036, 'x')}};
    for (const std::vector<std::string> &words : refused)
    {
        const ProgramResult result = settings(words);
        EXPECT_EQ(result.exitCode, 2) << words[1] << " " << words[2].substr(0, 20);
        EXPECT_NE(result.err, "") << words[1];
    }
    EXPECT_EQ(store(), "\r\n[HKEY_CURRENT_USER\\Software\\Kelvo\\Zembrik\\CAV]\r\n\"TaskSort\"=dword:0000A4F3\r\n\r\n")
        << "nothing but the default that lists write back";
    const std::string longest(2035, 'x');
    EXPECT_EQ(settings({"set", "AnnCatName", longest}).exitCode, 0);
    EXPECT_EQ(get("AnnCatName"), longest + "\n");
}

TEST_F(ZbSettingsTest, AnUnknownNameOrWordIsAnError)
{
    EXPECT_EQ(settings({"get", "NoSuchThing"}).exitCode, 2);
    EXPECT_NE(settings({"get", "NoSuchThing"}).err.find("NoSuchThing"), std::string::npos);
    EXPECT_EQ(settings({"change", "TaskSort", "1"}).exitCode, 2);
    EXPECT_EQ(settings({"set", "TaskSort"}).exitCode, 2);
}

TEST_F(ZbSettingsTest, AFileThatCantBeWrittenIsTold)
{
    // A folder where the file belongs.
    std::filesystem::create_directories(device() / "files/My Documents/Kelvo/Settings.txt");
    const ProgramResult result = settings({"set", "TaskSort", "42228"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_NE(result.err.find("Settings.txt"), std::string::npos);
}
} // namespace
