#include "orvanverb/room/source_motion.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "geometry/keep_azimuth.h"
#include "geometry/speakers.h"
#include "object/coordinates_from_atoms.h"
#include "object/orvanverb_class.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/layout/speaker_layout.h"
#include "patcher/atom.h"
#include "room/room.h"

namespace program {

namespace {

/// Whether an object would understand a message, whatever it does with it.
bool IsUnderstood(max::t_symbol* selector) {
    auto const& messages = orvanverb_class->c_messages;
    const auto found = std::find_if(messages.begin(), messages.end(), [selector](auto const& candidate) {
        return candidate.m_sym == selector && (candidate.m_type.empty() || candidate.m_type.front() != max::A_CANT);
    });
    if (found != messages.end() || std::string_view(selector->s_name) == "hrtf") return true;
    auto const* const attribute = static_cast<max::t_attr*>(max::class_attr_get(orvanverb_class, selector));
    return (attribute != nullptr && (attribute->flags & max::ATTR_SET_OPAQUE_USER) == 0) ||
           Lume::FindControl(selector->s_name).has_value();
}

}  // namespace

SourceMotion::SourceMotion(unsigned int numSources, Options const& options, double newSamplerate)
    : SourceMotion(numSources, options, options.scene ? Scene(*options.scene) : Scene(), newSamplerate) {}

SourceMotion::SourceMotion(unsigned int numSources, Options const& options, Scene newScene, double newSamplerate)
    : samplerate(newSamplerate),
      scene(std::move(newScene)),
      box(std::vector<max::t_atom>{},
          {[this](max::ConsoleLevel level, std::string const& text) {
               if (level == max::ConsoleLevel::error || level == max::ConsoleLevel::bug)
                   complaint = complaint.empty() ? text : complaint;
               else
                   remarks.push_back(std::string(max::ConsoleLevelName(level)) + ": " + text);
           },
           nullptr, nullptr}) {
    complaint.clear();  // of an empty box, that it holds no object
    orvanverb_main();
    Lume::Speakers::GetDefaultForChannels(positions, numSources);
    const std::vector<Lume::CartesianVector> builtIn = positions;
    scene.Coarsen(1.0 / samplerate);  // a movement has no more messages than anybody asks for
    // A complaint of any line comes before the work.
    scene.Begin(Listener());
    scene.Rehearse(Listener());
    positions = builtIn;
    orientation = options.orientation.value_or(Lume::Orientation{});
    for (Options::SourcePlace const& place : options.sources) {
        RequireSource(place, numSources);
        positions[place.number - 1] = ToCartesian(place.position);
    }
    scene.Begin(Listener());
}

Scene::Listener SourceMotion::Listener() {
    return [this](std::string_view message, std::filesystem::path const&) { return Take(message); };
}

std::vector<std::string> SourceMotion::Take(std::string_view message) {
    if (const std::optional<Lume::Orientation> turned = ParseOrientationMessage(message)) {
        orientation = *turned;
        return {};
    }
    std::vector<max::t_atom> atoms = max::ParseAtoms(message);
    max::t_symbol* const selector = max::atom_getsym(&atoms.front());
    if (!IsUnderstood(selector))
        throw std::invalid_argument("orvanverb~: doesn't understand \"" + max::AtomText(atoms.front()) + "\"");
    atoms.erase(atoms.begin());
    if (selector == max::gensym("source")) {
        Move(atoms);
    } else if (selector == max::gensym("sourcespositions")) {
        if (atoms.size() < 3 * positions.size())
            throw std::invalid_argument("sourcespositions: " + std::to_string(3 * positions.size()) +
                                        " coordinates are expected, not " + std::to_string(atoms.size()));
        for (std::size_t i = 0; i < positions.size(); ++i)
            positions[i] =
                Lume::Room::Limited({max::atom_getfloat(&atoms[3 * i]), max::atom_getfloat(&atoms[3 * i + 1]),
                                     max::atom_getfloat(&atoms[3 * i + 2])});
    }
    return std::exchange(remarks, {});
}

/// As the object does it.
void SourceMotion::Move(std::vector<max::t_atom> const& atoms) {
    const long number = atoms.empty() ? 0 : max::atom_getlong(&atoms.front());
    if (number < 1 || number > static_cast<long>(positions.size()))
        throw std::invalid_argument("invalid source index " + std::to_string(number));
    Lume::CartesianVector& position = positions[static_cast<std::size_t>(number) - 1];
    const Lume::CartesianVector before = position;
    unsigned int index = 0;
    get_source_coordinates_from_atoms(box.BoxObject(), static_cast<unsigned int>(positions.size()),
                                      static_cast<long>(atoms.size()), atoms.data(), index, position);
    position = Lume::KeepAzimuth(Lume::Room::Limited(position), before);
    if (!complaint.empty()) throw std::invalid_argument(std::exchange(complaint, {}));
}

std::vector<std::string> SourceMotion::Advance(std::uint64_t beforeFrame) {
    return scene.Play(Listener(), samplerate, beforeFrame);
}

void RequireSource(Options::SourcePlace const& place, unsigned int numSources) {
    if (place.number > numSources)
        throw UsageError("--source " + std::to_string(place.number) + ": there " +
                         (numSources == 1 ? "is 1 source" : "are " + std::to_string(numSources) + " sources"));
}

}  // namespace program
