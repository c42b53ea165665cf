#include "max/box.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "max/api.h"
#include "max/host.h"
#include "support/allocation_count.h"

namespace {

using namespace max;

/// A signal object that scales its inputs, and writes down what its setter gets.
struct t_scaler {
    t_pxobject ob;
    std::int32_t on;
    float level;
    t_symbol* word;
    std::uint32_t tableCount;
    float table[4];
    float pair[2];
    float* in;
    float* out;
};

std::string journal;  // what setters and messages were called with

std::string Text(long count, t_atom const* atoms) {
    std::string text;
    for (long i = 0; i < count; ++i) text.append(" ").append(AtomText(atoms[i]));
    return text;
}

t_max_err SetLogged(t_scaler* x, t_attr* attribute, long count, t_atom* atoms) {
    journal += attribute->name->s_name + Text(count, atoms) + ";";
    if (attribute->name == gensym("level")) x->level = atom_getfloat(atoms);
    return MAX_ERR_NONE;
}

void* NewScaler(t_symbol*, short count, t_atom* atoms);
void FreeScaler(t_scaler* x) {
    z_dsp_free(&x->ob);
    journal += "free;";
}
void Take(t_scaler*, t_symbol* selector, long count, t_atom* atoms) {
    journal += selector->s_name + Text(count, atoms) + ";";
}
void Bare(t_scaler*) {
    journal += "bare;";
}
t_int* Perform(t_int* w) {
    auto* const x = reinterpret_cast<t_scaler*>(w[1]);  // NOLINT(performance-no-int-to-ptr): words are pointers
    for (t_int i = 0; i < w[2]; ++i) x->out[i] = x->in[i] * x->level;
    return w + 3;
}
void Dsp(t_scaler* x, t_signal** signals, short*) {
    x->in = signals[0]->s_vec;
    x->out = signals[1]->s_vec;
    dsp_add(Perform, 2, reinterpret_cast<t_int>(x), static_cast<t_int>(signals[0]->s_n));
    dsp_add(Perform, 2, reinterpret_cast<t_int>(x), static_cast<t_int>(1));
}

t_class* scalerClass;

void* NewScaler(t_symbol*, short count, t_atom* atoms) {
    auto* const x = static_cast<t_scaler*>(object_alloc(scalerClass));
    t_dictionary* const attributes = object_dictionaryarg(count, atoms);
    if (count > 1 && atom_getsym(atoms) == gensym("refuse")) return nullptr;
    attr_dictionary_process(x, attributes);
    attr_dictionary_process(x, attributes);
    z_dsp_setup(&x->ob, 1);
    outlet_new(x, "signal");
    object_obex_store(x, gensym("dumpout"), static_cast<t_object*>(outlet_new(x, nullptr)));
    return x;
}

template <class Function>
method Method(Function* function) {
    return reinterpret_cast<method>(function);
}

void Register() {
    if (scalerClass != nullptr) return;
    t_common_symbols_table const& types = *common_symbols_init();
    t_class* const c =
        class_new("scaler~", Method(NewScaler), Method(FreeScaler), sizeof(t_scaler), nullptr, A_GIMME, 0);
    c->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    class_addmethod(c, Method(Take), "take", A_GIMME, 0);
    class_addmethod(c, Method(Bare), "bare", 0);
    class_addmethod(c, Method(Dsp), "dsp", A_CANT, 0);
    t_object* const on = attr_offset_new("on", types.s_long, 0, nullptr, nullptr, calcoffset(t_scaler, on));
    class_addattr(c, on);
    t_object* const level =
        attr_offset_new("level", types.s_float32, 0, nullptr, Method(SetLogged), calcoffset(t_scaler, level));
    class_addattr(c, level);
    attr_addfilter_clip(level, -1.0, 2.5, 1, 1);
    class_attr_addattr_parse(c, "level", "default", types.s_float32, 0, "0.500000");
    class_addattr(
        c, attr_offset_new("word", types.s_symbol, ATTR_SET_OPAQUE_USER, nullptr, nullptr, calcoffset(t_scaler, word)));
    class_addattr(c, attr_offset_array_new("table", types.s_float32, 4, 0, nullptr, nullptr,
                                           calcoffset(t_scaler, tableCount), calcoffset(t_scaler, table)));
    class_addattr(c, attr_offset_array_new("pair", types.s_float32, 2, 0, nullptr, Method(SetLogged), 0,
                                           calcoffset(t_scaler, pair)));
    class_attr_addattr_parse(c, "pair", "default", types.s_float32, 0, "1. 2.");
    EXPECT_EQ(class_attr_addattr_parse(c, "nobody", "label", types.s_symbol, 0, "a label"), MAX_ERR_GENERIC);
    class_dspinit(c);
    EXPECT_EQ(class_register(types.s_box, c), MAX_ERR_NONE);
    EXPECT_EQ(class_register(types.s_box, c), MAX_ERR_DUPLICATE);
    scalerClass = c;
}

class BoxTest : public testing::Test {
protected:
    void SetUp() override {
        Register();
        journal.clear();
    }
    BoxListener Listen() {
        return {[this](ConsoleLevel level, std::string const& text) {
                    console += std::string(ConsoleLevelName(level)) + ": " + text + "\n";
                },
                [this](t_symbol* what) { notified += std::string(what->s_name) + " "; }, nullptr};
    }
    static std::string Value(Box& box, char const* name) {
        const auto value = box.GetAttribute(name);
        return value ? Text(static_cast<long>(value->size()), value->data()) : "none";
    }

    std::string console, notified;
};

TEST(Atom, WordsAreReadAsTheyAreTyped) {
    struct Case {
        char const* word;
        long type;
        float value;
    };
    const float infinity = std::numeric_limits<float>::infinity();
    for (auto const& [word, type, value] :
         {Case{"12", A_LONG, 12.0f}, Case{"-7", A_LONG, -7.0f}, Case{"+3", A_LONG, 3.0f}, Case{"1.", A_FLOAT, 1.0f},
          Case{"-.5", A_FLOAT, -0.5f}, Case{"2e3", A_FLOAT, 2000.0f}, Case{"1E-2", A_FLOAT, 0.01f},
          Case{"99999999999999999999", A_FLOAT, 1e20f}, Case{"-1e999", A_FLOAT, -infinity},
          Case{"1e-999", A_FLOAT, 0.0f}, Case{"x++", A_SYM, 0.0f}, Case{"-", A_SYM, 0.0f}, Case{"1e", A_SYM, 0.0f},
          Case{"1-2", A_SYM, 0.0f}, Case{"+-5", A_SYM, 0.0f}, Case{"nan", A_SYM, 0.0f}, Case{"inf", A_SYM, 0.0f},
          Case{"0x10", A_SYM, 0.0f}}) {
        const auto atoms = ParseAtoms(std::string("\t ") + word + "  ");
        ASSERT_EQ(atoms.size(), 1u) << word;
        EXPECT_EQ(atom_gettype(atoms.data()), type) << word;
        EXPECT_EQ(atom_getfloat(atoms.data()), value) << word;
    }
    EXPECT_TRUE(ParseAtoms(" \t\r").empty());
    t_atom huge{};
    atom_setfloat(&huge, 1e30);
    EXPECT_EQ(atom_getlong(&huge), std::numeric_limits<long>::max());
}

TEST(Symbol, IsUniqueAndSortsByItsText) {
    EXPECT_EQ(gensym("early"), gensym(std::string("early").c_str()));
    t_symbol* names[] = {gensym("early_start"), gensym("tr0"), gensym("early"), gensym("earl")};
    symbolarray_sort(4, names);
    EXPECT_STREQ(names[0]->s_name, "earl");
    EXPECT_STREQ(names[1]->s_name, "early");
    EXPECT_STREQ(names[3]->s_name, "tr0");
}

// Red if defaults follow what was typed, if the first of two wins, or if the passes of a constructor warn twice.
TEST_F(BoxTest, CreationAppliesDefaultsThenWhatWasTypedInOrder) {
    const Box box("scaler~ 5 @pair a 1 @level 9 @foo 3 @word x @level 1.5 @on", Listen());
    ASSERT_NE(box.Object(), nullptr);
    EXPECT_EQ(journal, "pair a 1;level 1.500000;pair a 1;level 1.500000;");
    EXPECT_EQ(console,
              "warn: scaler~: \"foo\" is not an attribute that can be set\n"
              "warn: scaler~: \"word\" is not an attribute that can be set\n");
    journal.clear();
    const Box defaults("scaler~", Listen());
    EXPECT_EQ(journal, "level 0.500000;pair 1.000000 2.000000;level 0.500000;pair 1.000000 2.000000;");
    EXPECT_EQ(defaults.NumSignalInlets(), 1);
    EXPECT_EQ(defaults.NumSignalOutlets(), 1);
}

TEST_F(BoxTest, RefusedAndUnknownObjectsLeaveAnEmptyBox) {
    Box refused("scaler~ refuse", Listen());
    EXPECT_EQ(refused.Object(), nullptr);
    EXPECT_FALSE(refused.Send("bare"));
    refused.StartAudio(44100.0f, 64);
    EXPECT_FALSE(refused.AudioRuns());
    EXPECT_TRUE(refused.GetState().empty());
    EXPECT_EQ(Box("wavelet~", Listen()).Object(), nullptr);
    EXPECT_EQ(console, "error: wavelet~: no such object\n");
}

TEST_F(BoxTest, AttributesAreCheckedClippedAndConverted) {
    Box box("scaler~", Listen());
    journal.clear();
    EXPECT_TRUE(box.Send("level 7"));
    EXPECT_TRUE(box.Send("level -3.5"));
    EXPECT_TRUE(box.Send("level loud"));
    EXPECT_TRUE(box.Send("pair start 2"));
    EXPECT_EQ(journal, "level 2.500000;level -1.000000;pair start 2;");
    EXPECT_EQ(console, "error: level: a number is expected, not \"loud\"\n");
    EXPECT_EQ(notified, "");  // setters of their own tell the box themselves

    console.clear();
    box.Send("on 1.9");
    EXPECT_EQ(Value(box, "on"), " 1");
    box.Send("on");
    EXPECT_EQ(notified, "modified ");
    box.Send("table 1 2 3 4 5");
    EXPECT_EQ(Value(box, "table"), " 1.000000 2.000000 3.000000 4.000000");
    box.Send("table 7 x");
    box.Send("table 8 9");
    EXPECT_EQ(Value(box, "table"), " 8.000000 9.000000");
    EXPECT_EQ(console, "error: table: a number is expected, not \"x\"\n");
    EXPECT_EQ(Value(box, "nobody"), "none");
}

TEST_F(BoxTest, MessagesReachWhatTheUserMaySend) {
    Box box("scaler~", Listen());
    journal.clear();
    EXPECT_TRUE(box.Send("take 1 two 3."));
    EXPECT_TRUE(box.Send("bare surplus 1"));
    EXPECT_TRUE(box.Send("   "));
    for (char const* const unknown : {"dsp", "word x", "nothing", "3", "3.5", "3 4"}) EXPECT_FALSE(box.Send(unknown));
    EXPECT_EQ(journal, "take 1 two 3.000000;bare;");
    std::string expected;
    for (char const* const name : {"dsp", "word", "nothing", "int", "float", "list"})
        expected += std::string("error: scaler~: doesn't understand \"") + name + "\"\n";
    EXPECT_EQ(console, expected);
}

// The chain runs every callback with its own words; freeing stops it first.
TEST_F(BoxTest, AudioRunsThroughTheChainWithoutAllocation) {
    std::vector<float> in(8, 1.0f), out(8, 0.0f);
    float* ins[] = {in.data()};
    float* outs[] = {out.data()};
    {
        Box box("scaler~ @level 2", Listen());
        box.Process(ins, outs);
        EXPECT_EQ(out[0], 0.0f);
        box.StartAudio(48000.0f, 4);
        box.StartAudio(44100.0f, 8);
        const long before = AllocationCount();
        box.Process(ins, outs);
        EXPECT_EQ(AllocationCount(), before);
        EXPECT_EQ(out, std::vector<float>(8, 2.0f));
        box.Process(ins, ins);
        EXPECT_EQ(in, std::vector<float>(8, 2.0f));
        journal.clear();
    }
    EXPECT_EQ(journal, "free;");
}

TEST_F(BoxTest, OutletsSendToTheListener) {
    std::string sent;
    BoxListener listener = Listen();
    listener.output = [&sent](long outlet, t_symbol* selector, std::vector<t_atom> const& atoms) {
        sent +=
            std::to_string(outlet) + " " + selector->s_name + Text(static_cast<long>(atoms.size()), atoms.data()) + ";";
    };
    const Box box("scaler~", listener);
    t_object* dumpOutlet = nullptr;
    ASSERT_EQ(object_obex_lookup(box.Object(), gensym("dumpout"), &dumpOutlet), MAX_ERR_NONE);
    EXPECT_EQ(object_obex_lookup(box.Object(), gensym("other"), &dumpOutlet), MAX_ERR_GENERIC);
    auto atoms = ParseAtoms("1 2.5 word");
    outlet_list(dumpOutlet, nullptr, 3, atoms.data());
    outlet_anything(dumpOutlet, gensym("gains"), 2, atoms.data());
    EXPECT_EQ(sent, "1 list 1 2.500000 word;1 gains 1 2.500000;");
}

// Lines that no object signs go to the box at work, and to the host when none is.
TEST_F(BoxTest, ConsoleLinesFindTheirBox) {
    std::string hostLines;
    Host::Get().SetConsole([&hostLines](ConsoleLevel, std::string const& text) { hostLines += text + "\n"; });
    Box box("scaler~", Listen());
    post("%s %d", "nobody", 1);
    object_bug(box.Object(), "%ld of %s", 3L, std::string(2000, 'x').c_str());
    EXPECT_EQ(hostLines, "nobody 1\n");
    EXPECT_EQ(console, std::string("bug: 3 of ").append(2000, 'x') + "\n");
    Host::Get().SetConsole(nullptr);
}

}  // namespace
