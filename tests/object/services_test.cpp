#include <gtest/gtest.h>
#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "object/attribute_actions.h"
#include "object/attribute_reflection.h"
#include "object/console_lines.h"
#include "object/hoa_infos.h"
#include "object/hrtf_infos.h"
#include "object/object_state.h"
#include "object/probe_object.h"
#include "object/xml_reference.h"
#include "patcher/binbuf.h"
#include "patcher/host.h"

namespace {

using namespace orvanmax;

class Services : public testing::Test {
protected:
    void SetUp() override { probeJournal.clear(); }
    ProbeBox probe;
};

void ExpectContains(std::string const& text, std::string const& piece) {
    EXPECT_NE(text.find(piece), std::string::npos) << "'" << piece << "' in: " << text;
}

// Red if defaults follow what was typed, or if the first of two wins.
TEST_F(Services, CreationAppliesDefaultsThenWhatWasTyped) {
    EXPECT_EQ(RecordingBox("probe~ @seed 3 @gains a 2 @level 9 @level 4").Get("seed"), "3 ");
    EXPECT_EQ(probeJournal, "gains a 2 level 4 ");
    probeJournal.clear();
    const ProbeBox defaults;
    EXPECT_EQ(probeJournal, "level 1.500000 gains 0.250000 -2.000000 ");
}

// Lines that no object signs go to the box at work, and to the host when none is.
TEST_F(Services, ConsoleLinesFindTheirBox) {
    std::string hostLines;
    max::Host::Get().SetConsole([&](max::ConsoleLevel, std::string const& text) { hostLines += text + "|"; });
    probe.Lines();
    max::post("%s %d", "nobody", 1);
    max::object_bug(probe.Object(), "%ld of %s", 3L, std::string(2000, 'x').c_str());
    EXPECT_EQ(hostLines, "nobody 1|");
    EXPECT_EQ(probe.Lines(), std::string("bug: 3 of ").append(2000, 'x') + "|");
    EXPECT_EQ(RecordingBox("wavelet~").Lines(), "error: wavelet~: no such object|");
    max::Host::Get().SetConsole(nullptr);
}

TEST_F(Services, HostRefusesWhatIsMissing) {
    t_object* const x = probe.Object();
    t_class* const c = max::object_class(x);
    long count = 0;
    t_atom number{}, *atoms = nullptr;
    t_symbol** names = nullptr;
    t_object* value = nullptr;
    t_symbol* const level = gensym("level");
    for (const t_max_err error :
         {max::class_addattr(nullptr, x), max::class_addattr(c, nullptr), attr_addfilter_clip(x, 0.0, 1.0, 1, 1),
          object_attr_getnames(nullptr, &count, &names), object_attr_getnames(x, nullptr, &names),
          object_attr_getnames(x, &count, nullptr), object_attr_getvalueof(nullptr, level, &count, &atoms),
          object_attr_getvalueof(x, level, nullptr, &atoms), object_attr_getvalueof(x, level, &count, nullptr),
          object_attr_setvalueof(nullptr, level, 1, &number), max::object_free(nullptr),
          object_notify(nullptr, level, nullptr), max::object_obex_store(nullptr, level, x),
          object_obex_lookup(nullptr, level, &value), object_obex_lookup(x, level, nullptr),
          symbolarray_sort(1, nullptr), symbolarray_sort(-1, &names[0]), max::class_register(nullptr, c),
          max::class_register(gensym("box"), nullptr)})
        EXPECT_EQ(error, MAX_ERR_INVALID_PTR);
    EXPECT_EQ(max::class_register(gensym("box"), c), MAX_ERR_DUPLICATE);
    for (char const* const name : {"nobody", "opaque1"})
        EXPECT_EQ(object_attr_setvalueof(x, gensym(name), 1, &number), MAX_ERR_GENERIC) << name;
    EXPECT_EQ(object_attr_setvalueof(x, level, 0, &number), MAX_ERR_NONE);
    EXPECT_EQ(object_attr_setvalueof(x, level, 1, nullptr), MAX_ERR_NONE);
    EXPECT_EQ(probe.Send("level loud"), "error: level: a number is expected, not \"loud\"|");
    EXPECT_EQ(probe.Send("table 1 two"), "error: table: a number is expected, not \"two\"|");
    for (auto const& [typed, selector] : {std::pair("7", "int"), std::pair("7.", "float"), std::pair("7 8", "list"),
                                          std::pair("opaque512 1", "opaque512")})
        EXPECT_EQ(probe.Send(typed), std::string("error: probe~: doesn't understand \"") + selector + "\"|");
    max::t_binbuf store;
    max::binbuf_append(&store, level, 1, &number);
    max::binbuf_insert(&store, level, 1, &number);
    max::binbuf_append(&store, nullptr, 1, &number);
    EXPECT_EQ(store.records.size() * 100 + store.records[0].size() * 10 + store.records[1].size(), 223u);
    EXPECT_EQ(probe.box.NumSignalInlets() + probe.box.NumSignalOutlets(), 0);
}

// Red if a record, its outlets or an attribute's copy stays behind.
TEST_F(Services, BoxesGiveTheirMemoryBack) {
    const auto used = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
    const auto make = [] {
        for (int i = 0; i < 100; ++i) ProbeBox().Send("postattributes");
        probeJournal.clear();
    };
    make();
    const std::size_t before = used();
    make();
    EXPECT_LT(used(), before + 2000);
}

// Red if one of the five reasons to hide an attribute fails, or if the order isn't that of the names.
TEST_F(Services, UsersSeeWhatIsTheirs) {
    EXPECT_EQ(GetListOfUserAttributes(probe.Object()),
              (std::vector<std::string>{"bypass", "gains", "hush", "level", "mode", "mute", "seed"}));
    ExpectContains(probe.Send("postattributes"), "post: error attribute invisible not typed long ??|");
    probe.Send("table 1 2 3");
    const auto names = GetListOfUserAttributes(probe.Object());
    EXPECT_EQ(names.back(), "table");
    EXPECT_EQ(GetNumberOfAtomsToStoreTheseAttributes(probe.Object(), names), 11u);
    EXPECT_EQ(GetNumberOfAttributes(probe.Object()), 17u);
    EXPECT_EQ(GetNumberOfVisibleAttributes(probe.Object()), 14u);
    EXPECT_TRUE(IsAttributeInvisible(probe.Object(), "externalversion"));
    EXPECT_FALSE(IsAttributeInvisible(probe.Object(), "nobody"));
}

TEST_F(Services, AttributesArePosted) {
    probe.Send("table 1 2");
    EXPECT_EQ(probe.Send("postattributes level"), "post: level : 1.500000 |");
    EXPECT_EQ(probe.Send("postattributes void"), "");
    EXPECT_EQ(probe.Send("postattributes nobody"), "error: no attribute nobody|");
    EXPECT_EQ(probe.Send("postattributes level mode"), "error: invalid postattributes message : level mode |");
    ExpectContains(probe.Send("postattributes"),
                   "post: found 8 attributes|post: bypass : 0 |post: gains : 0.250000 -2.000000 "
                   "|post: hush : 3.000000 |post: level : 1.500000 |post: mode : soft |post: mute : 0 |"
                   "post: seed : 6 |post: table : 1.000000 2.000000 |");
}

TEST_F(Services, DumpsLeaveInOneList) {
    probe.Send("dump");
    EXPECT_EQ(probe.Output(),
              "list bypass 0 , gains 0.250000 -2.000000 , hush 3.000000 , level 1.500000 , mode soft , mute 0 , "
              "seed 6 , |");
    EXPECT_EQ(probe.Send("dump invisible"), "");
    EXPECT_EQ(probe.Output(), "list invisible 3.000000 |");
    EXPECT_EQ(probe.Send("dump nobody"), "error: no attribute nobody|");
    EXPECT_EQ(probe.Send("dump 1"), "error: invalid dump message : 1 |");
    const float values[] = {1.0f, 0.5f};
    dump_float_array(probe.Object(), gensym("weights"), 2, values);
    EXPECT_EQ(probe.Output(), "weights 1.000000 0.500000 |");
    DumpAllAttributes(probe.Object(), nullptr);
    EXPECT_EQ(probe.Lines(), "error: no dump outlet|");
}

TEST_F(Services, ResetGoesThroughTheSettersInTheOrderOfNames) {
    probe.Send("level 3");
    probe.Send("seed 9");
    probe.Send("mute 1");
    probeJournal.clear();
    probe.Send("reset");
    EXPECT_EQ(probeJournal, "gains 0.250000 -2.000000 level 1.500000 ");
    EXPECT_EQ(probe.Record()->mute, 1);
    EXPECT_EQ(probe.Record()->seed, 9);
    EXPECT_EQ(probe.Send("reset seed"), "");
    EXPECT_EQ(probe.Send("reset hush"), "post: bug ? AttributeCanBeReset|");
    EXPECT_EQ(probe.Send("reset foo"), "error: no attribute foo|");
    EXPECT_EQ(probe.Send("reset a b"), "error: invalid reset message : a b |");
    ResetAttributeToDefault(probe.Object(), "seed", true, true);
    EXPECT_EQ(probe.Record()->seed, 6);
}

// What one object saves, another of its shape takes; one of another shape takes nothing of it.
TEST_F(Services, StateGoesFromObjectToObject) {
    for (char const* const message : {"level 4.1", "gains 1 2", "mode hard", "seed 3", "table 5 6"})
        probe.Send(message);
    const std::vector<t_atom> state = probe.box.GetState();
    ProbeBox other;
    EXPECT_EQ(other.box.SetState(state), -1);
    ExpectContains(other.Lines(), "error: setvalueof error (received 10 atoms. 8 atoms were expected)|");
    EXPECT_FLOAT_EQ(other.Record()->level, 1.5f);

    other.Send("table 0 0");
    EXPECT_EQ(other.box.SetState(state), 0);
    ExpectContains(other.Lines(), "post: 8 attributes (10 atoms) restored from the pattrstorage|");
    EXPECT_EQ(other.Record()->level, probe.Record()->level);
    EXPECT_STREQ(other.Record()->mode->s_name, "hard");
    EXPECT_EQ(other.Record()->table[1], 6.0f);
    EXPECT_EQ(other.box.SetState({}), 0);
    EXPECT_EQ(other.Lines(), "");
}

TEST_F(Services, RestoringGoesOnBehindWhatFails) {
    std::vector<t_atom> state = probe.box.GetState();
    probe.Lines();
    atom_setsym(&state[1], gensym("word"));  // gains take what they get
    atom_setfloat(&state[4], 99.0);          // level, through its filter
    atom_setsym(&state[6], gensym("loud"));  // mute
    EXPECT_EQ(probe.box.SetState(state), 0);
    EXPECT_EQ(probe.Record()->level, 6.0f);
    const std::string lines = probe.Lines();
    ExpectContains(lines, "error: MAX_ERR_GENERIC in object_attr_setvalueof mute|");
    ExpectContains(lines, "post: 7 attributes (8 atoms) restored");

    // An atom that no state holds moves all others up, until the list runs dry.
    atom_setobj(&state[0], nullptr);
    EXPECT_EQ(probe.box.SetState(state), -1);
    const std::string dry = probe.Lines();
    ExpectContains(dry, "warn: unknown atom type in orvanmax_setvalueof|");
    ExpectContains(dry, "error: error reading atoms in orvanmax_setvalueof|");
}

TEST_F(Services, PresetsComeBackAsMessages) {
    probe.Send("level 2");
    const std::vector<t_atom> preset = probe.box.StorePreset();
    ASSERT_EQ(preset.size(), 11u);
    EXPECT_STREQ(atom_getsym(&preset[1])->s_name, "probe~");
    EXPECT_STREQ(atom_getsym(&preset[2])->s_name, "recallpreset");
    probe.Send("level 5");
    EXPECT_TRUE(probe.box.RecallPreset(preset));
    EXPECT_EQ(probe.Record()->level, 2.0f);
    EXPECT_FALSE(ProbeBox().box.RecallPreset(preset));
    EXPECT_TRUE(probe.box.RecallPreset({preset.begin(), preset.begin() + 3}));  // of an object without a state
    EXPECT_FALSE(probe.box.RecallPreset({preset.begin(), preset.begin() + 2}));
    EXPECT_FALSE(probe.box.RecallPreset({preset[0], preset[1], preset[3]}));
    EXPECT_EQ(probe.Send("recallpreset"), "");
    probe.Send("preset");  // into no buffer
}

TEST_F(Services, ObjectsSayWhatTheyHold) {
    t_object* const x = probe.Object();
    const float floats[] = {1.0f, -0.5f};
    const double doubles[] = {2.0, 0.25};
    const auto word = max::ParseAtoms("w 3");
    post_float_array(x, floats, 2, "f");
    post_double_array(x, doubles, 2, "d");
    post_float_array(x, floats, -1, "none");
    post_warning_message(x, 2, word.data(), "odd");
    for (const long error : {-1L, -2L, -3L, -4L, -5L}) object_post(x, "%s", HostErrorName(error));
    EXPECT_EQ(probe.Lines(),
              "post: f : 1.000000 -0.500000 |post: d : 2.000000 0.250000 |post: none : |warn: odd : w 3 |"
              "post: MAX_ERR_GENERIC|post: MAX_ERR_INVALID_PTR|post: MAX_ERR_DUPLICATE|post: MAX_ERR_OUT_OF_MEM|post: "
              "unknown MAX_ERR|");
    using Lume::HOADecoder, Lume::HOAPanning;
    post_hoa_infos(x, HOAPanning::HOAPannerInfos{3, HOAPanning::N3D, Lume::AlternateDegrees}, "p");
    post_hoa_infos(x,
                   HOADecoder::HOADecoderInfos{2, HOADecoder::pseudoinverse, HOADecoder::maxre, 0, HOADecoder::SN3D,
                                               1.236, 0.0, 0.0, Lume::IncreasingDegrees},
                   "d");
    EXPECT_EQ(
        probe.Lines(),
        "post: p : order : 3 |post: p : encoding convention : N3D|post: p : sorting convention : AlternateDegrees|"
        "post: d : order : 2 |post: d : subtype : 2D |post: d : decoding method : pseudoinverse|post: d : decoding "
        "type : maxre|"
        "post: d : decoding convention : SN3D|post: d : decoder matrix conditionning : 1.24 dB|post: d : sorting "
        "convention : IncreasingDegrees|");
    const Lume::HrtfHeaderInfos set{"me",
                                    "you",
                                    "free",
                                    Lume::hrtfBinaural,
                                    Lume::hrtfFIR,
                                    Lume::itdExtracted,
                                    Lume::dataInterpolated,
                                    "original",
                                    "between",
                                    128,
                                    2,
                                    44100,
                                    187,
                                    ""};
    const Lume::SphericalHarmonicBasisXmlInfo harmonics{
        "me", "you", "free", Lume::hrtfBinaural, Lume::hrtfSHCoeff, Lume::SchmidtSeminormalized3D, 4, 65,
        2,    44100, 187};
    post_hrtf_xml_infos(x, nullptr, "h");
    post_sh_xml_infos(x, nullptr, "h");
    EXPECT_EQ(probe.Lines(), "");
    post_hrtf_xml_infos(x, &set, "h");
    ExpectContains(probe.Lines(),
                   "|post: h : interpolation set : between |post: h : coefficients : 128|post: h : channels : 2|");
    post_sh_xml_infos(x, &harmonics, "h");
    ExpectContains(probe.Lines(),
                   "|post: h : maxOrder : 4|post: h : numFrequencyBins : 65|post: h : channels : 2|post: h : sampling "
                   "rate : 44100|");
}

// The whole file of a small class, as text: order, blank lines and all.
TEST_F(Services, ReferenceFileHoldsTheClass) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(testing::TempDir());
    probe.Send("generatexml");
    std::ifstream file("probe~.ref.xml");
    const std::string text(std::istreambuf_iterator<char>(file), {});
    std::filesystem::remove("probe~.ref.xml");
    std::filesystem::current_path(before);
    EXPECT_EQ(text.substr(0, text.find("<attribute>")),
              "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\n"
              "<?xml-stylesheet type=\"text/xsl\" href=\"orvan.xsl\"?>\n"
              "<external>\n<name>probe~</name>\n\n<version>1.2.3</version>\n\n"
              "<copyright>Copyright (c) 2026 The orvanverb~ developers</copyright>\n\n<brief>A probe</brief>\n\n");
    ExpectContains(text,
                   "<attribute>\n<name>level</name>\n<brief>how loud</brief>\n<type>float32</type>\n"
                   "<default>1.50</default>\n<min>-6.00</min>\n<max>6</max>\n<units>dB</units>\n<enum></enum>\n"
                   "<category>sound</category>\n<description>turns it up</description>\n</attribute>\n\n"
                   "<attribute>\n<name>mode</name>");
    ExpectContains(text, "<enum>soft hard  </enum>");
    EXPECT_EQ(
        text.substr(text.find("<method>")),
        "<method>\n<name>version</name>\n</method>\n<method>\n<name>postattributes</name>\n</method>\n"
        "<method>\n<name>dump</name>\n</method>\n<method>\n<name>reset</name>\n</method>\n"
        "<method>\n<name>postdspstatus</name>\n</method>\n<method>\n<name>clear</name>\n</method>\n</external>\n");
}

}  // namespace
