#pragma once

#include <vector>

#include "math/matrix.h"

namespace Lume {

/// The gains from uncorrelated channels of equal power (rows) to outputs (columns), such that each output has a power
/// of its own and outputs are as little correlated as that many channels allow.
///
/// The columns are those of an orthonormal matrix, and then of copies of it whose rows change sign by a quadratic form
/// over the bits of their number: with C channels the first C outputs, and each further C among themselves, are not
/// correlated at all. Between two such groups the correlation is at most 1/2 with 8 channels and 1/4 with 16, for up to
/// 64 outputs: these sets of bases are next to the best that exist (Calderbank, Cameron, Kantor and Seidel,
/// "Z4-Kerdock codes, orthogonal spreads, and extremal Euclidean line-sets", Proc. London Math. Soc. 75, 1997). Other
/// numbers of channels reach 1/2 to 0.8; 2 to 4 channels have few such copies and then repeat themselves.
///
/// Set-up only: allocates.
/// @param numChannels  C, 1 to 64
/// @param powers       wanted power of each output, for channels of power 1
orvandsp::Matrix<float> ComputeDecorrelatedMixing(unsigned int numChannels, std::vector<float> const& powers);

}  // namespace Lume
