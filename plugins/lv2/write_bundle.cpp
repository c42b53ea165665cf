/// Writes the texts of the bundle: which plug-ins there are, their ports, and the rooms of a folder as their presets.
///
///     orvan_lv2_bundle FOLDER ROOM...

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/room_controls.h"
#include "lv2/variants.h"

namespace {

using lv2::Port;
using lv2::PortKind;
using lv2::Variant;

constexpr char const* prefixes =
    "@prefix atom: <http://lv2plug.in/ns/ext/atom#> .\n"
    "@prefix bufsz: <http://lv2plug.in/ns/ext/buf-size#> .\n"
    "@prefix doap: <http://usefulinc.com/ns/doap#> .\n"
    "@prefix foaf: <http://xmlns.com/foaf/0.1/> .\n"
    "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
    "@prefix opts: <http://lv2plug.in/ns/ext/options#> .\n"
    "@prefix ov: <urn:orvanverb:lv2:> .\n"
    "@prefix patch: <http://lv2plug.in/ns/ext/patch#> .\n"
    "@prefix pg: <http://lv2plug.in/ns/ext/port-groups#> .\n"
    "@prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .\n"
    "@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n"
    "@prefix owl: <http://www.w3.org/2002/07/owl#> .\n"
    "@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .\n"
    "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
    "@prefix rsz: <http://lv2plug.in/ns/ext/resize-port#> .\n"
    "@prefix state: <http://lv2plug.in/ns/ext/state#> .\n"
    "@prefix units: <http://lv2plug.in/ns/extensions/units#> .\n"
    "@prefix urid: <http://lv2plug.in/ns/ext/urid#> .\n"
    "@prefix work: <http://lv2plug.in/ns/ext/worker#> .\n"
    "@prefix xsd: <http://www.w3.org/2001/XMLSchema#> .\n\n";

/// A number that Turtle takes as a decimal: with a point, without an exponent.
std::string Number(float value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.6f", static_cast<double>(value));
    std::string number(text);
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.push_back('0');
    return number;
}

std::string Capitalised(std::string text) {
    if (!text.empty()) text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

struct Unit {
    char const *controlUnit, *uri, *symbol;
};
constexpr Unit units[] = {{"dB", "units:db", "dB"}, {"Hz", "units:hz", "Hz"},           {"ms", "units:ms", "ms"},
                          {"s", "units:s", "s"},    {"degrees", "units:degree", "deg"}, {"m", "units:m", "m"}};

char const* UnitOf(std::string const& name) {
    for (Unit const& unit : units)
        if (name == unit.controlUnit) return unit.uri;
    return nullptr;
}

char const* GroupOf(Lume::ControlGroup group) {
    constexpr char const* names[] = {"late", "directShelf", "roomShelf", "early", "cluster"};
    return names[static_cast<std::size_t>(group)];
}

std::string SymbolOf(Variant const& variant, Port const& port) {
    const std::string number = std::to_string(port.index + 1);
    switch (port.kind) {
        case PortKind::input:
            return "in_" + number;
        case PortKind::output:
            return "out_" + number;
        case PortKind::events:
            return "events";
        case PortKind::notify:
            return "notify";
        case PortKind::enabled:
            return "enabled";
        case PortKind::freeWheeling:
            return "free_wheeling";
        case PortKind::latency:
            return "latency";
        case PortKind::control:
            return Lume::roomControls[port.index].name;
        case PortKind::active:
            return "source_" + number + "_on";
        case PortKind::azimuth:
            return "source_" + number + "_azimuth";
        case PortKind::elevation:
            return "source_" + number + "_elevation";
        case PortKind::distance:
            return "source_" + number + "_distance";
        case PortKind::level:
            return "level_" + number;
    }
    throw std::logic_error(variant.symbol);
}

/// A port with a range, behind its symbol and name.
std::string Range(float least, float greatest, float standard) {
    return " ;\n\t\tlv2:minimum " + Number(least) + " ; lv2:maximum " + Number(greatest) + " ; lv2:default " +
           Number(standard);
}

std::string PortText(Variant const& variant, Port const& port, std::size_t number) {
    const std::string source = "Source " + std::to_string(port.index + 1) + " ";
    const std::string sourceGroup = " ;\n\t\tpg:group ov:source" + std::to_string(port.index + 1);
    std::string type = "lv2:InputPort , lv2:ControlPort", name, rest;
    switch (port.kind) {
        case PortKind::input:
            type = "lv2:InputPort , lv2:AudioPort";
            name = variant.numSources == 1 ? "Input" : "Input " + std::to_string(port.index + 1);
            rest = std::string(" ;\n\t\tpg:group ov:") + variant.symbol + "-in";
            if (variant.numSources == 1) rest += " ;\n\t\tlv2:designation pg:center";
            if (variant.numSources == 2)
                rest += std::string(" ;\n\t\tlv2:designation pg:") + (port.index == 0 ? "left" : "right");
            break;
        case PortKind::output: {
            lv2::Output const& output = variant.outputs[port.index];
            type = "lv2:OutputPort , lv2:AudioPort";
            name = output.name;
            rest = std::string(" ;\n\t\tpg:group ov:") + variant.symbol + "-out";
            if (output.designation != nullptr) rest += std::string(" ;\n\t\tlv2:designation pg:") + output.designation;
            break;
        }
        case PortKind::events:
            type = "lv2:InputPort , atom:AtomPort";
            name = "Events";
            rest =
                " ;\n\t\tatom:bufferType atom:Sequence ; atom:supports patch:Message ;\n\t\tlv2:designation "
                "lv2:control ;\n\t\trsz:minimumSize 8192 ; lv2:portProperty lv2:connectionOptional";
            break;
        case PortKind::notify:
            type = "lv2:OutputPort , atom:AtomPort";
            name = "Notify";
            rest =
                " ;\n\t\tatom:bufferType atom:Sequence ; atom:supports patch:Message ;\n\t\tlv2:designation "
                "lv2:control ;\n\t\trsz:minimumSize 8192 ; lv2:portProperty lv2:connectionOptional";
            break;
        case PortKind::enabled:
            name = "Enabled";
            rest = Range(0, 1, 1) + " ;\n\t\tlv2:designation lv2:enabled ; lv2:portProperty lv2:toggled , lv2:integer";
            break;
        case PortKind::freeWheeling:
            name = "Freewheeling";
            rest = Range(0, 1, 0) +
                   " ;\n\t\tlv2:designation lv2:freeWheeling ; lv2:portProperty lv2:toggled , pprops:notOnGUI";
            break;
        case PortKind::latency:
            type = "lv2:OutputPort , lv2:ControlPort";
            name = "Latency";
            rest =
                " ;\n\t\tlv2:minimum 0.0 ; lv2:maximum 8192.0 ;\n\t\tlv2:designation lv2:latency ; "
                "lv2:portProperty lv2:reportsLatency , lv2:integer , pprops:notOnGUI ; units:unit units:frame";
            break;
        case PortKind::control: {
            Lume::RoomControl const& control = Lume::roomControls[port.index];
            name = Capitalised(control.label);
            rest = Range(control.least, control.greatest, control.standard);
            if (control.scale == Lume::Scale::logarithmic) rest += " ;\n\t\tlv2:portProperty pprops:logarithmic";
            if (control.scale == Lume::Scale::onOff) rest += " ;\n\t\tlv2:portProperty lv2:toggled , lv2:integer";
            if (char const* const unit = UnitOf(control.unit)) rest += std::string(" ;\n\t\tunits:unit ") + unit;
            if (control.usualName[0] != '\0') rest += std::string(" ;\n\t\trdfs:comment \"") + control.usualName + "\"";
            rest += std::string(" ;\n\t\tpg:group ov:") + GroupOf(control.group);
            break;
        }
        case PortKind::active:
            name = source + "on";
            rest = Range(0, 1, 1) + " ;\n\t\tlv2:portProperty lv2:toggled , lv2:integer" + sourceGroup;
            break;
        case PortKind::azimuth:
            name = source + "azimuth";
            rest = Range(-180, 180, lv2::StandardAzimuthDeg(variant, port.index)) +
                   " ;\n\t\trdfs:comment \"0 ahead, positive to the right\" ;\n\t\tunits:unit units:degree" +
                   sourceGroup;
            break;
        case PortKind::elevation:
            name = source + "elevation";
            rest =
                Range(-lv2::maxElevationDeg, lv2::maxElevationDeg, 0) + " ;\n\t\tunits:unit units:degree" + sourceGroup;
            break;
        case PortKind::distance:
            name = source + "distance";
            rest = Range(lv2::minDistance, lv2::maxDistance, 1) +
                   " ;\n\t\tlv2:portProperty pprops:logarithmic ; units:unit units:m" + sourceGroup;
            break;
        case PortKind::level:
            type = "lv2:OutputPort , lv2:ControlPort";
            name = std::string("Level ") + variant.outputs[port.index].name;
            rest = " ;\n\t\tlv2:minimum -90.0 ; lv2:maximum 20.0 ; units:unit units:db";
            break;
    }
    return "[\n\t\ta " + type + " ;\n\t\tlv2:index " + std::to_string(number) + " ; lv2:symbol \"" +
           SymbolOf(variant, port) + "\" ;\n\t\tlv2:name \"" + name + "\"" + rest + "\n\t]";
}

std::string PluginText(Variant const& variant) {
    std::ostringstream text;
    text << "<" << variant.Uri() << ">\n\ta lv2:Plugin , lv2:ReverbPlugin , lv2:SpatialPlugin , doap:Project ;\n"
         << "\tdoap:name \"" << variant.name << "\" ;\n"
         << "\tdoap:maintainer [ a foaf:Person ; foaf:name \"The orvanverb~ developers\" ] ;\n"
         << "\tdoap:license <https://spdx.org/licenses/MIT> ;\n"
         << "\tdoap:shortdesc \"Sources at places in a room\" ;\n"
         << "\tlv2:minorVersion 2 ; lv2:microVersion 4 ;\n"
         << "\tlv2:optionalFeature lv2:hardRTCapable , urid:map , opts:options , work:schedule , "
            "bufsz:boundedBlockLength , "
            "bufsz:fixedBlockLength , state:mapPath , state:freePath ;\n"
         << "\topts:supportedOption bufsz:minBlockLength , bufsz:maxBlockLength ;\n"
         << "\tlv2:extensionData work:interface , state:interface ;\n"
         << "\tpatch:writable " << (variant.IsHeadphones() ? "ov:ears" : "ov:speakers") << " ;\n"
         << "\tpg:mainInput ov:" << variant.symbol << "-in ; pg:mainOutput ov:" << variant.symbol << "-out ;\n"
         << "\tlv2:port ";
    const std::vector<Port> ports = lv2::PortsOf(variant);
    for (std::size_t i = 0; i < ports.size(); ++i) text << (i > 0 ? " , " : "") << PortText(variant, ports[i], i);
    text << " .\n\n";
    text << "ov:" << variant.symbol << "-in a pg:InputGroup , pg:" << variant.inputGroup
         << " ; lv2:symbol \"in\" ; lv2:name \"Sources\" .\n";
    text << "ov:" << variant.symbol << "-out a pg:OutputGroup , pg:" << variant.outputGroup
         << " ; lv2:symbol \"out\" ; lv2:name \"" << (variant.IsHeadphones() ? "Headphones" : "Loudspeakers")
         << "\" .\n\n";
    return text.str();
}

/// What the plug-ins share: groups of controls, units, and the properties in which files go.
std::string SharedText() {
    std::ostringstream text;
    constexpr std::pair<char const*, char const*> groups[] = {{"late", "Late field"},
                                                              {"directShelf", "Direct sound: colour"},
                                                              {"roomShelf", "Room: colour"},
                                                              {"early", "Early reflections"},
                                                              {"cluster", "Cluster"}};
    for (auto const& [symbol, name] : groups)
        text << "ov:" << symbol << " a pg:InputGroup ; lv2:symbol \"" << symbol << "\" ; lv2:name \"" << name
             << "\" .\n";
    unsigned int numSources = 0;
    for (Variant const& variant : lv2::Variants()) numSources = std::max(numSources, variant.numSources);
    for (unsigned int i = 1; i <= numSources; ++i)
        text << "ov:source" << i << " a pg:InputGroup ; lv2:symbol \"source" << i << "\" ; lv2:name \"Source " << i
             << "\" .\n";
    // Hosts find them in a vocabulary that people who build no plug-ins don't have, and show bare numbers then.
    for (Unit const& unit : units)
        text << unit.uri << " a units:Unit ; units:symbol \"" << unit.symbol << "\" ; units:render \"%f " << unit.symbol
             << "\" .\n";
    text << "\nov:ears\n\ta lv2:Parameter ;\n\trdfs:label \"Ears\" ;\n"
         << "\trdfs:comment \"A set of filters for headphones, .hrtf or .coll\" ;\n\trdfs:range atom:Path .\n\n"
         << "ov:speakers\n\ta lv2:Parameter ;\n\trdfs:label \"Loudspeakers\" ;\n"
         << "\trdfs:comment \"A file of places: azimuth, elevation and distance of an output a line\" ;\n"
         << "\trdfs:range atom:Path .\n\n"
         << "ov:state\n\ta rdf:Property , owl:DatatypeProperty ;\n\trdfs:label \"State of the room\" ;\n"
         << "\trdfs:domain state:State ;\n\trdfs:range xsd:string .\n\n";
    return text.str();
}

/// What a file of a room sets; the other controls keep their standard.
struct RoomFile {
    std::map<std::string, float> values;
    std::string numInternals = "8";
};

RoomFile ReadRoom(std::filesystem::path const& path) {
    std::ifstream file(path);
    RoomFile room;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::string attribute;
        if (!(words >> attribute)) continue;
        if (attribute == "numinternals") {
            words >> room.numInternals;
            continue;
        }
        unsigned int element = 0;
        for (float value = 0.0f; words >> value; ++element) {
            const auto control = std::find_if(
                Lume::roomControls.begin(), Lume::roomControls.end(), [&](Lume::RoomControl const& candidate) {
                    return candidate.attribute != nullptr && candidate.attribute == attribute &&
                           candidate.element == element;
                });
            if (control == Lume::roomControls.end())
                throw std::runtime_error(path.string() + ": " + attribute + " is no control of a room");
            room.values[control->name] = value;
        }
        if (element == 0) throw std::runtime_error(path.string() + ": " + attribute + " has no value");
    }
    if (room.values.empty()) throw std::runtime_error(path.string() + ": sets nothing, or can't be read");
    return room;
}

std::string PresetUri(Variant const& variant, std::filesystem::path const& path) {
    return variant.Uri().append(":").append(path.stem().string());
}

/// A room as a preset of a plug-in: all controls, so that nothing of the room before stays.
std::string PresetText(Variant const& variant, std::filesystem::path const& path) {
    const RoomFile room = ReadRoom(path);
    std::string name = Capitalised(path.stem().string());
    std::replace(name.begin(), name.end(), '_', ' ');
    std::ostringstream text;
    text << "<" << PresetUri(variant, path) << ">\n\ta pset:Preset ;\n\tlv2:appliesTo <" << variant.Uri()
         << "> ;\n\trdfs:label \"" << name << "\" ;\n\tlv2:port ";
    char const* separator = "";
    for (Lume::RoomControl const& control : Lume::roomControls) {
        const auto value = room.values.find(control.name);
        text << separator << "[ lv2:symbol \"" << control.name << "\" ; pset:value "
             << Number(value != room.values.end() ? value->second : control.standard) << " ]";
        separator = " , ";
    }
    // The number of the room's channels is no port, as it can't change while the plug-in runs; and a room that has all
    // of it before it starts sounds from its first sample on.
    text << " ;\n\tstate:state [ ov:state \"\"\"orvanverb-state 1\nnuminternals " << room.numInternals << '\n';
    for (auto const& [control, value] : room.values) text << control << ' ' << Number(value) << '\n';
    text << "\"\"\" ] .\n\n";
    return text.str();
}

void Write(std::filesystem::path const& path, std::string const& text) {
    std::ofstream file(path, std::ios::binary);
    file << prefixes << text;
    file.close();
    if (!file) throw std::runtime_error(path.string() + ": can't be written");
}

}  // namespace

int main(int count, char** words) {
    try {
        if (count < 2) throw std::runtime_error("orvan_lv2_bundle FOLDER ROOM...");
        const std::filesystem::path folder = words[1];
        std::ostringstream manifest;
        std::string plugins = SharedText(), presets;
        for (Variant const& variant : lv2::Variants()) {
            manifest << "<" << variant.Uri()
                     << "> a lv2:Plugin ; lv2:binary <orvanverb.so> ; rdfs:seeAlso <orvanverb.ttl> .\n";
            plugins += PluginText(variant);
            for (int i = 2; i < count; ++i) {
                presets += PresetText(variant, words[i]);
                manifest << "<" << PresetUri(variant, words[i]) << "> a pset:Preset ; lv2:appliesTo <" << variant.Uri()
                         << "> ; rdfs:seeAlso <presets.ttl> .\n";
            }
        }
        Write(folder / "manifest.ttl", manifest.str());
        Write(folder / "orvanverb.ttl", plugins);
        Write(folder / "presets.ttl", presets);
        return 0;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
