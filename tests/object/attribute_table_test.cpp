#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "object/attribute_value.h"
#include "object/console_lines.h"
#include "object/orvanverb_class.h"
#include "object/recording_box.h"

namespace {

/// The attributes as the manual lists them, typed here by hand: name, type, elements (and * if their number stands in
/// the record), default, range (in parentheses: it clips and isn't shown), units, style, label, category and order.
constexpr char const* table[] = {
    "mute long 1|0|0..1||onoff |mute dsp |options |",
    "bypass long 1|0|0..1||onoff |bypass dsp |options |",
    "numsources long 1|6|1..64|||number of sources ||1 ",
    "numspeakers long 1|6|1..64|||number of speakers ||2 ",
    "numinternals long 1|8|2..16|||number of internal channels ||3 ",
    "sourcespositions float32 192*|||xyz ||sources positions ||4 ",
    "speakerspositions float32 192*|||xyz ||speakers positions ||5 ",
    "gain float32 1|0|-30..30|dB ||late reverberation gain |reverb |15 ",
    "modaldensity float32 1|0.86|0.2..4|||modal density |reverb |",
    "tr0 float32 1|1.995|0.1..10|sec ||global decay time |reverb |6 ",
    "trl float32 1|1|0.1..10|||relative decay time at low freq |reverb |7 ",
    "trm float32 1|1|0.1..10|||relative decay time at med freq |reverb |8 ",
    "trh float32 1|0.5|0.1..1|||relative decay time at high freq |reverb |9 ",
    "fl float32 1|250|20..20000|Hz ||low/med crossover frequency |reverb |10 ",
    "fh float32 1|8000|20..20000|Hz ||med/high crossover frequency |reverb |11 ",
    "air long 1|0|0..1||onoff |air absorption |reverb |12 ",
    "airfreq float32 1|10000|20..20000|Hz ||air rolloff frequency |reverb |13 ",
    "infinite long 1|0|0..1||onoff |infinite reverb |reverb |14 ",
    "delays float32 64*|||msec ||delays |reverb |16 ",
    "direct float32 6|0 0 0 0 177 5657||||direct filter parameters |filters |17 ",
    "room float32 6|0 0 0 0 177 5657||||room filter parameters |filters |18 ",
    "early float32 6|0 0 0 0 177 5657||||early filter parameters |filters |19 ",
    "cluster float32 6|0 0 0 0 177 5657||||cluster filter parameters |filters |20 ",
    "early_start float32 1|22.22|1..120|msec ||early start |structure |21 ",
    "early_end float32 1|39.71|1..120|msec ||early end |structure |22 ",
    "early_distr float32 1|0.5|0.1..0.9|||early distribution centroid |structure |23 ",
    "early_width float32 1|30|(10..180)|deg ||early width |structure |24 ",
    "early_shape float32 1|0.5|(0..1)|||early shape |structure |25 ",
    "cluster_start float32 1|42.47|1..300|msec ||cluster start |structure |26 ",
    "cluster_end float32 1|105.64|1..300|msec ||cluster end |structure |27 ",
    "cluster_distr float32 1|0.5|0.1..0.9|||cluster distribution centroid |structure |28 ",
    "reverb_start float32 1|95.37|1..500|msec ||reverb start |structure |",
};
constexpr std::size_t numHidden = 2;  // classdescription and externalversion come first

std::string Said(t_attr& attribute, char const* word) {
    const orvanmax::AttributeValue value(&attribute, gensym(word));
    std::string text;
    orvanmax::atomarray2string(value.count, value.atoms, text);
    return text;
}

/// The default's numbers, as short as they are.
std::string DefaultOf(t_attr& attribute) {
    const orvanmax::AttributeValue value(&attribute, gensym("default"));
    std::string text;
    char number[32];
    for (long i = 0; i < value.count; ++i) {
        std::snprintf(number, sizeof number, "%s%g", i > 0 ? " " : "",
                      static_cast<double>(atom_getfloat(&value.atoms[i])));
        text += number;
    }
    return text;
}

std::string RangeOf(t_attr& attribute) {
    if (!attribute.useMin && !attribute.useMax) return Said(attribute, "minvalue") + Said(attribute, "maxvalue");
    char range[64];
    std::snprintf(range, sizeof range, "%g..%g", attribute.minimum, attribute.maximum);
    const std::string shown = Said(attribute, "minvalue") + Said(attribute, "maxvalue");
    if (shown.empty()) return std::string("(").append(range).append(")");
    return shown == std::to_string(attribute.minimum) + " " + std::to_string(attribute.maximum) + " " ? range : shown;
}

// Every attribute of the registered class: red for any cell that is wrong, and for any row that is out of order.
TEST(AttributeTable, IsTheOneOfTheManual) {
    orvanverb_main();
    auto const& attributes = orvanverb_class->c_attributes;
    ASSERT_EQ(attributes.size(), std::size(table) + numHidden);
    for (std::size_t i = 0; i < std::size(table); ++i) {
        t_attr& attribute = *attributes[i + numHidden];
        std::string row = attribute.name->s_name;
        row.append(" ").append(attribute.type->s_name).append(" ").append(std::to_string(attribute.size));
        row.append(attribute.offsetCount != 0 ? "*|" : "|").append(DefaultOf(attribute));
        row.append("|").append(RangeOf(attribute));
        for (char const* const word : {"units", "style", "label", "category", "order"})
            row.append("|").append(Said(attribute, word));
        EXPECT_EQ(row, table[i]);
        EXPECT_EQ(attribute.flags, 0) << row;
        EXPECT_EQ(Said(attribute, "dontreset"), row.starts_with("num") ? "1 " : "") << row;
        EXPECT_EQ(Said(attribute, "description").empty(), i > 1) << row;
    }
    for (std::size_t i = 0; i < numHidden; ++i) {
        t_attr& attribute = *attributes[i];
        EXPECT_STREQ(attribute.name->s_name, i == 0 ? "classdescription" : "externalversion");
        EXPECT_EQ(attribute.flags, 0x300);
        EXPECT_EQ(Said(attribute, "invisible") + Said(attribute, "category"), "1 documentation ");
        EXPECT_EQ(Said(attribute, "label").substr(0, 13), i == 0 ? "Room reverber" : "4.2.6 (Build ");
    }
}

// Fields and attributes belong together: red if one writes another one's field, or if a clip doesn't act.
TEST(AttributeTable, ValuesArriveWhereTheyBelongAndStayInRange) {
    orvanverb_main();
    RecordingBox box("orvanverb~ @numsources 2 @numspeakers 3");
    const auto forEachFloat = [&](auto const& action) {
        for (auto const& attribute : orvanverb_class->c_attributes)
            if (attribute->useMin && attribute->type == gensym("float32"))
                action(attribute->name->s_name, attribute->minimum, attribute->maximum);
    };
    const auto expect = [&](char const* name, double value) {
        EXPECT_NEAR(std::stod(box.Get(name)), value, 1e-6 * (1.0 + std::abs(value))) << name;
    };
    forEachFloat([&](char const* name, double minimum, double maximum) {
        box.Send(std::string(name) + " 1000000");
        expect(name, maximum);
        box.Send(std::string(name) + " -1000000");
        expect(name, minimum);
        box.Send(std::string(name) + " " + std::to_string(0.3 * minimum + 0.7 * maximum));
    });
    // All are in the middle of their own ranges now, none was overwritten by a neighbour.
    forEachFloat(
        [&](char const* name, double minimum, double maximum) { expect(name, 0.3 * minimum + 0.7 * maximum); });
    for (char const* const name : {"mute", "bypass", "air", "infinite"}) {
        box.Send(std::string(name) + " 7.9");
        EXPECT_EQ(box.Get(name), "1 ");
    }
    EXPECT_EQ(box.box.GetAttribute("speakerspositions")->size(), 9u);
    EXPECT_EQ(box.box.GetAttribute("delays")->size(), 8u);
}

TEST(AttributeTable, MessagesStandInTheirOrder) {
    orvanverb_main();
    std::string names;
    for (t_messlist const& message : orvanverb_class->c_messages) names.append(message.m_sym->s_name).append(" ");
    EXPECT_EQ(
        names,
        "generatexml version postattributes getvalueof setvalueof preset recallpreset dump reset postdspstatus dsp "
        "assist clear reverb source loudspeakers speakers speaker loudspeaker ");
    RecordingBox box("orvanverb~");
    // Those that are for the host alone, and numbers, go by the name of their kind.
    const std::pair<char const*, char const*> notUnderstood[] = {{"getvalueof", "getvalueof"},
                                                                 {"dsp", "dsp"},
                                                                 {"nothing", "nothing"},
                                                                 {"3", "int"},
                                                                 {"3.5", "float"},
                                                                 {"3 4", "list"}};
    for (auto const& [message, name] : notUnderstood)
        EXPECT_EQ(box.Send(message),
                  std::string("error: orvanverb~: doesn't understand \"").append(name).append("\"|"));
}

}  // namespace
