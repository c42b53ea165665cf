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

/// Rows in words, "63, 125 and 500 to 4000": neighbours are drawn together.
std::string RowNames(std::vector<std::size_t> const& rows, std::vector<BandFigures const*> const& all) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < rows.size();) {
        std::size_t next = i + 1;
        while (next < rows.size() && rows[next] == rows[next - 1] + 1 && !all[rows[next]]->band.IsWhole()) ++next;
        names.push_back(all[rows[i]]->band.name);
        if (next - i > 1) names.back().append(next - i > 2 ? " to " : ", ").append(all[rows[next - 1]]->band.name);
        i = next;
    }
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text.append(i == 0 ? "" : i + 1 < names.size() ? ", " : " and ").append(names[i]);
    return text;
}

/// What stands beside a key in a list that keeps its order; added if it isn't there.
template <typename Value>
Value& Entry(std::vector<std::pair<std::string, Value>>& entries, std::string const& key) {
    for (auto& [name, value] : entries)
        if (name == key) return value;
    return entries.emplace_back(key, Value{}).second;
}

/// Why figures are missing, or not as exact as others: each reason once, with what it concerns.
std::string Reasons(RoomMeasurement const& measured) {
    using RowList = std::vector<std::size_t>;
    const std::vector<BandFigures const*> all = Rows(measured);
    std::vector<std::pair<std::string, std::vector<std::pair<std::string, RowList>>>>
        reasons;  // figures and their rows
    for (FigureColumn const* column : Columns(measured)) {
        if (column->justNoticeable == 0.0) continue;  // belongs to another figure, and is missing where that is
        const std::string heading = column->heading, name = heading.substr(0, heading.find(' '));
        std::vector<std::pair<std::string, RowList>> own;
        for (std::size_t row = 0; row < all.size(); ++row) {
            const Figure figure = column->get(*all[row]);
            const std::string why =
                figure.IsThere() ? column->whyInexact(*all[row]) : WhyMissing(figure, *all[row], column->lowerDb);
            if (!why.empty()) Entry(own, why).push_back(row);
        }
        for (auto const& [why, rows] : own) {
            auto& concerns = Entry(reasons, why);
            if (!concerns.empty() && concerns.back().second == rows)
                concerns.back().first += ", " + name;
            else
                concerns.emplace_back(name, rows);
        }
    }
    std::string text;
    for (auto const& [why, concerns] : reasons) {
        std::string what;
        for (auto const& [figures, rows] : concerns)
            what += (what.empty() ? "" : "; ") + figures + " at " + RowNames(rows, all);
        text.append("  - ").append(what).append(": ").append(why).append("\n");
    }
    return text;
}

std::string PairText(ChannelPair const& pair) {
    return FixedText(pair.correlation, 2) + " (channels " + std::to_string(pair.first + 1) + " and " +
           std::to_string(pair.second + 1) + ")";
}

std::string Milliseconds(Figure const& seconds) {
    return seconds.IsThere() ? "at " + FixedText(1000.0 * seconds.value, 0) + " ms" : "not reached";
}

/// What isn't told band by band.
std::string Closing(RoomMeasurement const& measured) {
    std::string text;
    if (const Figure mid = measured.Mid(&BandFigures::t30); mid.IsThere())
        text += "T30 mid (500 and 1000 Hz): " + FixedText(mid.value, 2) + " s\n";
    text += "echo density: 0.9 " + Milliseconds(measured.density.nearlyMixed) + ", mixing time (1.0) " +
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
