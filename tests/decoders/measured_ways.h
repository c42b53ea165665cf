#pragma once

#include <mysofa.h>

#include <cmath>
#include <memory>
#include <vector>

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
};
