#include "decoders/decoder.h"

#include <cmath>
#include <iterator>
#include <map>

#include "decoders/ambisonic/ambisonic_decoder.h"
#include "decoders/ambisonic/hoa2d_decoder.h"
#include "decoders/ambisonic/hoa3d_decoder.h"
#include "decoders/matrix/surround_decoder.h"
#include "decoders/null_decoder.h"
#include "decoders/transaural/transaural_decoder_feedforward_asymmetric.h"
#include "decoders/transaural/transaural_decoder_feedforward_symmetric.h"
#include "decoders/transaural/transaural_decoder_least_squares.h"
#include "decoders/transaural/transaural_decoder_recursive_asymmetric.h"
#include "decoders/transaural/transaural_decoder_recursive_symmetric.h"
#include "decoders/transaural/transaural_decoder_recursive_symmetric_biquads.h"
#include "decoders/transaural/transaural_decoder_shuffler_asymmetric.h"
#include "decoders/transaural/transaural_decoder_shuffler_symmetric.h"
#include "decoders/uhj/bformat2uhj_decoder.h"
#include "decoders/uhj/uhj2bformat_decoder.h"

namespace Lume {

namespace {

std::map<std::string, Decoder::Type> decoderTypeMap;
std::map<std::string, Decoder::SubType> decoderSubTypeMap;

constexpr char const* typeNames[] = {"null",  "transaural", "bformat",     "hoa2d",
                                     "hoa3d", "surround",   "bformat2uhj", "uhj2bformat"};
constexpr char const* subTypeNames[] = {
    "null",
    "shufflersymmetric",
    "shufflerasymmetric",
    "recursiveasymmetric",
    "recursivesymmetric",
    "feedforwardasymmetric",
    "feedforwardsymmetric",
    "leastsquares",
    "recursivesymmetricbiquads",
};

/// Makes a decoder for numbers of channels; what it makes of those that don't suit is its own matter.
using Maker = Decoder* (*)(unsigned int numInputs, unsigned int numOutputs);

/// By type, but for the transaural one.
constexpr Maker makers[] = {
    NullDecoder::Create,         // null
    NullDecoder::Create,         // transaural
    AmbisonicDecoder::Create,    // bformat
    HOA2DDecoder::Create,        // hoa2d
    HOA3DDecoder::Create,        // hoa3d
    CreateSurroundDecoder,       // surround
    Bformat2UHJDecoder::Create,  // bformat2uhj
    UHJ2BformatDecoder::Create,  // uhj2bformat
};

/// The networks of the transaural type. The null one is the symmetric shuffler.
constexpr Maker transauralMakers[] = {
    TransauralDecoderShufflerSymmetric::Create,          // null
    TransauralDecoderShufflerSymmetric::Create,          // shufflersymmetric
    TransauralDecoderShufflerAsymmetric::Create,         // shufflerasymmetric
    TransauralDecoderRecursiveAsymmetric::Create,        // recursiveasymmetric
    TransauralDecoderRecursiveSymmetric::Create,         // recursivesymmetric
    TransauralDecoderFeedforwardAsymmetric::Create,      // feedforwardasymmetric
    TransauralDecoderFeedforwardSymmetric::Create,       // feedforwardsymmetric
    TransauralDecoderLeastSquares::Create,               // leastsquares
    TransauralDecoderRecursiveSymmetricBiquads::Create,  // recursivesymmetricbiquads
};

/// The entry of a value of an enumeration, or a fallback for values from outside of it.
template <typename T, std::size_t N, typename Enumeration>
T EntryOf(T const (&table)[N], Enumeration value, T fallback) {
    const auto index = static_cast<unsigned int>(value);
    return index < N ? table[index] : fallback;
}

bool IsWholeAndNotNegative(float value) {
    return value >= 0.0f && value == std::trunc(value);
}

bool IsBetween2And4(unsigned int count) {
    return count >= 2 && count <= 4;
}

template <typename Map>
std::string JoinKeys(Map const& map, char const* separator) {
    std::string list;
    for (auto const& [name, value] : map) {
        if (!list.empty()) list.append(separator);
        list.append(name);
    }
    return list;
}

template <typename Map>
void CopyKeys(Map const& map, std::vector<std::string>& names) {
    names.clear();
    for (auto const& [name, value] : map) names.push_back(name);
}

}  // namespace

Decoder* Decoder::factory(unsigned int numInputs, unsigned int numOutputs, Type type, SubType subType) {
    const Maker maker = type == transaural ? EntryOf<Maker>(transauralMakers, subType, NullDecoder::Create)
                                           : EntryOf<Maker>(makers, type, NullDecoder::Create);
    return maker(numInputs, numOutputs);
}

Decoder* Decoder::factory(unsigned int numInputs, unsigned int numOutputs, char const* type, char const* subType) {
    return factory(numInputs, numOutputs, GetType(type), GetSubType(subType));
}

bool Decoder::SupportsConfiguration(Type type, unsigned int numInputs, unsigned int numOutputs) {
    switch (type) {
        case transaural:
            return numInputs == 2 && numOutputs == 2;
        case bformat:
        case bformat2uhj:
            return numInputs == 3 || numInputs == 4;
        case hoa2d:
            return numOutputs > 3 && IsWholeAndNotNegative((static_cast<float>(numInputs) - 1.0f) / 2.0f) &&
                   numOutputs >= numInputs;
        case hoa3d:
            // Fewer loudspeakers than channels are allowed here, though not in the plane: this is meant.
            return numOutputs > 3 && IsWholeAndNotNegative(std::sqrt(static_cast<float>(numInputs)) - 1.0f);
        case surround:
            return IsBetween2And4(numInputs) && IsBetween2And4(numOutputs);
        case uhj2bformat:
            return ((numInputs == 2 || numInputs == 3) && numOutputs == 3) ||
                   (numInputs == 4 && (numOutputs == 3 || numOutputs == 4));
        case null:
            break;
    }
    return true;
}

bool Decoder::SupportsConfiguration(char const* type, unsigned int numInputs, unsigned int numOutputs) {
    return SupportsConfiguration(GetType(type), numInputs, numOutputs);
}

Decoder::Type Decoder::GetType(char const* name) {
    initDecoderTypeMap();
    const auto found = decoderTypeMap.find(name);
    return found == decoderTypeMap.end() ? null : found->second;
}

Decoder::SubType Decoder::GetSubType(char const* name) {
    initDecoderTypeMap();
    const auto found = decoderSubTypeMap.find(name);
    return found == decoderSubTypeMap.end() ? nullSubType : found->second;
}

bool Decoder::IsValidDecoderType(char const* name) {
    initDecoderTypeMap();
    return decoderTypeMap.contains(name);
}

char const* Decoder::GetTypeName(Type type) {
    return EntryOf(typeNames, type, typeNames[null]);
}

char const* Decoder::GetSubTypeName(SubType subType) {
    return EntryOf(subTypeNames, subType, subTypeNames[nullSubType]);
}

void Decoder::GetListOfAvailableDecoderType(std::vector<std::string>& names) {
    initDecoderTypeMap();
    CopyKeys(decoderTypeMap, names);
}

void Decoder::GetListOfAvailableDecoderSubType(std::vector<std::string>& names) {
    initDecoderTypeMap();
    CopyKeys(decoderSubTypeMap, names);
}

std::string Decoder::GetListOfAvailableDecoderType(char const* separator) {
    initDecoderTypeMap();
    return JoinKeys(decoderTypeMap, separator);
}

std::string Decoder::GetListOfAvailableDecoderSubType(char const* separator) {
    initDecoderTypeMap();
    return JoinKeys(decoderSubTypeMap, separator);
}

void Decoder::initDecoderTypeMap() {
    for (unsigned int i = 0; i < std::size(typeNames); ++i) decoderTypeMap[typeNames[i]] = static_cast<Type>(i);
    decoderTypeMap["passthrough"] = null;
    decoderTypeMap["bypass"] = null;
    decoderTypeMap["trans"] = transaural;
    decoderTypeMap["hoa2D"] = hoa2d;
    decoderTypeMap["hoa3D"] = hoa3d;
    decoderTypeMap["hoa"] = hoa3d;
    decoderTypeMap["ambisonic"] = hoa3d;

    for (unsigned int i = 0; i < std::size(subTypeNames); ++i)
        decoderSubTypeMap[subTypeNames[i]] = static_cast<SubType>(i);
    decoderSubTypeMap["shufflerSymmetric"] = shufflersymmetric;
    decoderSubTypeMap["shufflerAsymmetric"] = shufflerasymmetric;
    decoderSubTypeMap["recursiveAsymmetric"] = recursiveasymmetric;
    decoderSubTypeMap["recursiveSymmetric"] = recursivesymmetric;
    decoderSubTypeMap["feedforwardAsymmetric"] = feedforwardasymmetric;
    decoderSubTypeMap["feedforwardSymmetric"] = feedforwardsymmetric;
    decoderSubTypeMap["leastSquares"] = leastsquares;
    decoderSubTypeMap["recursiveSymmetricBiquads"] = recursivesymmetricbiquads;
}

void Decoder::initDecoder(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
    numInputs = numberOfInputs;
    numOutputs = numberOfOutputs;
}

}  // namespace Lume
