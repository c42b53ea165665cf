#include "orvanverb-live/osc/osc_message.h"

#include <lo/lo.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <type_traits>

#include "orvanverb/common/text.h"

namespace live {

namespace {

constexpr std::size_t deepestBundle = 8;
constexpr std::string_view bundleName{"#bundle\0", 8};
constexpr std::size_t bundleHead = 16;  // its name, and a time
constexpr std::ptrdiff_t mostStars = 4;

using Message = std::unique_ptr<std::remove_pointer_t<lo_message>, decltype(&lo_message_free)>;

std::uint32_t BigEndian(char const* bytes) {
    std::uint32_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
    return std::endian::native == std::endian::little ? __builtin_bswap32(value) : value;
}

/// An argument's number. Arguments stand at whole words of four bytes, where a union with larger ones must not be read.
template <class Value>
Value ValueOf(lo_arg const* argument) {
    Value value;
    std::memcpy(&value, static_cast<void const*>(argument), sizeof value);
    return value;
}

void ReadMessage(std::span<char> bytes, std::function<void(OscMessage const&)> const& take) {
    const Message read(lo_message_deserialise(bytes.data(), bytes.size(), nullptr), lo_message_free);
    if (!read || bytes.front() != '/') throw std::invalid_argument("no OSC message");
    OscMessage message;
    message.address = bytes.data();  // ends in it, as the reader has checked
    char const* const types = lo_message_get_types(read.get());
    lo_arg** const values = lo_message_get_argv(read.get());
    for (int i = 0; i < lo_message_get_argc(read.get()); ++i) {
        switch (types[i]) {
            case LO_FLOAT:
                message.arguments.emplace_back(ValueOf<float>(values[i]));
                break;
            case LO_DOUBLE:
                message.arguments.emplace_back(static_cast<float>(ValueOf<double>(values[i])));
                break;
            case LO_INT32:
                message.arguments.emplace_back(ValueOf<std::int32_t>(values[i]));
                break;
            case LO_INT64:
                message.arguments.emplace_back(static_cast<float>(ValueOf<std::int64_t>(values[i])));
                break;
            case LO_TRUE:
                message.arguments.emplace_back(1);
                break;
            case LO_FALSE:
                message.arguments.emplace_back(0);
                break;
            case LO_STRING:
            case LO_SYMBOL:
                message.arguments.emplace_back(std::string(reinterpret_cast<char const*>(values[i])));
                break;
            default:
                break;
        }
    }
    take(message);
}

void Read(std::span<char> bytes, std::function<void(OscMessage const&)> const& take, std::size_t depth) {
    // Whole words of four bytes, or it is none.
    if (bytes.empty() || bytes.size() % 4 != 0 || depth > deepestBundle) throw std::invalid_argument("no OSC packet");
    if (bytes.size() < bundleHead || std::string_view(bytes.data(), bundleName.size()) != bundleName)
        return ReadMessage(bytes, take);
    bytes = bytes.subspan(bundleHead);
    while (bytes.size() >= 4) {
        const std::size_t size = BigEndian(bytes.data());
        if (size > bytes.size() - 4) throw std::invalid_argument("an OSC bundle ends too soon");
        Read(bytes.subspan(4, size), take, depth + 1);
        bytes = bytes.subspan(4 + size);
    }
}

}  // namespace

std::optional<float> OscMessage::Number(std::size_t index) const {
    if (index >= arguments.size()) return std::nullopt;
    if (auto const* const whole = std::get_if<std::int32_t>(&arguments[index])) return static_cast<float>(*whole);
    auto const* const number = std::get_if<float>(&arguments[index]);
    return number != nullptr && std::isfinite(*number) ? std::optional(*number) : std::nullopt;
}

std::string OscMessage::Text(std::size_t index) const {
    Argument const& argument = arguments.at(index);
    if (auto const* const text = std::get_if<std::string>(&argument)) return *text;
    if (auto const* const whole = std::get_if<std::int32_t>(&argument)) return std::to_string(*whole);
    return program::NumberText(std::get<float>(argument));
}

void ReadPacket(std::span<char> packet, std::function<void(OscMessage const&)> const& take) {
    Read(packet, take, 0);
}

std::vector<char> Packet(OscMessage const& message) {
    const Message built(lo_message_new(), lo_message_free);
    for (OscMessage::Argument const& argument : message.arguments) {
        if (auto const* const text = std::get_if<std::string>(&argument))
            lo_message_add_string(built.get(), text->c_str());
        else if (auto const* const whole = std::get_if<std::int32_t>(&argument))
            lo_message_add_int32(built.get(), *whole);
        else
            lo_message_add_float(built.get(), std::get<float>(argument));
    }
    std::vector<char> bytes(lo_message_length(built.get(), message.address.c_str()));
    lo_message_serialise(built.get(), message.address.c_str(), bytes.data(), nullptr);
    return bytes;
}

bool IsPattern(std::string_view address) {
    return address.find_first_of("*?[{") != std::string_view::npos;
}

bool Matches(std::string const& pattern, std::string const& name) {
    if (!IsPattern(pattern)) return pattern == name;
    if (std::count(pattern.begin(), pattern.end(), '*') > mostStars) return false;
    return lo_pattern_match(name.c_str(), pattern.c_str()) != 0;
}

std::vector<std::string> AddressParts(std::string_view address) {
    std::vector<std::string> parts;
    while (!address.empty()) {
        address.remove_prefix(1);
        const std::size_t end = std::min(address.find('/'), address.size());
        parts.emplace_back(address.substr(0, end));
        address.remove_prefix(end);
    }
    return parts;
}

}  // namespace live
