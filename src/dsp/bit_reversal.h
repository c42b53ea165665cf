#pragma once

#include <algorithm>
#include <utility>
#include <vector>

namespace orvandsp {

/// Table of bit-reversed indices: entry i is i with its log2(size) bits in the opposite order.
class BitReversal {
public:
    /// @param size  a power of two; any other takes the first entries of the table of the next power of two
    explicit BitReversal(unsigned int size);

    /// Rebuilds the table; allocates.
    void SetSize(unsigned int newSize);

    /// Copies the table's first size entries.
    void GetBitReverseTable(unsigned int* out) const;

    /// Exchanges the values whose indices are each other's reversal, among the first count values and as far as the
    /// table goes. Real-time safe.
    template <typename T>
    void Reorder(T* data, unsigned int count) const noexcept {
        const unsigned int last = std::min(count, size);
        for (unsigned int i = 0; i < last; ++i)
            if (table[i] < i) std::swap(data[i], data[table[i]]);
    }

private:
    void initBitReverseTable();

    std::vector<unsigned int> table;
    unsigned int size = 0;
};

}  // namespace orvandsp
