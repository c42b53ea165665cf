#pragma once

#include <string>
#include <vector>

#include "dsp/filter.h"
#include "pan/pan.h"
#include "parameters/lume_default_parameters.h"

namespace Lume {

class Hrtf;
struct HrtfHeaderInfos;
struct HrtfPoint;

/// Frame of the panners whose two outputs are the ears of a headphone listener.
///
/// Panners without filters to load or to set leave that to the frame, which does nothing and has nothing to tell.
/// It keeps the listener's position, orientation and head radius, turns each source's position into one relative to the
/// listener, and holds the models of the interaural time difference (ITD) that set the delays to the two ears.
/// Everything but processing belongs to the control thread.
class BinauralPanning : public Pan {
public:
    /// Models of the ITD. Every other number counts as measurement, and 7 has an empty name (kept:
    /// quirks.md 25).
    enum ITDType : int {
        basic = 0,        ///< straight lines to two points at the sides of the head
        woodworth = 1,    ///< plane wave around a sphere, in the horizontal plane
        measurement = 2,  ///< the ITD that comes with the measured direction
        larcherjot = 3,   ///< plane wave around a sphere, in all directions
        savioja = 4,      ///< woodworth, shrinking with the elevation
        miller = 5,       ///< spherical wave around a sphere
        none = 6,         ///< no difference
    };
    static constexpr ITDType DefaultItdType = measurement;

    BinauralPanning(unsigned int numInputs, unsigned int numOutputs);

    /// Loads other filters. @return whether the file was taken; if not, everything stays
    virtual bool LoadFromFile(char const* /*path*/) { return false; }
    /// Time over which a source's filters go over to new ones [ms].
    virtual void SetFilterCrossFadeTime(float /*milliseconds*/) {}
    virtual void SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation /*implementation*/) {}
    /// [m]; reaches each source with its next position.
    virtual void SetListenerHeadRadius(float metres) { headRadius = metres; }
    /// The header of the loaded data, or null. It lives until the next LoadFromFile.
    virtual HrtfHeaderInfos const* GetHrtfHeaderInfos() const { return nullptr; }
    /// Computes delays and filters of a source.
    /// @param position  relative to the listener and to where he looks
    /// @param flag      passed on: delays and gains jump instead of gliding, and new filters wait
    virtual void setSourceRelativePosition(unsigned int index, CartesianVector const& position, bool flag) = 0;

    /// "timedomain" or "fftconvolution".
    void SetFIRFiltersImplementationMethod(char const* name);

    /// Stores the position and hands the one relative to the listener to setSourceRelativePosition.
    void SetSourcePosition(unsigned int index, CartesianVector const& position, bool flag) override;
    void SetSourcePositions(CartesianVector const* positions) override;
    /// Does nothing: there are no loudspeakers.
    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    /// New sources have the default position and aren't placed yet.
    void SetNumInputs(unsigned int newNumInputs) override;
    void SetNumOutputs(unsigned int newNumOutputs) override { numOutputs = newNumOutputs; }

    /// Each of these places every source again.
    void SetListenerPosition(CartesianVector const& position);
    /// Turns the listener to the right [degrees].
    void SetListenerYaw(float degrees);
    /// Does nothing for the present type.
    void SetITDType(ITDType type);
    void SetITDType(char const* name) { SetITDType(GetITDType(name)); }

    ITDType GetCurrentITDType() const noexcept { return itdType; }
    void GetCurrentITDType(std::string& name) const { name = GetITDTypeName(itdType); }

    /// Name of a model. Two of the names are none that GetITDType knows ("larchetjot", "none").
    static char const* GetITDTypeName(ITDType type);
    /// The model of a name or one of its synonyms; measurement for an unknown name.
    static ITDType GetITDType(char const* name);
    /// Fills the map of names. GetITDType calls it: control thread only.
    static void initITDTypeMap();

    /// Delays to the two ears by a model [ms]: half the ITD either way from 1 ms, or from half the ITD where that is
    /// more, so that no delay is negative.
    /// @param position    relative to the listener [m]
    /// @param point       the measured direction, for its ITD
    /// @param headRadius  [m]
    static void ComputeMonauralDelays(ITDType type, CartesianVector const& position, HrtfPoint const& point,
                                      float headRadius, float& left, float& right);
    /// The same with the present model and head radius.
    void getMonauralDelays(CartesianVector const& position, HrtfPoint const& point, float& left, float& right) const;
    /// The same, with the measured direction that is nearest. Without data the measured ITD gives delays of 0.
    void getMonauralDelays(CartesianVector const& position, Hrtf* hrtf, float& left, float& right) const;

protected:
    /// Stores the block size and makes room for ProcessOntoSilence.
    void StoreMaxBlockSize(unsigned int blockSize);
    /// Clears both ears, whatever number of outputs SetNumOutputs was told.
    static void Silence(float** outputs, unsigned long numSamples);
    /// Process for any number of inputs: ProcessAdding onto silence, and then into the outputs. These may be inputs,
    /// which are all read before.
    void ProcessOntoSilence(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs);

    std::vector<CartesianVector> relativePositions;  // one per input, relative to the listener after yaw
    CartesianVector listenerPosition;
    float listenerYaw = 0.0f;  // [rad]
    ITDType itdType = DefaultItdType;
    float headRadius = LumeDefaultParameters::DefaultHeadRadius;  // [m]

private:
    std::vector<float> sums;  // of the two ears, one after the other
};

}  // namespace Lume
