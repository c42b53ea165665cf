#pragma once

#include <mysofa.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <vector>

#include "support/frequency_response.h"

/// The ways from two loudspeakers to the ears of a KEMAR manikin, as Gardner and Martin, "HRTF measurements of a
/// KEMAR", J. Acoust. Soc. Am. 97(6), 1995, measured them.

constexpr double measuredRate = 44100.0;

/// Responses from a loudspeaker (first letter) to an ear (second letter).
struct Ways {
    /// @param left, right  degrees to the left and to the right, in steps of 5
    Ways(int left, int right) {
        int error = 0;
        const std::unique_ptr<MYSOFA_HRTF, void (*)(MYSOFA_HRTF*)> sofa(
            mysofa_load("/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa", &error), mysofa_free);
        if (!sofa) return;
        // Only the left ear has the normal pinna: the right one is its mirror image.
        const auto leftEar = [&](int degreesToTheLeft) {
            for (unsigned int i = 0; i < sofa->M; ++i) {
                float const* const position = sofa->SourcePosition.values + std::size_t{i} * sofa->C;
                if (std::lround(position[0]) != (degreesToTheLeft + 360) % 360 || std::lround(position[1]) != 0)
                    continue;
                float const* const response = sofa->DataIR.values + std::size_t{i} * sofa->R * sofa->N;
                return std::vector<float>(response, response + sofa->N);
            }
            return std::vector<float>();
        };
        ll = leftEar(left), lr = leftEar(-left), rl = leftEar(-right), rr = leftEar(right);
    }
    std::vector<float> ll, lr, rl, rr;

    /// What the ears hear of both loudspeakers' signals, and how much less of it goes astray than from the bare
    /// loudspeaker of one side [dB].
    struct Heard {
        double ears[2], reductionDb;
    };
    Heard Hear(std::complex<double> left, std::complex<double> right, std::size_t side, double hertz) const {
        const auto at = [=](std::vector<float> const& way) { return ResponseAt(way, hertz / measuredRate); };
        const double bare = std::abs(side == 0 ? at(lr) / at(ll) : at(rl) / at(rr));
        const double ears[] = {std::abs(left * at(ll) + right * at(rl)), std::abs(left * at(lr) + right * at(rr))};
        return {{ears[0], ears[1]}, 20.0 * std::log10(bare * ears[side] / std::max(ears[1 - side], 1e-7))};
    }
};
