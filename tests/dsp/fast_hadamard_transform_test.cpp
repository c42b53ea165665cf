#include "dsp/fast_hadamard_transform.h"

#include <gtest/gtest.h>

#include <bit>
#include <vector>

namespace {

using orvandsp::FastHadamardTransform;
using Row = std::vector<float>;

/// The transform as a matrix, row by row.
std::vector<Row> MatrixOf(FastHadamardTransform const& transform, unsigned int size) {
    std::vector<Row> rows(size, Row(size));
    for (unsigned int column = 0; column < size; ++column) {
        Row unit(size, 0.0f);
        unit[column] = 1.0f;
        transform.Process(unit.data(), size);
        for (unsigned int row = 0; row < size; ++row) rows[row][column] = unit[row];
    }
    return rows;
}

int SignChanges(Row const& row) {
    int changes = 0;
    for (std::size_t i = 1; i < row.size(); ++i) changes += row[i] * row[i - 1] < 0.0f ? 1 : 0;
    return changes;
}

unsigned int Reverse(unsigned int index, unsigned int bits) {
    unsigned int reversed = 0;
    for (unsigned int i = 0; i < bits; ++i) reversed |= ((index >> i) & 1u) << (bits - 1 - i);
    return reversed;
}

// Against the definition of each ordering. Red if a butterfly exchanges its outputs in the wrong groups, if a stage is
// missing, or if the table isn't used.
TEST(FastHadamardTransform, OrderingsHaveTheirRows) {
    for (unsigned int bits = 0; bits <= 6; ++bits) {
        const unsigned int size = 1u << bits;
        const auto natural = MatrixOf({size, FastHadamardTransform::naturalHadamard, false}, size);
        const auto dyadic = MatrixOf({size, FastHadamardTransform::dyadicPaley, false}, size);
        const auto sequency = MatrixOf({size, FastHadamardTransform::sequencyWalsh, false}, size);
        for (unsigned int row = 0; row < size; ++row) {
            for (unsigned int column = 0; column < size; ++column)
                EXPECT_EQ(natural[row][column], std::popcount(row & column) % 2 == 0 ? 1.0f : -1.0f);
            EXPECT_EQ(dyadic[row], natural[Reverse(row, bits)]);
            EXPECT_EQ(SignChanges(sequency[row]), static_cast<int>(row)) << size;
        }
    }
}

// Red if the channel form follows the flags or mixes samples of different times; if scaling divides by anything but the
// size, or if the form with two arrays changes its input.
TEST(FastHadamardTransform, FormsAndScaling) {
    const FastHadamardTransform scaled(4, FastHadamardTransform::naturalHadamard, true);
    const FastHadamardTransform walsh(4, FastHadamardTransform::sequencyWalsh, true);
    float samples[4][2] = {{1, 2}, {4, 5}, {7, 8}, {10, -11}};
    float* channels[] = {samples[0], samples[1], samples[2], samples[3]};
    std::vector<Row> expected(2, Row(4));
    for (std::size_t k = 0; k < 2; ++k) {
        const Row in = {samples[0][k], samples[1][k], samples[2][k], samples[3][k]};
        scaled.Process(expected[k].data(), in.data(), 4);
        EXPECT_EQ(in[3], samples[3][k]);
        EXPECT_EQ(expected[k][0], (in[0] + in[1] + in[2] + in[3]) / 4.0f);  // the mean
    }
    walsh.Process(channels, 4, 2);
    for (std::size_t k = 0; k < 2; ++k)
        for (std::size_t c = 0; c < 4; ++c) EXPECT_EQ(samples[c][k], 4.0f * expected[k][c]);
}

// Red if a size between two powers of two writes beyond its data or its table (the sanitizers watch too).
TEST(FastHadamardTransform, OddSizesStayInside) {
    for (unsigned int size = 0; size < 20; ++size) {
        for (const auto ordering : {FastHadamardTransform::sequencyWalsh, FastHadamardTransform::naturalHadamard}) {
            FastHadamardTransform transform(2, ordering, false);
            transform.SetSize(size);
            std::vector<float> data(size + 1, 1.0f);
            transform.Process(data.data(), size);
            EXPECT_EQ(data[size], 1.0f) << size;
        }
        const orvandsp::BitReversal reversal(size);
        std::vector<unsigned int> table(size + 1, 99);
        reversal.GetBitReverseTable(table.data());
        EXPECT_EQ(table[size], 99u);
        const auto bits = static_cast<unsigned int>(std::bit_width(std::bit_ceil(size))) - 1;
        for (unsigned int i = 0; i < size; ++i) EXPECT_EQ(table[i], Reverse(i, bits)) << size;
    }
}

}  // namespace
