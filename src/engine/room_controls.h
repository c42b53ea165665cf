#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "engine/orvan_verb.h"
#include "parameters/controls.h"

namespace Lume {

/// A control of this engine.
using RoomControl = Control<OrvanVerb>;

/// All controls of this engine, in the table's order. An index into it names a control where a name would be too slow
/// to carry: in queues, in hosts' lists of parameters. New controls may move indices: files hold names.
inline constexpr std::span<RoomControl const> roomControls{Controls<OrvanVerb>::rows};

/// The place of a control in roomControls; nothing if there is no such name. Real-time safe.
constexpr std::optional<std::size_t> FindControl(std::string_view name) noexcept {
    for (std::size_t i = 0; i < roomControls.size(); ++i)
        if (name == roomControls[i].name) return i;
    return std::nullopt;
}

/// The same for a name that is written down in code: a wrong one doesn't compile.
consteval std::size_t ControlIndex(std::string_view name) {
    return FindControl(name).value();
}

}  // namespace Lume
