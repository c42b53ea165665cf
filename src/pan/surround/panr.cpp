#include "pan/surround/panr.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "geometry/azimuth.h"

namespace Lume {

namespace {

constexpr float turn = 360.0f;  // [degrees]

/// A triangle wave of the angle [degrees]: 2 at 0, falling to -2 at 180 and rising again.
float Triangle(float v) {
    constexpr float slope = 0.022222223f;  // 1 / 45
    return v <= 180.0f ? 2.0f - v * slope : (v - 180.0f) * slope - 2.0f;
}

float UnitClamp(float value) {
    return std::clamp(value, 0.0f, 1.0f);
}

struct Split {
    float onlyP, shared, onlyQ;
};

/// Shares two powers among three loudspeakers: what only p has, what both have, what only q has.
Split split(float p, float q) {
    return {UnitClamp(p - q), p + q - UnitClamp(p - q) - UnitClamp(q - p), UnitClamp(q - p)};
}

/// The powers at the four corners.
struct Corners {
    float frontLeft, frontRight, rearRight, rearLeft;
};

Corners CornersOf(float x, float y) {
    const float clampedX = std::clamp(x, -1.0f, 1.0f);
    const float clampedY = std::clamp(y, -1.0f, 1.0f);
    const float left = (1.0f - clampedX) / 2.0f;
    const float right = (1.0f + clampedX) / 2.0f;
    const float front = (1.0f + clampedY) / 2.0f;
    const float rear = (1.0f - clampedY) / 2.0f;
    return {left * front, right * front, right * rear, left * rear};
}

void Write(std::initializer_list<float> powers, float* gains) {
    std::copy(powers.begin(), powers.end(), gains);
}

}  // namespace

void panc(float azimuth, float elevation, float distance, float const* corners, float& px, float& py) {
    float e = std::acos(std::clamp(distance, -1.0f, 1.0f)) * RadiansToDegrees + elevation;
    if (e > 180.0f)
        e -= turn;
    else if (e < -180.0f)
        e += turn;
    float c = std::cos(e * DegreesToRadians);
    if (c < 0.0f) {  // beyond the pole
        c = -c;
        azimuth += 180.0f;
    }

    float t[4];
    for (int i = 0; i < 4; ++i) {
        t[i] = Wrap(corners[i], turn);
        while (i > 0 && t[i] < t[i - 1]) t[i] += turn;
    }
    const float a = Wrap(azimuth - t[0], turn) + t[0];
    float w;  // the angle, warped so that the corners fall on multiples of 90 degrees
    if (a < t[1])
        w = (a - t[0]) / (t[1] - t[0]) * 90.0f;
    else if (a < t[2])
        w = (a - t[1]) / (t[2] - t[1]) * 90.0f + 90.0f;
    else if (a < t[3])
        w = (a - t[2]) / (t[3] - t[2]) * 90.0f + 180.0f;
    else
        w = (a - t[3]) / (t[0] + turn - t[3]) * 90.0f + 270.0f;

    const float u = Wrap(w - 45.0f, turn);
    py = std::clamp(Triangle(u), -1.0f, 1.0f);
    px = std::clamp(Triangle(Wrap(u - 90.0f, turn)), -1.0f, 1.0f);
    px *= c;
    py *= c;
}

void panc(CartesianVector const& position, float const* corners, float& px, float& py) {
    const float distance = position.radius();
    const float azimuth = SwapAzimuthConvention(std::atan2(position.y, position.x) * RadiansToDegrees);
    const float elevation = distance > 0.0f ? std::asin(position.z / distance) * RadiansToDegrees : 0.0f;
    panc(azimuth, elevation, distance, corners, px, py);
}

void panr4(float x, float y, float* gains) {
    const Corners corners = CornersOf(x, y);
    Write({corners.frontLeft, corners.frontRight, corners.rearRight, corners.rearLeft}, gains);
}

void panr5(float x, float y, float* gains) {
    const Corners corners = CornersOf(x, y);
    const Split front = split(corners.frontLeft, corners.frontRight);
    Write({front.onlyP, front.shared, front.onlyQ, corners.rearRight, corners.rearLeft}, gains);
}

void panr6(float x, float y, float* gains) {
    const Corners corners = CornersOf(x, y);
    const Split left = split(corners.frontLeft, corners.rearLeft);
    const Split right = split(corners.frontRight, corners.rearRight);
    Write({left.onlyP, right.onlyP, right.shared, right.onlyQ, left.onlyQ, left.shared}, gains);
}

void panr7(float x, float y, float* gains) {
    const Corners corners = CornersOf(x, y);
    const Split front = split(corners.frontLeft, corners.frontRight);
    const Split left = split(front.onlyP, corners.rearLeft);
    const Split right = split(front.onlyQ, corners.rearRight);
    Write({left.onlyP, front.shared, right.onlyP, right.shared, right.onlyQ, left.onlyQ, left.shared}, gains);
}

void panr8(float x, float y, float* gains) {
    const Corners corners = CornersOf(x, y);
    const Split left = split(corners.frontLeft, corners.rearLeft);
    const Split right = split(corners.frontRight, corners.rearRight);
    const Split front = split(left.onlyP, right.onlyP);
    const Split rear = split(left.onlyQ, right.onlyQ);
    Write({front.onlyP, front.shared, front.onlyQ, right.shared, rear.onlyQ, rear.shared, rear.onlyP, left.shared},
          gains);
}

void panr12(float x, float y, float* gains) {
    float u[8];
    panr8(x, y, u);
    const Split frontLeft = split(u[0], u[1]);
    const Split frontRight = split(frontLeft.onlyQ, u[2]);
    const Split rearRight = split(u[4], u[5]);
    const Split rearLeft = split(rearRight.onlyQ, u[6]);
    Write({frontLeft.onlyP, frontLeft.shared, frontRight.onlyP, frontRight.shared, frontRight.onlyQ, u[3],
           rearRight.onlyP, rearRight.shared, rearLeft.onlyP, rearLeft.shared, rearLeft.onlyQ, u[7]},
          gains);
}

}  // namespace Lume
