#pragma once

namespace Lume {

/// The difference equation of HLShelf; of several channels at once kernels::Shelf has it.
template <typename Value>
struct ShelfRecursion {
    /// Filters one sample; the overall gain comes behind it. The sum is formed from left to right.
    Value operator()(Value x) noexcept {
        const Value y = b1 * x1 + b2 * x2 + b0 * x - a2 * y2 - a1 * y1;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }

    Value b0, b1, b2, a1, a2;
    Value x1, x2;  // the input before, and the one before that
    Value y1, y2;  // the output before, and the one before that
};

}  // namespace Lume
