#include "math/pseudo_inverse.h"

#include <algorithm>

#include "math/svd.h"

namespace orvandsp {

void PseudoInverse(MatrixDouble const& m, MatrixDouble& result, double& condition) {
    const bool isWide = m.GetNumRows() < m.GetNumColumns();
    const MatrixDouble tall = isWide ? MatrixDouble(Transpose(m)) : m;
    const SVD svd(tall, true, true);
    condition = svd.GetCond();

    std::vector<double> inverses = svd.GetSingularValues();
    // The tolerance is that of single precision, as in the decomposition.
    const double threshold = 1.1920928955078125e-07 * svd.GetNorm2() * std::max(m.GetNumRows(), m.GetNumColumns());
    for (double& s : inverses) s = s > threshold ? 1.0 / s : 0.0;
    const auto size = static_cast<unsigned int>(inverses.size());
    MatrixDouble diagonal(size, size, 0.0);
    diagonal.SetDiag(inverses);

    result = svd.GetV() * diagonal * Transpose(svd.GetU());
    if (isWide) result = Transpose(result);
}

MatrixDouble PseudoInverse(MatrixDouble const& m) {
    MatrixDouble result;
    double condition;
    PseudoInverse(m, result, condition);
    return result;
}

void PseudoInverse(MatrixFloat const& m, MatrixFloat& result, float& condition) {
    MatrixDouble d, resultDouble;
    double conditionDouble;
    FloatToDouble(m, d);
    PseudoInverse(d, resultDouble, conditionDouble);
    DoubleToFloat(resultDouble, result);
    condition = static_cast<float>(conditionDouble);
}

MatrixFloat PseudoInverse(MatrixFloat const& m) {
    MatrixFloat result;
    float condition;
    PseudoInverse(m, result, condition);
    return result;
}

}  // namespace orvandsp
