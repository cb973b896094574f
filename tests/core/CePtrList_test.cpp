// The lists built on CeList: of pointers, with a display count, of strings.
#include "core/CeActiveList.h"
#include "core/CePtrList.h"
#include "core/CeStrList.h"

#include "support/TestDevice.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace
{
struct Counted
{
    static inline int s_destroyed = 0;
    static inline int s_released = 0;
    ~Counted()
    {
        ++s_destroyed;
    }
    void Release()
    {
        ++s_released;
    }
};

TEST(CePtrList, PublishesNothingAtFirst)
{
    CePtrList<Counted *> list;
    EXPECT_EQ(list.m_nPublished, 0);
    EXPECT_EQ(list.GetAt(0), nullptr);
    EXPECT_EQ(list.GetBase(), 0);
}

TEST(CePtrList, Ownership1Deletes)
{
    Counted::s_destroyed = 0;
    {
        CePtrList<Counted *> list(1, 1);
        list.AddTail(new Counted);
        list.AddTail(new Counted);
        list.AddTail(nullptr);
        list.RemoveAt(1);
        EXPECT_EQ(Counted::s_destroyed, 1);
    }
    EXPECT_EQ(Counted::s_destroyed, 2);
}

TEST(CePtrList, Ownership2And3FreeTheirMemory)
{
    CePtrList<char *> byFree(0, 2);
    byFree.AddTail(static_cast<char *>(std::malloc(10)));
    byFree.AddTail(nullptr);
    CePtrList<char *> byLocalFree(0, 3);
    byLocalFree.AddTail(static_cast<char *>(LocalAlloc(LMEM_FIXED, 10)));
    byLocalFree.AddTail(nullptr);
}

TEST(CePtrList, Ownership4CallsReleaseAndNothingElse)
{
    Counted::s_released = Counted::s_destroyed = 0;
    Counted object;
    {
        CePtrList<Counted *> list(0, 4);
        list.AddTail(&object);
        list.AddTail(nullptr);
    }
    EXPECT_EQ(Counted::s_released, 1);
    EXPECT_EQ(Counted::s_destroyed, 0);
}

TEST(CePtrList, Ownership5FreesBstrsUnlessTheFirstByteIs0)
{
    BSTR odd = SysAllocString(u"\u3000x");
    WCHAR nothing[] = u"";
    {
        CePtrList<WCHAR *> list(0, 5);
        list.AddTail(SysAllocString(u"abc"));
        list.AddTail(odd);
        list.AddTail(nothing);
        list.AddTail(nullptr);
    }
    EXPECT_EQ(SysStringLen(odd), 2U);
    SysFreeString(odd);
}

TEST(CePtrList, AnyOtherOwnershipReleasesNothing)
{
    Counted::s_released = Counted::s_destroyed = 0;
    Counted object;
    for (const int ownership : {0, 6, 7, -1})
    {
        CePtrList<Counted *> list(0, ownership);
        list.AddTail(&object);
    }
    EXPECT_EQ(Counted::s_released, 0);
    EXPECT_EQ(Counted::s_destroyed, 0);
}

TEST(CePtrList, DefaultCompareIsByAddress)
{
    Counted objects[2];
    CePtrList<Counted *> list(0, 6, nullptr);
    list.AddTail(&objects[1]);
    list.AddTail(&objects[0]);
    list.Sort(true);
    EXPECT_EQ(list.GetAt(0), &objects[0]);
    EXPECT_EQ(list.Find(&objects[1]), 1);
}

TEST(CeActiveList, DisplayCountIsTheHostsToSet)
{
    CeActiveList<Counted *> list(1, 1);
    EXPECT_EQ(list.GetDisplayCount(), 0);
    list.AddTail(new Counted);
    EXPECT_EQ(list.GetDisplayCount(), 0);
    list.SetDisplayCount(1);
    EXPECT_EQ(list.GetDisplayCount(), 1);
    list.SetDisplayCount(-3);
    EXPECT_EQ(list.GetDisplayCount(), 0);
}

// --- String lists ------------------------------------------------------------------------------------------------

std::string textsOf(CeStrList<> &list)
{
    std::string texts;
    for (int i = 0; i < list.GetCount(); ++i)
    {
        texts += (i > 0 ? "," : "") + zb::test::utf8(list.GetAt(list.GetBase() + i));
    }
    return texts;
}

class CeStrListTest : public zb::test::DeviceTest
{
};

TEST_F(CeStrListTest, CopiesWhatItIsGiven)
{
    for (const int ownership : {2, 3, 5})
    {
        CeStrList<> list(1, ownership);
        WCHAR buffer[] = u"abc";
        EXPECT_EQ(list.AddString(buffer), 0);
        buffer[0] = u'x';
        EXPECT_EQ(list.AddString(u"d"), 0);
        EXPECT_EQ(textsOf(list), "abc,d");
    }
    CeStrList<> borrowed(0, 6);
    WCHAR own[] = u"abc";
    borrowed.AddString(own);
    EXPECT_EQ(borrowed.GetAt(0), own);
    CeStrList<> list;
    list.AddString(nullptr);
    EXPECT_EQ(textsOf(list), "");
    EXPECT_EQ(list.GetCount(), 1);
}

TEST_F(CeStrListTest, ComparesAsItsCodeSays)
{
    const auto sorted = [](int compare)
    {
        CeStrList<> list(0, 2, compare);
        for (const WCHAR *text : {u"b", u"a", u"B", u"A"})
        {
            list.AddString(text);
        }
        list.Sort(true);
        return textsOf(list);
    };
    EXPECT_EQ(sorted(1), "A,B,a,b");
    EXPECT_EQ(sorted(4), "a,A,b,B");
    CeStrList<> insensitive(0, 2, 3);
    insensitive.AddString(u"Work");
    EXPECT_EQ(insensitive.FindString(u"wORK"), 0);
    CeStrList<> folded(0, 2, 2);
    folded.AddString(u"Work");
    EXPECT_EQ(folded.FindString(u"wORK"), 0);
    CeStrList<> sensitive(0, 2, 4);
    sensitive.AddString(u"Work");
    EXPECT_EQ(sensitive.FindString(u"wORK"), -1);
    EXPECT_EQ(sensitive.FindString(u"Work"), 0);
}
} // namespace
