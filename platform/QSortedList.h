// The list of pointers that can put its items in order.
#pragma once

#include "platform/QPtrList.h"

#include <algorithm>

/// A QPtrList whose items have an order of their own.
template<typename T>
class QSortedList : public QPtrList<T>
{
public:
    /// Sorts ascending by the items' `==` and `<`; equal items keep their order. The list holds no null item.
    void sort()
    {
        std::stable_sort(this->begin(), this->end(),
                         [](const T* left, const T* right) { return !(*left == *right) && *left < *right; });
    }
};
