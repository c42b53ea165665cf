#include "orvanverb/object/control_listing.h"

#include "engine/room_controls.h"
#include "orvanverb/common/text.h"
#include "orvanverb/object/listing_text.h"

namespace program {

namespace {

constexpr char const* scaleNames[] = {"linear", "logarithmic", "on/off"};
constexpr char const* groupNames[] = {"late", "direct", "room", "early", "cluster"};
constexpr char const* changeNames[] = {"ramps", "glides", "jumps"};
constexpr char const* beyondNames[] = {"nearest", "kept"};

template <std::size_t count, class Choice>
std::string NameOf(char const* const (&names)[count], Choice choice) {
    return names[static_cast<std::size_t>(choice)];
}

std::string Described(Lume::RoomControl const& control) {
    std::string object("  {\"name\": ");
    object.append(JsonText(control.name));
    object.append(", \"attribute\": ").append(JsonText(control.attribute != nullptr ? control.attribute : ""));
    object.append(", \"element\": ").append(std::to_string(control.element));
    object.append(", \"label\": ").append(JsonText(control.label));
    object.append(", \"usual_name\": ").append(JsonText(control.usualName));
    object.append(", \"what\": ").append(JsonText(control.what));
    object.append(", \"unit\": ").append(JsonText(control.unit));
    object.append(", \"min\": ").append(NumberText(control.least));
    object.append(", \"max\": ").append(NumberText(control.greatest));
    object.append(", \"default\": ").append(NumberText(control.standard));
    object.append(", \"scale\": ").append(JsonText(NameOf(scaleNames, control.scale)));
    object.append(", \"group\": ").append(JsonText(NameOf(groupNames, control.group)));
    object.append(", \"change\": ").append(JsonText(NameOf(changeNames, control.change)));
    return object.append(", \"out_of_range\": ").append(JsonText(NameOf(beyondNames, control.outOfRange))).append("}");
}

}  // namespace

std::string ControlTable() {
    TextRows rows{{"name", "default", "range", "unit", "what it does"}};
    for (Lume::RoomControl const& control : Lume::roomControls)
        rows.push_back({control.name, NumberText(control.standard),
                        NumberText(control.least) + " to " + NumberText(control.greatest), control.unit, control.what});
    return AlignedText(rows);
}

std::string ControlJson() {
    std::vector<std::string> objects;
    for (Lume::RoomControl const& control : Lume::roomControls) objects.push_back(Described(control));
    return std::string("[\n").append(Join(objects, ",\n")).append("\n]\n");
}

}  // namespace program
