// zb contacts: lists, groups, searches, and what can't be asked.
#include "apps/ZbFixture.h"
#include "platform/device.h"
#include "platform/kernel.h"
#include "platform/pim.h"
#include "records/CategoryEdit.h"

namespace zb::test
{
namespace
{
class ZbContacts : public ZbTest
{
  protected:
    ZbContacts()
    {
        EXPECT_EQ(zb({"init"}).exitCode, 0);
        DeviceOptions options;
        options.root = device();
        options.locale = "en-US";
        const std::unique_ptr<Device> opened = OpenDevice(options);
        addCategory(u"Home");
        addCategory(u"Work");
        ContactItem anna;
        anna.firstName = u"Anna";
        anna.lastName = u"Berg";
        anna.company = u"Acme";
        anna.mobilePhone = u"555-01";
        anna.home.city = u"Oslo";
        ids.push_back(add(anna, 1));
        ContactItem zoe;
        zoe.firstName = u"Zoë";
        zoe.lastName = u"Adams";
        zoe.email1 = u"zoe@example.org";
        ids.push_back(add(zoe, 3));
        ContactItem company;
        company.company = u"Cobalt";
        ids.push_back(add(company, 0));
    }
    /// The names that are printed, groups apart.
    std::string names(const std::vector<std::string> &more) const
    {
        std::vector<std::string> arguments = {"contacts", "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const nlohmann::json told = json(arguments);
        std::string text;
        for (const auto &group : told["groups"])
        {
            text += (text.empty() ? "" : " | ") + group["name"].get<std::string>();
            for (const auto &contact : group["contacts"])
            {
                text += "; " + contact["name"].get<std::string>();
            }
        }
        return text;
    }
    std::vector<CEOID> ids;

  private:
    static CEOID add(const ContactItem &item, BYTE categories)
    {
        CEOID database = 0;
        const HANDLE handle = CeOpenDatabase(&database, u"Contacts Database", 0, 0, nullptr);
        RecordProperties properties = encodeContact(item);
        if (categories != 0)
        {
            properties.set(itemCategories, std::vector<BYTE>{categories, 0, 0, 0});
        }
        const CEOID oid = CeWriteRecordProps(handle, 0, properties.count(), properties.values());
        CloseHandle(handle);
        return oid;
    }
};

TEST_F(ZbContacts, PrintsNamesNumbersAndCategories)
{
    EXPECT_EQ(zb({"contacts"}).out, "3 contacts\n\n"
                                    "  Adams, Zoë  zoe@example.org  Home, Work\n"
                                    "  Berg, Anna  555-01  Home\n"
                                    "  Cobalt\n");
}

TEST_F(ZbContacts, ListsByEachOrder)
{
    EXPECT_EQ(names({}), "; Adams, Zoë; Berg, Anna; Cobalt");
    EXPECT_EQ(names({"--by", "name"}), "; Adams, Zoë; Berg, Anna; Cobalt");
    EXPECT_EQ(names({"--by", "last"}), "; Adams, Zoë; Berg, Anna; Cobalt");
    EXPECT_EQ(names({"--by", "first"}), "; Anna Berg; Cobalt; Zoë Adams");
    EXPECT_EQ(names({"--by", "company"}), "None; Adams, Zoë | Acme; Berg, Anna | Cobalt; Cobalt");
    EXPECT_EQ(names({"--by", "category"}), "None; Cobalt | Home; Adams, Zoë; Berg, Anna | Work; Adams, Zoë");
}

TEST_F(ZbContacts, GroupsHaveTheirCounts)
{
    EXPECT_EQ(zb({"contacts", "--by", "company"}).out, "3 contacts\n\n"
                                                       "None (1)\n"
                                                       "  Adams, Zoë  zoe@example.org  Home, Work\n\n"
                                                       "Acme (1)\n"
                                                       "  Berg, Anna  555-01  Home\n\n"
                                                       "Cobalt (1)\n"
                                                       "  Cobalt\n");
}

TEST_F(ZbContacts, FindsWhatNamesBeginWith)
{
    EXPECT_EQ(names({"zoe"}), "; Adams, Zoë");
    EXPECT_EQ(names({"z", "--by", "first"}), "; Zoë Adams");
    EXPECT_EQ(names({"z", "--by", "last"}), "") << "one letter looks at the order's own name";
    EXPECT_EQ(names({"ac", "--by", "company"}), "Acme; Berg, Anna");
    EXPECT_EQ(zb({"contacts", "nobody"}).out, "No contacts\n");
}

TEST_F(ZbContacts, FindsTextAnywhereWhenItIsDeep)
{
    EXPECT_EQ(names({"oslo"}), "");
    EXPECT_EQ(names({"oslo", "--deep"}), "; Berg, Anna");
    EXPECT_EQ(names({"oslo", "--deep", "--by", "category"}), "Home; Berg, Anna");
    EXPECT_EQ(names({"EXAMPLE", "--deep"}), "; Adams, Zoë");
    EXPECT_EQ(zb({"contacts", "--deep"}).exitCode, 2) << "nothing to find";
}

TEST_F(ZbContacts, GoesByCategories)
{
    EXPECT_EQ(names({"--category", "work"}), "; Adams, Zoë");
    EXPECT_EQ(names({"--category", "Work", "--hide"}), "; Berg, Anna; Cobalt");
    EXPECT_EQ(names({"--no-category"}), "; Cobalt");
    EXPECT_EQ(names({"--category", "Home", "--by", "company"}), "None; Adams, Zoë | Acme; Berg, Anna");
    EXPECT_EQ(zb({"contacts", "--category", "Garden"}).exitCode, 2);
}

TEST_F(ZbContacts, TellsEachContactAsJson)
{
    const nlohmann::json told = json({"contacts", "--json"});
    EXPECT_EQ(told["version"], 1);
    EXPECT_EQ(told["display"], "name");
    const nlohmann::json &anna = told["groups"][0]["contacts"][1];
    EXPECT_EQ(anna["id"], ids[0]);
    EXPECT_EQ(anna["name"], "Berg, Anna");
    EXPECT_EQ(anna["detail"], "555-01");
    EXPECT_EQ(anna["detailProperty"], "0x3a1c001f");
    EXPECT_EQ(anna["notes"], false);
    EXPECT_EQ(anna["links"], false);
    EXPECT_EQ(anna["journal"], false);
    EXPECT_EQ(anna["categories"], nlohmann::json::array({"Home"}));
    EXPECT_TRUE(told["groups"][0]["contacts"][2]["detailProperty"].is_null());
}

TEST_F(ZbContacts, OneIsShownWithItsProperties)
{
    const std::string id = std::to_string(ids[0]);
    const ProgramResult shown = zb({"show", id});
    EXPECT_EQ(shown.exitCode, 0) << shown.err;
    EXPECT_EQ(shown.out.rfind("Contacts Database\nrecord " + id + "\n", 0), 0U) << shown.out;
    const nlohmann::json told = json({"show", id, "--json"});
    EXPECT_EQ(told["version"], 1);
    EXPECT_EQ(told["database"], "Contacts Database");
    EXPECT_EQ(told["record"]["id"], ids[0]);
    std::map<std::string, nlohmann::json> values;
    for (const auto &property : told["record"]["properties"])
    {
        values[property["name"]] = property["value"];
    }
    EXPECT_EQ(values["fileAs"], "Berg, Anna");
    EXPECT_EQ(values["mobilePhone"], "555-01");
    EXPECT_EQ(values["homeCity"], "Oslo");
    for (const char *bad : {"0", "999999", "nobody"})
    {
        EXPECT_EQ(zb({"show", bad}).exitCode, 2) << bad;
    }
}

TEST_F(ZbContacts, WithoutAnOrderTheSettingsDecide)
{
    ASSERT_EQ(zb({"settings", "set", "CV_DisplayFormat", "0", "--key", "CV"}).exitCode, 0);
    EXPECT_EQ(names({}), "; Anna Berg; Cobalt; Zoë Adams");
    EXPECT_EQ(names({"--by", "name"}), "; Adams, Zoë; Berg, Anna; Cobalt");
    EXPECT_EQ(zb({"contacts", "--by", "age"}).exitCode, 2);
}

TEST_F(ZbContacts, PrintsMoreThanAPage)
{
    {
        DeviceOptions options;
        options.root = device();
        const std::unique_ptr<Device> opened = OpenDevice(options);
        CEOID database = 0;
        const HANDLE handle = CeOpenDatabase(&database, u"Contacts Database", 0, 0, nullptr);
        for (int n = 0; n < 50; ++n)
        {
            ContactItem item;
            item.lastName = utf16("many " + std::to_string(n));
            const RecordProperties properties = encodeContact(item);
            CeWriteRecordProps(handle, 0, properties.count(), properties.values());
        }
        CloseHandle(handle);
    }
    EXPECT_EQ(json({"contacts", "--json"})["groups"][0]["contacts"].size(), 53U);
}
} // namespace
} // namespace zb::test
