// The list of parent links and its file: bytes, damage, what is kept, and look-ups against a plain walk.
#include "tasks/TaskHierarchy.h"

#include "core/CRegistry.h"
#include "platform/linux/file_faults.h"
#include "support/DeviceFiles.h"
#include "support/TestDevice.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace
{
using zb::TaskHierarchy;

constexpr std::size_t headerBytes = 30;
constexpr std::size_t linkBytes = 4 + 116;

std::string word(ULONG value)
{
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8)
    {
        bytes.push_back(static_cast<char>(value >> shift));
    }
    return bytes;
}

std::string header(ULONG count, ULONG cursor, ULONG base = 0, ULONG user = 0)
{
    return std::string(1, '\1') + word(9) + std::string("ZBHT 1.2\0", 9) + word(count) + word(cursor) + word(base) +
           word(user);
}

/// A link as it stands in the file, `rest` in place of the unused bytes.
std::string linkAs(ULONG size, ULONG child, ULONG parent, char open, char rest = 0)
{
    std::string body = word(child) + word(parent) + open + std::string(200, rest);
    body.resize(size);
    return word(size) + body;
}
std::string link(ULONG child, ULONG parent, char open)
{
    return linkAs(116, child, parent, open);
}

/// Two links, the cursor on the first.
std::string sample()
{
    return header(2, 0) + link(0x01020304, 0x0A0B0C0D, 1) + link(7, 0x01020304, 0);
}

std::string describe(const TaskHierarchy &links)
{
    std::string text;
    for (const _HIERSTRUCT &one : links.Links())
    {
        text += (text.empty() ? "" : " ") + std::to_string(one.m_oid) + "<" + std::to_string(one.m_oidParent) +
                (one.m_bExpanded != 0 ? "+" : "-");
    }
    return text;
}

class TaskHierarchyFile : public zb::test::DeviceTest
{
  protected:
    void SetUp() override
    {
        std::filesystem::create_directories(file().parent_path());
    }
    void TearDown() override
    {
        zb::setFileFaults({});
    }
    std::filesystem::path file() const
    {
        return device.files() / "My Documents" / "Kelvo" / "TaskHierarchy.bin";
    }
    void store(const std::string &bytes) const
    {
        zb::test::putHostFile(file(), bytes);
    }
    std::string stored() const
    {
        return zb::test::hostBytes(file());
    }
    std::vector<std::string> names() const
    {
        return zb::test::hostNames(file().parent_path());
    }
    int load()
    {
        return m_links.Load(path.c_str());
    }
    int save()
    {
        return m_links.Save(path.c_str());
    }
    int loadOf(const std::string &bytes)
    {
        store(bytes);
        return load();
    }

    const std::u16string path = TaskHierarchy::FilePath();
    TaskHierarchy m_links;
};

TEST_F(TaskHierarchyFile, liesInTheFolderOfTheDataAndFollowsIt)
{
    EXPECT_EQ(zb::test::utf8(path), "\\My Documents\\Kelvo\\TaskHierarchy.bin");
    SetToRegistrySZ(HKEY_CURRENT_USER, u"Software\\Kelvo\\Zembrik", u"Kelvo_Folder", u"\\Storage Card");
    device.reopen();
    EXPECT_EQ(zb::test::utf8(TaskHierarchy::FilePath()), "\\Storage Card\\Kelvo\\TaskHierarchy.bin");
}

TEST_F(TaskHierarchyFile, bytesAreThoseOfTheFormat)
{
    m_links.Add({0x01020304, 0x0A0B0C0D, 1, {}});
    m_links.Add({7, 0x01020304, 0, {}});
    _HIERSTRUCT found;
    ASSERT_TRUE(m_links.Find(0x01020304, &found)); // puts the cursor on the first
    ASSERT_EQ(save(), 0);
    const std::string bytes = stored();
    EXPECT_EQ(bytes, sample());
    ASSERT_EQ(bytes.size(), headerBytes + 2 * linkBytes);
    EXPECT_EQ(bytes.substr(0, 14), std::string("\x01\x09\0\0\0ZBHT 1.2\0", 14));
    EXPECT_EQ(bytes.substr(30, 13), std::string("\x74\0\0\0\x04\x03\x02\x01\x0D\x0C\x0B\x0A\x01", 13));
}

TEST_F(TaskHierarchyFile, whatWasWrittenIsReadAndWrittenTheSame)
{
    ASSERT_EQ(loadOf(sample()), 0);
    EXPECT_EQ(describe(m_links), "16909060<168496141+ 7<16909060-");
    EXPECT_EQ(m_links.GetCursor(), 0);
    store("");
    ASSERT_EQ(save(), 0);
    EXPECT_EQ(stored(), sample());
}

TEST_F(TaskHierarchyFile, unusedBytesAreReadAndWrittenAsZeros)
{
    ASSERT_EQ(loadOf(header(1, 0) + linkAs(116, 5, 6, 1, 'x')), 0);
    EXPECT_EQ(describe(m_links), "5<6+");
    ASSERT_EQ(save(), 0);
    EXPECT_EQ(stored(), header(1, 0) + link(5, 6, 1));
}

TEST_F(TaskHierarchyFile, aMissingFileOrFolderIsAnEmptyList)
{
    m_links.Add({1, 2, 1, {}});
    EXPECT_EQ(load(), 0);
    EXPECT_TRUE(m_links.IsEmpty());
    m_links.Add({1, 2, 1, {}});
    EXPECT_EQ(m_links.Load(u"\\No Folder\\x.bin"), 0);
    EXPECT_EQ(m_links.GetCount(), 0);
}

TEST_F(TaskHierarchyFile, savingMakesTheFoldersThatAreMissing)
{
    std::filesystem::remove_all(file().parent_path());
    m_links.Add({1, 2, 1, {}});
    ASSERT_EQ(save(), 0);
    EXPECT_EQ(stored(), header(1, 0) + link(1, 2, 1));
}

TEST_F(TaskHierarchyFile, savingAnEmptyListDeletesTheFile)
{
    store(sample());
    EXPECT_EQ(save(), 0);
    EXPECT_FALSE(std::filesystem::exists(file()));
    EXPECT_EQ(save(), 0) << "nothing to delete is no error";
    std::filesystem::remove_all(file().parent_path());
    EXPECT_EQ(save(), 0);
    EXPECT_FALSE(std::filesystem::exists(file().parent_path()));
}

TEST_F(TaskHierarchyFile, anotherVersionOrSignatureIs5)
{
    std::string bytes = sample();
    bytes[0] = 2;
    EXPECT_EQ(loadOf(bytes), 5);
    EXPECT_TRUE(m_links.IsEmpty());
    for (const char *signature : {"ZBHT 1.1", "ZBHT 1.3", "zbht 1.2", "ZBHT 1.20", "ZBHT 1.", ""})
    {
        m_links.Add({1, 2, 1, {}});
        const std::string text(signature);
        bytes = std::string(1, '\1') + word(static_cast<ULONG>(text.size() + 1)) + text + '\0' + sample().substr(14);
        EXPECT_EQ(loadOf(bytes), 5) << signature;
        EXPECT_TRUE(m_links.IsEmpty());
    }
}

TEST_F(TaskHierarchyFile, cutAtEachByteItIsAnErrorOrKeepsTheLinksInFront)
{
    const std::string whole = sample();
    for (std::size_t length = 0; length <= whole.size(); ++length)
    {
        const int error = loadOf(whole.substr(0, length));
        const std::size_t behind = length < headerBytes ? 0 : length - headerBytes;
        if (length < headerBytes || behind % linkBytes >= 4)
        {
            EXPECT_EQ(error, 4) << length;
            EXPECT_TRUE(m_links.IsEmpty()) << length;
        }
        else
        {
            EXPECT_EQ(error, 0) << length;
            EXPECT_EQ(m_links.GetCount(), static_cast<int>(behind / linkBytes)) << length;
        }
    }
}

TEST_F(TaskHierarchyFile, theCountOfTheFileDecidesNothing)
{
    for (const ULONG count : {0U, 1U, 3U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
    {
        EXPECT_EQ(loadOf(header(count, 0) + link(1, 2, 1) + link(3, 4, 0)), 0) << count;
        EXPECT_EQ(describe(m_links), "1<2+ 3<4-") << count;
    }
}

TEST_F(TaskHierarchyFile, aCursorThatIsNotThereLeavesItOnTheLast)
{
    for (const ULONG cursor : {2U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU})
    {
        EXPECT_EQ(loadOf(header(2, cursor) + link(1, 2, 1) + link(3, 4, 0)), 0);
        EXPECT_EQ(m_links.GetCursor(), 1) << cursor;
    }
}

TEST_F(TaskHierarchyFile, aBaseOf1IsKeptAndOthersAreRefused)
{
    const std::string bytes = header(2, 1, 1) + link(1, 2, 1) + link(3, 4, 0);
    EXPECT_EQ(loadOf(bytes), 0);
    EXPECT_EQ(m_links.GetCursor(), 0) << "index 1 is the first";
    ASSERT_EQ(save(), 0);
    EXPECT_EQ(stored(), bytes);
    for (const ULONG base : {2U, 0xFFFFFFFFU})
    {
        EXPECT_EQ(loadOf(header(1, 0, base) + link(1, 2, 1)), 4);
        EXPECT_TRUE(m_links.IsEmpty());
    }
    EXPECT_EQ(loadOf(header(0, 0xFFFFFFFFU)), 0);
    EXPECT_EQ(m_links.GetCursor(), -1);
}

TEST_F(TaskHierarchyFile, theUserWordIsNotTaken)
{
    ASSERT_EQ(loadOf(header(1, 0, 0, 99) + link(1, 2, 1)), 0);
    ASSERT_EQ(save(), 0);
    EXPECT_EQ(stored(), header(1, 0) + link(1, 2, 1));
}

TEST_F(TaskHierarchyFile, aLinkOfAnotherSizeIsReadAsFarAsItGoes)
{
    ASSERT_EQ(loadOf(header(3, 0) + linkAs(115, 1, 2, 1, 'x') + linkAs(117, 3, 4, 1, 'x') + link(5, 6, 1)), 0);
    EXPECT_EQ(describe(m_links), "1<2+ 3<4+ 5<6+");
    ASSERT_EQ(save(), 0);
    EXPECT_EQ(stored().size(), headerBytes + 3 * linkBytes) << "and written at its full size";
    ASSERT_EQ(loadOf(header(4, 0) + linkAs(0, 0, 0, 0) + linkAs(4, 1, 2, 1) + linkAs(8, 3, 4, 1) + linkAs(9, 5, 6, 1)),
              0);
    EXPECT_EQ(describe(m_links), "0<0- 1<0- 3<4- 5<6+");
    EXPECT_EQ(loadOf(header(1, 0) + word(0xFFFFFFFFU) + std::string(116, 'x')), 4);
    EXPECT_TRUE(m_links.IsEmpty());
}

TEST_F(TaskHierarchyFile, aRefusedFileIsMovedAsideBeforeTheFirstSave)
{
    const std::string later = "\1" + word(9) + std::string("ZBHT 1.3\0", 9) + "links of a later version";
    for (const bool empty : {true, false})
    {
        EXPECT_EQ(loadOf(later), 5);
        if (!empty)
        {
            m_links.Add({1, 2, 1, {}});
        }
        EXPECT_EQ(stored(), later) << "reading changes nothing";
        ASSERT_EQ(save(), 0);
        EXPECT_EQ(zb::test::hostBytes(file().parent_path() / "TaskHierarchy.damaged.bin"), later);
        EXPECT_EQ(std::filesystem::exists(file()), !empty);
    }
    // From then on saving is plain again.
    m_links.Add({3, 4, 1, {}});
    ASSERT_EQ(save(), 0);
    EXPECT_EQ(zb::test::hostBytes(file().parent_path() / "TaskHierarchy.damaged.bin"), later);
    EXPECT_EQ(names(), (std::vector<std::string>{"TaskHierarchy.bin", "TaskHierarchy.damaged.bin"}));
}

TEST_F(TaskHierarchyFile, nothingIsSavedOverARefusedFileThatCannotBeMoved)
{
    EXPECT_EQ(loadOf("foreign"), 5);
    std::filesystem::create_directories(file().parent_path() / "TaskHierarchy.damaged.bin" / "in the way");
    m_links.Add({1, 2, 1, {}});
    EXPECT_EQ(save(), 4);
    EXPECT_EQ(stored(), "foreign");
}

TEST_F(TaskHierarchyFile, aRefusedFileThatHasGoneMeanwhileIsNoHindrance)
{
    EXPECT_EQ(loadOf("foreign"), 5);
    std::filesystem::remove(file());
    m_links.Add({1, 2, 1, {}});
    EXPECT_EQ(save(), 0);
    EXPECT_EQ(names(), std::vector<std::string>{"TaskHierarchy.bin"});
}

TEST_F(TaskHierarchyFile, aFailedSaveIs4AndLeavesTheOldFile)
{
    m_links.Add({1, 2, 1, {}});
    for (const zb::FileStep failing :
         {zb::FileStep::Create, zb::FileStep::Write, zb::FileStep::Sync, zb::FileStep::Rename})
    {
        store(sample());
        zb::setFileFaults(
            [failing](zb::FileStep step, std::size_t) {
                return zb::FileFault{step == failing ? ENOSPC : 0, 3};
            });
        EXPECT_EQ(save(), 4);
        zb::setFileFaults({});
        EXPECT_EQ(stored(), sample());
    }
    ASSERT_EQ(save(), 0);
    EXPECT_EQ(stored(), header(1, 0) + link(1, 2, 1));
}

TEST_F(TaskHierarchyFile, arbitraryBytesEndInAListOrAnError)
{
    std::mt19937 random(20260302);
    for (int round = 0; round < 600; ++round)
    {
        std::string bytes = sample();
        for (int change = static_cast<int>(random() % 4); change >= 0; --change)
        {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        bytes.resize(random() % (bytes.size() + 1));
        const int error = loadOf(bytes);
        EXPECT_TRUE(error == 0 || error == 4 || error == 5) << error;
        if (error != 0)
        {
            EXPECT_TRUE(m_links.IsEmpty());
            continue;
        }
        const std::string before = describe(m_links);
        const int cursor = m_links.GetCursor();
        ASSERT_EQ(save(), 0);
        ASSERT_EQ(load(), 0);
        EXPECT_EQ(describe(m_links), before);
        EXPECT_EQ(m_links.GetCursor(), cursor);
    }
}

// --- The list ----------------------------------------------------------------------------------------------------

TEST(TaskHierarchyList, linksAreOrderedByTheChildAloneUnsigned)
{
    const _HIERSTRUCT small{1, 9, 1, {}};
    const _HIERSTRUCT large{0x80000000U, 1, 0, {}};
    EXPECT_TRUE(small < large);
    EXPECT_TRUE(large > small);
    EXPECT_FALSE(large < small);
    const _HIERSTRUCT same{1, 2, 0, {}};
    EXPECT_FALSE(small < same || same < small || small > same || same > small);
}

TEST(TaskHierarchyList, theFirstLinkOfAChildCountsAndTheNextTakesItsPlace)
{
    TaskHierarchy links;
    links.Add({1, 10, 1, {}});
    links.Add({2, 10, 0, {}});
    links.Add({1, 20, 0, {}});
    _HIERSTRUCT found;
    ASSERT_TRUE(links.Find(1, &found));
    EXPECT_EQ(found.m_oidParent, 10U);
    EXPECT_EQ(found.m_bExpanded, 1);
    ASSERT_TRUE(links.Remove(1));
    EXPECT_EQ(describe(links), "2<10- 1<20-");
    ASSERT_TRUE(links.Find(1, &found));
    EXPECT_EQ(found.m_oidParent, 20U);
    ASSERT_TRUE(links.Remove(1));
    EXPECT_FALSE(links.Remove(1));
    EXPECT_FALSE(links.Find(1, &found));
    EXPECT_EQ(describe(links), "2<10-");
}

TEST(TaskHierarchyList, aFlagIsSetForAllLinksOfAParentEvenTheSecondOfAChild)
{
    TaskHierarchy links;
    links.Add({1, 10, 0, {}});
    links.Add({2, 20, 0, {}});
    links.Add({2, 10, 0, {}});
    links.SetExpandedBelow(10, true);
    EXPECT_EQ(describe(links), "1<10+ 2<20- 2<10+");
    links.SetExpandedBelow(99, true);
    links.SetExpandedAll(true);
    EXPECT_EQ(describe(links), "1<10+ 2<20+ 2<10+");
    links.SetExpandedBelow(10, false);
    EXPECT_EQ(describe(links), "1<10- 2<20+ 2<10-");
}

TEST(TaskHierarchyList, theCursorIsOnWhatWasAddedOrFoundLastAndBehindWhatWasRemoved)
{
    TaskHierarchy links;
    EXPECT_EQ(links.GetCursor(), -1);
    for (const ULONG oid : {1U, 2U, 3U, 4U})
    {
        links.Add({oid, 9, 0, {}});
    }
    EXPECT_EQ(links.GetCursor(), 3);
    _HIERSTRUCT found;
    links.Find(2, &found);
    EXPECT_EQ(links.GetCursor(), 1);
    links.Find(99, &found);
    EXPECT_EQ(links.GetCursor(), 1) << "not found: unmoved";
    links.Remove(2);
    EXPECT_EQ(links.GetCursor(), 1) << "the following link at the same index";
    links.Remove(4);
    EXPECT_EQ(links.GetCursor(), 1) << "no following one: the one in front";
    links.RemoveAll();
    EXPECT_EQ(links.GetCursor(), -1);
}

/// The same operations by plain walks over a vector.
struct PlainLinks
{
    std::vector<_HIERSTRUCT> all;

    std::vector<_HIERSTRUCT>::iterator first(ULONG oid)
    {
        return std::find_if(all.begin(), all.end(), [oid](const _HIERSTRUCT &one) { return one.m_oid == oid; });
    }
    bool remove(ULONG oid)
    {
        const auto at = first(oid);
        return at != all.end() && (all.erase(at), true);
    }
    bool setParent(ULONG oid, ULONG parent)
    {
        const auto at = first(oid);
        return at != all.end() && (at->m_oidParent = parent, true);
    }
    void expandBelow(ULONG parent, BYTE open)
    {
        for (_HIERSTRUCT &one : all)
        {
            one.m_bExpanded = one.m_oidParent == parent ? open : one.m_bExpanded;
        }
    }
};

TEST(TaskHierarchyList, doesWhatPlainWalksDo)
{
    for (unsigned seed = 1; seed <= 20; ++seed)
    {
        std::mt19937 random(seed);
        TaskHierarchy links;
        PlainLinks plain;
        for (int step = 0; step < 1500; ++step)
        {
            const ULONG child = random() % 40;
            const ULONG parent = random() % 12;
            const BYTE open = random() % 2;
            switch (random() % 6)
            {
            case 0:
            case 1:
                links.Add({child, parent, open, {}});
                plain.all.push_back({child, parent, open, {}});
                break;
            case 2:
            case 3:
                ASSERT_EQ(links.Remove(child), plain.remove(child)) << "seed " << seed << " step " << step;
                break;
            case 4:
                ASSERT_EQ(links.SetParent(child, parent), plain.setParent(child, parent)) << "seed " << seed;
                break;
            default:
                links.SetExpandedBelow(parent, open != 0);
                plain.expandBelow(parent, open);
                break;
            }
            const std::vector<_HIERSTRUCT> now = links.Links();
            const auto same = [](const _HIERSTRUCT &a, const _HIERSTRUCT &b)
            { return a.m_oid == b.m_oid && a.m_oidParent == b.m_oidParent && a.m_bExpanded == b.m_bExpanded; };
            ASSERT_TRUE(std::equal(now.begin(), now.end(), plain.all.begin(), plain.all.end(), same))
                << "seed " << seed << " step " << step;
            ASSERT_EQ(links.GetCount(), static_cast<int>(plain.all.size()));
        }
    }
}
} // namespace
