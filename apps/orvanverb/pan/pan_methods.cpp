#include "orvanverb/pan/pan_methods.h"

#include <algorithm>
#include <memory>

#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "pan/null_panning.h"

namespace program {

namespace {

using Pan = Lume::Pan;
using Outputs = PanMethod::Outputs;

constexpr PanMethod methods[] = {
    {Pan::binaural, Outputs::Two, "2", "headphones, with measured filters or a model of the head (--model)"},
    {Pan::xy, Outputs::Two, "2", "a coincident pair of microphones"},
    {Pan::ms, Outputs::Two, "2", "a mid and a side microphone"},
    {Pan::ab, Outputs::Two, "2", "a spaced pair of microphones: levels and delays"},
    {Pan::surround, Outputs::Loudspeakers, "4", "left, right and surround, or left, centre, right and surround"},
    {Pan::panr, Outputs::Loudspeakers, "8", "a fixed set of rings, shared out pair by pair"},
    {Pan::angular, Outputs::Loudspeakers, "6", "a ring, a sine law between neighbours"},
    {Pan::vbap2d, Outputs::Loudspeakers, "6", "a ring, pairs of loudspeakers"},
    {Pan::vbap, Outputs::Loudspeakers, "cube", "loudspeakers all around, triplets of them"},
    {Pan::dbap, Outputs::Loudspeakers, "6", "loudspeakers anywhere in the plane, by distance"},
    {Pan::dbap3d, Outputs::Loudspeakers, "cube", "loudspeakers anywhere in space, by distance"},
    {Pan::vdbap, Outputs::Loudspeakers, "cube", "dbap3d near the centre, vbap far from it"},
    {Pan::bformat, Outputs::Harmonics, "4", "first-order ambisonics, W X Y or W X Y Z"},
    {Pan::hoa2d, Outputs::Harmonics, "7", "ambisonics in the plane, 2 x order + 1 channels"},
    {Pan::hoa3d, Outputs::Harmonics, "16", "ambisonics in space, (order + 1)^2 channels"},
};

struct SubTypeName {
    char const* name;
    Pan::SubType subType;
    bool binauralOnly;
    char const* summary;
};

constexpr SubTypeName subTypes[] = {
    {"direct", Pan::direct, false, "the ordinary panner of the method"},
    {"early", Pan::early, false, "delays and levels alone, as for early reflections"},
    {"diffuse", Pan::diffuse, false, "what a diffuse field makes of its inputs; binaural takes two or more"},
    {"nearfield", Pan::nearfield, true, "sources close to the head: each ear has its own direction"},
    {"sphericalhead", Pan::sphericalheadmodel, true, "a sphere for a head, no measured data"},
    {"snowman", Pan::snowmanmodel, true, "a head and a torso, no measured data"},
    {"sphericalharmonics", Pan::sphericalharmonics, true, "filters from harmonics; silent until such data can be read"},
};

/// Beyond it the factorials of the conventions in the plane don't fit into their integers.
constexpr unsigned int maxPlanarHarmonics = 2 * 6 + 1;

bool IsServed(Pan::Type type, unsigned int numOutputs) {
    if (type == Pan::hoa2d && numOutputs > maxPlanarHarmonics) return false;
    if (!Pan::SupportsConfiguration(type, numOutputs)) return false;
    const std::unique_ptr<Pan> panner(Pan::factory(1, numOutputs, type, Pan::direct));
    return dynamic_cast<Lume::NullPanning const*>(panner.get()) == nullptr;
}

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

}  // namespace

std::span<PanMethod const> PanMethods() {
    return methods;
}

PanMethod const& FindPanMethod(std::string const& name) {
    if (Pan::IsValidPanType(name.c_str())) {
        const Pan::Type type = Pan::GetType(name.c_str());
        for (PanMethod const& method : methods)
            if (method.type == type) return method;
    }
    std::string names;
    for (PanMethod const& method : methods) names.append(" ").append(Pan::GetTypeName(method.type));
    throw UsageError("--method: '" + name + "' is none; there are" + names);
}

std::vector<unsigned int> OutputCounts(Pan::Type type) {
    std::vector<unsigned int> counts;
    for (unsigned int n = minSpeakers; n <= maxSpeakers; ++n)
        if (IsServed(type, n)) counts.push_back(n);
    return counts;
}

std::string CountsText(std::vector<unsigned int> const& counts) {
    constexpr std::size_t shown = 3;
    std::string text;
    const auto add = [&text](std::string const& part) { text.append(text.empty() ? "" : ", ").append(part); };
    bool runs = false;
    for (std::size_t i = 0; i < counts.size();) {
        std::size_t end = i + 1;
        while (end < counts.size() && counts[end] == counts[end - 1] + 1) ++end;
        runs = runs || end - i > 1;
        if (end - i > 2)
            add(std::to_string(counts[i]) + " to " + std::to_string(counts[end - 1]));
        else
            for (std::size_t k = i; k < end; ++k) add(std::to_string(counts[k]));
        i = end;
    }
    if (runs || counts.size() <= shown + 1) return text;
    text.clear();
    for (std::size_t i = 0; i < shown; ++i) add(std::to_string(counts[i]));
    return text + " ... " + std::to_string(counts.back());
}

Pan::SubType FindPanSubType(PanMethod const& method, std::string const& name) {
    // The longer names are those of the library.
    const std::string sought = name == "sphericalheadmodel" ? "sphericalhead"
                               : name == "snowmanmodel"     ? "snowman"
                               : name == "sh"               ? "sphericalharmonics"
                                                            : name;
    std::string names;
    for (SubTypeName const& subType : subTypes) {
        if (subType.binauralOnly && method.type != Pan::binaural) continue;
        if (sought == subType.name) return subType.subType;
        names.append(" ").append(subType.name);
    }
    throw UsageError("--model: " + std::string(Pan::GetTypeName(method.type)) + " has no '" + name + "'; there are" +
                     names);
}

std::string PanMethodList() {
    std::string text = "method     outputs             what it is\n";
    for (PanMethod const& method : methods)
        text += Padded(Pan::GetTypeName(method.type), 11) + Padded(CountsText(OutputCounts(method.type)), 20) +
                method.summary + "\n";
    text += "\nmodel (or sub-type)\n";
    for (SubTypeName const& subType : subTypes)
        text += Padded(subType.name, 20) + subType.summary + (subType.binauralOnly ? " (binaural)\n" : "\n");
    return text;
}

}  // namespace program
