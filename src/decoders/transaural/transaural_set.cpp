#include "decoders/transaural/transaural_set.h"

namespace Lume {

namespace {

std::variant<SymmetricTransauralDataLoader, AsymmetricTransauralDataLoader> Load(SpeakerPair pair,
                                                                                 std::string const& fileName) {
    if (pair == SpeakerPair::symmetric) return SymmetricTransauralDataLoader(fileName);
    return AsymmetricTransauralDataLoader(fileName);
}

}  // namespace

TransauralSet::TransauralSet(SpeakerPair pair, std::string const& fileName) : data(Load(pair, fileName)) {}

HrtfHeaderInfos const& TransauralSet::GetHrtfHeaderInfos() const {
    return std::visit([](FilterSet const& set) -> HrtfHeaderInfos const& { return set.GetHrtfHeaderInfos(); }, data);
}

std::vector<float> const& TransauralSet::GetNearestCoefficients(CartesianVector const& left,
                                                                CartesianVector const& right) const {
    if (auto const* const symmetric = std::get_if<SymmetricTransauralDataLoader>(&data))
        return symmetric->GetNearestHrtfPoint(left).coefficients;
    return std::get<AsymmetricTransauralDataLoader>(data).GetNearestTransauralPoint(left, right).coefficients;
}

}  // namespace Lume
