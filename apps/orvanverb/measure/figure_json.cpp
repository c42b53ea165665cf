#include "orvanverb/measure/figure_json.h"

#include <cmath>
#include <vector>

#include "orvanverb/common/json.h"
#include "orvanverb/common/text.h"
#include "orvanverb/measure/figure_columns.h"

namespace program {

namespace {

using orvanmeasure::BandFigures;
using orvanmeasure::Figure;
using orvanmeasure::RoomMeasurement;

std::string Number(double value) {
    return std::isfinite(value) ? NumberText(static_cast<float>(value)) : "null";
}

std::string Number(Figure const& figure) {
    return figure.IsThere() ? Number(figure.value) : "null";
}

std::string Series(std::vector<float> const& values, int decimals) {
    std::string text = "[";
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) text += ',';
        text += std::isfinite(values[i]) ? FixedText(static_cast<double>(values[i]), decimals) : "null";
    }
    return text + "]";
}

std::string BandJson(BandFigures const& band, std::size_t numChannels) {
    std::string text = "{\"band\": " + JsonString(band.band.name), missing, inexact;
    if (!band.band.IsWhole()) text += ", \"centre_hz\": " + Number(band.band.centreHz);
    for (FigureColumn const& column : FigureColumns()) {
        if (column.needsEars && numChannels != 2) continue;
        const Figure figure = column.get(band);
        text += ", " + JsonString(column.key) + ": " + Number(figure);
        const auto note = [&](std::string& notes, std::string const& why) {
            if (!why.empty()) notes += (notes.empty() ? "" : ", ") + JsonString(column.key) + ": " + JsonString(why);
        };
        note(missing, WhyMissing(figure, band, column.lowerDb));
        note(inexact, column.whyInexact(band));
    }
    text += ", \"noise_found\": " + std::string(band.floor.found ? "true" : "false");
    if (!band.band.IsWhole()) text += ", \"shortest_decay\": " + Number(orvanmeasure::ShortestDecay(band.band));
    return text + ", \"missing\": {" + missing + "}, \"inexact\": {" + inexact +
           "}, \"curve_db\": " + Series(band.curve, 2) + "}";
}

std::string PairJson(orvanmeasure::ChannelPair const& pair) {
    return "{\"channels\": [" + std::to_string(pair.first + 1) + ", " + std::to_string(pair.second + 1) +
           "], \"correlation\": " + Number(pair.correlation) + "}";
}

}  // namespace

std::string FigureJson(std::string const& name, RoomMeasurement const& measured) {
    std::string text = "{\"file\": " + JsonString(name) + ", \"channels\": " + std::to_string(measured.numChannels) +
                       ", \"rate_hz\": " + Number(measured.sampleRate) +
                       ", \"seconds\": " + Number(static_cast<double>(measured.length) / measured.sampleRate);
    if (!measured.direct) return text + ", \"silent\": true}";
    text += ", \"silent\": false,\n \"direct\": {\"seconds\": " +
            Number(static_cast<double>(measured.direct->sample) / measured.sampleRate) +
            ", \"to_rest_db\": " + Number(measured.direct->directToRestDb) + "},\n \"bands\": [";
    for (BandFigures const& band : measured.bands) text += "\n  " + BandJson(band, measured.numChannels) + ",";
    text += "\n  " + BandJson(measured.whole, measured.numChannels) +
            "],\n \"curve_step_seconds\": " + Number(orvanmeasure::curveStepSeconds) +
            ",\n \"t30_mid\": " + Number(measured.Mid(&BandFigures::t30)) +
            ",\n \"echo_density\": {\"nearly_mixed_seconds\": " + Number(measured.density.nearlyMixed) +
            ", \"mixing_seconds\": " + Number(measured.density.mixingTime) +
            ", \"step_seconds\": " + Number(measured.density.stepSeconds) +
            ", \"values\": " + Series(measured.density.values, 3) + "},\n \"neighbours\": [";
    for (std::size_t i = 0; i < measured.neighbours.size(); ++i)
        text += (i > 0 ? ", " : "") + PairJson(measured.neighbours[i]);
    text += "],\n \"most_alike\": " + (measured.mostAlike ? PairJson(*measured.mostAlike) : "null");
    return text + ",\n \"centroid\": {\"step_seconds\": " + Number(measured.centroidStepSeconds) +
           ", \"hz\": " + Series(measured.centroidHz, 0) + "}}";
}

}  // namespace program
