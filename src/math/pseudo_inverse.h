#pragma once

#include "math/real_matrix.h"

namespace orvandsp {

/// The Moore-Penrose inverse, by singular values: V S^+ transpose(U). Singular values at or below
/// max(rows, columns) times the largest one times 2^-23 count as 0 and are cut, so that a nearly singular layout gets
/// moderate gains in place of huge ones.
MatrixDouble PseudoInverse(MatrixDouble const& m);
MatrixFloat PseudoInverse(MatrixFloat const& m);

/// @param result     the inverse, columns x rows
/// @param condition  the largest singular value divided by the smallest, small ones included; not a number for a zero
///                   or empty matrix
void PseudoInverse(MatrixDouble const& m, MatrixDouble& result, double& condition);
/// Computes in double and rounds at the end.
void PseudoInverse(MatrixFloat const& m, MatrixFloat& result, float& condition);

}  // namespace orvandsp
