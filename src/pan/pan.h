#pragma once

#include <string>
#include <vector>

#include "dsp/signal_processing.h"
#include "geometry/cartesian_vector.h"

namespace Lume {

/// Frame of every panner: N source signals and their positions in, M loudspeaker feeds (or two binaural channels) out.
/// What kinds there are stands in pan_factory.h.
///
/// Positions are in the listener's frame (CartesianVector), in metres. Setters of positions belong to the control
/// thread and may overlap Process; SetNumInputs, SetNumOutputs and what may allocate must not.
class Pan : public orvandsp::SignalProcessing {
public:
    /// The panning methods. Any other value counts as null.
    enum Type : int {
        binaural = 0,
        xy = 1,
        ms = 2,
        ab = 3,
        surround = 4,
        panr = 5,
        angular = 6,
        vbap2d = 7,
        vbap = 8,
        dbap = 9,
        dbap3d = 10,
        bformat = 11,
        hoa2d = 12,
        hoa3d = 13,
        vdbap = 14,
        null = 15
    };

    /// The roles of a panner. The last four belong to the binaural method.
    enum SubType : int {
        direct = 0,
        early = 1,
        diffuse = 2,
        nearfield = 3,
        sphericalharmonics = 4,
        sphericalheadmodel = 5,
        snowmanmodel = 6
    };

    /// Makes the panner of a method and a role; the caller owns it. A method that can't serve the number of outputs,
    /// and a construction that fails, both give a NullPanning: never null, never an exception. Control thread only.
    static Pan* factory(unsigned int numInputs, unsigned int numOutputs, Type type, SubType subType);
    /// The same by names. An unknown type counts as null, an unknown role as direct.
    static Pan* factory(unsigned int numInputs, unsigned int numOutputs, char const* type, char const* subType);

    /// "null" for every value that is no method.
    static char const* GetTypeName(Type type);
    /// The method of a name or one of its synonyms, null for an unknown name.
    static Type GetType(char const* name);
    /// Whether the name is that of a method. "null" is listed as a method, and yet not valid as one (kept:
    /// quirks.md 17).
    static bool IsValidPanType(char const* name);

    /// Whether a method suits a number of outputs. Stricter than factory for the distance-based methods (from 3 outputs
    /// on, while one output is built), laxer for hoa3d, as order 0 is no panner (kept: quirks.md 16).
    static bool SupportsConfiguration(Type type, unsigned int numOutputs);
    static bool SupportsConfiguration(char const* name, unsigned int numOutputs);

    /// The 16 names in the order of their values.
    static void GetListOfAvailablePanType(std::vector<std::string>& names);
    static std::string GetListOfAvailablePanType(char const* separator);

    /// Fills the maps of names. Each function that takes a name calls it: control thread only.
    static void initPanTypeMap();

    /// Adds to what the outputs hold; otherwise as Process, which leaves every output fully defined. Real-time safe.
    /// @param activeInputs  one flag per input; an input whose flag is 0 isn't read
    virtual void ProcessAdding(float** outputs, float** inputs, unsigned long numSamples,
                               short const* activeInputs) = 0;

    /// Stores the position of a source and computes what the panner needs for it.
    /// @param index  below GetNumInputs(); not checked
    /// @param flag   for the binaural panners: delays and gains jump instead of gliding, and new filters wait for a
    /// call without it
    virtual void SetSourcePosition(unsigned int index, CartesianVector const& position, bool flag) = 0;

    /// Sets the positions of all sources. @param positions  one per input
    virtual void SetSourcePositions(CartesianVector const* positions) = 0;

    /// Sets the loudspeakers, and places every source again. @param positions  one per output
    virtual void SetLoudspeakerPositions(CartesianVector const* positions) = 0;

    virtual void SetNumInputs(unsigned int newNumInputs) = 0;
    virtual void SetNumOutputs(unsigned int newNumOutputs) = 0;

    /// Sets the time over which a change of gains or delays is spread [ms].
    virtual void SetInterpolationTime(float milliseconds) = 0;

    /// Places every source again at its stored position.
    void forceUpdate(bool flag) {
        for (unsigned int i = 0; i < numInputs; ++i) SetSourcePosition(i, sourcePositions[i], flag);
    }

protected:
    std::vector<CartesianVector> sourcePositions;  // one per input, sized by the subclass
};

}  // namespace Lume
