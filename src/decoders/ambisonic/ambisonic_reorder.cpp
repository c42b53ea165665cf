#include "decoders/ambisonic/ambisonic_reorder.h"

#include <algorithm>

namespace Lume {

AmbisonicReorder::AmbisonicReorder(std::vector<AmbisonicChannel> const& from, std::vector<AmbisonicChannel> const& to) {
    initDecoder(static_cast<unsigned int>(from.size()), static_cast<unsigned int>(to.size()));
    for (AmbisonicChannel const& wanted : to) {
        const auto found = std::find_if(from.begin(), from.end(),
                                        [&](AmbisonicChannel const& channel) { return channel.acn == wanted.acn; });
        sources.push_back({static_cast<std::size_t>(found - from.begin()), found->toSn3d / wanted.toSn3d});
    }
}

void AmbisonicReorder::Process(float** outputs, float** inputs, unsigned long numSamples,
                               short const* /*activeInputs*/) {
    for (std::size_t j = 0; j < sources.size(); ++j)
        for (unsigned long i = 0; i < numSamples; ++i) outputs[j][i] = sources[j].gain * inputs[sources[j].input][i];
}

}  // namespace Lume
