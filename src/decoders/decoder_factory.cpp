#include "decoders/decoder_factory.h"

#include <cmath>
#include <map>

#include "decoders/ambisonic/ambisonic_decoder.h"
#include "decoders/ambisonic/hoa2d_decoder.h"
#include "decoders/ambisonic/hoa3d_decoder.h"
#include "decoders/matrix/matrix_decoders.h"
#include "decoders/null_decoder.h"
#include "decoders/transaural/transaural_decoder_feedforward.h"
#include "decoders/transaural/transaural_decoder_least_squares.h"
#include "decoders/transaural/transaural_decoder_recursive.h"
#include "decoders/transaural/transaural_decoder_recursive_symmetric_biquads.h"
#include "decoders/transaural/transaural_decoder_shuffler.h"
#include "decoders/uhj/bformat2uhj_decoder.h"
#include "decoders/uhj/uhj2bformat_decoder.h"

namespace Lume {

namespace {

std::map<std::string, Decoder::Type> decoderTypeMap;
std::map<std::string, Decoder::SubType> decoderSubTypeMap;

bool SupportsAll(unsigned int /*numInputs*/, unsigned int /*numOutputs*/) {
    return true;
}

bool SupportsTransaural(unsigned int numInputs, unsigned int numOutputs) {
    return numInputs == 2 && numOutputs == 2;
}

bool SupportsBformat(unsigned int numInputs, unsigned int /*numOutputs*/) {
    return numInputs == 3 || numInputs == 4;
}

bool IsWholeAndNotNegative(float value) {
    return value >= 0.0f && value == std::trunc(value);
}

bool SupportsHoa2d(unsigned int numInputs, unsigned int numOutputs) {
    return numOutputs > 3 && IsWholeAndNotNegative((static_cast<float>(numInputs) - 1.0f) / 2.0f) &&
           numOutputs >= numInputs;
}

/// Fewer loudspeakers than channels are allowed here, though not in the plane (kept: quirks.md 26).
bool SupportsHoa3d(unsigned int numInputs, unsigned int numOutputs) {
    return numOutputs > 3 && IsWholeAndNotNegative(std::sqrt(static_cast<float>(numInputs)) - 1.0f);
}

bool SupportsSurround(unsigned int numInputs, unsigned int numOutputs) {
    return numInputs >= 2 && numInputs <= 4 && numOutputs >= 2 && numOutputs <= 4;
}

bool SupportsUhj(unsigned int numInputs, unsigned int numOutputs) {
    return ((numInputs == 2 || numInputs == 3) && numOutputs == 3) ||
           (numInputs == 4 && (numOutputs == 3 || numOutputs == 4));
}

using Outputs = DecoderKind::Outputs;

// clang-format off
constexpr DecoderKind kinds[] = {
    {Decoder::null, {"null", "passthrough", "bypass"}, NullDecoder::Create, SupportsAll,
     Outputs::channels, "any"},
    {Decoder::transaural, {"transaural", "trans"}, TransauralDecoderShufflerSymmetric::Create, SupportsTransaural,
     Outputs::loudspeakers, "2 channels to 2 loudspeakers"},
    {Decoder::bformat, {"bformat"}, AmbisonicDecoder::Create, SupportsBformat,
     Outputs::loudspeakers, "3, 4 or 5 channels to loudspeakers"},
    {Decoder::hoa2d, {"hoa2d", "hoa2D"}, HOA2DDecoder::Create, SupportsHoa2d,
     Outputs::loudspeakers, "3, 5, 7 ... channels to at least as many loudspeakers, and at least 4"},
    {Decoder::hoa3d, {"hoa3d", "hoa3D", "hoa", "ambisonic"}, HOA3DDecoder::Create, SupportsHoa3d,
     Outputs::loudspeakers, "4, 9, 16 ... channels to at least 4 loudspeakers"},
    {Decoder::surround, {"surround"}, CreateSurroundDecoder, SupportsSurround,
     Outputs::channels, "2 to 3 or 4, 3 to 2 or 4, and 4 to 2 or 3 channels"},
    {Decoder::bformat2uhj, {"bformat2uhj"}, Bformat2UHJDecoder::Create, SupportsBformat,
     Outputs::channels, "3 to 2 or 3, and 4 to 2, 3 or 4 channels"},
    {Decoder::uhj2bformat, {"uhj2bformat"}, UHJ2BformatDecoder::Create, SupportsUhj,
     Outputs::channels, "2 to 3, 3 to 3, and 4 to 3 or 4 channels"},
};

constexpr TransauralNetwork networks[] = {
    {Decoder::nullSubType, {"null"},
     TransauralDecoderShufflerSymmetric::Create, hrtfBinauralToTransauralShufflerSymmetric},
    {Decoder::shufflersymmetric, {"shufflersymmetric", "shufflerSymmetric"},
     TransauralDecoderShufflerSymmetric::Create, hrtfBinauralToTransauralShufflerSymmetric},
    {Decoder::shufflerasymmetric, {"shufflerasymmetric", "shufflerAsymmetric"},
     TransauralDecoderShufflerAsymmetric::Create, hrtfBinauralToTransauralShufflerAsymmetric},
    {Decoder::recursiveasymmetric, {"recursiveasymmetric", "recursiveAsymmetric"},
     TransauralDecoderRecursiveAsymmetric::Create, hrtfBinauralToTransauralRecursiveAsymmetric},
    {Decoder::recursivesymmetric, {"recursivesymmetric", "recursiveSymmetric"},
     TransauralDecoderRecursiveSymmetric::Create, hrtfBinauralToTransauralRecursiveSymmetric},
    {Decoder::feedforwardasymmetric, {"feedforwardasymmetric", "feedforwardAsymmetric"},
     TransauralDecoderFeedforwardAsymmetric::Create, hrtfBinauralToTransauralFeedForwardAsymmetric},
    {Decoder::feedforwardsymmetric, {"feedforwardsymmetric", "feedforwardSymmetric"},
     TransauralDecoderFeedforwardSymmetric::Create, hrtfBinauralToTransauralFeedForwardSymmetric},
    {Decoder::leastsquares, {"leastsquares", "leastSquares"},
     TransauralDecoderLeastSquares::Create, hrtfBinauralToTransauralLeastSquares},
    {Decoder::recursivesymmetricbiquads, {"recursivesymmetricbiquads", "recursiveSymmetricBiquads"},
     TransauralDecoderRecursiveSymmetricBiquads::Create, hrtfBinaural},
};
// clang-format on

/// The row of a value, or that of null for values from outside the enumeration.
template <typename Row, std::size_t N, typename Enumeration>
Row const& RowOf(Row const (&rows)[N], Enumeration value) {
    const auto index = static_cast<unsigned int>(value);
    return rows[index < N ? index : 0];
}

template <typename Value>
Value Find(std::map<std::string, Value> const& map, char const* name) {
    Decoder::initDecoderTypeMap();
    const auto found = map.find(name);
    return found == map.end() ? Value{} : found->second;
}

template <typename Map>
void CopyKeys(Map const& map, std::vector<std::string>& names) {
    Decoder::initDecoderTypeMap();
    names.clear();
    for (auto const& [name, value] : map) names.push_back(name);
}

template <typename Map>
std::string JoinKeys(Map const& map, char const* separator) {
    std::vector<std::string> names;
    CopyKeys(map, names);
    std::string list;
    for (std::string const& name : names) list.append(list.empty() ? "" : separator).append(name);
    return list;
}

}  // namespace

std::span<DecoderKind const> DecoderKinds() {
    return kinds;
}

std::span<TransauralNetwork const> TransauralNetworks() {
    return networks;
}

std::unique_ptr<Decoder> MakeDecoder(Decoder::Type type, Decoder::SubType subType, unsigned int numInputs,
                                     unsigned int numOutputs) {
    if (!Decoder::SupportsConfiguration(type, numInputs, numOutputs)) return nullptr;
    std::unique_ptr<Decoder> made(Decoder::factory(numInputs, numOutputs, type, subType));
    if (dynamic_cast<NullDecoder const*>(made.get()) != nullptr) made.reset();
    return made;
}

Decoder* Decoder::factory(unsigned int numInputs, unsigned int numOutputs, Type type, SubType subType) {
    if (type != transaural) return RowOf(kinds, type).create(numInputs, numOutputs);
    if (static_cast<unsigned int>(subType) >= std::size(networks)) return NullDecoder::Create(numInputs, numOutputs);
    return networks[subType].create(numInputs, numOutputs);
}

Decoder* Decoder::factory(unsigned int numInputs, unsigned int numOutputs, char const* type, char const* subType) {
    return factory(numInputs, numOutputs, GetType(type), GetSubType(subType));
}

bool Decoder::SupportsConfiguration(Type type, unsigned int numInputs, unsigned int numOutputs) {
    return RowOf(kinds, type).supports(numInputs, numOutputs);
}

bool Decoder::SupportsConfiguration(char const* type, unsigned int numInputs, unsigned int numOutputs) {
    return SupportsConfiguration(GetType(type), numInputs, numOutputs);
}

Decoder::Type Decoder::GetType(char const* name) {
    return Find(decoderTypeMap, name);
}

Decoder::SubType Decoder::GetSubType(char const* name) {
    return Find(decoderSubTypeMap, name);
}

bool Decoder::IsValidDecoderType(char const* name) {
    initDecoderTypeMap();
    return decoderTypeMap.contains(name);
}

char const* Decoder::GetTypeName(Type type) {
    return RowOf(kinds, type).names[0];
}

char const* Decoder::GetSubTypeName(SubType subType) {
    return RowOf(networks, subType).names[0];
}

void Decoder::GetListOfAvailableDecoderType(std::vector<std::string>& names) {
    CopyKeys(decoderTypeMap, names);
}

void Decoder::GetListOfAvailableDecoderSubType(std::vector<std::string>& names) {
    CopyKeys(decoderSubTypeMap, names);
}

std::string Decoder::GetListOfAvailableDecoderType(char const* separator) {
    return JoinKeys(decoderTypeMap, separator);
}

std::string Decoder::GetListOfAvailableDecoderSubType(char const* separator) {
    return JoinKeys(decoderSubTypeMap, separator);
}

void Decoder::initDecoderTypeMap() {
    for (DecoderKind const& kind : kinds)
        for (char const* const* name = kind.names; *name != nullptr; ++name) decoderTypeMap[*name] = kind.type;
    for (TransauralNetwork const& network : networks)
        for (char const* const* name = network.names; *name != nullptr; ++name)
            decoderSubTypeMap[*name] = network.subType;
}

}  // namespace Lume
