#include "object/xml_reference.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "object/attribute_reflection.h"
#include "object/attribute_value.h"
#include "object/orvanmax_common_symbols.h"

namespace orvanmax {

namespace {

constexpr char const* copyright = "Copyright (c) 2026 The orvanverb~ developers";

/// Messages of the host and of its storage, which users don't send.
constexpr char const* hostMessages[] = {"classname",
                                        "generatexml",
                                        "dsp",
                                        "assist",
                                        "dumpout",
                                        "signal",
                                        "userconnect",
                                        "enable",
                                        "refchain",
                                        "signal_startprobe",
                                        "signal_probevalue",
                                        "signal_endprobe",
                                        "nsiginlets",
                                        "sendbox",
                                        "setvalueof",
                                        "getvalueof",
                                        "preset",
                                        "recallpreset",
                                        "dblclick",
                                        "inletinfo"};

void Element(std::ostream& file, char const* tag, std::string const& content) {
    file << '<' << tag << '>' << content << "</" << tag << ">\n";
}

using Getter = void (*)(t_attr*, std::string&, std::string const&);

void Element(std::ostream& file, char const* tag, t_attr* attribute, Getter getter) {
    std::string text;
    getter(attribute, text, "");
    Element(file, tag, text);
}

std::string Version(t_object* x) {
    if (t_attr* const attribute = GetAttributeByName(x, orvanmax_common_symbols.s_externalversion->s_name)) {
        const AttributeValue label(attribute, orvanmax_common_symbols.s_label);
        if (label.HasAtoms() && atom_gettype(label.atoms) == A_SYM) return atom_getsym(label.atoms)->s_name;
    }
    return "unknown version";
}

std::string Brief(t_object* x) {
    std::string text;
    if (t_attr* const attribute = GetAttributeByName(x, orvanmax_common_symbols.s_classdescription->s_name))
        GetAttributeLabel(attribute, text, "");
    return text;
}

void WriteAttribute(std::ostream& file, t_attr* attribute) {
    std::string type, choices;
    GetAttributeType(attribute, type);
    std::vector<std::string> list;
    GetAttributeEnumChoices(attribute, list, "");
    if (list != std::vector<std::string>{""})
        for (std::string const& choice : list) choices += choice + ' ';

    file << "<attribute>\n";
    Element(file, "name", GetAttributeName(attribute));
    Element(file, "brief", attribute, GetAttributeLabel);
    Element(file, "type", type);
    Element(file, "default", attribute, GetAttributeDefaultValue);
    Element(file, "min", attribute, GetAttributeMinValue);
    Element(file, "max", attribute, GetAttributeMaxValue);
    Element(file, "units", attribute, GetAttributeUnits);
    Element(file, "enum", choices);
    Element(file, "category", attribute, GetAttributeCategory);
    Element(file, "description", attribute, GetAttributeDescription);
    file << "</attribute>\n\n";
}

}  // namespace

void generatexml(t_object* x) {
    GenerateXmlDocumentation(x);
}

void GenerateXmlDocumentation(t_object* x) {
    const std::vector<std::string> attributes = GetListOfUserAttributes(x);
    const std::string className = object_classname(x)->s_name;
    std::vector<std::string> methods;
    GetListOfMethods(x, methods);
    std::ofstream file(className + ".ref.xml");
    file << "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\n"
         << "<?xml-stylesheet type=\"text/xsl\" href=\"orvan.xsl\"?>\n"
         << "<external>\n";
    Element(file, "name", className);
    file << '\n';
    Element(file, "version", Version(x));
    file << '\n';
    Element(file, "copyright", copyright);
    file << '\n';
    Element(file, "brief", Brief(x));
    file << '\n';
    for (std::string const& name : attributes) WriteAttribute(file, GetAttributeByName(x, name));
    for (std::string const& name : methods) {
        file << "<method>\n";
        Element(file, "name", name);
        file << "</method>\n";
    }
    file << "</external>\n";
}

void GetListOfMethods(t_object* x, std::vector<std::string>& names) {
    t_class const* const c = object_class(x);
    if (c == nullptr) return;
    for (t_messlist const& message : c->c_messages) {
        const std::string name = message.m_sym != nullptr ? message.m_sym->s_name : "";
        const bool ofTheHost =
            std::find(std::begin(hostMessages), std::end(hostMessages), name) != std::end(hostMessages);
        if (!name.empty() && !ofTheHost && name.find('(') == name.npos) names.push_back(name);
    }
}

}  // namespace orvanmax
