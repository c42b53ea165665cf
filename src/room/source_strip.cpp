#include "room/source_strip.h"

#include <algorithm>
#include <cmath>

namespace Lume {

namespace {

constexpr std::size_t longestName = 64;  // bytes

bool IsControl(unsigned char byte) {
    return byte < ' ' || byte == 0x7F;
}

bool GoesOn(unsigned char byte) {
    return (byte & 0xC0) == 0x80;  // of a character of several bytes not the first
}

}  // namespace

float LinearGain(float gainDb) noexcept {
    return gainDb <= SourceStrip::silentDb ? 0.0f : gainDb == 0.0f ? 1.0f : std::pow(10.0f, gainDb / 20.0f);
}

float SourceStrip::Gain() const noexcept {
    return muted ? 0.0f : LinearGain(gainDb);
}

std::string LimitedName(std::string_view name) {
    if (name.size() > longestName) {
        std::size_t length = longestName;
        while (length > 0 && GoesOn(static_cast<unsigned char>(name[length]))) --length;
        name = name.substr(0, length);
    }
    std::string text(name);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return IsControl(static_cast<unsigned char>(c)); }, ' ');
    text.erase(text.find_last_not_of(' ') + 1);
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    return text;
}

}  // namespace Lume
