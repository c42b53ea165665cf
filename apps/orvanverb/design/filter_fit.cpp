#include "orvanverb/design/filter_fit.h"

#include <numeric>
#include <utility>

namespace program {

namespace {

using Signals = std::vector<std::vector<double>>;

double Dot(Signals const& a, Signals const& b) {
    double sum = 0.0;
    for (std::size_t f = 0; f < a.size(); ++f) sum = std::inner_product(a[f].begin(), a[f].end(), b[f].begin(), sum);
    return sum;
}

/// a += factor b
void Add(Signals& a, double factor, Signals const& b) {
    for (std::size_t f = 0; f < a.size(); ++f)
        for (std::size_t n = 0; n < a[f].size(); ++n) a[f][n] += factor * b[f][n];
}

/// The normal equations.
class Equations {
public:
    Equations(orvandsp::RealTransform const& newTransform, FilterWish const& wish, std::size_t newLength)
        : transform(newTransform), length(newLength), numFilters(wish.ways[0].size()) {
        for (std::size_t f = 0; f < numFilters; ++f)
            for (std::size_t g = 0; g < numFilters; ++g) {
                orvandsp::Spectrum& product = products.emplace_back(transform.NumBins(), f == g ? wish.effort : 0.0);
                for (std::size_t e = 0; e < wish.ways.size(); ++e)
                    for (std::size_t k = 0; k < product.size(); ++k)
                        product[k] += wish.weights[e][k] * std::conj(wish.ways[e][f][k]) * wish.ways[e][g][k];
            }
    }

    Signals RightSide(FilterWish const& wish) const {
        Signals side;
        for (std::size_t f = 0; f < numFilters; ++f) {
            orvandsp::Spectrum sum(transform.NumBins());
            for (std::size_t e = 0; e < wish.ways.size(); ++e)
                for (std::size_t k = 0; k < sum.size(); ++k)
                    sum[k] += wish.weights[e][k] * std::conj(wish.ways[e][f][k]) * wish.wanted[e][k];
            side.push_back(Cut(sum));
        }
        return side;
    }

    Signals Apply(Signals const& filters) const {
        std::vector<orvandsp::Spectrum> spectra;
        for (std::vector<double> const& filter : filters) spectra.push_back(transform.Forward(filter));
        Signals result;
        for (std::size_t f = 0; f < numFilters; ++f) {
            orvandsp::Spectrum sum(transform.NumBins());
            for (std::size_t g = 0; g < numFilters; ++g) {
                orvandsp::Spectrum const& product = products[f * numFilters + g];
                for (std::size_t k = 0; k < sum.size(); ++k) sum[k] += product[k] * spectra[g][k];
            }
            result.push_back(Cut(sum));
        }
        return result;
    }

private:
    std::vector<double> Cut(orvandsp::Spectrum const& spectrum) const {
        std::vector<double> signal = transform.Inverse(spectrum);
        signal.resize(length);
        return signal;
    }

    orvandsp::RealTransform const& transform;
    std::size_t length, numFilters;
    std::vector<orvandsp::Spectrum> products;  // of the ways, weighted and summed over the signals; filters x filters
};

}  // namespace

std::vector<std::vector<double>> FitFilters(orvandsp::RealTransform const& transform, FilterWish const& wish,
                                            std::size_t length) {
    constexpr int numSteps = 40;      // more change the crosstalk that is left by parts of a decibel
    constexpr double enough = 1e-20;  // of the first residual's power
    const Equations equations(transform, wish, length);
    Signals residual = equations.RightSide(wish);
    Signals direction = residual, filters(residual.size(), std::vector<double>(length, 0.0));
    double power = Dot(residual, residual);
    const double firstPower = power;
    for (int step = 0; step < numSteps && power > enough * firstPower; ++step) {
        const Signals applied = equations.Apply(direction);
        const double distance = power / Dot(direction, applied);
        Add(filters, distance, direction);
        Add(residual, -distance, applied);
        const double before = std::exchange(power, Dot(residual, residual));
        for (std::vector<double>& signal : direction)
            for (double& sample : signal) sample *= power / before;
        Add(direction, 1.0, residual);
    }
    return filters;
}

}  // namespace program
