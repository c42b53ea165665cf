#pragma once

#include <algorithm>
#include <cstdint>
#include <iosfwd>
#include <memory>

#include "dsp/constants.h"

namespace orvandsp {

/// A block of audio: up to 64 channels of equal length, non-interleaved, in single precision.
///
/// It either owns its samples (one allocation behind all channels) or is a view on channel arrays that somebody else
/// owns. A view costs no heap, so that a block can use whole-buffer operations on foreign arrays in the audio path.
///
/// Channel numbers and offsets are the caller's responsibility: nothing is tested. Lengths come from the buffers. All
/// operations but construction, copies and Resize to a larger shape are real-time safe.
class AudioBuffer {
public:
    /// Owning buffer. The samples are undefined until they are cleared or written.
    /// @param numChannels  0 to MaxNumChannels
    AudioBuffer(unsigned int numChannels, unsigned int numSamples);

    /// View: channel i begins at channels[i] + offset. Nothing is allocated.
    AudioBuffer(float** channels, unsigned int numChannels, unsigned int numSamples, unsigned int offset);

    /// A deep copy of an owning buffer; another view on the same memory of a view.
    AudioBuffer(AudioBuffer const& other);

    /// Makes this buffer an owning one that holds other's samples. What this was a view on stays as it is.
    AudioBuffer& operator=(AudioBuffer const& other);

    virtual ~AudioBuffer() = default;

    /// Gives an owning buffer another shape; the same shape changes nothing. Otherwise the samples are undefined after
    /// it, and the memory is reused if it suffices. Not for views.
    void Resize(unsigned int newNumChannels, unsigned int newNumSamples);

    unsigned int GetNumChannels() const noexcept { return numChannels; }
    unsigned int GetNumSamples() const noexcept { return numSamples; }
    bool OwnsData() const noexcept { return ownsData != 0; }
    float* GetChannel(unsigned int channel) noexcept { return channels[channel]; }
    float const* GetChannel(unsigned int channel) const noexcept { return channels[channel]; }
    /// One start address per channel, as Process of every block wants it.
    float** GetChannels() noexcept { return channels; }
    float const* const* GetChannels() const noexcept { return channels; }

    void Clear();
    void Fill(float value) {
        for (unsigned int i = 0; i < numChannels; ++i) FillChannel(i, value);
    }
    void FillChannel(unsigned int channel, float value) { std::fill_n(channels[channel], numSamples, value); }
    /// Clears and sets the first sample to 1.
    void Impulse() {
        for (unsigned int i = 0; i < numChannels; ++i) Impulse(i);
    }
    void Impulse(unsigned int channel);
    /// White noise between -1 and 1 from the C library's rand().
    void FillWithNoise() {
        for (unsigned int i = 0; i < numChannels; ++i) FillChannelWithNoise(i);
    }
    void FillChannelWithNoise(unsigned int channel);

    /// A gain of exactly 1 does nothing, one of exactly 0 clears, whatever the samples hold.
    void ApplyGain(float gain) {
        for (unsigned int i = 0; i < numChannels; ++i) ApplyGain(i, gain);
    }
    void ApplyGain(unsigned int channel, float gain);
    /// The same with a gain for each channel.
    void ApplyGains(float const* gains);
    /// A gain that runs linearly from g0 at the first sample to g1 at the last one.
    void ApplyRamp(float g0, float g1) {
        for (unsigned int i = 0; i < numChannels; ++i) ApplyRamp(i, g0, g1);
    }
    void ApplyRamp(unsigned int channel, float g0, float g1);

    /// Copies gain * src over the shorter of the two lengths that remain behind the offsets [samples].
    void CopyFrom(unsigned int dstChannel, unsigned int dstOffset, AudioBuffer const& src, unsigned int srcChannel,
                  unsigned int srcOffset, float gain);
    /// Copies to each channel of this buffer from the channel of src with the same number.
    void CopyFrom(AudioBuffer const& src, float gain);
    /// Adds gain * src, over the same length as CopyFrom.
    void AddFrom(unsigned int dstChannel, unsigned int dstOffset, AudioBuffer const& src, unsigned int srcChannel,
                 unsigned int srcOffset, float gain);
    void AddFrom(AudioBuffer const& src, float gain);
    /// As CopyFrom, with a gain that runs linearly from g0 to g1 over the copied samples.
    void CopyFromWithRamp(unsigned int dstChannel, unsigned int dstOffset, AudioBuffer const& src,
                          unsigned int srcChannel, unsigned int srcOffset, float g0, float g1);
    void AddFromWithRamp(unsigned int dstChannel, unsigned int dstOffset, AudioBuffer const& src,
                         unsigned int srcChannel, unsigned int srcOffset, float g0, float g1);
    /// Mixes the channels of src, scaled by gain, into this buffer: source channel i goes to channel i modulo the
    /// number of channels. The first round overwrites, later ones add. Channels that src doesn't reach stay.
    void MergeFrom(AudioBuffer const& src, float gain);

    /// Reorders the channels: the new channel i is the old channel order[i]. No sample moves.
    void Permute(unsigned int const* order);

    /// The largest absolute sample. At least one sample of a channel is read, also when its length is 0.
    float GetPeakValue() const;
    float GetPeakValue(unsigned int channel) const;
    /// Whether no absolute sample is above 1.
    bool CheckSaturation() const;
    bool CheckSaturation(unsigned int channel) const;

private:
    /// Memory begins where a line of the cache does, so that loads of whole registers never touch two of them.
    struct CacheLine {
        static constexpr std::size_t length = 16;
        alignas(64) float samples[length];
    };
    void Allocate();
    void CopySamples(AudioBuffer const& other);

    std::uint32_t numChannels = 0;
    std::uint32_t numSamples = 0;
    int ownsData = 0;
    float* channels[MaxNumChannels];  // of a view undefined behind its channels: it is made in each block
    std::unique_ptr<CacheLine[]> data;
    std::size_t capacity = 0;  // samples behind data
};

/// Mixes any number of channels into any other number by wrapping around on the smaller side. The first pass over the
/// smaller side overwrites, later ones add: of one channel into two, the second is added to what it held.
void Merge(AudioBuffer& dst, AudioBuffer const& src, float gain);

float GetChannelPeakValue(AudioBuffer const& buffer, unsigned int channel);
/// The sum of the squares.
float GetChannelEnergy(AudioBuffer const& buffer, unsigned int channel);
float GetChannelRMS(AudioBuffer const& buffer, unsigned int channel);

/// Whether two channels have one length and no two samples differ by more than the tolerance. The first pair that does
/// is reported on standard output.
bool IsEqual(AudioBuffer const& a, unsigned int channelA, AudioBuffer const& b, unsigned int channelB, float tolerance);
bool IsEqual(AudioBuffer const& a, AudioBuffer const& b, float tolerance);

/// Writes a line "buffer[CHANNEL][INDEX] = VALUE" per sample.
std::ostream& operator<<(std::ostream& stream, AudioBuffer const& buffer);

}  // namespace orvandsp
