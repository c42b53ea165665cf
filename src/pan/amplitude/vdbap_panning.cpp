#include "pan/amplitude/vdbap_panning.h"

#include <algorithm>

#include "geometry/reach.h"
#include "geometry/space_geometry.h"
#include "geometry/speakers.h"
#include "geometry/vector_algebra.h"

namespace Lume {

VDbapPanning::VDbapPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs),
      dbap(numOutputs > 0 ? std::make_unique<DbapPanning3D>(numInputs, numOutputs) : nullptr),
      vbap(numOutputs > 2 ? std::make_unique<VbapPanning>(numInputs, numOutputs) : nullptr),
      vbapGains(static_cast<std::size_t>(numInputs) * numOutputs),
      dbapGains(vbapGains.size()) {
    std::vector<CartesianVector> ring;
    Speakers::GetRegularlySpaced(ring, numOutputs);
    VDbapPanning::SetLoudspeakerPositions(ring.data());
}

void VDbapPanning::SetLoudspeakerPositions(CartesianVector const* positions) {
    speakerPositions.resize(numOutputs);
    std::transform(positions, positions + numOutputs, speakerPositions.begin(), WithinReach);
    ComputeBarycenter(speakerPositions, barycenter);
    radius = GetRadiusOfTheLargestSphereEncompassing(speakerPositions, barycenter);
    if (dbap) dbap->SetLoudspeakerPositions(speakerPositions.data());
    if (vbap) vbap->SetLoudspeakerPositions(speakerPositions.data());
    forceUpdate(false);
}

void VDbapPanning::convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) {
    const float distance = Distance(position, barycenter);
    float vbapWeight = 0.0f;
    if (distance > 1.3f * radius)
        vbapWeight = 1.0f;
    else if (distance >= radius * 0.7f && radius > 0.0f)  // a layout in one point has no shell to fade in
        vbapWeight = (distance - 0.7f * radius) / (radius * 1.3f - 0.7f * radius);
    const float dbapWeight = 1.0f - vbapWeight;

    const std::size_t row = static_cast<std::size_t>(sourceIndex) * numOutputs;
    if (dbap && distance <= 1.3f * radius) dbap->convert(position, dbapGains.data() + row, sourceIndex);
    if (vbap && distance >= radius * 0.7f) vbap->convert(position, vbapGains.data() + row, sourceIndex);
    // A method that wasn't asked keeps old gains, which its weight 0 removes.
    for (unsigned int j = 0; j < numOutputs; ++j)
        gains[j] = vbapWeight * vbapGains[row + j] + dbapWeight * dbapGains[row + j];
}

void VDbapPanning::SetNumInputs(unsigned int newNumInputs) {
    AmplitudePanning::SetNumInputs(newNumInputs);
    if (dbap) dbap->SetNumInputs(newNumInputs);
    if (vbap) vbap->SetNumInputs(newNumInputs);
}

void VDbapPanning::SetNumOutputs(unsigned int newNumOutputs) {
    AmplitudePanning::SetNumOutputs(newNumOutputs);
    if (dbap) dbap->SetNumOutputs(newNumOutputs);
    if (vbap) vbap->SetNumOutputs(newNumOutputs);
}

}  // namespace Lume
