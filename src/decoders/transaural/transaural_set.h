#pragma once

#include <string>
#include <variant>
#include <vector>

#include "hrtf/asymmetric_transaural_data_loader.h"
#include "hrtf/symmetric_transaural_data_loader.h"

namespace Lume {

/// How the loudspeakers of a set stand.
enum class SpeakerPair { symmetric, asymmetric };

/// A set of filters for two loudspeakers, of either kind: by angle, or by pair of positions.
class TransauralSet {
public:
    /// Loads the set of that name.
    /// @throws orvandsp::OrvanDspException if it can't be loaded
    TransauralSet(SpeakerPair pair, std::string const& fileName);

    HrtfHeaderInfos const& GetHrtfHeaderInfos() const;

    /// The filters of the point nearest to the loudspeakers, one after another. A symmetric set goes by the left one.
    std::vector<float> const& GetNearestCoefficients(CartesianVector const& left, CartesianVector const& right) const;

private:
    std::variant<SymmetricTransauralDataLoader, AsymmetricTransauralDataLoader> data;
};

}  // namespace Lume
