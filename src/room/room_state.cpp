#include "room/room_state.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <system_error>

#include "dsp/constants.h"
#include "engine/room_controls.h"
#include "room/control_range.h"
#include "room/room.h"
#include "room/steady_vectors.h"

namespace Lume {

namespace {

constexpr std::string_view firstWord = "orvanverb-state";
constexpr unsigned int version = 1;
constexpr std::string_view blanks = " \t\r";

/// Takes the first word off a line.
std::string_view TakeWord(std::string_view& line) {
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(blanks));
    line.remove_prefix(word.size());
    return word;
}

template <typename Number, typename... Base>
Number ParseAll(std::string_view word, Base... base) {
    if (word.empty()) throw std::invalid_argument("a value is missing");
    Number number{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number, base...);
    if (error != std::errc{} || end != word.data() + word.size())
        throw std::invalid_argument("'" + std::string(word) + "' is no number that is expected here");
    return number;
}

template <typename Number>
std::string NumberText(Number number, int base = 10) {
    std::array<char, 64> text{};
    std::to_chars_result result{};
    if constexpr (std::is_integral_v<Number>)
        result = std::to_chars(text.data(), text.data() + text.size(), number, base);
    else
        result = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), result.ptr};
}

float ParseFloat(std::string_view word) {
    const auto number = ParseAll<float>(word);
    if (!std::isfinite(number)) throw std::invalid_argument("'" + std::string(word) + "' is not finite");
    return number;
}

float ParseControl(RoomControl const& control, std::string_view word) {
    const float value = ParseFloat(word);
    if (!MayBeInState(control, value)) throw std::invalid_argument(std::string(word) + " is not " + RangeText(control));
    return value;
}

std::vector<CartesianVector> ParsePositions(std::string_view values) {
    std::vector<CartesianVector> positions;
    for (std::string_view word = TakeWord(values); !word.empty(); word = TakeWord(values)) {
        std::array<float, 3> xyz{};
        for (float& coordinate : xyz) {
            if (word.empty()) throw std::invalid_argument("positions are three numbers each");
            coordinate = ParseFloat(word);
            if (!(std::abs(coordinate) <= Room::maxCoordinate))
                throw std::invalid_argument("'" + std::string(word) + "' is farther away than " +
                                            NumberText(Room::maxCoordinate) + " m");
            if (&coordinate != &xyz.back()) word = TakeWord(values);
        }
        positions.push_back({xyz[0], xyz[1], xyz[2]});
    }
    return positions;
}

std::string PositionsText(std::vector<CartesianVector> const& positions) {
    std::string text;
    for (CartesianVector const& position : positions)
        for (const float coordinate : {position.x, position.y, position.z})
            text.append(" ").append(NumberText(coordinate));
    return text;
}

EarsFile ParseEars(std::string_view values, std::filesystem::path const& folder) {
    const auto checksum = ParseAll<std::uint64_t>(TakeWord(values), 16);
    // The path is all the rest: it may hold blanks.
    values.remove_prefix(std::min(values.find_first_not_of(blanks), values.size()));
    values.remove_suffix(values.size() - (values.find_last_not_of(blanks) + 1));
    if (values.empty()) throw std::invalid_argument("a file is expected behind the checksum");
    return {folder / std::filesystem::path(values), checksum};
}

std::string ParseFormat(std::string_view word) {
    if (FindRoomFormat(word) != nullptr) return std::string(word);
    std::string names;
    for (RoomFormat const& format : roomFormats) names.append(" ").append(format.name);
    throw std::invalid_argument("'" + std::string(word) + "' is none; there are" + names);
}

Orientation ParseOrientation(std::string_view& values) {
    Orientation orientation;
    for (float* const angle : {&orientation.yaw, &orientation.pitch, &orientation.roll})
        *angle = ParseFloat(TakeWord(values));
    return orientation;
}

SourceStrip& StripOf(RoomState& state, std::size_t source) {
    if (source >= orvandsp::MaxNumChannels)
        throw std::invalid_argument("there are up to " + NumberText(orvandsp::MaxNumChannels) + " sources");
    if (source >= state.strips.size()) state.strips.resize(source + 1);
    return state.strips[source];
}

void ParseSourceGains(RoomState& state, std::string_view values) {
    std::size_t source = 0;
    for (std::string_view word = TakeWord(values); !word.empty(); word = TakeWord(values)) {
        const float gain = ParseFloat(word);
        if (!(gain >= SourceStrip::silentDb && gain <= SourceStrip::greatestDb))
            throw std::invalid_argument(std::string(word) + " is not from " + NumberText(SourceStrip::silentDb) +
                                        " to " + NumberText(SourceStrip::greatestDb) + " dB");
        StripOf(state, source++).gainDb = gain;
    }
}

void ParseSourceMutes(RoomState& state, std::string_view values) {
    std::size_t source = 0;
    for (std::string_view word = TakeWord(values); !word.empty(); word = TakeWord(values))
        StripOf(state, source++).muted = ParseAll<unsigned int>(word) != 0;
}

void ParseSourceName(RoomState& state, std::string_view values) {
    const auto number = ParseAll<unsigned int>(TakeWord(values));
    if (number == 0) throw std::invalid_argument("sources count from 1");
    StripOf(state, number - 1).name = LimitedName(values);  // which is all the rest: it may hold blanks
}

/// Lines of what isn't as it is in a new state.
std::string StripsText(std::vector<SourceStrip> const& strips) {
    std::string gains, mutes, names;
    bool hasGain = false, hasMute = false;
    for (std::size_t i = 0; i < strips.size(); ++i) {
        hasGain = hasGain || strips[i].gainDb != 0.0f;
        hasMute = hasMute || strips[i].muted;
        gains.append(" ").append(NumberText(strips[i].gainDb));
        mutes.append(strips[i].muted ? " 1" : " 0");
        if (!strips[i].name.empty()) names += "sourcename " + NumberText(i + 1) + " " + strips[i].name + "\n";
    }
    return (hasGain ? "sourcesgains" + gains + "\n" : "") + (hasMute ? "sourcesmutes" + mutes + "\n" : "") + names;
}

/// Takes a line into a state.
/// @return false if nobody knows the name
bool TakeLine(RoomState& state, std::string_view name, std::string_view values, std::filesystem::path const& folder) {
    if (name == "ears") {
        state.ears = ParseEars(values, folder);
        return true;
    }
    if (name == "sourcespositions" || name == "speakerspositions") {
        (name == "sourcespositions" ? state.sources : state.speakers) = ParsePositions(values);
        return true;
    }
    if (name == "sourcesgains") return ParseSourceGains(state, values), true;
    if (name == "sourcesmutes") return ParseSourceMutes(state, values), true;
    if (name == "sourcename") return ParseSourceName(state, values), true;
    if (name == "orientation") {
        state.orientation = ParseOrientation(values);
        return true;
    }
    const std::string_view value = TakeWord(values);
    const auto flag = [&] { return ParseAll<unsigned int>(value) != 0; };
    const auto count = [&] { return ParseAll<unsigned int>(value); };
    const std::optional<std::size_t> control = FindControl(name);
    if (name == "numsources") {
        state.numSources = count();
    } else if (name == "numspeakers") {
        state.numSpeakers = count();
    } else if (name == "numinternals") {
        state.numInternals = count();
    } else if (name == "vector") {
        state.vectorSize = count();
        if (!std::has_single_bit(state.vectorSize) || state.vectorSize < SteadyVectors::minVectorSize ||
            state.vectorSize > Room::maxVectorSize)
            throw std::invalid_argument("a power of two from " + NumberText(SteadyVectors::minVectorSize) + " to " +
                                        NumberText(Room::maxVectorSize) + " is expected, not " + std::string(value));
    } else if (name == "format") {
        state.format = ParseFormat(value);
    } else if (name == "mute") {
        state.mute = flag();
    } else if (name == "bypass") {
        state.bypass = flag();
    } else if (control) {
        state.controls[*control] = ParseControl(roomControls[*control], value);
    } else {
        return false;
    }
    if (const std::string_view surplus = TakeWord(values); !surplus.empty())
        throw std::invalid_argument("one value is expected, '" + std::string(surplus) + "' is too many");
    return true;
}

/// Takes a line of a file without a version: an attribute of the object.
/// @return false if there is none of that name
bool TakeAttribute(RoomState& state, std::string_view name, std::string_view values,
                   std::filesystem::path const& folder) {
    if (name == "delays") return true;  // nothing heard them
    bool isShelf = false;
    for (std::size_t i = 0; i < roomControls.size(); ++i) {
        RoomControl const& row = roomControls[i];
        if (row.attribute == nullptr || name != row.attribute || name == row.name) continue;
        state.controls[i] = ParseControl(row, TakeWord(values));
        isShelf = true;
    }
    if (!isShelf) return TakeLine(state, name, values, folder);
    if (const std::string_view surplus = TakeWord(values); !surplus.empty())
        throw std::invalid_argument("six values are expected, '" + std::string(surplus) + "' is too many");
    return true;
}

/// Counts and positions have to agree where both are told.
void CheckCount(std::string const& what, unsigned int& number, std::size_t positions) {
    if (number == 0) number = static_cast<unsigned int>(positions);
    if (positions != 0 && positions != number)
        throw std::invalid_argument(what + "positions: " + NumberText(number) + " positions are expected, not " +
                                    NumberText(positions));
}

}  // namespace

RoomState::RoomState() {
    for (RoomControl const& control : roomControls) controls.push_back(control.standard);
}

bool RoomState::IsState(std::string_view text) noexcept {
    text = text.substr(0, text.find('\n'));
    return TakeWord(text) == firstWord;
}

bool IsText(std::string_view text) noexcept {
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        if (first < ' ' ? first != '\t' && first != '\r' && first != '\n' : first == 0x7F) return false;
        // Of UTF-8: how many bytes begin with 10 behind the first. What could be written with fewer is no harm.
        const std::size_t more = first < 0x80   ? 0
                                 : first < 0xC0 ? text.size()
                                 : first < 0xE0 ? 1
                                 : first < 0xF0 ? 2
                                                : 3;
        if (first >= 0xF8 || more >= text.size()) return false;
        text.remove_prefix(1);
        for (std::size_t i = 0; i < more; ++i)
            if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return false;
        text.remove_prefix(more);
    }
    return true;
}

RoomState RoomState::Parse(std::string_view text, std::filesystem::path const& folder) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // the mark that some editors put first
    RoomState state;
    const bool hasVersion = IsState(text);
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (!IsText(line)) throw std::invalid_argument(NumberText(number) + ": is no text");
        std::string_view values = line;
        const std::string_view name = TakeWord(values);
        if (name.empty() || name.front() == '#') continue;
        try {
            if (number == 1 && hasVersion) {
                if (const auto found = ParseAll<unsigned int>(TakeWord(values)); found != version)
                    throw std::invalid_argument("version " + NumberText(version) + " is expected, not " +
                                                NumberText(found));
            } else if (!hasVersion) {
                if (!TakeAttribute(state, name, values, folder))
                    throw std::invalid_argument("is in no state; " + std::string(firstWord) + " " +
                                                NumberText(version) + " is expected in front of them");
            } else if (!TakeLine(state, name, values, folder)) {
                state.unknown.emplace_back(line.substr(0, line.find_last_not_of(blanks) + 1));
            }
        } catch (std::invalid_argument const& error) {
            throw std::invalid_argument(NumberText(number) + ": " + std::string(name) + ": " + error.what());
        }
    }
    CheckCount("sources", state.numSources, state.sources.size());
    CheckCount("speakers", state.numSpeakers, state.speakers.size());
    if (state.numSources != 0 && state.strips.size() > state.numSources)
        throw std::invalid_argument("sourcesgains, sourcesmutes, sourcename: there are " +
                                    NumberText(state.numSources) + " sources");
    return state;
}

std::string RoomState::Text(std::filesystem::path const& folder) const {
    std::string text = std::string(firstWord) + " " + NumberText(version) + "\n";
    const auto line = [&text](std::string_view name, std::string const& values) {
        text.append(name).append(" ").append(values).append("\n");
    };
    if (numSources != 0) line("numsources", NumberText(numSources));
    if (numSpeakers != 0) line("numspeakers", NumberText(numSpeakers));
    if (numInternals != 0) line("numinternals", NumberText(numInternals));
    if (vectorSize != 0) line("vector", NumberText(vectorSize));
    if (!format.empty()) line("format", format);
    if (!ears.path.empty()) {
        std::string checksum = NumberText(ears.checksum, 16);
        checksum.insert(0, 16 - checksum.size(), '0');
        std::error_code none;
        const std::filesystem::path relative =
            std::filesystem::proximate(ears.path, folder.empty() ? "." : folder, none);
        line("ears", checksum + " " + (none || relative.empty() ? ears.path : relative).generic_string());
    }
    if (orientation != Orientation{})
        line("orientation",
             NumberText(orientation.yaw) + " " + NumberText(orientation.pitch) + " " + NumberText(orientation.roll));
    line("mute", mute ? "1" : "0");
    line("bypass", bypass ? "1" : "0");
    if (!sources.empty()) text.append("sourcespositions").append(PositionsText(sources)).append("\n");
    if (!speakers.empty()) text.append("speakerspositions").append(PositionsText(speakers)).append("\n");
    text += StripsText(strips);
    for (std::size_t i = 0; i < controls.size(); ++i) line(roomControls[i].name, NumberText(controls[i]));
    for (std::string const& kept : unknown) text.append(kept).append("\n");
    return text;
}

}  // namespace Lume
