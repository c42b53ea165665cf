#include "reverb/delgen.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "dsp/repeatable_random.h"

namespace Lume {

namespace {

constexpr float pseudoPrimelist[] = {2, 5, 7, 11, 18, 23, 29, 37, 46, 59, 71, 82, 97, 113, 127, 145};
constexpr unsigned int indexes[] = {1, 8, 7, 4, 6, 3, 5, 2, 9, 10, 11, 12, 13, 14, 15, 16};
constexpr unsigned int tableSize = 16;
static_assert(std::size(pseudoPrimelist) == tableSize && std::size(indexes) == tableSize);

/// Narrowest range [ms]: 145 samples, the widest entry of the table, at 44100 Hz.
constexpr float minRange = 3.2879817f;

}  // namespace

Delgen::Delgen(unsigned int newNumDelays, float newMinimum, float newMaximum, float /*newDistribution*/)
    : numDelays(newNumDelays) {
    init();
    Restart(newMinimum, newMaximum);
}

void Delgen::Restart(float newMinimum, float newMaximum) {
    minimum = std::max(newMinimum, minMinimum);
    maximum = std::max(newMinimum, newMaximum);
    distribution = std::clamp(DefaultDistribution, MinDistribution, MaxDistribution);
    recalc();
}

void Delgen::init() {
    delays.resize(numDelays);
    if (numDelays > tableSize)
        InitRandomWalk();
    else
        InitTable();
}

void Delgen::InitRandomWalk() {
    constexpr float step = 4.656613e-10f;  // 2^-31: steps below 1
    positions.resize(numDelays);
    // Seeded anew, so that the same number of delays has the same positions whatever ran before.
    orvandsp::RepeatableRandom random(0);
    positions[0] = 0.0f;
    for (unsigned int i = 1; i < numDelays; ++i)
        positions[i] = static_cast<float>(random.Next()) * step + positions[i - 1];
    const float first = positions.front();
    const float last = positions.back();
    float positionSum = 0.0f;
    for (float& position : positions) {
        position = (position - first) / (last - first);
        positionSum += position;
    }
    meanPosition = positionSum / static_cast<float>(numDelays);
}

void Delgen::InitTable() {
    selectionIndices.assign(std::begin(indexes), std::end(indexes));
    positions.assign(std::begin(pseudoPrimelist), std::end(pseudoPrimelist));
    const float first = pseudoPrimelist[0];
    const float last = pseudoPrimelist[numDelays < 8 ? 7 : numDelays - 1];
    float positionSum = 0.0f;
    for (unsigned int i = 0; i < tableSize; ++i) {
        positions[i] = (positions[i] - first) / (last - first);
        if (selectionIndices[i] <= numDelays) positionSum += positions[i];
    }
    meanPosition = positionSum / static_cast<float>(numDelays);
}

void Delgen::recalc() {
    // Written as "not greater", so that a range that isn't a number is mended too.
    if (!(maximum - minimum > minRange)) maximum = minimum + minRange;
    // A single delay has the mean position 0 and so the exponent 0: it lands on the maximum.
    const float exponent = (1.0f / distribution - 1.0f) / (1.0f / meanPosition - 1.0f);
    if (bent.size() != positions.size() || exponent != bentBy) {
        bent.resize(positions.size());
        std::transform(positions.begin(), positions.end(), bent.begin(),
                       [exponent](float p) { return std::pow(p, exponent); });
        bentBy = exponent;
    }
    const float range = maximum - minimum;
    sum = 0.0f;
    unsigned int k = 0;
    for (unsigned int i = 0; i < positions.size() && k < numDelays; ++i) {
        if (numDelays <= tableSize && selectionIndices[i] > numDelays) continue;
        const float value = bent[i] * range + minimum;
        delays[k] = std::min(std::max(value, minimum), maximum);
        sum += value;
        ++k;
    }
}

void Delgen::SetNumDelays(unsigned int newNumDelays) {
    numDelays = newNumDelays;
    init();
    Restart(minimum, maximum);
}

void Delgen::SetMinimum(float newMinimum) {
    minimum = std::min(newMinimum, maximum);
    recalc();
}

void Delgen::SetMaximum(float newMaximum) {
    maximum = std::max(newMaximum, minimum);
    recalc();
}

void Delgen::SetDistribution(float newDistribution) {
    distribution = std::clamp(newDistribution, MinDistribution, MaxDistribution);
    recalc();
}

float* Delgen::SetMinMax(float newMinimum, float newMaximum, float newDistribution) {
    minimum = std::max(newMinimum, minMinimum);
    maximum = std::max(newMinimum, newMaximum);
    distribution = std::clamp(newDistribution, MinDistribution, MaxDistribution);
    recalc();
    return delays.data();
}

float* Delgen::SetMinSum(float newMinimum, float newSum, float newDistribution) {
    minimum = newMinimum;
    distribution = newDistribution;
    // The mean of the bent positions is about the distribution.
    maximum = (newSum / static_cast<float>(numDelays) - minimum) / distribution + minimum;
    if (maximum < minimum) std::swap(minimum, maximum);
    minimum = std::max(minimum, minMinimum);
    recalc();
    return delays.data();
}

void Delgen::SetSum(float newSum) {
    SetMinSum(minimum, newSum, distribution);
    recalc();
}

}  // namespace Lume
