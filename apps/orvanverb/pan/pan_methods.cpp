#include "orvanverb/pan/pan_methods.h"

#include <algorithm>

#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"

namespace program {

namespace {

using Pan = Lume::Pan;
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
    return Pan::SupportsConfiguration(type, numOutputs) &&
           Lume::MakePanner(type, Pan::direct, 1, numOutputs) != nullptr;
}

/// All methods, by what their outputs are.
std::vector<Lume::PanKind const*> Methods() {
    using Outputs = Lume::PanKind::Outputs;
    std::vector<Lume::PanKind const*> methods;
    for (const Outputs outputs : {Outputs::two, Outputs::loudspeakers, Outputs::harmonics})
        for (Lume::PanKind const& kind : Lume::PanKinds())
            if (kind.outputs == outputs && kind.type != Pan::null) methods.push_back(&kind);
    return methods;
}

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

}  // namespace

Lume::PanKind const& FindPanMethod(std::string const& name) {
    const Pan::Type type = Pan::GetType(name.c_str());
    std::string names;
    for (Lume::PanKind const* method : Methods()) {
        if (method->type == type) return *method;
        names.append(" ").append(method->names[0]);
    }
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

Pan::SubType FindPanSubType(Lume::PanKind const& method, std::string const& name) {
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
    throw UsageError("--model: " + std::string(method.names[0]) + " has no '" + name + "'; there are" + names);
}

std::string PanMethodList() {
    std::string text = "method     outputs             what it is\n";
    for (Lume::PanKind const* method : Methods())
        text +=
            Padded(method->names[0], 11) + Padded(CountsText(OutputCounts(method->type)), 20) + method->summary + "\n";
    text += "\nmodel (or sub-type)\n";
    for (SubTypeName const& subType : subTypes)
        text += Padded(subType.name, 20) + subType.summary + (subType.binauralOnly ? " (binaural)\n" : "\n");
    return text;
}

}  // namespace program
