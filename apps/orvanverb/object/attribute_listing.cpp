#include "orvanverb/object/attribute_listing.h"

#include <vector>

#include "object/attribute_reflection.h"
#include "object/attribute_value.h"
#include "object/orvanverb_class.h"
#include "orvanverb/common/json.h"
#include "orvanverb/common/text.h"
#include "orvanverb/object/listing_text.h"
#include "patcher/box.h"

namespace program {

namespace {

/// What one attribute says about itself, as text; empty where it says nothing.
struct Listing {
    std::string name, type, units, label, category, description;
    std::vector<std::string> defaults;
    std::string minimum, maximum;
    long count = 1;
    bool counted = false;  // count is the most that it holds
};

std::string NumberOf(t_atom const& atom) {
    return atom_gettype(&atom) == A_LONG ? std::to_string(atom_getlong(&atom)) : NumberText(atom_getfloat(&atom));
}

Listing Describe(t_attr* attribute) {
    Listing listing;
    listing.name = orvanmax::GetAttributeName(attribute);
    orvanmax::GetAttributeType(attribute, listing.type);
    orvanmax::GetAttributeUnits(attribute, listing.units, "");
    orvanmax::GetAttributeLabel(attribute, listing.label, "");
    orvanmax::GetAttributeCategory(attribute, listing.category, "");
    orvanmax::GetAttributeDescription(attribute, listing.description, "");
    const orvanmax::AttributeValue defaults(attribute, gensym("default"));
    for (long i = 0; i < defaults.count; ++i) listing.defaults.push_back(NumberOf(defaults.atoms[i]));
    // The bounds of the filter, and not what the inspector shows: two attributes are clipped and show no bounds.
    if (attribute->useMin) listing.minimum = NumberText(static_cast<float>(attribute->minimum));
    if (attribute->useMax) listing.maximum = NumberText(static_cast<float>(attribute->maximum));
    listing.count = attribute->size;
    listing.counted = attribute->offsetCount != 0;
    return listing;
}

/// All that a user sees, in the order of the class, which keeps together what belongs together.
std::vector<Listing> DescribeAll() {
    orvanverb_main();
    const max::Box box("orvanverb~");
    std::vector<Listing> listings;
    for (auto const& attribute : orvanverb_class->c_attributes)
        if (!orvanmax::IsAttributeInvisible(attribute.get())) listings.push_back(Describe(attribute.get()));
    return listings;
}

std::string OrNull(std::string const& number) {
    return number.empty() ? "null" : number;
}

std::string JsonDefault(Listing const& listing) {
    if (listing.defaults.empty()) return "null";
    if (listing.count == 1) return listing.defaults.front();
    return std::string("[").append(Join(listing.defaults, ", ")).append("]");
}

}  // namespace

std::string AttributeTable() {
    TextRows rows{{"name", "type", "default", "range", "unit", "label"}};
    for (Listing const& listing : DescribeAll()) {
        std::string type = listing.type;
        if (listing.count > 1) type += (listing.counted ? " x 0-" : " x ") + std::to_string(listing.count);
        std::string range;
        if (!listing.minimum.empty()) range = listing.minimum + " to " + listing.maximum;
        rows.push_back({listing.name, type, Join(listing.defaults, " "), range, listing.units, listing.label});
    }
    return AlignedText(rows);
}

std::string AttributeJson() {
    std::vector<std::string> objects;
    for (Listing const& listing : DescribeAll()) {
        JsonObject object;
        object.Add("name", JsonText(listing.name));
        object.Add("type", JsonText(listing.type));
        object.Add("count", std::to_string(listing.count));
        object.Add("counted", listing.counted ? "true" : "false");
        object.Add("default", JsonDefault(listing));
        object.Add("min", OrNull(listing.minimum));
        object.Add("max", OrNull(listing.maximum));
        object.Add("units", JsonText(listing.units));
        object.Add("label", JsonText(listing.label));
        object.Add("category", JsonText(listing.category));
        object.Add("description", JsonText(listing.description));
        objects.push_back("  " + object.Text());
    }
    return std::string("[\n").append(Join(objects, ",\n")).append("\n]\n");
}

}  // namespace program
