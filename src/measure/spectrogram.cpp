#include "measure/spectrogram.h"

#include <bit>
#include <cmath>
#include <complex>
#include <numbers>

#include "math/fft.h"

namespace orvanmeasure {

double Spectrogram::CentroidHz(std::size_t frame) const {
    double sum = 0.0, weighted = 0.0;
    for (std::size_t bin = 0; bin < numBins; ++bin) {
        const auto value = static_cast<double>(power[frame * numBins + bin]);
        sum += value;
        weighted += value * static_cast<double>(bin);
    }
    return sum > 0.0 ? weighted / sum * binHz : 0.0;
}

Spectrogram MakeSpectrogram(Channels response, double sampleRate, std::size_t begin, std::size_t end) {
    const std::size_t size = std::bit_ceil(static_cast<std::size_t>(sampleRate / 30.0));  // 2048 at 48 kHz
    const std::size_t step = size / 2;
    std::vector<float> window(size);
    const double turn = 2.0 * std::numbers::pi / static_cast<double>(size);
    for (std::size_t i = 0; i < size; ++i)
        window[i] = static_cast<float>(0.5 - 0.5 * std::cos(turn * static_cast<double>(i)));

    Spectrogram result;
    result.frameSeconds = static_cast<double>(step) / sampleRate;
    result.binHz = sampleRate / static_cast<double>(size);
    result.numBins = size / 2 + 1;
    const orvandsp::FFT<float> fft(static_cast<unsigned int>(size), 1.0f, 1.0f, 1.0f, 1.0f);
    std::vector<std::complex<float>> frame(size);
    for (std::size_t middle = begin; middle < end; middle += step) {
        const std::size_t row = result.power.size();
        result.power.resize(row + result.numBins, 0.0f);
        for (std::span<float const> channel : response) {
            for (std::size_t i = 0; i < size; ++i) {
                const std::size_t at = middle + i;  // half a frame too far on
                frame[i] = at >= step && at - step < channel.size() ? window[i] * channel[at - step] : 0.0f;
            }
            fft.process(frame.data(), orvandsp::FFT<float>::forward);
            for (std::size_t bin = 0; bin < result.numBins; ++bin) result.power[row + bin] += std::norm(frame[bin]);
        }
    }
    return result;
}

}  // namespace orvanmeasure
