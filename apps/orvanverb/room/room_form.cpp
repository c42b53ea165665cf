#include "orvanverb/room/room_form.h"

#include <cmath>

#include "harmonics/spherical_harmonics.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "orvanverb/layout/channel_words.h"

namespace program {

namespace {

using Outputs = Lume::RoomFormat::Outputs;

constexpr unsigned int usualOrder = 3;
constexpr std::uint32_t frontPair = 0x3;  // the channel mask of left and right

std::string NameOf(Lume::RoomFormat const* format) {
    return format != nullptr ? format->name : "none";
}

/// By the names of formats, and those that pan knows its methods by.
Lume::RoomFormat const& FindFormat(std::string const& name) {
    if (auto const* const format = Lume::FindRoomFormat(name)) return *format;
    if (auto const* const format = Lume::FindRoomFormat(Lume::Pan::GetTypeName(Lume::Pan::GetType(name.c_str()))))
        return *format;
    std::string names;
    for (Lume::RoomFormat const& format : Lume::roomFormats) names.append(" ").append(format.name);
    throw UsageError("--method: '" + name + "' is none that a room has; there are" + names);
}

Lume::RoomFormat const* AskedFormat(Options const& options) {
    if (options.ambix) {
        if (!options.method.empty() && std::string(FindFormat(options.method).name) != "hoa3d" &&
            options.method != "ambix")
            throw UsageError("--ambix: is for the method hoa3d");
        return Lume::FindRoomFormat("ambix");
    }
    return options.method.empty() ? nullptr : &FindFormat(options.method);
}

Lume::RoomFormat const* FormatFor(Options const& options, std::optional<Lume::RoomState> const& saved) {
    Lume::RoomFormat const* const asked = AskedFormat(options);
    if (!saved) return asked;
    Lume::RoomFormat const* const there = Lume::FindRoomFormat(saved->format);
    if (asked != nullptr && asked != there)
        throw WorkError(*options.state + ": format " + NameOf(there) + ": this rendering has " + NameOf(asked));
    return there;
}

/// The loudspeakers as the words say, or as they stood when a state was saved.
SpeakerLayout ChooseLayout(Options const& options, std::string const& number, std::string const& usual,
                           std::optional<Lume::RoomState> const& saved) {
    if (options.speakers) return SpeakerLayout::Parse(*options.speakers);
    if (saved && saved->speakers.size() > 2) return SpeakerLayout::Of(saved->speakers);
    return SpeakerLayout::Parse(number.empty() ? usual : number);
}

SpeakerLayout Harmonics(Lume::RoomFormat const& format, Options const& options, std::string const& number) {
    if (options.speakers)
        throw UsageError("--speakers: the channels of " + std::string(format.name) +
                         " are no loudspeakers; --order says how many there are");
    const unsigned int order = options.order.value_or(usualOrder);
    unsigned int count = Lume::NumAmbisonicChannels(order, format.inSpace);
    if (!options.order && !number.empty()) count = ParseCount(number).value_or(0);
    if (!format.supports(count))
        throw UsageError((options.order ? "--order " + std::to_string(order) : "@numspeakers " + number) + ": " +
                         format.name + " has no such number of channels");
    return SpeakerLayout::Channels(count, 0);
}

/// What stands where nobody says.
std::string UsualLayout(Lume::RoomFormat const& format) {
    if (format.supports(2) && !format.supports(3)) return std::to_string(2);
    if (!format.inSpace) return "8";
    return format.bySolidAngle ? "dome24" : "cube";
}

}  // namespace

RoomForm RoomForm::Choose(Options const& options, std::string const& number,
                          std::optional<Lume::RoomState> const& saved) {
    RoomForm form;
    form.format = FormatFor(options, saved);
    const bool isHarmonic = form.format != nullptr && form.format->outputs == Outputs::harmonics;
    if (options.order && !isHarmonic) throw UsageError("--order: is for ambisonic methods, hoa2d, hoa3d or --ambix");
    if (isHarmonic) {
        form.layout = Harmonics(*form.format, options, number);
        return form;
    }
    const std::string usual = form.format != nullptr ? UsualLayout(*form.format) : defaultSpeakers;
    form.layout = ChooseLayout(options, number, usual, saved);
    if (form.format == nullptr && options.speakers && !ParseCount(*options.speakers) && form.layout.NumOutputs() == 2)
        throw UsageError("--speakers " + *options.speakers +
                         ": two loudspeakers are a pair by --method stereo; headphones are --speakers 2");
    if (form.format == nullptr && !saved && form.layout.HasHeights()) {
        form.format = Lume::FindRoomFormat("vbap");
        form.remark = "loudspeakers stand above or below the ears: --method vbap is taken";
    }
    if (form.format != nullptr && !form.format->supports(form.layout.NumOutputs()))
        throw UsageError("--speakers: the method " + std::string(form.format->name) + " has no " +
                         std::to_string(form.layout.NumOutputs()) + " loudspeakers");
    if (form.format != nullptr && form.format->inSpace && !form.layout.HasHeights() &&
        form.format->outputs == Outputs::loudspeakers && std::string(form.format->name) != "dbap3d")
        throw UsageError("--speakers: " + std::string(form.format->name) +
                         " plays by triplets, and these stand in one plane with the ears; --method vbap2d suits them");
    if (form.format != nullptr && form.format->outputs != Outputs::loudspeakers)
        form.layout = SpeakerLayout::Channels(2, std::string(form.format->name) == "ms" ? 0 : frontPair);
    return form;
}

bool RoomForm::HasEars() const {
    return format != nullptr ? format->outputs == Outputs::ears : layout.NumOutputs() == 2;
}

std::vector<std::string> RoomForm::ChannelWords() const {
    if (HasEars()) return EarWords();
    if (format == nullptr || format->outputs == Outputs::loudspeakers) return LoudspeakerWords(layout);
    if (format->outputs == Outputs::microphones)
        return std::string(format->name) == "ms" ? MidSideWords() : PairWords();
    const unsigned int count = layout.NumOutputs();
    if (!format->inSpace)
        return HarmonicWords(Lume::SortedCylindricalHarmonics((count - 1) / 2, Lume::IncreasingDegrees), "SN2D", false);
    const auto order = static_cast<unsigned int>(std::lround(std::sqrt(static_cast<float>(count)))) - 1;
    return HarmonicWords(Lume::SortedSphericalHarmonics(order, Lume::IncreasingDegrees), "SN3D", format->ambixAxes);
}

}  // namespace program
