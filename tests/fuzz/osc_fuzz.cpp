#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "orvanverb-live/osc/osc_message.h"

namespace {

/// Bits, as a number that is none isn't itself.
bool AreSame(live::OscMessage::Argument const& a, live::OscMessage::Argument const& b) {
    auto const *x = std::get_if<float>(&a), *y = std::get_if<float>(&b);
    return x != nullptr && y != nullptr ? std::bit_cast<std::uint32_t>(*x) == std::bit_cast<std::uint32_t>(*y) : a == b;
}

void Use(live::OscMessage const& message) {
    for (std::string const& part : live::AddressParts(message.address))
        for (char const* name : {"obj", "12", "azim", "early_gain_medium"}) live::Matches(part, name);
    for (std::size_t i = 0; i < message.arguments.size(); ++i) {
        message.Number(i);
        message.Text(i);
    }
    // What was read is one message when it is written, and reads the same.
    std::vector<char> written = live::Packet(message);
    int count = 0;
    live::ReadPacket(written, [&](live::OscMessage const& again) {
        ++count;
        if (again.address != message.address || again.arguments.size() != message.arguments.size()) std::abort();
        for (std::size_t i = 0; i < message.arguments.size(); ++i)
            if (!AreSame(again.arguments[i], message.arguments[i])) std::abort();
    });
    if (count != 1) std::abort();
}

}  // namespace

/// Any bytes as a packet of Open Sound Control, as they come from whoever reaches the port.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::vector<char> packet(data, data + size);
    try {
        live::ReadPacket(packet, Use);
    } catch (std::invalid_argument const&) {
    }
    return 0;
}
