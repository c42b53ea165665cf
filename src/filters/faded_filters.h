#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "dsp/signal_processing.h"
#include "kernels/kernels.h"

namespace orvandsp {

/// The gains of a stretch of a fade, which move by one addition a sample.
struct FadeGains {
    static constexpr unsigned long maxLength = 64;
    struct Fade {
        float gainA, gainB, incrementA, incrementB;
        bool operator==(Fade const&) const = default;
    };

    /// Computes the gains, unless they are there from the last call.
    void Compute(Fade const& fade, unsigned long count) {
        if (begin == fade && length == count) return;
        begin = end = fade;
        length = count;
        for (unsigned long k = 0; k < count; ++k) {
            a[k] = end.gainA;
            b[k] = end.gainB;
            end.gainA += fade.incrementA;
            end.gainB += fade.incrementB;
        }
    }

    unsigned long length = 0;
    Fade begin = {}, end = {};
    float a[maxLength];  // undefined behind length
    float b[maxLength];
};

/// Two filters of one kind with a crossfade on each change of coefficients, since a filter whose taps jump while sound
/// runs clicks. One channel.
///
/// One filter runs. A new set of coefficients waits until the next block, is loaded into the idle filter, and both run
/// on the same input while the output goes over from one to the other, linearly: correlated signals keep their level. A
/// fade is never interrupted or reversed: a set that comes meanwhile waits for its end, and of several only the last is
/// heard.
///
/// SetCoefficients only copies and sets flags; the filters are touched on the audio thread alone, at a block's start.
///
/// @tparam T  a filter with SetCoefficients(float*), SetState(T const&), which makes its audio memory ready for a fade
///            that starts from the other's, Process(float*, float*, unsigned long), Clear() and SetSamplerate(float).
///            It may have SetMaxBlockSize(unsigned int); GetNumCoefficients() const, without which a derived class must
///            size newCoefficients; and `bool NeedsWholeBlocks() const`: true says that it cannot be run on a part of a
///            block.
template <typename T>
class FadedFilters : public SignalProcessing {
public:
    /// Crossfade time of a new object [ms].
    static constexpr float DefaultCrossFadeTime = 5.0f;

    FadedFilters() : bufferA(buffersize), bufferB(buffersize) {
        if constexpr (requires { filterA.GetNumCoefficients(); }) newCoefficients.resize(filterA.GetNumCoefficients());
    }

    /// Hands in the next set of coefficients; it replaces one that still waits.
    /// @param set       as many as one set of T has
    /// @param holdBack  keeps it waiting until a call without hold
    void SetCoefficients(float const* set, bool holdBack) {
        std::copy_n(set, newCoefficients.size(), newCoefficients.begin());
        updatePending = true;
        hold = holdBack;
    }

    /// The coefficients that are heard, or faded in, as T::GetCoefficients has them.
    /// @param result  at least GetNumCoefficients() long
    void GetCoefficients(std::vector<float>& result) const { Incoming().GetCoefficients(result); }
    unsigned int GetNumCoefficients() const { return Incoming().GetNumCoefficients(); }

    /// Length of the fades [ms]; one that runs is not changed. 0 goes over within one sample.
    void SetCrossFadeTime(float ms) { crossFadeTime = ms; }

    /// Filters one block of channel 0; without an active input the output stays as it is. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override {
        if (activeInputs[0] != 0) ProcessBlock(outputs[0], inputs[0], numSamples, false);
    }

    /// Filters one block; output may be input. Real-time safe while the block length is steady.
    /// @param add  adds the result to the output instead of replacing it
    void ProcessBlock(float* output, float* input, unsigned long numSamples, bool add) {
        PrepareBlock(numSamples);
        FadeGains gains;
        if (!IsFading()) {
            RunAlone(output, input, numSamples, add);
        } else if (EndsWithin(numSamples) && !NeedsWholeBlocks()) {
            const auto numFaded = static_cast<unsigned long>(remaining);
            RunBoth(input, numFaded);
            MixFade(output, numFaded, add, gains);
            RunAlone(output + numFaded, input + numFaded, numSamples - numFaded, add);
        } else {
            RunBoth(input, numSamples);
            MixFade(output, numSamples, add, gains);
        }
    }

    /// ProcessBlock in two parts, between which a bank runs the filters of many channels at once.
    ///
    /// The first part starts a waiting fade and names what is to be filtered: one job outside a fade, two in it.
    /// @param jobs  orvandsp::Batch of jobs that are made of a filter, an output and an input
    template <typename Jobs>
    void BeginBlock(float* output, float* input, unsigned long numSamples, Jobs& jobs) {
        if (T* const only = FindOnly()) {
            jobs.Add({only, output, input});
            return;
        }
        PrepareBlock(numSamples);
        if (IsFading()) {
            jobs.Add({&filterA, bufferA.data(), input});
            jobs.Add({&filterB, bufferB.data(), input});
        } else {
            jobs.Add({&Incoming(), output, input});
        }
    }

    /// The second part mixes the two if a fade runs. In the block in which it ends the old filter has run too far;
    /// nothing comes of that, as its next fade begins with SetState.
    /// @param gains  kept by the bank: channels that fade alike compute them once
    void FinishBlock(float* output, unsigned long numSamples, FadeGains& gains) {
        if (IsFading()) MixFade(output, numSamples, false, gains);
    }

    /// The filter that runs or is being faded in.
    T& Incoming() noexcept { return fadeState == aRuns || fadeState == fromBToA ? filterA : filterB; }
    T const& Incoming() const noexcept { return fadeState == aRuns || fadeState == fromBToA ? filterA : filterB; }

    /// A fade for a kernel that runs both filters itself and mixes them.
    struct Fade {
        T* outgoing;
        float* gain;  // of the incoming one
        float* outgoingGain;
        float step, outgoingStep;
        int remaining;
    };
    /// The fade that runs, if one does.
    std::optional<Fade> FindFade() noexcept {
        if (!IsFading()) return std::nullopt;
        if (fadeState == fromAToB) return Fade{&filterA, &gainB, &gainA, incrementB, incrementA, remaining};
        return Fade{&filterB, &gainA, &gainB, incrementA, incrementB, remaining};
    }
    /// Counts a block as run. What FindFade gave holds beyond it.
    void FinishBlock(unsigned long numSamples) {
        if (IsFading()) CountDown(std::min(static_cast<unsigned long>(remaining), numSamples));
    }

    /// The filter that runs, if neither a fade runs nor a set waits.
    T* FindOnly() noexcept { return IsFading() || updatePending ? nullptr : &Incoming(); }

    /// Starts the fade to a waiting set, if there is one that isn't held and no fade runs. ProcessBlock does so itself;
    /// for users who choose the moment.
    void update() {
        if (!updatePending || hold) return;
        if (fadeState == aRuns) {
            StartFade(filterB, filterA);
            gainA = 1.0f;
            gainB = 0.0f;
            incrementA = -1.0f / static_cast<float>(remaining);
            incrementB = 1.0f / static_cast<float>(remaining);
            fadeState = fromAToB;
        } else if (fadeState == bRuns) {
            StartFade(filterA, filterB);
            gainA = 0.0f;
            gainB = 1.0f;
            incrementA = 1.0f / static_cast<float>(remaining);
            incrementB = -1.0f / static_cast<float>(remaining);
            fadeState = fromBToA;
        }
    }

    void SetSamplerate(float newSamplerate) override {
        samplerate = newSamplerate;
        filterA.SetSamplerate(newSamplerate);
        filterB.SetSamplerate(newSamplerate);
    }

    void SetMaxBlockSize(unsigned int blockSize) override {
        buffersize = blockSize;
        bufferA.resize(blockSize);
        bufferB.resize(blockSize);
        if constexpr (requires { filterA.SetMaxBlockSize(blockSize); }) {
            filterA.SetMaxBlockSize(blockSize);
            filterB.SetMaxBlockSize(blockSize);
        }
    }

    /// Clears both filters. A fade goes on.
    void Clear() override {
        filterA.Clear();
        filterB.Clear();
    }

protected:
    enum FadeState : int { aRuns = 0, bRuns = 1, fromAToB = 2, fromBToA = 3 };

    /// Gives both filters another order, and sets of coefficients the length that goes with it.
    template <typename Change>
    void ChangeOrder(Change change) {
        change(filterA);
        change(filterB);
        newCoefficients.resize(filterA.GetNumCoefficients());
    }

    T filterA;
    T filterB;
    std::vector<float> newCoefficients;  // as long as one set of T; a class that changes its order sizes it anew

private:
    /// Makes room for the block and starts a fade if a set waits.
    void PrepareBlock(unsigned long numSamples) {
        if (bufferA.size() != numSamples) bufferA.resize(numSamples);
        if (bufferB.size() != numSamples) bufferB.resize(numSamples);
        update();
    }

    bool IsFading() const noexcept { return remaining >= 1; }

    /// Mixes a block, of which bufferA and bufferB hold what the two filters made, and moves the fade on. What lies
    /// behind the end of the fade is the new filter's alone.
    void MixFade(float* output, unsigned long numSamples, bool add, FadeGains& gains) {
        const unsigned long numFaded = std::min(static_cast<unsigned long>(remaining), numSamples);
        if (add)
            AddMix(output, numFaded);
        else
            Mix(output, numFaded, gains);
        CountDown(numFaded);
        if (remaining > 0) return;
        if (add)
            Add(output + numFaded, IncomingBuffer().data() + numFaded, numSamples - numFaded);
        else
            std::copy_n(IncomingBuffer().data() + numFaded, numSamples - numFaded, output + numFaded);
    }

    void CountDown(unsigned long numFaded) {
        remaining -= static_cast<int>(numFaded);
        if (remaining <= 0) fadeState = fadeState == fromAToB ? bRuns : aRuns;
    }

    void StartFade(T& idle, T& running) {
        idle.SetCoefficients(newCoefficients.data());
        idle.SetState(running);
        updatePending = false;
        remaining = FadeLength();
    }

    /// At least 1, and small enough for a whole number.
    int FadeLength() const {
        constexpr float maxLength = 1e9f;
        const float length = samplerate * crossFadeTime * 0.001f;
        return length > 0.0f ? static_cast<int>(std::min(length, maxLength)) + 1 : 1;
    }

    void RunAlone(float* output, float* input, unsigned long numSamples, bool add) {
        T& filter = Incoming();
        if (!add) {
            filter.Process(output, input, numSamples);
            return;
        }
        std::vector<float>& buffer = IncomingBuffer();
        filter.Process(buffer.data(), input, numSamples);
        Add(output, buffer.data(), numSamples);
    }

    void RunBoth(float* input, unsigned long numSamples) {
        filterA.Process(bufferA.data(), input, numSamples);
        filterB.Process(bufferB.data(), input, numSamples);
    }

    void Mix(float* output, unsigned long numSamples, FadeGains& gains) {
        for (unsigned long done = 0; done < numSamples;) {
            const unsigned long count = std::min(numSamples - done, FadeGains::maxLength);
            gains.Compute({gainA, gainB, incrementA, incrementB}, count);
            kernels::Get().fade(output + done, bufferA.data() + done, bufferB.data() + done, gains.a, gains.b, count);
            gainA = gains.end.gainA;
            gainB = gains.end.gainB;
            done += count;
        }
    }

    /// Adds a block's mix: B's part to the sum of the output and A's. Another order gives other bits.
    void AddMix(float* output, unsigned long numSamples) {
        // Local copies: the output might alias the members, for all that the compiler knows.
        float const* const a = bufferA.data();
        float const* const b = bufferB.data();
        float runningA = gainA;
        float runningB = gainB;
        const float stepA = incrementA;
        const float stepB = incrementB;
        for (unsigned long k = 0; k < numSamples; ++k) {
            output[k] = runningB * b[k] + (output[k] + runningA * a[k]);
            runningA += stepA;
            runningB += stepB;
        }
        gainA = runningA;
        gainB = runningB;
    }

    bool EndsWithin(unsigned long numSamples) const noexcept {
        return static_cast<unsigned long>(remaining) <= numSamples;
    }

    static void Add(float* output, float const* buffer, unsigned long numSamples) {
        for (unsigned long k = 0; k < numSamples; ++k) output[k] += buffer[k];
    }

    bool NeedsWholeBlocks() const {
        if constexpr (requires(T const& filter) { filter.NeedsWholeBlocks(); })
            return filterA.NeedsWholeBlocks();
        else
            return false;
    }

    std::vector<float>& IncomingBuffer() noexcept { return &Incoming() == &filterA ? bufferA : bufferB; }

    std::vector<float> bufferA;  // what the filters make of a block while a fade runs
    std::vector<float> bufferB;
    float gainA = 1.0f;
    float gainB = 0.0f;
    float incrementA = 0.0f;                     // per sample
    float incrementB = 0.0f;                     // per sample
    float crossFadeTime = DefaultCrossFadeTime;  // [ms]
    int remaining = 0;                           // samples left of the fade; below 1: none runs
    int fadeState = aRuns;
    bool updatePending = false;  // a new set waits
    bool hold = false;           // and goes on waiting
};

}  // namespace orvandsp
