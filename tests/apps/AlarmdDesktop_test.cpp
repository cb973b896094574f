// What the desktop is told of an alarm, over a real message bus.
#include "apps/AlarmdStage.h"
#include "apps/MessageBus.h"

namespace
{
using namespace zb;
using namespace zb::test;

class AlarmdDesktop : public Alarmd
{
  protected:
    void SetUp() override
    {
        Alarmd::SetUp();
        m_bus = bus.address();
    }
    static void notify(std::u16string title, std::u16string text, DWORD actions)
    {
        const SYSTEMTIME time = makeSystemTime(2001, 1, 1);
        const CE_USER_NOTIFICATION user{actions, title.data(), text.data(), nullptr, 0, 0};
        EXPECT_NE(CeSetUserNotification(nullptr, u"TASKS.EXE", &time, &user), nullptr);
    }
    /// Runs what is due, and what the service was told by then.
    std::vector<ToldNotification> toldOnce(const NotificationService &service, std::size_t count) const
    {
        EXPECT_EQ(once(), 0);
        EXPECT_TRUE(until([&] { return service.told().size() >= count; })) << said();
        return service.told();
    }

    MessageBus bus{device.path().parent_path()};
};

TEST_F(AlarmdDesktop, IsToldTitleAndTextOnceAndWithASoundWhereOneIsWanted)
{
    const NotificationService service(bus);
    notify(u"Task <b>Reminder</b> & \"more\"", u"Pay <i>R&D</i>\r2026-03-02 \u00e4 \U0001F600", PUN_DIALOG | PUN_SOUND);
    const std::vector<ToldNotification> told = toldOnce(service, 1);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].signature, "susssasa{sv}i");
    EXPECT_EQ(told[0].application, "Zembrik");
    EXPECT_EQ(told[0].replaces, 0U);
    EXPECT_EQ(told[0].icon, "appointment-soon");
    EXPECT_EQ(told[0].title, "Task <b>Reminder</b> & \"more\"") << "titles have no marks";
    EXPECT_EQ(told[0].text, "Pay &lt;i&gt;R&amp;D&lt;/i&gt;\n2026-03-02 \xC3\xA4 \xF0\x9F\x98\x80");
    EXPECT_TRUE(told[0].actions.empty());
    EXPECT_EQ(told[0].hints, (std::map<std::string, std::string>{{"sound-name", "alarm-clock-elapsed"}}));
    EXPECT_EQ(told[0].expires, 0) << "stays until it is taken note of";
    notify(u"Silent", u"x", PUN_LED);
    const std::vector<ToldNotification> both = toldOnce(service, 2);
    ASSERT_EQ(both.size(), 2U) << "the first one not again";
    EXPECT_EQ(both[1].title, "Silent");
    EXPECT_TRUE(both[1].hints.empty());
    EXPECT_EQ(said(), "");
}

TEST_F(AlarmdDesktop, IsToldWhateverTextsHold)
{
    const NotificationService service(bus);
    notify(u"half \xD83D" u"\x01", u"\xFFFF\xDC00 end", PUN_DIALOG);
    notify(u"", u"", PUN_DIALOG);
    const std::vector<ToldNotification> told = toldOnce(service, 2);
    ASSERT_EQ(told.size(), 2U) << said();
    const bool inOrder = told[0].title.rfind("half", 0) == 0;
    const ToldNotification &odd = told[inOrder ? 0 : 1];
    const ToldNotification &empty = told[inOrder ? 1 : 0];
    EXPECT_EQ(odd.title, "half \xEF\xBF\xBD\x01");
    EXPECT_NE(odd.text.find(" end"), std::string::npos);
    EXPECT_EQ(empty.title, "Reminder") << "one without words is told by a word and its program";
    EXPECT_EQ(empty.text, "TASKS.EXE");
}

TEST_F(AlarmdDesktop, IsToldOfAProgramThatIsMissing)
{
    const NotificationService service(bus);
    WCHAR program[] = u"Missing.exe";
    WCHAR arguments[] = u"\\My Documents\\Call <home>.pwi";
    CE_NOTIFICATION_TRIGGER trigger{};
    trigger.dwSize = sizeof trigger;
    trigger.dwType = CNT_TIME;
    trigger.lpszApplication = program;
    trigger.lpszArguments = arguments;
    trigger.stStartTime = makeSystemTime(2001, 1, 1);
    EXPECT_NE(CeSetUserNotificationEx(nullptr, &trigger, nullptr), nullptr);
    const std::vector<ToldNotification> told = toldOnce(service, 1);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].title, "Reminder");
    EXPECT_EQ(told[0].text, "Call &lt;home&gt;.pwi") << "what the program was to be given, without its folder";
    EXPECT_TRUE(told[0].hints.empty());
}

TEST_F(AlarmdDesktop, IsFoundByTheSocketInTheUsersFolder)
{
    const NotificationService service(bus);
    m_bus.clear();
    m_runtime = device.path().parent_path();
    notify(u"Found", u"x", PUN_DIALOG);
    ASSERT_EQ(toldOnce(service, 1).size(), 1U);
    EXPECT_EQ(said(), "");
}

TEST_F(AlarmdDesktop, ThatShowsNothingIsNoReasonToKeepSilent)
{
    notify(u"First", u"nobody shows them", PUN_DIALOG);
    EXPECT_EQ(once(), 0);
    EXPECT_TRUE(until([&] { return said().find("First: nobody shows them") != std::string::npos; })) << said();
    const NotificationService service(bus, NotificationService::Answer::Error);
    notify(u"Second", u"an error is answered", PUN_DIALOG);
    EXPECT_EQ(toldOnce(service, 1).size(), 1U);
    EXPECT_TRUE(until([&] { return said().find("Second: an error is answered") != std::string::npos; })) << said();
    m_bus = "unix:path=" + (device.path() / "no-such-bus").string();
    notify(u"Third", u"the bus is gone", PUN_DIALOG);
    EXPECT_EQ(once(), 0);
    EXPECT_TRUE(until([&] { return said().find("Third: the bus is gone") != std::string::npos; })) << said();
}
} // namespace
