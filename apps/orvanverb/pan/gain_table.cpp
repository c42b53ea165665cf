#include "orvanverb/pan/gain_table.h"

#include <cmath>

#include "dsp/constants.h"
#include "geometry/azimuth.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "pan/amplitude/vbap_panning.h"
#include "pan/amplitude_panning.h"

namespace program {

namespace {

constexpr int rate = 48000;  // [Hz]
constexpr unsigned int vectorSize = 64;

/// Roots of the energies of the outputs for a unit impulse.
std::vector<float> ImpulseLevels(PanSetup& setup) {
    constexpr int numVectors = rate / 10 / static_cast<int>(vectorSize);  // 100 ms: longer than filters and glides
    VectorChannels input(1, vectorSize), output(setup.NumOutputs(), vectorSize);
    std::vector<float> energies(setup.NumOutputs(), 0.0f);
    for (int vector = 0; vector < 2 * numVectors; ++vector) {
        input.Pointers()[0][0] = vector == numVectors ? 1.0f : 0.0f;
        setup.panner->Process(output.Pointers(), input.Pointers(), vectorSize, orvandsp::allActiveInputs);
        if (vector < numVectors) continue;
        for (unsigned int c = 0; c < setup.NumOutputs(); ++c)
            for (unsigned int i = 0; i < vectorSize; ++i)
                energies[c] += output.Pointers()[c][i] * output.Pointers()[c][i];
    }
    for (float& energy : energies) energy = std::sqrt(energy);
    return energies;
}

}  // namespace

std::string GainTable(PanSetup& setup, ListenerPosition const& place) {
    auto* const amplitudes = setup.As(&Lume::PanClass::asAmplitudes);
    std::string table = "# azimuth";
    for (std::string const& channel : setup.channels) table.append("; ").append(channel);
    table += '\n';
    if (amplitudes == nullptr) setup.Start(rate, vectorSize);
    std::vector<float> gains(setup.NumOutputs());
    for (int degrees = 0; degrees < 360; ++degrees) {
        ListenerPosition here = place;
        here.azimuthDeg += static_cast<float>(degrees);
        if (amplitudes != nullptr) {
            amplitudes->convert(setup.ToPanner(ToCartesian(here)), gains.data(), 0);
        } else {
            setup.Place({ToCartesian(here)});
            gains = ImpulseLevels(setup);
        }
        table += FixedText(static_cast<double>(here.azimuthDeg), 0);
        for (const std::size_t index : setup.layout.fileOrder)
            table.append(" ").append(FixedText(index < gains.size() ? static_cast<double>(gains[index]) : 0.0, 6));
        table += '\n';
    }
    return table;
}

std::string TripletTable(PanSetup& setup) {
    auto* const vbap = setup.As(&Lume::PanClass::asTriplets);
    if (vbap == nullptr) throw UsageError("--triplets: is for the method vbap");
    std::string table;
    for (std::size_t i = 0; i < setup.layout.positions.size(); ++i) {
        Lume::CartesianVector const& p = setup.layout.positions[i];
        const float elevation = std::atan2(p.z, std::sqrt(p.x * p.x + p.y * p.y)) * Lume::RadiansToDegrees;
        table += "speaker " + std::to_string(i + 1) + " " + FixedText(static_cast<double>(AzimuthDeg(p)), 2) + " " +
                 FixedText(static_cast<double>(elevation), 2) + "\n";
    }
    std::vector<unsigned int> indices(std::size_t{3} * vbap->GetNumTriplets());
    vbap->GetTriplets(indices.data());
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
        table += "triplet " + std::to_string(indices[i] + 1) + " " + std::to_string(indices[i + 1] + 1) + " " +
                 std::to_string(indices[i + 2] + 1) + "\n";
    return table;
}

}  // namespace program
