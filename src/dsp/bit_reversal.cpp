#include "dsp/bit_reversal.h"

#include <algorithm>
#include <bit>

namespace orvandsp {

BitReversal::BitReversal(unsigned int newSize) {
    SetSize(newSize);
}

void BitReversal::SetSize(unsigned int newSize) {
    size = newSize;
    // The doubling below fills whole powers of two.
    table.resize(std::bit_ceil(std::size_t{newSize}));
    initBitReverseTable();
}

void BitReversal::initBitReverseTable() {
    table[0] = 0;
    for (std::size_t k = 1; k < table.size(); k *= 2) {
        for (std::size_t i = 0; i < k; ++i) {
            table[i] *= 2;
            table[i + k] = table[i] + 1;
        }
    }
}

void BitReversal::GetBitReverseTable(unsigned int* out) const {
    std::copy_n(table.begin(), size, out);
}

}  // namespace orvandsp
