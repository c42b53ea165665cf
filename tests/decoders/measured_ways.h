#pragma once

#include <mysofa.h>

#include <cmath>
#include <memory>
#include <vector>

#include "math/real_transform.h"

/// The ways from two loudspeakers to the ears of a KEMAR manikin, as Gardner and Martin, "HRTF measurements of a
/// KEMAR", J. Acoust. Soc. Am. 97(6), 1995, measured them. In double precision.

using orvandsp::Spectrum;

constexpr std::size_t fftSize = 4096;
constexpr double measuredRate = 44100.0;

inline orvandsp::RealTransform const& Transform() {
    static const orvandsp::RealTransform transform(fftSize);
    return transform;
}

inline Spectrum SpectrumOf(std::vector<float> const& response) {
    return Transform().Forward(std::vector<double>(response.begin(), response.end()));
}

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
        LL = SpectrumOf(ll), LR = SpectrumOf(lr), RL = SpectrumOf(rl), RR = SpectrumOf(rr);
    }
    std::vector<float> ll, lr, rl, rr;
    Spectrum LL, LR, RL, RR;
};
