#include "room/layout_remarks.h"

#include "engine/room_format.h"
#include "room/layout_check.h"

namespace Lume {

namespace {

/// The method by which a room plays its loudspeakers; null for outputs that are none.
PanKind const* Method(Room const& room) {
    RoomFormat const* const format = room.Format();
    if (format != nullptr && format->outputs != RoomFormat::Outputs::loudspeakers) return nullptr;
    Pan::Type type = Pan::vbap2d;
    if (format != nullptr) type = format->bySolidAngle ? Pan::vbap : Pan::GetType(format->name);
    for (PanKind const& kind : PanKinds())
        if (type != Pan::null && kind.type == type && kind.outputs == PanKind::Outputs::loudspeakers) return &kind;
    return nullptr;
}

}  // namespace

std::vector<std::string> LayoutRemarks(Room const& room) {
    PanKind const* const method = room.HasEars() ? nullptr : Method(room);
    return method != nullptr ? CheckLayout(*method, room.SpeakerPositions()) : std::vector<std::string>{};
}

}  // namespace Lume
