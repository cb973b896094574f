// Two processes that edit one device at once, with many saves, recorded changes and commands: nothing is lost, nothing
// doubled. ZB_EDITING_SECONDS makes it longer.
#include "apps/StoredRecords.h"
#include "apps/ZbFixture.h"
#include "platform/PimObjects.h"
#include "platform/undo.h"
#include "support/Child.h"

#include <chrono>
#include <fstream>
#include <random>
#include <set>
#include <thread>

namespace
{
using namespace zb;
using namespace zb::test;
using Words = std::vector<std::string>;

constexpr int editors = 2;

double editingSeconds()
{
    const char *const asked = std::getenv("ZB_EDITING_SECONDS");
    return asked == nullptr ? 0.8 : std::atof(asked);
}

/// One of the two: makes, changes and deletes items of its own, and remembers what it was told is done.
class Editor
{
  public:
    Editor(int number, std::filesystem::path device)
        : m_name("editor " + std::to_string(number)), m_random(static_cast<unsigned>(number)), m_number(number)
    {
        DeviceOptions options;
        options.root = std::move(device);
        options.timeZone = "Europe/Berlin";
        m_device = OpenDevice(options);
        m_app = application();
    }
    bool edit(LONG shared)
    {
        const ChangeRecording recording(utf16(m_name));
        switch (m_own.empty() ? 0 : m_random() % 4)
        {
        case 1:
            return change();
        case 2:
            return m_own.size() < 20 || remove();
        case 3:
            return changeShared(shared);
        default:
            return add();
        }
    }
    /// A line an item, then the last of what was written into the shared one, then how many were saved.
    void tell(const std::filesystem::path &file) const
    {
        std::ofstream out(file);
        for (const auto &[oid, subject] : m_own)
        {
            out << oid << ' ' << subject << '\n';
        }
        out << "shared " << m_shared << '\n' << "saves " << m_saves << '\n';
    }

  private:
    std::string nextSubject()
    {
        return m_name + " " + std::to_string(m_saves);
    }
    bool add()
    {
        const auto item = newItem<IAppointment>(m_app);
        const std::string subject = nextSubject();
        item->put_Subject(Text(utf16(subject)));
        item->put_Start(date(2026, 3, 2, 8) + static_cast<double>(m_random() % 10'000) / 96.0);
        item->put_Duration(30);
        if (item->Save() != S_OK)
        {
            return false;
        }
        ++m_saves;
        return m_own.emplace(oidOf(item), subject).second; // an id of its own
    }
    LONG some()
    {
        auto at = m_own.begin();
        std::advance(at, static_cast<std::ptrdiff_t>(m_random() % m_own.size()));
        return at->first;
    }
    bool change()
    {
        const LONG oid = some();
        const auto item = itemOf<IAppointment>(m_app, oid);
        const std::string subject = nextSubject();
        item->put_Subject(Text(utf16(subject)));
        item->put_Start(date(2026, 3, 2, 8) + static_cast<double>(m_random() % 10'000) / 96.0);
        m_own[oid] = subject;
        ++m_saves;
        return item->Save() == S_OK;
    }
    bool remove()
    {
        const LONG oid = some();
        m_own.erase(oid);
        ++m_saves;
        return itemOf<IAppointment>(m_app, oid)->Delete() == S_OK;
    }
    /// Each has a field of the one contact that both write.
    bool changeShared(LONG oid)
    {
        const auto item = itemOf<IContact>(m_app, oid);
        m_shared = nextSubject();
        const Text text(utf16(m_shared));
        m_number == 0 ? item->put_HomeAddressCity(text) : item->put_HomeAddressStreet(text);
        ++m_saves;
        return item->Save() == S_OK;
    }

    std::string m_name;
    std::mt19937 m_random;
    int m_number;
    std::unique_ptr<Device> m_device;
    Counted<IPOutlookApp> m_app;
    std::map<LONG, std::string> m_own;
    std::string m_shared;
    int m_saves = 0;
};

TEST(ZbTwoEditors, keepEachOthersItemsAndChanges)
{
    TestDevice device;
    const auto contact = newItem<IContact>(application());
    contact->put_LastName(Text(u"Both"));
    ASSERT_EQ(contact->Save(), S_OK);
    const LONG shared = oidOf(contact);
    const std::filesystem::path root = device.path();
    device.close();
    std::vector<std::unique_ptr<Child>> children;
    for (int number = 0; number < editors; ++number)
    {
        children.push_back(std::make_unique<Child>(
            [&, number]
            {
                Editor editor(number, root);
                const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(editingSeconds());
                while (std::chrono::steady_clock::now() < end)
                {
                    if (!editor.edit(shared))
                    {
                        return 1;
                    }
                }
                editor.tell(root / ("told" + std::to_string(number)));
                return 0;
            }));
    }
    for (const auto &child : children)
    {
        EXPECT_EQ(child->wait(), 0);
    }
    device.open();
    std::multiset<std::string> wanted;
    int saves = 0;
    for (int number = 0; number < editors; ++number)
    {
        std::ifstream told(root / ("told" + std::to_string(number)));
        for (std::string line; std::getline(told, line);)
        {
            const std::string rest = line.substr(line.find(' ') + 1);
            if (line.rfind("saves ", 0) == 0)
            {
                saves += std::stoi(rest);
                EXPECT_GT(std::stoi(rest), 5);
            }
            else if (line.rfind("shared ", 0) == 0)
            {
                const auto both = itemOf<IContact>(application(), shared);
                EXPECT_EQ(textOf(both, number == 0 ? &IContact::get_HomeAddressCity : &IContact::get_HomeAddressStreet),
                          rest);
            }
            else
            {
                wanted.insert(line);
            }
        }
    }
    std::multiset<std::string> found;
    for (const StoredRecord &record : storedRecords())
    {
        found.insert(std::to_string(record.id) + " " + record.value(itemSubject));
    }
    EXPECT_EQ(found, wanted);
    EXPECT_EQ(recordedChanges(false).size(), std::min<std::size_t>(static_cast<std::size_t>(saves), recordedChangesKept));
    // Whoever made them: all can be taken back, in the order in which they came.
    UndoOutcome outcome = UndoOutcome::Done;
    while ((outcome = undoLastChange().outcome) == UndoOutcome::Done)
    {
    }
    EXPECT_EQ(outcome, UndoOutcome::Nothing);
    RecordProperty("saves", saves);
    if (std::getenv("ZB_EDITING_SECONDS") != nullptr)
    {
        std::printf("%d saves, %zu items\n", saves, found.size());
    }
}

class ZbTwoEditorsOfFiles : public ZbTest
{
};

TEST_F(ZbTwoEditorsOfFiles, commandsKeepEachOthersSettingsCategoriesAndLinks)
{
    zb({"init"});
    constexpr int rounds = 5;
    const auto edit = [this](int number)
    {
        const std::string own(1, static_cast<char>('A' + number));
        for (int n = 0; n < rounds; ++n)
        {
            const std::string name = own + std::to_string(n);
            EXPECT_EQ(zb({"settings", "set", name, std::to_string(n)}).exitCode, 0);
            EXPECT_EQ(zb({"categories", "add", name, "--color", "#2E8B57"}).exitCode, 0);
            EXPECT_EQ(zb({"add", "task", name, "--category", "Both"}).exitCode, 0);
        }
        std::string links;
        for (const char *const task : {"p", "c"})
        {
            links += "BEGIN:VTODO\nUID:" + own + task + "\nSUMMARY:" + own + task + "\n" +
                     (*task == 'c' ? "RELATED-TO:" + own + "p\n" : std::string()) + "END:VTODO\n";
        }
        EXPECT_EQ(zb({"import", file(own + ".ics", calendarOf(links))}).exitCode, 0);
    };
    std::thread other([&] { edit(1); });
    edit(0);
    other.join();
    std::multiset<std::string> names;
    std::set<int> ids;
    const nlohmann::json categories = json({"categories", "--json"})["categories"];
    for (const auto &category : categories)
    {
        names.insert(category["name"].get<std::string>());
        ids.insert(category["id"].get<int>());
        EXPECT_TRUE(category["name"] == "Both" || category["color"] == "#2E8B57") << category.dump();
    }
    EXPECT_EQ(ids.size(), names.size());
    std::multiset<std::string> wanted = {"Both"};
    for (int number = 0; number < editors; ++number)
    {
        for (int n = 0; n < rounds; ++n)
        {
            const std::string name = std::string(1, static_cast<char>('A' + number)) + std::to_string(n);
            wanted.insert(name);
            EXPECT_EQ(json({"settings", "get", name, "--json"})["setting"]["value"], n) << name;
        }
    }
    EXPECT_EQ(names, wanted);
    const nlohmann::json tasks = json({"tasks", "--tree", "--json"});
    EXPECT_EQ(tasks["counts"]["total"], editors * (rounds + 2));
    int parents = 0;
    for (const auto &task : tasks["groups"][0]["tasks"])
    {
        parents += task.contains("tasks") && task["tasks"].size() == 1 ? 1 : 0;
    }
    EXPECT_EQ(parents, editors);
}
} // namespace
