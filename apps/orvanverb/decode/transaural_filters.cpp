#include "orvanverb/decode/transaural_filters.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "decoders/decoder_factory.h"
#include "geometry/vector_algebra.h"
#include "hrtf/sdif_access.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/hrtf/engine_loading.h"
#include "orvanverb/hrtf/set_reading.h"
#include "orvanverb/hrtf/set_summary.h"

namespace program {

namespace {

/// The files that a network can take; the engine would read other names as the built-in set.
char const* FilesFor(Lume::HrtfType type) {
    if (type == Lume::hrtfBinaural) return ".hrtf, .bin2trans or .coll";
    return type == Lume::hrtfBinauralToTransauralShufflerSymmetric ? ".bin2trans or .coll" : ".bin2trans";
}

}  // namespace

std::string NetworkFor(Lume::HrtfType type) {
    for (Lume::TransauralNetwork const& network : Lume::TransauralNetworks().subspan(1))
        if (network.takes == type) return network.names[0];
    return {};
}

void LoadFilters(std::string const& path, Lume::TransauralDecoder& decoder) {
    const Lume::HrtfType wanted = decoder.getExpectedHrtfTypeInHrtfFiles();
    RequireSetFile(path, FilesFor(wanted));
    Lume::HrtfHeaderInfos infos;
    bool known = false;
    if (path.ends_with(".bin2trans"))
        LoadQuietly(path, [&](std::string const& name) { known = Lume::GetHrtfHeaderInfos(name, infos); });
    if (known && infos.hrtfType != wanted && !NetworkFor(infos.hrtfType).empty())
        throw WorkError(path + ": is for the network " + NetworkFor(infos.hrtfType) + ", not for " +
                        NetworkFor(wanted));
    bool taken = false;
    LoadQuietly(path, [&](std::string const& name) { taken = decoder.LoadFromFile(name.c_str()); });
    if (!taken)
        throw WorkError(path + ": has not what this network takes: " +
                        std::to_string(decoder.getExpectedNumberOfFiltersInHrtfFiles()) + " filters a point, for " +
                        Lume::GetHrtfTypeName(wanted));
    if (const std::vector<std::string> faults = FaultsOfFilters(ReadAnySet(path)); !faults.empty())
        throw WorkError(path + ": can't be played: " + faults.front());
}

std::string OtherPair(std::string const& path, Lume::TransauralDecoder const& decoder) {
    constexpr float tolerance = 0.05f;  // on the unit sphere: 3 degrees
    Lume::CartesianVector left, right;
    decoder.GetSpeakersPositions(left, right);
    float least = std::numeric_limits<float>::max(), farthest = 0.0f;
    std::string azimuths;
    for (Lume::SdifSetPoint const& point : ReadAnySet(path).points) {
        float sum = 0.0f, most = 0.0f;
        std::string words;
        for (std::size_t i = 0; i < point.positions.size(); ++i) {
            Lume::CartesianVector const& place = point.positions[i];
            const float distance = Length(place - Unit(i == 0 ? left : right));
            sum += distance * distance;
            most = std::max(most, distance);
            words += (i == 0 ? "" : " and ") +
                     FixedText(std::atan2(static_cast<double>(place.x), static_cast<double>(place.y)) * 180.0 /
                                   std::numbers::pi,
                               1);
        }
        if (sum >= least) continue;
        least = sum;
        farthest = most;
        azimuths = words;
    }
    if (farthest <= tolerance) return {};
    return path + ": its nearest filters are for loudspeakers at " + azimuths +
           " degrees; these ones stand elsewhere, and crosstalk stays";
}

}  // namespace program
