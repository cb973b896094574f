// CeList beside a plain vector with a cursor, under thousands of random operations.
#include "core/CeList.h"

#include "support/TestDevice.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace
{
constexpr const WCHAR *path = u"\\My Documents\\model.bin";
constexpr ULONG nullValue = 4711;

/// The rules of the list on a vector. position is 1-based, 0 without elements.
struct Model
{
    int base;
    std::vector<ULONG> values;
    int position = 0;

    int count() const
    {
        return static_cast<int>(values.size());
    }
    bool has(int index) const
    {
        return index >= base && index < base + count();
    }
    int moveTo(int index)
    {
        position = has(index) ? index - base + 1 : position;
        return has(index) ? 0 : 1;
    }
    int insertAt(int index, ULONG value)
    {
        const int at = std::clamp(index - base, 0, count());
        values.insert(values.begin() + at, value);
        position = at + 1;
        return 0;
    }
    int removeAt(int index)
    {
        if (!has(index))
        {
            return 1;
        }
        values.erase(values.begin() + (index - base));
        position = std::min(index - base + 1, count());
        return 0;
    }
    int setAt(int index, ULONG value)
    {
        if (index == base + count())
        {
            return insertAt(index, value);
        }
        if (moveTo(index) != 0)
        {
            return 1;
        }
        values[static_cast<std::size_t>(index - base)] = value;
        return 0;
    }
    void setSize(int size)
    {
        position = size != count() ? size : position;
        values.resize(static_cast<std::size_t>(size), nullValue);
    }
};

class CeListModel : public zb::test::DeviceTest, public ::testing::WithParamInterface<unsigned>
{
  protected:
    int pick(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(m_random);
    }
    /// One operation on both; what they returned.
    std::pair<int, int> step();
    std::pair<int, int> storeAndLoad();
    void compareWhole();

    std::mt19937 m_random{GetParam()};
    Model m_model{static_cast<int>(GetParam() % 2), {}};
    CeList<ULONG> m_list{static_cast<int>(GetParam() % 2), nullptr, nullptr, nullptr, nullptr, nullValue};
};

std::pair<int, int> CeListModel::step()
{
    const int index = pick(-1, m_model.count() + 2);
    const auto value = static_cast<ULONG>(pick(0, 50));
    switch (pick(0, 13))
    {
    case 0:
        return {m_list.AddHead(value), m_model.insertAt(m_model.base, value)};
    case 1:
        return {m_list.AddTail(value), m_model.insertAt(m_model.base + m_model.count(), value)};
    case 2:
    case 3:
        return {m_list.InsertAt(index, value), m_model.insertAt(index, value)};
    case 4:
    case 5:
        return {m_list.RemoveAt(index), m_model.removeAt(index)};
    case 6:
        return {m_list.SetAt(index, value), m_model.setAt(index, value)};
    case 7:
        return {m_list.MoveTo(index), m_model.moveTo(index)};
    case 8:
    {
        const int size = std::max(0, m_model.count() + pick(-9, 12));
        const int error = m_list.SetSize(size);
        m_model.setSize(size);
        return {error, 0};
    }
    case 9:
    {
        const bool ascending = pick(0, 1) != 0;
        const int error = m_list.Sort(ascending);
        std::sort(m_model.values.begin(), m_model.values.end());
        if (!ascending)
        {
            std::reverse(m_model.values.begin(), m_model.values.end());
        }
        m_model.position = std::min(1, m_model.count());
        return {error, 0};
    }
    case 10:
        return storeAndLoad();
    case 11:
        if (pick(0, 20) == 0)
        {
            m_list.RemoveAll();
            m_model.values.clear();
            m_model.position = 0;
        }
        return {0, 0};
    default:
    {
        const ULONG got = m_list.GetAt(index);
        const bool there = m_model.moveTo(index) == 0;
        const ULONG expected = there ? m_model.values[static_cast<std::size_t>(index - m_model.base)] : nullValue;
        return {static_cast<int>(got), static_cast<int>(expected)};
    }
    }
}

std::pair<int, int> CeListModel::storeAndLoad()
{
    if (pick(0, 9) != 0)
    {
        return {0, 0}; // a save is synced to the disk, which is slow
    }
    const int saved = m_list.SaveFile(path, "Model1", true);
    const int loaded = m_list.LoadFile(path, "Model1", pick(0, 1) != 0, true);
    return {saved * 10 + loaded, 0};
}

void CeListModel::compareWhole()
{
    ASSERT_EQ(m_list.GetCount(), m_model.count());
    ASSERT_EQ(m_list.GetIndex(), m_model.position + m_model.base - 1);
    const int kept = m_list.GetIndex();
    for (int i = 0; i < m_model.count(); ++i)
    {
        ASSERT_EQ(m_list.GetAt(m_model.base + i), m_model.values[static_cast<std::size_t>(i)]);
    }
    m_list.MoveTo(kept);
}

TEST_P(CeListModel, AgreesAfterEveryStep)
{
    std::filesystem::create_directories(device.files() / "My Documents");
    for (int i = 0; i < 4000; ++i)
    {
        SCOPED_TRACE("seed " + std::to_string(GetParam()) + " step " + std::to_string(i));
        const auto [got, expected] = step();
        ASSERT_EQ(got, expected);
        ASSERT_EQ(m_list.GetIndex(), m_model.position + m_model.base - 1);
        if (i % 16 == 0)
        {
            ASSERT_NO_FATAL_FAILURE(compareWhole());
        }
        if (m_model.count() > 120)
        {
            m_list.SetSize(40);
            m_model.setSize(40);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, CeListModel, ::testing::Range(1U, 9U));
} // namespace
