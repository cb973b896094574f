// The quick sort of a list, over an array of its values.
//
// The permutation it leaves is part of the contract, equal elements included, since rows that compare equal are shown
// in the order in which this leaves them: pivot by value from the middle, Hoare's partition, both sides one step on
// after a swap or when they meet, the smaller side first.
#pragma once

#include "platform/types.h"

#include <array>
#include <tuple>
#include <utility>

/// Sorts values[0 .. count - 1]. compare(const T *, const T *, user) is called with the pivot first. Any comparator
/// ends, one that contradicts itself too (with the values in some order).
template <class T, class Compare>
class CeListSort
{
  public:
    CeListSort(T *values, Compare compare, DWORD_PTR user, bool ascending)
        : m_values(values), m_compare(compare), m_user(user), m_sign(ascending ? 1 : -1)
    {
    }

    void Run(int count)
    {
        // The larger side waits here while the smaller is sorted, so each entry is less than half of the one below:
        // 32 always suffice. Local, where the device had one pair of arrays for each element type.
        std::array<std::pair<int, int>, 32> stack;
        std::size_t depth = 0;
        int low = 0;
        int high = count - 1;
        for (;;)
        {
            while (low < high)
            {
                const auto [left, right] = Partition(low, high);
                const bool leftLarger = right - low > high - left;
                const std::pair<int, int> larger = leftLarger ? std::pair(low, right) : std::pair(left, high);
                // Only a comparator that contradicts itself leaves a side as large as the whole.
                if (larger.first < larger.second && larger.second - larger.first < high - low)
                {
                    stack[depth++] = larger;
                }
                low = leftLarger ? left : low;
                high = leftLarger ? high : right;
            }
            if (depth == 0)
            {
                return;
            }
            std::tie(low, high) = stack[--depth];
        }
    }

  private:
    /// First index of the right side and last index of the left side.
    std::pair<int, int> Partition(int low, int high)
    {
        const T pivot = m_values[low + (high - low) / 2];
        int left = low;
        int right = high;
        while (left <= right)
        {
            while (left <= high && m_sign * Order(pivot, left) > 0)
            {
                ++left;
            }
            while (right >= low && m_sign * Order(pivot, right) < 0)
            {
                --right;
            }
            if (left < right)
            {
                std::swap(m_values[left], m_values[right]);
            }
            if (left <= right)
            {
                ++left;
                --right;
            }
        }
        return {left, right};
    }

    /// -1, 0 or 1, so that turning the sign is safe for any result of the comparator.
    int Order(const T &pivot, int index) const
    {
        const int order = m_compare(&pivot, &m_values[index], m_user);
        return (order > 0) - (order < 0);
    }

    T *m_values;
    Compare m_compare;
    DWORD_PTR m_user;
    int m_sign;
};
