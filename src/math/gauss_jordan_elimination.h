#pragma once

#include "math/matrix.h"

namespace orvandsp {

/// Inverts a square matrix and solves for several right-hand sides at once, both in place, by Gauss-Jordan elimination
/// with full pivoting.
///
/// There is no test for singularity: a singular matrix ends in infinities or not-a-numbers, without a report.
/// @param a  n x n; becomes its inverse
/// @param b  n rows, one right-hand side per column; becomes the solutions of a x = b
void GaussJordanElimination(Matrix<float>& a, Matrix<float>& b);
void GaussJordanElimination(Matrix<double>& a, Matrix<double>& b);

/// Inverts a square matrix in place.
void GaussJordanElimination(Matrix<float>& a);
void GaussJordanElimination(Matrix<double>& a);

}  // namespace orvandsp
