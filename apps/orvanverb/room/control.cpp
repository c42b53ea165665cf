#include "orvanverb/room/control.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "engine/room_controls.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/line_file.h"
#include "orvanverb/common/text.h"
#include "room/control_range.h"

namespace program {

namespace {

/// A number that a value may be, by a row of the table or beside it.
struct Range {
    std::string name;
    float least = 0.0f, greatest = 1.0f;
    Lume::RoomControl const* control = nullptr;
};

/// What stands beside the controls: how many channels the room has, and whether it is heard.
const Range others[] = {{"numinternals", 2.0f, 16.0f}, {"mute"}, {"bypass"}};

Range RangeOf(Lume::RoomControl const& row) {
    return {row.name, row.least, row.greatest, &row};
}

bool Takes(Range const& range, float value) {
    if (range.control != nullptr) return Lume::IsInRange(*range.control, value);
    return value >= range.least && value <= range.greatest && value == std::floor(value);
}

/// What the values of a name are: one range for a control, six for the attribute of a shelf.
std::vector<Range> RangesOf(std::string const& name) {
    for (Range const& other : others)
        if (name == other.name) return {other};
    std::vector<Range> ranges;
    for (Lume::RoomControl const& row : Lume::roomControls)
        if (row.attribute != nullptr && name == row.attribute) ranges.push_back(RangeOf(row));
    if (const std::optional<std::size_t> control = Lume::FindControl(name); control && ranges.empty())
        ranges.push_back(RangeOf(Lume::roomControls[*control]));
    return ranges;
}

std::vector<std::string> AllNames() {
    std::vector<std::string> names;
    for (Range const& other : others) names.push_back(other.name);
    for (Lume::RoomControl const& row : Lume::roomControls) {
        const std::string name = row.attribute != nullptr ? row.attribute : row.name;
        if (names.back() != name) names.push_back(name);
    }
    return names;
}

void RequireInRange(std::string const& name, std::string const& word, Range const& range) {
    const std::optional<float> value = ParseNumber(word);
    if (value && Takes(range, *value)) return;
    const bool whole = range.control == nullptr || range.control->scale == Lume::Scale::onOff;
    throw std::invalid_argument(name + ": '" + word + "' is no " + (whole ? "whole " : "") + "number " +
                                (range.control != nullptr
                                     ? Lume::RangeText(*range.control)
                                     : "from " + NumberText(range.least) + " to " + NumberText(range.greatest)));
}

}  // namespace

bool IsControl(std::string const& name) {
    return !RangesOf(name).empty();
}

void CheckControl(std::string const& name, std::span<std::string const> values) {
    const std::vector<Range> ranges = RangesOf(name);
    if (ranges.empty()) {
        std::vector<std::string> names = AllNames();
        const std::string there = JoinWords(names);
        for (Lume::RoomControl const& row : Lume::roomControls) names.emplace_back(row.name);
        throw std::invalid_argument("'" + name + "' is no control" + DidYouMean(name, names) + "; there are: " + there);
    }
    if (values.size() != ranges.size())
        throw std::invalid_argument(name + ": takes " + std::to_string(ranges.size()) +
                                    (ranges.size() == 1 ? " value, " : " values, ") + std::to_string(values.size()) +
                                    " given");
    for (std::size_t i = 0; i < ranges.size(); ++i) RequireInRange(name, values[i], ranges[i]);
}

std::vector<Options::Setting> LoadPreset(std::string const& path) {
    std::vector<Options::Setting> settings;
    ReadLineFile(path, [&settings](std::span<std::string const> words) {
        CheckControl(words[0], words.subspan(1));
        if (settings.size() == mostSettings) throw std::invalid_argument(tooManySettings);
        settings.push_back({words[0], {words.begin() + 1, words.end()}});
    });
    return settings;
}

}  // namespace program
