#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace orvandsp {

/// The sequence of the GNU C library's rand() for a seed, without its state, which belongs to the whole process: an
/// additive feedback generator, x(i) = x(i - 3) + x(i - 31) modulo 2^32, of which the upper 31 bits are given. It is
/// the same with every C library.
class RepeatableRandom {
public:
    static constexpr std::int32_t greatest = 0x7fffffff;

    /// What srand(seed) does; 0 counts as 1.
    explicit RepeatableRandom(std::uint32_t seed) noexcept;

    /// The next number, 0 to greatest. Real-time safe.
    std::int32_t Next() noexcept;

private:
    static constexpr std::size_t degree = 31, separation = 3;

    std::array<std::uint32_t, degree> state;
    std::size_t oldest = 0;  // the next one is written `separation` places behind it
};

}  // namespace orvandsp
