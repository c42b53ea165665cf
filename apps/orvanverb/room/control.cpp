#include "orvanverb/room/control.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "object/attribute_reflection.h"
#include "object/orvanverb.h"
#include "object/orvanverb_class.h"
#include "orvanverb/common/line_file.h"
#include "orvanverb/common/text.h"
#include "parameters/lume_default_parameters.h"

namespace program {

namespace {

using Limits = Lume::LumeDefaultParameters;

/// All that shapes a room: not how many sources and loudspeakers there are, and not where they stand.
std::vector<t_attr*> Controls() {
    orvanverb_main();
    std::vector<t_attr*> controls;
    for (auto const& attribute : orvanverb_class->c_attributes) {
        const std::string name = attribute->name->s_name;
        const bool shape = name == "numsources" || name == "numspeakers" || attribute->offsetCount != 0;
        if (!shape && !orvanmax::IsAttributeInvisible(attribute.get())) controls.push_back(attribute.get());
    }
    return controls;
}

std::string AllNames() {
    std::string names;
    for (t_attr const* control : Controls()) names.append(names.empty() ? "" : " ").append(control->name->s_name);
    return names;
}

void RequireInRange(std::string const& name, std::string const& word, float lowest, float highest, bool whole) {
    const std::optional<float> value = ParseNumber(word);
    // Written as "not inside", so that a word that is no number is refused too.
    if (!(value && *value >= lowest && *value <= highest) || (whole && *value != std::floor(*value)))
        throw std::invalid_argument(name + ": '" + word + "' is no " + (whole ? "whole " : "") + "number from " +
                                    NumberText(lowest) + " to " + NumberText(highest));
}

void RequireShelf(std::string const& name, std::span<std::string const> values) {
    RequireInRange(name, values[0], Limits::MinHLShelfGlobalGaindB, Limits::MaxHLShelfGlobalGaindB, false);
    for (std::size_t i = 1; i < 4; ++i)
        RequireInRange(name, values[i], Limits::MinHLShelfGaindB, Limits::MaxHLShelfGaindB, false);
    for (std::size_t i = 4; i < 6; ++i)
        RequireInRange(name, values[i], Limits::MinHLShelfFrequency, Limits::MaxHLShelfFrequency, false);
}

}  // namespace

void CheckControl(std::string const& name, std::span<std::string const> values) {
    const std::vector<t_attr*> controls = Controls();
    const auto found = std::find_if(controls.begin(), controls.end(),
                                    [&](t_attr const* control) { return name == control->name->s_name; });
    if (found == controls.end()) throw std::invalid_argument("'" + name + "' is no control; there are: " + AllNames());
    t_attr const& control = **found;
    const auto wanted = static_cast<std::size_t>(control.size);
    if (values.size() != wanted)
        throw std::invalid_argument(name + ": takes " + std::to_string(wanted) +
                                    (wanted == 1 ? " value, " : " values, ") + std::to_string(values.size()) +
                                    " given");
    if (wanted == orvanverb_t::NumShelfValues) return RequireShelf(name, values);
    RequireInRange(name, values[0], static_cast<float>(control.minimum), static_cast<float>(control.maximum),
                   control.type == gensym("long"));
}

std::vector<Options::Setting> LoadPreset(std::string const& path) {
    std::vector<Options::Setting> settings;
    ReadLineFile(path, [&settings](std::span<std::string const> words) {
        CheckControl(words[0], words.subspan(1));
        settings.push_back({words[0], {words.begin() + 1, words.end()}});
    });
    return settings;
}

}  // namespace program
