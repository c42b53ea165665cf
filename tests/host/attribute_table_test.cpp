#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "host/attribute_value.h"
#include "host/console_lines.h"
#include "host/orvanverb_class.h"
#include "host/recording_box.h"

namespace {

/// One attribute as the manual lists it, typed here by hand.
struct Row {
    char const* name;
    char const* type;
    long elements;
    char const* defaultValue;  // all its atoms
    double minimum, maximum;   // of the clip filter; both 0: there is none
    bool showsRange;
    char const* units;
    char const* style;
    char const* label;
    char const* category;
    char const* order;
    bool counted;  // an array whose length stands in the record
};

const std::vector<Row> table{
    {"mute", "long", 1, "0 ", 0, 1, true, "", "onoff ", "mute dsp ", "options ", "", false},
    {"bypass", "long", 1, "0 ", 0, 1, true, "", "onoff ", "bypass dsp ", "options ", "", false},
    {"numsources", "long", 1, "6 ", 1, 64, true, "", "", "number of sources ", "", "1 ", false},
    {"numspeakers", "long", 1, "6 ", 1, 64, true, "", "", "number of speakers ", "", "2 ", false},
    {"numinternals", "long", 1, "8 ", 2, 16, true, "", "", "number of internal channels ", "", "3 ", false},
    {"sourcespositions", "float32", 192, "", 0, 0, false, "xyz ", "", "sources positions ", "", "4 ", true},
    {"speakerspositions", "float32", 192, "", 0, 0, false, "xyz ", "", "speakers positions ", "", "5 ", true},
    {"gain", "float32", 1, "0.000000 ", -30, 30, true, "dB ", "", "late reverberation gain ", "reverb ", "15 ", false},
    {"modaldensity", "float32", 1, "0.860000 ", 0.2, 4, true, "", "", "modal density ", "reverb ", "", false},
    {"tr0", "float32", 1, "1.995000 ", 0.1, 10, true, "sec ", "", "global decay time ", "reverb ", "6 ", false},
    {"trl", "float32", 1, "1.000000 ", 0.1, 10, true, "", "", "relative decay time at low freq ", "reverb ", "7 ",
     false},
    {"trm", "float32", 1, "1.000000 ", 0.1, 10, true, "", "", "relative decay time at med freq ", "reverb ", "8 ",
     false},
    {"trh", "float32", 1, "0.500000 ", 0.1, 1, true, "", "", "relative decay time at high freq ", "reverb ", "9 ",
     false},
    {"fl", "float32", 1, "250.000000 ", 20, 20000, true, "Hz ", "", "low/med crossover frequency ", "reverb ", "10 ",
     false},
    {"fh", "float32", 1, "8000.000000 ", 20, 20000, true, "Hz ", "", "med/high crossover frequency ", "reverb ", "11 ",
     false},
    {"air", "long", 1, "0 ", 0, 1, true, "", "onoff ", "air absorption ", "reverb ", "12 ", false},
    {"airfreq", "float32", 1, "10000.000000 ", 20, 20000, true, "Hz ", "", "air rolloff frequency ", "reverb ", "13 ",
     false},
    {"infinite", "long", 1, "0 ", 0, 1, true, "", "onoff ", "infinite reverb ", "reverb ", "14 ", false},
    {"delays", "float32", 64, "", 0, 0, false, "msec ", "", "delays ", "reverb ", "16 ", true},
    {"direct", "float32", 6, "0.000000 0.000000 0.000000 0.000000 177.000000 5657.000000 ", 0, 0, false, "", "",
     "direct filter parameters ", "filters ", "17 ", false},
    {"room", "float32", 6, "0.000000 0.000000 0.000000 0.000000 177.000000 5657.000000 ", 0, 0, false, "", "",
     "room filter parameters ", "filters ", "18 ", false},
    {"early", "float32", 6, "0.000000 0.000000 0.000000 0.000000 177.000000 5657.000000 ", 0, 0, false, "", "",
     "early filter parameters ", "filters ", "19 ", false},
    {"cluster", "float32", 6, "0.000000 0.000000 0.000000 0.000000 177.000000 5657.000000 ", 0, 0, false, "", "",
     "cluster filter parameters ", "filters ", "20 ", false},
    {"early_start", "float32", 1, "22.219999 ", 1, 120, true, "msec ", "", "early start ", "structure ", "21 ", false},
    {"early_end", "float32", 1, "39.709999 ", 1, 120, true, "msec ", "", "early end ", "structure ", "22 ", false},
    {"early_distr", "float32", 1, "0.500000 ", 0.1, 0.9, true, "", "", "early distribution centroid ", "structure ",
     "23 ", false},
    {"early_width", "float32", 1, "30.000000 ", 10, 180, false, "deg ", "", "early width ", "structure ", "24 ", false},
    {"early_shape", "float32", 1, "0.500000 ", 0, 1, false, "", "", "early shape ", "structure ", "25 ", false},
    {"cluster_start", "float32", 1, "42.470001 ", 1, 300, true, "msec ", "", "cluster start ", "structure ", "26 ",
     false},
    {"cluster_end", "float32", 1, "105.639999 ", 1, 300, true, "msec ", "", "cluster end ", "structure ", "27 ", false},
    {"cluster_distr", "float32", 1, "0.500000 ", 0.1, 0.9, true, "", "", "cluster distribution centroid ", "structure ",
     "28 ", false},
    {"reverb_start", "float32", 1, "95.370003 ", 1, 500, true, "msec ", "", "reverb start ", "structure ", "", false},
};

std::string Said(t_attr* attribute, char const* word) {
    const orvanmax::AttributeValue value(attribute, gensym(word));
    std::string text;
    orvanmax::atomarray2string(value.count, value.atoms, text);
    return text;
}

// Every row against the registered class: red for any cell that is wrong, and for any row that is out of order.
TEST(AttributeTable, IsTheOneOfTheManual) {
    orvanverb_main();
    auto const& attributes = orvanverb_class->c_attributes;
    ASSERT_EQ(attributes.size(), table.size() + 2);
    for (std::size_t i = 0; i < table.size(); ++i) {
        Row const& row = table[i];
        SCOPED_TRACE(row.name);
        t_attr& attribute = *attributes[i + 2];
        EXPECT_STREQ(attribute.name->s_name, row.name);
        EXPECT_STREQ(attribute.type->s_name, row.type);
        EXPECT_EQ(attribute.flags, 0);
        EXPECT_EQ(attribute.size, row.elements);
        EXPECT_EQ(attribute.offsetCount != 0, row.counted);
        const bool clips = row.minimum != 0 || row.maximum != 0;
        EXPECT_EQ(attribute.useMin && attribute.useMax, clips);
        EXPECT_NEAR(attribute.minimum, row.minimum, 1e-7);
        EXPECT_NEAR(attribute.maximum, row.maximum, 1e-7);
        EXPECT_EQ(Said(&attribute, "default"), row.defaultValue);
        EXPECT_EQ(Said(&attribute, "minvalue"), row.showsRange ? std::to_string(row.minimum) + " " : "");
        EXPECT_EQ(Said(&attribute, "maxvalue"), row.showsRange ? std::to_string(row.maximum) + " " : "");
        EXPECT_EQ(Said(&attribute, "units"), row.units);
        EXPECT_EQ(Said(&attribute, "style"), row.style);
        EXPECT_EQ(Said(&attribute, "label"), row.label);
        EXPECT_EQ(Said(&attribute, "category"), row.category);
        EXPECT_EQ(Said(&attribute, "order"), row.order);
        const bool isSize = std::string(row.name).substr(0, 3) == "num";
        EXPECT_EQ(Said(&attribute, "dontreset"), isSize ? "1 " : "");
        EXPECT_EQ(Said(&attribute, "invisible"), "");
        EXPECT_EQ(Said(&attribute, "description").empty(), i > 1);
    }
    for (std::size_t i = 0; i < 2; ++i) {
        t_attr& attribute = *attributes[i];
        EXPECT_STREQ(attribute.name->s_name, i == 0 ? "classdescription" : "externalversion");
        EXPECT_STREQ(attribute.type->s_name, "symbol");
        EXPECT_EQ(attribute.flags, 0x300);
        EXPECT_EQ(Said(&attribute, "invisible"), "1 ");
        EXPECT_EQ(Said(&attribute, "category"), "documentation ");
        EXPECT_EQ(Said(&attribute, "label").substr(0, 13), i == 0 ? "Room reverber" : "4.2.6 (Build ");
    }
}

// Fields and rows belong together: red if an attribute writes another one's field, or if a clip doesn't act.
TEST(AttributeTable, ValuesArriveWhereTheyBelongAndStayInRange) {
    orvanverb_main();
    RecordingBox box("orvanverb~ @numsources 2 @numspeakers 3");
    for (Row const& row : table) {
        if (row.minimum == 0 && row.maximum == 0) continue;
        if (std::string(row.name).substr(0, 3) == "num") continue;
        SCOPED_TRACE(row.name);
        const bool isLong = std::string(row.type) == "long";
        box.Send(std::string(row.name) + " 1000000");
        EXPECT_NEAR(std::stod(box.Get(row.name)), row.maximum, 1e-6);
        box.Send(std::string(row.name) + " -1000000");
        EXPECT_NEAR(std::stod(box.Get(row.name)), row.minimum, 1e-6);
        if (!isLong) {
            const double between = 0.3 * row.minimum + 0.7 * row.maximum;
            box.Send(std::string(row.name) + " " + std::to_string(between));
            EXPECT_NEAR(std::stod(box.Get(row.name)), between, 1e-6 * (1.0 + row.maximum));
        }
    }
    // All floats are in the middle of their own ranges now, none was overwritten by a neighbour.
    for (Row const& row : table) {
        if (row.minimum == 0 || std::string(row.type) != "float32") continue;
        EXPECT_NEAR(std::stod(box.Get(row.name)), 0.3 * row.minimum + 0.7 * row.maximum, 1e-6 * (1.0 + row.maximum))
            << row.name;
    }
    for (auto const& [name, length] : {std::pair{"sourcespositions", 6u}, {"speakerspositions", 9u}, {"delays", 8u}})
        EXPECT_EQ(box.box.GetAttribute(name)->size(), length) << name;
}

const std::vector<std::string> messages{"generatexml",  "version",      "postattributes", "getvalueof", "setvalueof",
                                        "preset",       "recallpreset", "dump",           "reset",      "postdspstatus",
                                        "dsp",          "assist",       "clear",          "reverb",     "source",
                                        "loudspeakers", "speakers",     "speaker",        "loudspeaker"};

TEST(AttributeTable, MessagesStandInTheirOrder) {
    orvanverb_main();
    std::vector<std::string> names;
    for (t_messlist const& message : orvanverb_class->c_messages) names.emplace_back(message.m_sym->s_name);
    EXPECT_EQ(names, messages);
    RecordingBox box("orvanverb~");
    for (char const* const ofTheHost : {"getvalueof", "setvalueof", "dsp", "assist"})
        EXPECT_EQ(box.Send(ofTheHost),
                  std::string("error: orvanverb~: doesn't understand \"").append(ofTheHost).append("\"|"));
}

}  // namespace
