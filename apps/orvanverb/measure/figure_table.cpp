#include "orvanverb/measure/figure_table.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "orvanverb/common/text.h"
#include "orvanverb/measure/figure_columns.h"

namespace program {

namespace {

using orvanmeasure::BandFigures;
using orvanmeasure::ChannelPair;
using orvanmeasure::Figure;
using orvanmeasure::RoomMeasurement;

constexpr std::size_t nameWidth = 7, columnWidth = 8;

std::string Right(std::string const& text, std::size_t width) {
    return std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

std::vector<BandFigures const*> Rows(RoomMeasurement const& measured) {
    std::vector<BandFigures const*> rows;
    for (BandFigures const& band : measured.bands) rows.push_back(&band);
    rows.push_back(&measured.whole);
    return rows;
}

std::vector<FigureColumn const*> Columns(RoomMeasurement const& measured) {
    std::vector<FigureColumn const*> some;
    for (FigureColumn const& column : FigureColumns())
        if (!column.needsEars || measured.numChannels == 2) some.push_back(&column);
    return some;
}

std::string Head(std::vector<FigureColumn const*> const& columns) {
    std::string head = Right("Hz", nameWidth);
    for (FigureColumn const* column : columns) head += Right(column->heading, columnWidth);
    return head;
}

std::string Opening(std::string const& name, RoomMeasurement const& measured) {
    std::string text = name + ": " + std::to_string(measured.numChannels) +
                       (measured.numChannels == 1 ? " channel, " : " channels, ") + FixedText(measured.sampleRate, 0) +
                       " Hz, ";
    if (!measured.direct) return text + "silent\n";
    text += FixedText(static_cast<double>(measured.length) / measured.sampleRate, 2) + " s of sound; direct sound at " +
            FixedText(1000.0 * static_cast<double>(measured.direct->sample) / measured.sampleRate, 1) + " ms";
    if (const double level = measured.direct->directToRestDb; std::isfinite(level))
        text += ", " + FixedText(std::abs(level), 1) + (level < 0.0 ? " dB below" : " dB above") + " all that follows";
    return text + "\n";
}

/// Why figures are missing: each reason once, with what it concerns.
std::string Reasons(RoomMeasurement const& measured) {
    std::vector<std::pair<std::string, std::string>> reasons;  // in the order of the table
    const auto note = [&](std::string const& reason, std::string const& what) {
        const auto same =
            std::find_if(reasons.begin(), reasons.end(), [&](auto& entry) { return entry.first == reason; });
        if (same == reasons.end())
            reasons.emplace_back(reason, what);
        else
            same->second += ", " + what;
    };
    for (BandFigures const* band : Rows(measured)) {
        for (FigureColumn const* column : Columns(measured)) {
            if (column->decimals == 4) continue;  // a fit's correlation is missing where its time is
            const std::string heading = column->heading;
            const std::string what = heading.substr(0, heading.find(' ')) + " at " + band->band.name;
            if (const Figure figure = column->get(*band); !figure.IsThere())
                note(WhyMissing(figure, *band, column->lowerDb), what);
        }
        if (band->IsTooShort(band->t20) || band->IsTooShort(band->t30))
            note("a decay below " + FixedText(orvanmeasure::ShortestDecay(band->band), 2) +
                     " s is that of the band's filter",
                 "T at " + band->band.name);
    }
    std::string text;
    for (auto const& [reason, what] : reasons)
        text.append("  - ").append(what).append(": ").append(reason).append("\n");
    return text;
}

std::string PairText(ChannelPair const& pair) {
    return FixedText(pair.correlation, 2) + " (channels " + std::to_string(pair.first + 1) + " and " +
           std::to_string(pair.second + 1) + ")";
}

std::string Milliseconds(Figure const& seconds) {
    return seconds.IsThere() ? FixedText(1000.0 * seconds.value, 0) + " ms" : "not reached";
}

/// What isn't told band by band.
std::string Closing(RoomMeasurement const& measured) {
    std::string text;
    if (const Figure mid = measured.Mid(&BandFigures::t30); mid.IsThere())
        text += "T30 mid (500 and 1000 Hz): " + FixedText(mid.value, 2) + " s\n";
    text += "echo density: 0.9 at " + Milliseconds(measured.density.nearlyMixed) + ", mixing time (1.0) " +
            Milliseconds(measured.density.mixingTime) + "\n";
    if (!measured.neighbours.empty()) {
        const auto alike = [](ChannelPair const& a, ChannelPair const& b) {
            return std::abs(a.correlation) < std::abs(b.correlation);
        };
        text += "late part of neighbouring channels: correlation up to " +
                PairText(*std::max_element(measured.neighbours.begin(), measured.neighbours.end(), alike));
        text += "; of any two: " + PairText(*measured.mostAlike) + "\n";
    }
    text += "centre of the spectrum:";
    for (const double seconds : {0.0, 0.1, 0.2, 0.5, 1.0, 2.0, 4.0}) {
        const auto frame = static_cast<std::size_t>(std::lround(seconds / measured.centroidStepSeconds));
        if (frame >= measured.centroidHz.size()) break;
        text += (frame == 0 ? " " : ", ") + FixedText(static_cast<double>(measured.centroidHz[frame]), 0) + " Hz at " +
                FixedText(seconds, 1) + " s";
    }
    return text + "\n";
}

}  // namespace

std::string FigureTable(std::string const& name, RoomMeasurement const& measured) {
    std::string text = Opening(name, measured);
    if (!measured.direct) return text;
    const std::vector<FigureColumn const*> columns = Columns(measured);
    text += Head(columns) + "\n";
    for (BandFigures const* band : Rows(measured)) {
        text += Right(band->band.name, nameWidth);
        for (FigureColumn const* column : columns) {
            const Figure figure = column->get(*band);
            text += Right(figure.IsThere() ? FixedText(figure.value, column->decimals) : "-", columnWidth);
        }
        text += "\n";
    }
    return text + Reasons(measured) + Closing(measured);
}

std::string DifferenceTable(std::string const& name, RoomMeasurement const& measured, std::string const& otherName,
                            RoomMeasurement const& other) {
    std::string text = "\n" + name + " against " + otherName +
                       ", in steps that one just hears (EDT and T: 5 %, C: 1 dB, " +
                       "D50: 0.05, Ts: 10 ms, IACC: 0.075):\n";
    std::vector<FigureColumn const*> columns;
    for (FigureColumn const* column : Columns(measured))
        if (column->justNoticeable > 0.0 && (!column->needsEars || other.numChannels == 2)) columns.push_back(column);
    text += Right("Hz", nameWidth);
    for (FigureColumn const* column : columns) {
        const std::string heading = column->heading;
        text += Right(column->needsEars ? heading : heading.substr(0, heading.find(' ')), columnWidth);
    }
    text += "\n";
    int audible = 0, compared = 0;
    for (BandFigures const* band : Rows(measured)) {
        const std::vector<BandFigures const*> others = Rows(other);
        const auto same = std::find_if(others.begin(), others.end(),
                                       [&](BandFigures const* row) { return row->band.name == band->band.name; });
        if (same == others.end()) continue;
        text += Right(band->band.name, nameWidth);
        for (FigureColumn const* column : columns) {
            const Figure here = column->get(*band), there = column->get(**same);
            const bool both = here.IsThere() && there.IsThere();
            const double steps = both ? Steps(*column, here.value, there.value) : 0.0;
            std::string cell = both && steps >= 0.0 ? "+" : "";
            cell += both ? FixedText(steps, 1) : "-";
            text += Right(cell, columnWidth);
            compared += both;
            audible += both && std::abs(steps) > 1.0;
        }
        text += "\n";
    }
    return text + std::to_string(audible) + " of " + std::to_string(compared) + " figures differ by more than a step\n";
}

}  // namespace program
