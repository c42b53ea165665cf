#pragma once

#include <cmath>
#include <numbers>
#include <vector>

#include "geometry/vector_algebra.h"

/// Places, layouts, and what loudspeakers make a listener hear.

/// A position by the listener's azimuth [degrees] (0 ahead, 90 on the right), elevation [degrees] and distance [m].
inline Lume::CartesianVector At(double azimuth, double elevation = 0.0, double distance = 1.0) {
    const double a = azimuth * std::numbers::pi / 180.0, e = elevation * std::numbers::pi / 180.0;
    return {static_cast<float>(distance * std::sin(a) * std::cos(e)),
            static_cast<float>(distance * std::cos(a) * std::cos(e)), static_cast<float>(distance * std::sin(e))};
}

using Positions = std::vector<Lume::CartesianVector>;

/// (+-a, +-b, +-c) and its two rotations, without repetitions for coordinates of 0.
/// @param sign  of the product, 0 for both
inline Positions Signed(float a, float b, float c, int sign = 0) {
    Positions layout;
    for (int signs = 0; signs < 8; ++signs) {
        if ((a == 0.0f && (signs & 1)) || (b == 0.0f && (signs & 2)) || (c == 0.0f && (signs & 4))) continue;
        const float x = signs & 1 ? -a : a, y = signs & 2 ? -b : b, z = signs & 4 ? -c : c;
        if (x * y * z * static_cast<float>(sign) >= 0.0f)
            layout.insert(layout.end(), {{x, y, z}, {y, z, x}, {z, x, y}});
    }
    return layout;
}

inline Positions Joined(Positions first, Positions const& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// 24 places whose waves add up to 0 in every harmonic from degree 1 to 7 (McLaren, "Optimal numerical integration on a
/// sphere", Math. Comp. 17, 1963): even permutations with an even number of signs, odd with odd.
inline Positions SnubCube() {
    return Joined(Signed(0.866246818f, 0.422518654f, 0.266635402f, 1),
                  Signed(0.422518654f, 0.866246818f, 0.266635402f, -1));
}

/// Of waves with gains that come from loudspeakers, all of them alike: velocity and energy vector (Gerzon, "General
/// metatheory of auditory localisation", 92nd AES Convention, 1992), and their power.
struct GerzonVectors {
    GerzonVectors(std::vector<double> const& gains, Positions const& speakers) {
        double sum = 0.0;
        for (std::size_t j = 0; j < speakers.size(); ++j) {
            velocity = velocity + Unit(speakers[j]) * static_cast<float>(gains[j]);
            energy = energy + Unit(speakers[j]) * static_cast<float>(gains[j] * gains[j]);
            sum += gains[j];
            power += gains[j] * gains[j];
        }
        velocity = velocity / static_cast<float>(sum);
        energy = energy / static_cast<float>(power);
    }
    Lume::CartesianVector velocity{}, energy{};
    double power = 0.0;
};

/// Real harmonics up to the third degree in ACN order with SN3D weights, of a direction with x ahead, y to the left and
/// z up (Nachbar, Zotter, Deleflie and Sontacchi, "AmbiX - A suggested ambisonics format", 2011).
/// @param azimuth, elevation  of the listener [degrees], positive to the right
inline std::vector<double> AmbixHarmonics(double azimuth, double elevation) {
    const double a = -azimuth * std::numbers::pi / 180.0, e = elevation * std::numbers::pi / 180.0;
    const double x = std::cos(a) * std::cos(e), y = std::sin(a) * std::cos(e), z = std::sin(e);
    const double root3 = std::sqrt(3.0), root15 = std::sqrt(15.0), root38 = std::sqrt(3.0 / 8.0);
    return {1.0,
            y,
            z,
            x,
            root3 * x * y,
            root3 * y * z,
            1.5 * z * z - 0.5,
            root3 * x * z,
            0.5 * root3 * (x * x - y * y),
            std::sqrt(5.0 / 8.0) * y * (3.0 * x * x - y * y),
            root15 * x * y * z,
            root38 * y * (5.0 * z * z - 1.0),
            0.5 * z * (5.0 * z * z - 3.0),
            root38 * x * (5.0 * z * z - 1.0),
            0.5 * root15 * z * (x * x - y * y),
            std::sqrt(5.0 / 8.0) * x * (x * x - 3.0 * y * y)};
}
