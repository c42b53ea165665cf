#include "orvanverb/measure/plot.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>

#include "measure/reflections.h"
#include "measure/spectrogram.h"
#include "orvanverb/common/gnuplot.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"

namespace program {

namespace {

using orvanmeasure::BandFigures;
using orvanmeasure::RoomMeasurement;

// From dark violet to green, in steps that differ in lightness, too: bands stay apart for every kind of colour vision.
constexpr char const* bandColours[] = {"#440154", "#472d7b", "#3b528b", "#2c728e", "#21918c",
                                       "#28ae80", "#5ec962", "#9bd93c", "#c8c020"};
constexpr char const* ink = "#333333";
constexpr char const* mark = "#d55e00";  // vermilion, apart from the blues and greens for every kind of colour vision

constexpr char const* style =
    "set border 3 lc rgb '#666666' lw 0.8\nset tics nomirror out textcolor rgb '#333333'\n"
    "set grid back lt 1 lc rgb '#e4e4e4' lw 1\nset key off\nset title offset 0,-0.4\n"
    "set lmargin 9\nset rmargin 5\nset tmargin 3\nset bmargin 4\n";

/// Bands to draw: octaves, or those thirds that bear an octave's name.
std::vector<BandFigures const*> DrawnBands(RoomMeasurement const& measured) {
    const std::vector<orvanmeasure::Band> octaves =
        orvanmeasure::Bands(orvanmeasure::BandWidth::octave, measured.sampleRate);
    std::vector<BandFigures const*> drawn;
    for (BandFigures const& band : measured.bands)
        if (std::any_of(octaves.begin(), octaves.end(), [&](auto& octave) { return octave.name == band.band.name; }))
            drawn.push_back(&band);
    return drawn;
}

std::string KiloName(std::string const& name) {
    return name.size() > 3 && name.ends_with("000") ? name.substr(0, name.size() - 3) + " kHz" : name + " Hz";
}

void DrawDecays(std::ostream& out, RoomMeasurement const& measured) {
    const std::vector<BandFigures const*> bands = DrawnBands(measured);
    double longest = 0.1;
    for (std::size_t i = 0; i < bands.size(); ++i) {
        BandFigures const& band = *bands[i];
        out << "$decay" << i << " << EOD\n";
        const std::size_t step = std::max<std::size_t>(1, band.curve.size() / 600);
        double shown = 0.0;
        for (std::size_t n = 0; n < band.curve.size(); n += step) {
            if (band.curve[n] < -70.0f) break;
            shown = static_cast<double>(n) * orvanmeasure::curveStepSeconds;
            out << shown << ' ' << band.curve[n] << '\n';
        }
        out << "EOD\n";
        longest = std::max(longest, shown);
    }
    out << "set title 'Decay: energy still to come, and the lines of T30'\nset xlabel 's behind the direct sound'\n"
        << "set ylabel 'dB'\nset xrange [0:" << longest << "]\nset yrange [-65:2]\nset ytics 10\n"
        << "set key right top samplen 1.5 spacing 1.1 textcolor rgb '" << ink << "'\nplot ";
    for (std::size_t i = 0; i < bands.size(); ++i) {
        BandFigures const& band = *bands[i];
        char const* const colour = bandColours[i % std::size(bandColours)];
        const bool known = band.t30.seconds.IsThere();
        out << (i > 0 ? ", " : "") << "$decay" << i << " with lines lw 2 lc rgb '" << colour << "' title '"
            << KiloName(band.band.name) << (known ? "  " + FixedText(band.t30.seconds.value, 2) + " s" : "") << "'";
        if (!known) continue;
        const double slope = -60.0 / band.t30.seconds.value, start = band.t30.startDb;
        out << ", [" << (-5.0 - start) / slope << ':' << (-35.0 - start) / slope << "] " << start << '+' << slope
            << "*x with lines dt (6,4) lw 1.2 lc rgb '#000000' notitle";
    }
    out << "\nset key off\nunset yrange\n";
}

/// Where a reflection is loudest; nothing for the only channel.
std::string ChannelName(std::size_t channel, std::size_t numChannels) {
    if (numChannels == 1) return "";
    if (numChannels == 2) return channel == 0 ? " left" : " right";
    return " ch " + std::to_string(channel + 1);
}

void DrawEchoes(std::ostream& out, ResponseFile const& response, RoomMeasurement const& measured) {
    const auto channels = response.Spans();
    constexpr double shownSeconds = 0.15;
    const orvanmeasure::Echogram echoes =
        orvanmeasure::MakeEchogram(channels, measured.sampleRate, measured.direct->sample, shownSeconds);
    out << "$echoes << EOD\n";
    for (std::size_t i = 0; i < echoes.levels.size(); ++i)
        out << 1000.0 * (echoes.startSeconds + static_cast<double>(i) * echoes.stepSeconds) << ' '
            << std::max(echoes.levels[i], -60.0f) << '\n';
    out << "EOD\n$marks << EOD\n";
    double namesDb = -60.0;  // all at one height, above the points
    for (orvanmeasure::Reflection const& reflection : echoes.reflections)
        namesDb = std::max(namesDb, reflection.levelDb + 1.5);
    constexpr double legible = 6.5;  // [ms] from one text to the next
    double written = -legible;
    for (std::size_t i = 0; i < echoes.reflections.size(); ++i) {
        const double milliseconds = 1000.0 * echoes.reflections[i].seconds;
        const bool named = milliseconds >= written + legible;
        if (named) written = milliseconds;
        out << milliseconds << ' ' << echoes.reflections[i].levelDb << " \""
            << (named ? FixedText(milliseconds, 1) + ChannelName(echoes.reflections[i].channel, channels.size()) : "")
            << "\" " << namesDb << '\n';
    }
    out << "EOD\nset title 'First echoes: energy of 0.25 ms; reflections by ms and channel'\n"
        << "set xlabel 'ms behind the direct sound'\nset ylabel 'dB'\nset xrange [-3:" << 1000.0 * shownSeconds
        << "]\nset yrange [-60:20]\nset ytics -60,10,0\nset label 1 'direct' at -2,17 left textcolor rgb '" << ink
        << "' font ',9'\nplot $echoes using 1:(-60):(0):($2+60) with vectors nohead lw 2 lc rgb '#3b528b'";
    if (!echoes.reflections.empty())
        out << ", $marks using 1:2 with points pt 7 ps 0.6 lc rgb '" << mark
            << "', $marks using 1:4:3 with labels rotate by 60 left font ',9' textcolor rgb '" << mark << "'";
    out << "\nunset label 1\nset ytics autofreq\n";
}

/// Power on a grid of time and of frequency in sixths of an octave, relative to the greatest [dB].
void DrawSpectrogram(std::ostream& out, ResponseFile const& response, RoomMeasurement const& measured) {
    constexpr double lowestHz = 50.0, rowsPerOctave = 6.0, shownDb = 80.0;
    constexpr std::size_t mostColumns = 300;
    const std::size_t begin = measured.direct->sample;
    const orvanmeasure::Spectrogram spectrogram = orvanmeasure::MakeSpectrogram(
        response.Spans(), measured.sampleRate, begin, begin + measured.whole.floor.crosspoint);
    const auto rows = static_cast<std::size_t>(rowsPerOctave * std::log2(0.5 * measured.sampleRate / lowestHz));
    const std::size_t step = spectrogram.NumFrames() / mostColumns + 1;
    std::vector<double> grid;
    double greatest = 0.0;
    for (std::size_t frame = 0; frame < spectrogram.NumFrames(); frame += step)
        for (std::size_t row = 0; row < rows; ++row) {
            const auto hertzAt = [&](double r) { return lowestHz * std::exp2(r / rowsPerOctave); };
            const auto low = static_cast<std::size_t>(hertzAt(static_cast<double>(row)) / spectrogram.binHz);
            const auto high = static_cast<std::size_t>(hertzAt(static_cast<double>(row) + 1.0) / spectrogram.binHz);
            double sum = 0.0;
            for (std::size_t bin = low; bin <= high && bin < spectrogram.numBins; ++bin)
                sum += static_cast<double>(spectrogram.power[frame * spectrogram.numBins + bin]);
            grid.push_back(sum / static_cast<double>(high - low + 1));  // as dense a colour for white noise everywhere
            greatest = std::max(greatest, grid.back());
        }
    out << "$grid << EOD\n";
    for (std::size_t i = 0; i < grid.size(); ++i) {
        const std::size_t frame = i / rows * step;
        out << static_cast<double>(frame) * spectrogram.frameSeconds << ' ' << static_cast<double>(i % rows) + 0.5
            << ' ' << std::max(-shownDb, 10.0 * std::log10(grid[i] / greatest + 1e-20)) << '\n';
    }
    out << "EOD\nset title 'Spectrum over time, dB'\nset xlabel 's behind the direct sound'\nset ylabel 'Hz'\n"
        << "set xrange [0:" << static_cast<double>(spectrogram.NumFrames()) * spectrogram.frameSeconds
        << "]\nset yrange [0:" << rows << "]\nset cbrange [" << -shownDb << ":0]\n"
        << "set rmargin 12\nset palette defined (0 '#00224e', 1 '#2a3f6d', 2 '#575d6d', 3 '#7d7c78', 4 '#a59c74', "
           "5 '#d2c060', 6 '#fee838')\nunset grid\nset ytics (";
    bool first = true;
    for (const double hertz : {63.0, 125.0, 250.0, 500.0, 1000.0, 2000.0, 4000.0, 8000.0, 16000.0}) {
        if (hertz > 0.5 * measured.sampleRate) break;
        out << (first ? "" : ", ") << '"'
            << (hertz >= 1000.0 ? FixedText(hertz / 1000.0, 0) + "k" : FixedText(hertz, 0)) << "\" "
            << rowsPerOctave * std::log2(hertz / lowestHz);
        first = false;
    }
    out << ")\nplot $grid using 1:2:3 with image\nset ytics autofreq\nset grid\nset rmargin 5\n";
}

void DrawDensity(std::ostream& out, RoomMeasurement const& measured) {
    orvanmeasure::EchoDensity const& density = measured.density;
    const orvanmeasure::Figure mixing = density.mixingTime;
    const double shown = std::max(0.2, mixing.IsThere() ? 1.6 * mixing.value : 1.0);
    out << "$density << EOD\n";
    for (std::size_t i = 0; i < density.values.size(); ++i) {
        const double seconds = static_cast<double>(i) * density.stepSeconds;
        if (seconds > shown) break;
        out << 1000.0 * seconds << ' ' << density.values[i] << '\n';
    }
    out << "EOD\nset title 'Echo density: 0 single echoes, 1 as smooth as noise'\n"
        << "set xlabel 'ms behind the direct sound'\nset ylabel 'density'\nset xrange [0:" << 1000.0 * shown
        << "]\nset yrange [0:1.3]\nset ytics 0.2\n";
    if (mixing.IsThere())
        out << "set arrow 1 from " << 1000.0 * mixing.value << ",0 to " << 1000.0 * mixing.value
            << ",1 nohead dt (4,4) lc rgb '" << mark << "'\nset label 1 'mixing time "
            << FixedText(1000.0 * mixing.value, 0) << " ms' at " << 1000.0 * mixing.value
            << ",0.06 right offset -0.5,0 textcolor rgb '" << mark << "'\n";
    out << "plot 1 with lines lw 1 lc rgb '#999999', $density with lines lw 2 lc rgb '#3b528b'\n"
        << "unset arrow 1\nunset label 1\n";
}

}  // namespace

void DrawResponse(std::string const& path, ResponseFile const& response, RoomMeasurement const& measured) {
    if (!measured.direct) throw WorkError(response.path + ": is silent, there is nothing to draw");
    std::ostringstream out;
    out.imbue(std::locale::classic());
    const std::string name = std::filesystem::path(response.path).filename().string();
    out << style << "set multiplot layout 2,2 title \"" << PlotText(name) << "\" font ',14' textcolor rgb '" << ink
        << "'\n";
    DrawDecays(out, measured);
    DrawEchoes(out, response, measured);
    DrawSpectrogram(out, response, measured);
    DrawDensity(out, measured);
    out << "unset multiplot\n";
    DrawPicture(path, 1300, 900, out.str());
}

}  // namespace program
