#include "orvanverb/measure/room_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <span>

#include "orvanverb/common/text.h"
#include "orvanverb/measure/asked_decay.h"
#include "orvanverb/measure/figure_json.h"
#include "orvanverb/measure/room_response.h"

namespace program {

namespace {

using orvanmeasure::BandFigures;
using orvanmeasure::Figure;

/// How far a measured T30 is from the asked one, as a share.
Figure Deviation(Figure const& asked, BandFigures const& band) {
    if (!asked.IsThere()) return asked;
    if (!band.t30.seconds.IsThere()) return band.t30.seconds;
    return Figure::Of(band.t30.seconds.value / asked.value - 1.0);
}

std::string Cell(Figure const& figure, double scale, int decimals) {
    return figure.IsThere() ? FixedText(scale * figure.value, decimals) : "-";
}

}  // namespace

double RoomReport::WorstDeviation() const {
    double worst = 0.0;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        const double centre = measured.bands[i].band.centreHz;
        const Figure deviation = Deviation(asked[i], measured.bands[i]);
        if (centre > 100.0 && centre < 9000.0 && deviation.IsThere())
            worst = std::max(worst, std::abs(deviation.value));
    }
    return worst;
}

std::string RoomReport::Text() const {
    std::string text =
        "The room, measured from the first source over a ring of eight (T30 asked: by its controls):\n"
        "     Hz  T30 asked s  T30 s  off by %  EDT s  C80 dB   D50\n";
    for (std::size_t i = 0; i < asked.size(); ++i) {
        BandFigures const& band = measured.bands[i];
        char line[96];
        std::snprintf(line, sizeof line, "%7s  %11s  %5s  %8s  %5s  %6s  %4s\n", band.band.name.c_str(),
                      Cell(asked[i], 1.0, 2).c_str(), Cell(band.t30.seconds, 1.0, 2).c_str(),
                      Cell(Deviation(asked[i], band), 100.0, 1).c_str(), Cell(band.edt.seconds, 1.0, 2).c_str(),
                      Cell(band.c80Db, 1.0, 1).c_str(), Cell(band.d50, 1.0, 2).c_str());
        text += line;
    }
    return text;
}

std::string RoomReport::Json() const {
    std::string text = "{\"asked_t30\": {";
    for (std::size_t i = 0; i < asked.size(); ++i) {
        text.append(i > 0 ? ", \"" : "\"").append(measured.bands[i].band.name).append("\": ");
        text += asked[i].IsThere() ? FixedText(asked[i].value, 4) : "null";
    }
    return text + "},\n \"measured\": " + FigureJson("room", measured) + "}\n";
}

RoomReport ReportRoom(Lume::OrvanVerb const& engine, Lume::CartesianVector const& position, float sampleRate) {
    const std::unique_ptr<Lume::Room> room = CopyForMeasuring(engine, position);
    const std::vector<orvanmeasure::Band> bands =
        orvanmeasure::Bands(orvanmeasure::BandWidth::octave, static_cast<double>(sampleRate));
    RoomReport report;
    report.asked = AskedDecay(room->Engine(), static_cast<double>(sampleRate), bands);
    double longest = 2.0;  // what an infinite room is looked at
    for (Figure const& figure : report.asked)
        if (figure.IsThere()) longest = std::max(&figure == &report.asked.front() ? 0.0 : longest, figure.value);
    const std::vector<std::vector<float>> response =
        ImpulseResponse(*room, sampleRate, std::min(1.1 * longest + 0.4, 40.0));
    const std::vector<std::span<float const>> channels(response.begin(), response.end());
    report.measured = orvanmeasure::Measure(channels, static_cast<double>(sampleRate), orvanmeasure::BandWidth::octave);
    return report;
}

}  // namespace program
