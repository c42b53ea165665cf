#include "pan/diffuse/decorrelated_mixing.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace Lume {

namespace {

using orvandsp::Matrix;

/// Bit k of it says whether the k-th pair of bits of a row's number takes part in the row's sign.
using QuadraticForm = std::uint32_t;

/// A Hadamard matrix where there is one of that size, all of whose entries have the same magnitude; else the cosine
/// transform.
Matrix<double> OrthonormalMatrix(unsigned int size) {
    Matrix<double> matrix(size, size, std::sqrt(1.0 / size));
    for (unsigned int i = 0; i < size; ++i) {
        for (unsigned int j = 0; j < size; ++j) {
            if (std::has_single_bit(size))
                matrix[i][j] *= std::popcount(i & j) % 2 == 0 ? 1.0 : -1.0;
            else if (j > 0)
                matrix[i][j] *= std::sqrt(2.0) * std::cos(std::numbers::pi * (i + 0.5) * j / size);
        }
    }
    return matrix;
}

/// The sign of a row: -1 to the number of pairs of the form whose bits are both set.
double Sign(QuadraticForm form, unsigned int row, unsigned int numBits) {
    unsigned int pair = 0, sum = 0;
    for (unsigned int a = 0; a < numBits; ++a)
        for (unsigned int b = a + 1; b < numBits; ++b, ++pair) sum += (form >> pair) & (row >> a) & (row >> b) & 1u;
    return sum % 2 == 0 ? 1.0 : -1.0;
}

/// The largest correlation of a column with one of the copy whose rows have these signs.
double LargestCorrelation(Matrix<double> const& basis, std::vector<double> const& signs) {
    double largest = 0.0;
    for (unsigned int j = 0; j < signs.size(); ++j) {
        for (unsigned int k = 0; k < signs.size(); ++k) {
            double product = 0.0;
            for (unsigned int i = 0; i < signs.size(); ++i) product += signs[i] * basis[i][j] * basis[i][k];
            largest = std::max(largest, std::abs(product));
        }
    }
    return largest;
}

}  // namespace

Matrix<float> ComputeDecorrelatedMixing(unsigned int numChannels, std::vector<float> const& powers) {
    const auto numOutputs = static_cast<unsigned int>(powers.size());
    const unsigned int numBits = static_cast<unsigned int>(std::bit_width(numChannels - 1));
    // Four bits have 64 forms. More channels than sixteen have more, of which these are enough.
    const QuadraticForm numForms = 1u << std::min(numBits * (numBits - std::min(numBits, 1u)) / 2, 6u);
    const Matrix<double> basis = OrthonormalMatrix(numChannels);

    // By form, as two copies differ by the sum of their forms.
    std::vector<double> correlations(numForms);
    std::vector<std::vector<double>> signs(numForms, std::vector<double>(numChannels));
    for (QuadraticForm form = 0; form < numForms; ++form) {
        for (unsigned int i = 0; i < numChannels; ++i) signs[form][i] = Sign(form, i, numBits);
        correlations[form] = LargestCorrelation(basis, signs[form]);
    }

    Matrix<float> mixing(numChannels, numOutputs, 0.0f);
    std::vector<QuadraticForm> copies;
    for (unsigned int first = 0; first < numOutputs; first += numChannels) {
        const auto worst = [&](QuadraticForm form) {
            double largest = 0.0;
            for (const QuadraticForm other : copies) largest = std::max(largest, correlations[form ^ other]);
            return largest;
        };
        QuadraticForm best = 0;
        for (QuadraticForm form = 1; form < numForms; ++form)
            if (worst(form) < worst(best) - 1e-9) best = form;
        copies.push_back(best);
        for (unsigned int j = first; j < std::min(first + numChannels, numOutputs); ++j)
            for (unsigned int i = 0; i < numChannels; ++i)
                mixing[i][j] = static_cast<float>(signs[best][i] * basis[i][j - first] *
                                                  std::sqrt(static_cast<double>(powers[j])));
    }
    return mixing;
}

}  // namespace Lume
