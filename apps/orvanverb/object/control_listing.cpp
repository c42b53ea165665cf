#include "orvanverb/object/control_listing.h"

#include "engine/room_controls.h"
#include "orvanverb/common/json.h"
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
    JsonObject object;
    object.Add("name", JsonText(control.name));
    object.Add("attribute", JsonText(control.attribute != nullptr ? control.attribute : ""));
    object.Add("element", std::to_string(control.element));
    object.Add("label", JsonText(control.label));
    object.Add("usual_name", JsonText(control.usualName));
    object.Add("what", JsonText(control.what));
    object.Add("unit", JsonText(control.unit));
    object.Add("min", NumberText(control.least));
    object.Add("max", NumberText(control.greatest));
    object.Add("default", NumberText(control.standard));
    object.Add("scale", JsonText(NameOf(scaleNames, control.scale)));
    object.Add("group", JsonText(NameOf(groupNames, control.group)));
    object.Add("change", JsonText(NameOf(changeNames, control.change)));
    object.Add("out_of_range", JsonText(NameOf(beyondNames, control.outOfRange)));
    return "  " + object.Text();
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
