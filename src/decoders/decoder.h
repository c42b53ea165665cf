#pragma once

#include <string>
#include <vector>

#include "dsp/signal_processing.h"
#include "geometry/cartesian_vector.h"

namespace Lume {

/// Frame of every decoder: turns one multi-channel format into another (binaural, B-format and higher-order ambisonics
/// into loudspeaker feeds, and the matrix formats among themselves). What kinds there are stands in decoder_factory.h.
///
/// Set-up and names belong to the control thread; Process is real-time safe. Where the numbers of channels allow it,
/// the output arrays may be the input arrays.
class Decoder : public orvandsp::SignalProcessing {
public:
    /// The formats. Any other value counts as null.
    enum Type : int {
        null = 0,  ///< channels as they are
        transaural = 1,
        bformat = 2,
        hoa2d = 3,
        hoa3d = 4,
        surround = 5,
        bformat2uhj = 6,
        uhj2bformat = 7
    };

    /// The networks of the transaural type.
    enum SubType : int {
        nullSubType = 0,  ///< the default network, the symmetric shuffler
        shufflersymmetric = 1,
        shufflerasymmetric = 2,
        recursiveasymmetric = 3,
        recursivesymmetric = 4,
        feedforwardasymmetric = 5,
        feedforwardsymmetric = 6,
        leastsquares = 7,
        recursivesymmetricbiquads = 8
    };

    /// Makes a decoder; the caller owns it. What can't be made is a NullDecoder, or null where the decoder's Create
    /// gives null for the numbers of channels: ask SupportsConfiguration first. Control thread only.
    static Decoder* factory(unsigned int numInputs, unsigned int numOutputs, Type type, SubType subType);
    /// The same by names; an unknown one counts as null.
    static Decoder* factory(unsigned int numInputs, unsigned int numOutputs, char const* type, char const* subType);

    static bool SupportsConfiguration(Type type, unsigned int numInputs, unsigned int numOutputs);
    /// True also for a name that is none: it counts as null, which always works.
    static bool SupportsConfiguration(char const* type, unsigned int numInputs, unsigned int numOutputs);

    /// The value of a name or one of its synonyms; null for an unknown one.
    static Type GetType(char const* name);
    static SubType GetSubType(char const* name);
    static bool IsValidDecoderType(char const* name);
    /// "null" for every value that is none.
    static char const* GetTypeName(Type type);
    static char const* GetSubTypeName(SubType subType);

    /// All names and synonyms, in alphabetical order.
    static void GetListOfAvailableDecoderType(std::vector<std::string>& names);
    static void GetListOfAvailableDecoderSubType(std::vector<std::string>& names);
    static std::string GetListOfAvailableDecoderType(char const* separator);
    static std::string GetListOfAvailableDecoderSubType(char const* separator);

    /// Fills the maps of names. Each function that takes a name calls it: control thread only.
    static void initDecoderTypeMap();

    /// Sets the loudspeakers. @param positions  one per output
    virtual void SetLoudspeakerPositions(CartesianVector const* positions) = 0;

protected:
    void initDecoder(unsigned int numberOfInputs, unsigned int numberOfOutputs) {
        numInputs = numberOfInputs;
        numOutputs = numberOfOutputs;
    }
};

}  // namespace Lume
