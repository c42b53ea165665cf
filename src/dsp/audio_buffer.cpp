#include "dsp/audio_buffer.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <sstream>
#include <utility>

#include "dsp/console.h"
#include "kernels/kernels.h"

namespace orvandsp {

namespace {

/// Samples that a copy between two offsets may move.
std::size_t CommonLength(AudioBuffer const& dst, unsigned int dstOffset, AudioBuffer const& src,
                         unsigned int srcOffset) {
    const std::int64_t inDst = std::int64_t{dst.GetNumSamples()} - dstOffset;
    const std::int64_t inSrc = std::int64_t{src.GetNumSamples()} - srcOffset;
    return static_cast<std::size_t>(std::max(std::int64_t{0}, std::min(inDst, inSrc)));
}

/// Growth of a gain per sample, so that the last of length samples meets g1.
float RampStep(float g0, float g1, std::size_t length) {
    return length < 2 ? 0.0f : (g1 - g0) / static_cast<float>(length - 1);
}

}  // namespace

AudioBuffer::AudioBuffer(unsigned int newNumChannels, unsigned int newNumSamples)
    : numChannels(newNumChannels), numSamples(newNumSamples), ownsData(1) {
    Allocate();
}

AudioBuffer::AudioBuffer(float** foreignChannels, unsigned int newNumChannels, unsigned int newNumSamples,
                         unsigned int offset)
    : numChannels(newNumChannels), numSamples(newNumSamples) {
    for (unsigned int i = 0; i < numChannels; ++i) channels[i] = foreignChannels[i] + offset;
}

AudioBuffer::AudioBuffer(AudioBuffer const& other)
    : numChannels(other.numChannels), numSamples(other.numSamples), ownsData(other.ownsData) {
    if (ownsData != 0) {
        Allocate();
        CopySamples(other);
    } else {
        std::copy_n(other.channels, numChannels, channels);
    }
}

AudioBuffer& AudioBuffer::operator=(AudioBuffer const& other) {
    if (this == &other) return *this;
    std::unique_ptr<CacheLine[]> old;  // other may be a view on it, so that it outlives the copy
    if (ownsData == 0 || numChannels != other.numChannels || numSamples != other.numSamples) {
        ownsData = 1;
        numChannels = other.numChannels;
        numSamples = other.numSamples;
        old = std::move(data);
        capacity = 0;
        Allocate();
    }
    CopySamples(other);
    return *this;
}

void AudioBuffer::Resize(unsigned int newNumChannels, unsigned int newNumSamples) {
    if (newNumChannels == numChannels && newNumSamples == numSamples && ownsData != 0) return;
    numChannels = newNumChannels;
    numSamples = newNumSamples;
    Allocate();
}

void AudioBuffer::Allocate() {
    // Never 0 samples: the meters read the first sample of an empty channel.
    const std::size_t needed = std::max(std::size_t{1}, std::size_t{numChannels} * numSamples);
    if (needed > capacity) {
        capacity = 0;
        data.reset();  // before the new allocation, so that the two never coexist
        data = std::make_unique_for_overwrite<CacheLine[]>((needed + CacheLine::length - 1) / CacheLine::length);
        capacity = needed;
    }
    auto* const samples = reinterpret_cast<float*>(data.get());
    for (std::size_t i = 0; i < MaxNumChannels; ++i) channels[i] = i < numChannels ? samples + i * numSamples : nullptr;
}

void AudioBuffer::CopySamples(AudioBuffer const& other) {
    for (unsigned int i = 0; i < numChannels; ++i) std::copy_n(other.channels[i], numSamples, channels[i]);
}

void AudioBuffer::Clear() {
    for (unsigned int i = 0; i < numChannels; ++i) std::memset(channels[i], 0, numSamples * sizeof(float));
}

void AudioBuffer::Impulse(unsigned int channel) {
    FillChannel(channel, 0.0f);
    if (numSamples > 0) channels[channel][0] = 1.0f;
}

void AudioBuffer::FillChannelWithNoise(unsigned int channel) {
    constexpr double twoByRandMax = 9.313225746154785e-10;  // of a rand() that returns 31 bits
    for (std::size_t i = 0; i < numSamples; ++i)
        channels[channel][i] = static_cast<float>(std::rand() * twoByRandMax - 1.0);
}

void AudioBuffer::ApplyGain(unsigned int channel, float gain) {
    if (gain == 1.0f) return;
    if (gain == 0.0f) {
        FillChannel(channel, 0.0f);
        return;
    }
    kernels::Get().scale(&channels[channel], &channels[channel], &gain, 1, numSamples);
}

void AudioBuffer::ApplyGains(float const* gains) {
    float* scaled[MaxNumChannels];
    float by[MaxNumChannels];
    unsigned int numScaled = 0;
    for (unsigned int i = 0; i < numChannels; ++i) {
        if (gains[i] == 0.0f) FillChannel(i, 0.0f);
        if (gains[i] == 0.0f || gains[i] == 1.0f) continue;
        scaled[numScaled] = channels[i];
        by[numScaled++] = gains[i];
    }
    kernels::Get().scale(scaled, scaled, by, numScaled, numSamples);
}

void AudioBuffer::ApplyRamp(unsigned int channel, float g0, float g1) {
    if (g0 == g1) {
        ApplyGain(channel, g0);
        return;
    }
    float* const samples = channels[channel];
    const float step = RampStep(g0, g1, numSamples);
    float gain = g0;
    for (std::size_t i = 0; i < numSamples; ++i, gain += step) samples[i] *= gain;
}

void AudioBuffer::CopyFrom(unsigned int dstChannel, unsigned int dstOffset, AudioBuffer const& src,
                           unsigned int srcChannel, unsigned int srcOffset, float gain) {
    const std::size_t length = CommonLength(*this, dstOffset, src, srcOffset);
    if (length == 0) return;
    float* const out = channels[dstChannel] + dstOffset;
    float const* const in = src.channels[srcChannel] + srcOffset;
    if (gain == 1.0f) {
        std::memmove(out, in, length * sizeof(float));  // the two may be one array
        return;
    }
    kernels::Get().scale(&out, &in, &gain, 1, length);
}

void AudioBuffer::CopyFrom(AudioBuffer const& src, float gain) {
    if (gain == 1.0f) {
        for (unsigned int i = 0; i < numChannels; ++i) CopyFrom(i, 0, src, i, 0, gain);
        return;
    }
    float gains[MaxNumChannels];
    std::fill_n(gains, numChannels, gain);
    kernels::Get().scale(channels, src.channels, gains, numChannels, std::min(numSamples, src.numSamples));
}

void AudioBuffer::AddFrom(unsigned int dstChannel, unsigned int dstOffset, AudioBuffer const& src,
                          unsigned int srcChannel, unsigned int srcOffset, float gain) {
    const std::size_t length = CommonLength(*this, dstOffset, src, srcOffset);
    if (length == 0) return;
    float* const out = channels[dstChannel] + dstOffset;
    float const* const in = src.channels[srcChannel] + srcOffset;
    kernels::Get().addScaled(&out, &in, gain, 1, length);
}

void AudioBuffer::AddFrom(AudioBuffer const& src, float gain) {
    kernels::Get().addScaled(channels, src.channels, gain, numChannels, std::min(numSamples, src.numSamples));
}

void AudioBuffer::CopyFromWithRamp(unsigned int dstChannel, unsigned int dstOffset, AudioBuffer const& src,
                                   unsigned int srcChannel, unsigned int srcOffset, float g0, float g1) {
    if (g0 == g1) {
        CopyFrom(dstChannel, dstOffset, src, srcChannel, srcOffset, g0);
        return;
    }
    const std::size_t length = CommonLength(*this, dstOffset, src, srcOffset);
    if (length == 0) return;
    float* const out = channels[dstChannel] + dstOffset;
    float const* const in = src.channels[srcChannel] + srcOffset;
    const float step = RampStep(g0, g1, length);
    float gain = g0;
    for (std::size_t i = 0; i < length; ++i, gain += step) out[i] = gain * in[i];
}

void AudioBuffer::AddFromWithRamp(unsigned int dstChannel, unsigned int dstOffset, AudioBuffer const& src,
                                  unsigned int srcChannel, unsigned int srcOffset, float g0, float g1) {
    if (g0 == g1) {
        AddFrom(dstChannel, dstOffset, src, srcChannel, srcOffset, g0);
        return;
    }
    const std::size_t length = CommonLength(*this, dstOffset, src, srcOffset);
    if (length == 0) return;
    float* const out = channels[dstChannel] + dstOffset;
    float const* const in = src.channels[srcChannel] + srcOffset;
    const float step = RampStep(g0, g1, length);
    float gain = g0;
    for (std::size_t i = 0; i < length; ++i, gain += step) out[i] += gain * in[i];
}

void AudioBuffer::MergeFrom(AudioBuffer const& src, float gain) {
    if (numChannels == 0) return;
    for (unsigned int i = 0; i < src.numChannels; ++i) {
        const unsigned int d = i % numChannels;
        if (i < numChannels)
            CopyFrom(d, 0, src, i, 0, gain);
        else
            AddFrom(d, 0, src, i, 0, gain);
    }
}

void Merge(AudioBuffer& dst, AudioBuffer const& src, float gain) {
    const unsigned int numSources = src.GetNumChannels();
    const unsigned int numTargets = dst.GetNumChannels();
    const unsigned int smaller = std::min(numSources, numTargets);
    if (smaller == 0) return;
    for (unsigned int i = 0; i < std::max(numSources, numTargets); ++i) {
        const unsigned int s = i % numSources;
        const unsigned int d = i % numTargets;
        if (i < smaller)
            dst.CopyFrom(d, 0, src, s, 0, gain);
        else
            dst.AddFrom(d, 0, src, s, 0, gain);
    }
}

void AudioBuffer::Permute(unsigned int const* order) {
    float* old[MaxNumChannels];
    std::copy_n(channels, numChannels, old);
    for (unsigned int i = 0; i < numChannels; ++i) channels[i] = old[order[i]];
}

float AudioBuffer::GetPeakValue() const {
    float peak = 0.0f;
    for (unsigned int i = 0; i < numChannels; ++i) peak = std::max(peak, GetPeakValue(i));
    return peak;
}

float AudioBuffer::GetPeakValue(unsigned int channel) const {
    return GetChannelPeakValue(*this, channel);
}

bool AudioBuffer::CheckSaturation() const {
    for (unsigned int i = 0; i < numChannels; ++i)
        if (!CheckSaturation(i)) return false;
    return true;
}

bool AudioBuffer::CheckSaturation(unsigned int channel) const {
    float const* const samples = channels[channel];
    return std::none_of(samples, samples + numSamples, [](float sample) { return std::abs(sample) > 1.0f; });
}

float GetChannelPeakValue(AudioBuffer const& buffer, unsigned int channel) {
    float const* const samples = buffer.GetChannel(channel);
    float peak = std::abs(samples[0]);
    for (std::size_t i = 1; i < buffer.GetNumSamples(); ++i) peak = std::max(peak, std::abs(samples[i]));
    return peak;
}

float GetChannelEnergy(AudioBuffer const& buffer, unsigned int channel) {
    float const* const samples = buffer.GetChannel(channel);
    float energy = 0.0f;
    for (std::size_t i = 0; i < buffer.GetNumSamples(); ++i) energy += samples[i] * samples[i];
    return energy;
}

float GetChannelRMS(AudioBuffer const& buffer, unsigned int channel) {
    return std::sqrt(GetChannelEnergy(buffer, channel) / static_cast<float>(buffer.GetNumSamples()));
}

bool IsEqual(AudioBuffer const& a, unsigned int channelA, AudioBuffer const& b, unsigned int channelB,
             float tolerance) {
    if (a.GetNumSamples() != b.GetNumSamples()) return false;
    for (std::size_t i = 0; i < a.GetNumSamples(); ++i) {
        const float difference = std::abs(a.GetChannel(channelA)[i] - b.GetChannel(channelB)[i]);
        if (difference > tolerance) {
            std::ostringstream text;
            text << "sample " << i << " differ (difference=" << difference << ")";
            WriteToConsole(Console::output, text.str());
            return false;
        }
    }
    return true;
}

bool IsEqual(AudioBuffer const& a, AudioBuffer const& b, float tolerance) {
    if (a.GetNumChannels() != b.GetNumChannels()) return false;
    for (unsigned int i = 0; i < a.GetNumChannels(); ++i)
        if (!IsEqual(a, i, b, i, tolerance)) return false;
    return true;
}

std::ostream& operator<<(std::ostream& stream, AudioBuffer const& buffer) {
    for (unsigned int channel = 0; channel < buffer.GetNumChannels(); ++channel)
        for (std::size_t i = 0; i < buffer.GetNumSamples(); ++i)
            stream << "buffer[" << channel << "][" << i << "] = " << buffer.GetChannel(channel)[i] << '\n';
    return stream;
}

}  // namespace orvandsp
