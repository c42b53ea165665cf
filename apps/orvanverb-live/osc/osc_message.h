#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace live {

/// A message of Open Sound Control.
struct OscMessage {
    using Argument = std::variant<float, std::int32_t, std::string>;

    std::string address;
    std::vector<Argument> arguments;  ///< true and false as 1 and 0, longer numbers rounded; others are left out

    /// An argument as a finite number; nothing if it is text, missing, or none.
    std::optional<float> Number(std::size_t index) const;
    /// As text; numbers as they read back.
    std::string Text(std::size_t index) const;
};

/// Calls `take` with each message of a packet, which may be a bundle of such. Times of bundles don't count: what comes
/// acts.
/// @throws std::invalid_argument for what is no packet; messages that stood before the fault have been taken
void ReadPacket(std::span<char> packet, std::function<void(OscMessage const&)> const& take);

/// A message as bytes.
std::vector<char> Packet(OscMessage const& message);

/// Whether an address holds wildcards.
bool IsPattern(std::string_view address);

/// Whether a name fits a pattern of OSC: * ? [abc] {left,right}. One that would take long to try fits nothing.
bool Matches(std::string const& pattern, std::string const& name);

/// An address in its parts, without the empty one in front.
std::vector<std::string> AddressParts(std::string_view address);

}  // namespace live
