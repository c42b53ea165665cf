#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "dsp/signal_processing.h"

namespace Lume {

/// What banks share: filters of one kind, one per channel, with as many inputs as outputs.
/// @tparam T  a block of one channel, or a std::unique_ptr to one that can't be moved
template <typename T>
class Bank : public orvandsp::SignalProcessing {
public:
    void SetSamplerate(float newSamplerate) override {
        samplerate = newSamplerate;
        ForEach([newSamplerate](auto& filter) { filter.SetSamplerate(newSamplerate); });
    }
    void SetMaxBlockSize(unsigned int blockSize) override {
        buffersize = blockSize;
        ForEach([blockSize](auto& filter) { filter.SetMaxBlockSize(blockSize); });
    }
    void Clear() override {
        ForEach([](auto& filter) { filter.Clear(); });
    }

protected:
    explicit Bank(unsigned int numChannels) { SetNumChannels(numChannels); }

    /// Grows or shrinks the bank. New channels are as they are made, at the default rate, until they are told more.
    void SetNumChannels(unsigned int numChannels) {
        numInputs = numChannels;
        numOutputs = numChannels;
        filters.resize(numChannels);
    }

    template <typename Operation>
    void ForEach(Operation operation) {
        for (T& filter : filters) operation(Of(filter));
    }

    /// Runs the channels whose input is active, by their number; the output of each other one is cleared and its filter
    /// waits: it goes on from there when the channel is active again.
    template <typename Run>
    void ForActive(float** outputs, unsigned long numSamples, short const* activeInputs, Run run) const {
        for (std::size_t i = 0; i < filters.size(); ++i) {
            if (activeInputs[i] != 0)
                run(i);
            else
                std::fill_n(outputs[i], numSamples, 0.0f);
        }
    }

    std::vector<T> filters;

private:
    template <typename Filter>
    static Filter& Of(Filter& filter) {
        return filter;
    }
    template <typename Filter>
    static Filter& Of(std::unique_ptr<Filter>& filter) {
        return *filter;
    }
};

}  // namespace Lume
