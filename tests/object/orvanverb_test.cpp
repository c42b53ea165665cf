#include "object/orvanverb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "geometry/vector_algebra.h"
#include "object/message_remarks.h"
#include "object/orvanverb_class.h"
#include "object/orvanverb_table.h"
#include "object/probe_object.h"
#include "object/recording_box.h"
#include "object/room_exchange.h"
#include "patcher/atom.h"
#include "support/allocation_count.h"

namespace {

/// A box of orvanverb~ with the buffers of its signals.
class OrvanBox : public RecordingBox {
public:
    explicit OrvanBox(std::string const& attributes = "")
        : RecordingBox((orvanverb_main(), "orvanverb~ " + attributes)) {}
    orvanverb_t* Record() { return reinterpret_cast<orvanverb_t*>(Object()); }

    /// Starts audio and makes buffers; inputs hold ones, outputs sevens.
    void Start(float rate, long vectorSize) {
        box.StartAudio(rate, vectorSize);
        const auto make = [vectorSize](auto& channels, auto& pointers, long number, float value) {
            channels.assign(static_cast<std::size_t>(number), std::vector(static_cast<std::size_t>(vectorSize), value));
            pointers.clear();
            for (auto& channel : channels) pointers.push_back(channel.data());
        };
        make(in, ins, box.NumSignalInlets(), 1.0f);
        make(out, outs, box.NumSignalOutlets(), 7.0f);
    }
    void Feed(float value) {
        for (auto& channel : in) std::fill(channel.begin(), channel.end(), value);
    }
    /// Runs some vectors; the peak of each output.
    std::vector<float> Run(int vectors) {
        std::vector<float> peaks(out.size(), 0.0f);
        for (int i = 0; i < vectors; ++i) {
            box.Process(ins.data(), outs.data());
            for (std::size_t c = 0; c < out.size(); ++c)
                for (const float sample : out[c]) peaks[c] = std::max(peaks[c], std::fabs(sample));
        }
        return peaks;
    }

    std::vector<std::vector<float>> in, out;
    std::vector<float*> ins, outs;
};

/// One that stands in the default layouts.
class PlacedBox : public OrvanBox {
public:
    explicit PlacedBox(std::string const& attributes) : OrvanBox(attributes) {
        orvanverb_place_defaults(Record(), true, true);
    }
};

bool AllZero(std::vector<float> const& peaks) {
    return std::all_of(peaks.begin(), peaks.end(), [](float peak) { return !(peak > 0.0f); });
}

// Red if a setting stops at the record, if not a number passes the clip, or if a name without a value takes the default
// away.
TEST(OrvanverbObject, WhatItIsToldReachesTheEngine) {
    OrvanBox box("@tr0 @airfreq 321 @early_end");
    EXPECT_EQ(box.Record()->engine->GetAirAbsorptionRolloffFrequency(), 321.0f);
    EXPECT_EQ(box.Get("tr0") + box.Get("early_end"), "1.995000 39.709999 ");
    box.Send("reverb airfreq 654");
    EXPECT_EQ(box.Record()->engine->GetAirAbsorptionRolloffFrequency(), 654.0f);
    t_atom nan;
    atom_setfloat(&nan, std::nan(""));
    object_attr_setvalueof(box.Object(), gensym("tr0"), 1, &nan);
    EXPECT_EQ(box.Get("tr0"), "0.100000 ");
    EXPECT_EQ(box.Record()->engine->GetReverbParameters().decayTime, 0.1f);
}

// What creation promises: sizes from the attributes, then defaults, then what was typed, and one warning of two passes.
TEST(OrvanverbObject, IsMadeOfItsAttributes) {
    OrvanBox box("@tr0 3.5 @numsources 2 @numspeakers 5 @numinternals 12 @early start 33 @bogus 1");
    ASSERT_NE(box.Object(), nullptr);
    EXPECT_EQ(box.Lines(), "warn: orvanverb~: \"bogus\" is not an attribute that can be set|");
    EXPECT_EQ(box.box.NumSignalInlets(), 2);
    EXPECT_EQ(box.box.NumSignalOutlets(), 5);
    EXPECT_EQ(box.Record()->ob.z_misc, 1);
    EXPECT_EQ(box.Get("tr0") + box.Get("early_start") + box.Get("gain"), "3.500000 33.000000 0.000000 ");
    EXPECT_EQ(box.Get("sourcespositions"), "0.000000 0.000000 0.000000 0.000000 0.000000 0.000000 ");
    EXPECT_EQ(box.box.Assist(1, 1) + box.box.Assist(2, 4), "source 2speaker 5");
    EXPECT_EQ(box.box.Assist(1, 2) + box.box.Assist(2, 5) + box.box.Assist(3, 0), "");
    EXPECT_EQ(OrvanBox("@numsources 65").box.NumSignalInlets(), 64);
    EXPECT_EQ(box.Send("dump"), "error: no dump outlet|");
    EXPECT_EQ(box.Send("reset delays"), "warn: attribute delays doesnt have a default value|");
}

// Red if a front is silent where the object drops or bends what it was told, or says so twice.
TEST(OrvanverbObject, RemarksTellWhatAMessageLoses) {
    OrvanBox box("@numsources 2 @numspeakers 2");
    const std::pair<char const*, char const*> cases[] = {
        {"clear now", "clear: only the word itself counts, not now|"},
        {"mute", "mute: a value is missing, 0 or 1|"},
        {"mute 2", "mute: 2 is not 0 or 1, and counts as 1|"},
        {"bypass 1 0.5 x", "bypass: only the first value counts, not 0.5 x|"},
        {"reverb tr0 1 2", "reverb tr0: only the first value counts, not 2|"},
        {"reverb tr0 1", ""},
        {"reverb tr0 20", "tr0: 20 is not from 0.1 to 10 s, the nearest is taken (said once)|"},
        {"reverb start 900", "reverb_start: 900 is not from 1 to 500 ms, the nearest is taken (said once)|"},
        {"numsources 7 8", ""},
        {"room", "room: values are missing, a level and three gains in dB and two frequencies in Hz|"},
        {"room 20 0 0 0 300 3000", "room_gain: 20 is not from -60 to 10 dB, the nearest is taken (said once)|"},
        {"early start 900", ""},
        {"sourcespositions 1 2 3 4 5 6", ""},
        {"sourcespositions 1 2 3 4 5 6 7", "sourcespositions: only what stands for 2 positions counts, not 7|"},
        {"speakerspositions 1 2 3 4 5 6 7 8", "speakerspositions: only what stands for 2 positions counts, not 7 8|"},
        {"tr0", "tr0: a value is missing, a number from 0.1 to 10 s|"},
        {"tr0 9 8", "tr0: only the first value counts, not 8|"},
        {"tr0 long", ""},
        {"air", "air: a value is missing, 0 or 1|"},
    };
    for (auto const& [message, expected] : cases) {
        auto atoms = max::ParseAtoms(message);
        const std::string selector = atom_getsym(atoms.data())->s_name;
        atoms.erase(atoms.begin());
        orvanverb::MessageRemarks remarks;
        std::string text;
        for (std::string const& line : remarks.Of(*box.Record(), selector, atoms)) text += line + "|";
        EXPECT_EQ(text, expected) << message;
        EXPECT_TRUE(remarks.Of(*box.Record(), selector, atoms).empty()) << message;
    }
}

TEST(OrvanverbObject, CreationFailsLoudly) {
    OrvanBox one("@numspeakers 1");
    EXPECT_EQ(one.Lines(), "error: Configuration not supported|error: couldnt create object|");
    EXPECT_FALSE(one.box.Send("clear"));
    one.box.StartAudio(44100.0f, 64);
    EXPECT_FALSE(one.box.AudioRuns());
    EXPECT_TRUE(one.box.GetState().empty());
    OrvanBox delays("@delays 1 2 3 4 5 6 7 -8");
    EXPECT_NE(delays.Lines().find("couldnt set delays because reverb is not yet initialized"), std::string::npos);
    EXPECT_EQ(delays.Get("delays"), "1.000000 2.000000 3.000000 4.000000 5.000000 6.000000 7.000000 0.000000 ");
}

// Mute wins over bypass, bypass copies what both sides have, the switch of the patcher mutes; the room rings on below.
TEST(OrvanverbAudio, SwitchesChooseWhatTheCallbackDoes) {
    PlacedBox box("@numsources 2 @numspeakers 5");
    box.Run(1);
    box.Start(48000.0f, 64);
    const std::vector<float> normal = box.Run(400);
    EXPECT_GT(*std::max_element(normal.begin(), normal.end()), 0.1f);

    const long before = AllocationCount();
    box.Record()->mute = 1;
    box.box.Process(box.ins.data(), box.outs.data());
    box.Record()->mute = 0;
    box.box.Process(box.ins.data(), box.outs.data());
    EXPECT_EQ(AllocationCount(), before);

    box.Send("bypass 1");
    EXPECT_EQ(box.Run(1), (std::vector<float>{1.0f, 1.0f, 0.0f, 0.0f, 0.0f}));
    box.Send("mute 1");
    EXPECT_TRUE(AllZero(box.Run(1)));
    box.Send("mute 0");
    box.Send("bypass 0");
    box.box.Enable(false);
    EXPECT_TRUE(AllZero(box.Run(1)));
    box.box.Enable(true);
    EXPECT_FALSE(AllZero(box.Run(1)));
}

TEST(OrvanverbAudio, ClearAndASecondStartSilenceTheRoom) {
    PlacedBox box("@numsources 1 @numspeakers 6");
    EXPECT_EQ(box.Get("speakerspositions").substr(0, 27), "-0.707107 0.707107 0.000000");  // front left
    Lume::OrvanVerb const* const engine = box.Record()->engine;
    box.Start(44100.0f, 64);
    box.Run(400);
    box.Feed(0.0f);
    EXPECT_FALSE(AllZero(box.Run(1)));
    box.Send("clear");
    EXPECT_TRUE(AllZero(box.Run(1)));
    box.Feed(1.0f);
    box.Run(100);
    box.Start(96000.0f, 1);
    EXPECT_TRUE(box.box.AudioRuns());
    box.Start(96000.0f, 32);
    box.Feed(0.0f);
    EXPECT_TRUE(AllZero(box.Run(1)));
    EXPECT_EQ(box.Record()->engine, engine);
    EXPECT_EQ(engine->GetSamplerate(), 96000.0f);
    EXPECT_EQ(engine->GetBuffersize(), 32u);
    EXPECT_EQ(box.Record()->inputs[0], box.Record()->outputs[0] - 32);  // one after the other in the host's memory
}

TEST(OrvanverbAudio, CallbackWithoutEngineLeavesTheOutputsAlone) {
    OrvanBox box("@numspeakers 3 @numsources 1");
    box.Start(44100.0f, 64);
    Lume::OrvanVerb* const engine = box.Record()->engine;
    box.Record()->engine = nullptr;
    box.Record()->mute = 1;
    box.Record()->outputs[0][5] = 3.0f;
    box.Run(1);
    EXPECT_EQ(box.out[0][5], 3.0f);
    box.Record()->engine = engine;
}  // and is freed with audio set up

/// What an object plays for an impulse at each source, all outputs one after the other.
std::vector<float> Response(OrvanBox& box) {
    box.Start(48000.0f, 64);
    box.Feed(0.0f);
    box.Run(200);  // until every gain has risen
    std::vector<float> response;
    for (int i = 0; i < 300; ++i) {
        for (auto& channel : box.in) channel[0] = i == 0 ? 1.0f : 0.0f;
        box.Run(1);
        for (auto const& channel : box.out) response.insert(response.end(), channel.begin(), channel.end());
    }
    return response;
}

/// The message that sets one control, in the object's way: a shelf's value goes with the five others.
std::string MessageFor(PlacedBox& box, Lume::RoomControl const& control, std::string const& value) {
    orvanverb::Attribute const& attribute = *orvanverb::FindAttribute(control.attribute);
    if (attribute.setting != orvanverb::Setting::shelf) return std::string(control.name) + " " + value;
    std::string message = attribute.name;
    for (unsigned int i = 0; i < orvanverb_t::NumShelfValues; ++i)
        message +=
            " " + (i == control.element ? value : std::to_string(orvanverb::Field<float>(box.Record(), attribute)[i]));
    return message;
}

// Two objects, with nothing at its default so that every control is heard; one is told by message, the other one's
// engine by the setter alone. Red if a control goes to another's place, or nowhere.
TEST(OrvanverbAudio, ControlsReachTheirPlaceInTheEngine) {
    for (Lume::RoomControl const& control : Lume::roomControls) {
        const std::string value = std::string("air") == control.name ? "0"
                                  : control.scale == Lume::Scale::onOff
                                      ? "1"
                                      : std::to_string(0.4f * control.least + 0.6f * control.greatest);
        std::vector<float> untouched, told, set;
        for (std::vector<float>* const heard : {&untouched, &told, &set}) {
            PlacedBox box("@numsources 2 @numspeakers 4 @air 1");
            for (char const* const layer : {"direct", "room", "early", "cluster"})
                box.Send(std::string(layer) + " 1 5 -3 -9 300 3000");
            if (heard == &told) box.Send(MessageFor(box, control, value));
            if (heard == &set) control.set(*box.Record()->engine, std::stof(value));
            *heard = Response(box);
        }
        EXPECT_TRUE(told == set) << control.name;
        EXPECT_FALSE(told == untouched) << control.name;
    }
}

// What is heard is what is stored: state and sound of one object, restored into another, bit for bit.
TEST(OrvanverbState, RestoredObjectSoundsTheSame) {
    PlacedBox first("@numsources 2 @numspeakers 5 @numinternals 6");
    for (char const* const message :
         {"source 1 ade -70 3 10", "source 2 xyz 1 2 3", "speakers az -31 1 32 111 -112", "tr0 0.7",
          "room 1 2 3 4 300 3000", "early start 14.5", "modaldensity 1.1", "air 1", "bypass 0", "delays 1 2 3 4 5 6"})
        EXPECT_EQ(first.Send(message), "") << message;
    const std::vector<t_atom> state = first.box.GetState();
    OrvanBox second("@numsources 2 @numspeakers 5 @numinternals 6");
    EXPECT_EQ(second.box.SetState(state), 0);
    EXPECT_EQ(second.Lines(),
              "post: 32 attributes (" + std::to_string(state.size()) + " atoms) restored from the pattrstorage|");
    first.Start(48000.0f, 64);
    second.Start(48000.0f, 64);
    for (int i = 0; i < 300; ++i) {
        first.Run(1);
        second.Run(1);
        ASSERT_EQ(first.out, second.out) << "vector " << i;
    }

    OrvanBox other("@numsources 3 @numspeakers 5 @numinternals 6");
    EXPECT_EQ(other.box.SetState(state), -1);
    EXPECT_EQ(other.Get("tr0"), "1.995000 ");
}

// The same between record and room, as fronts save it: also what the room doesn't know.
TEST(OrvanverbState, RoomAndRecordExchangeIt) {
    PlacedBox first("@numsources 2 @numspeakers 4 @numinternals 4"),
        second("@numsources 2 @numspeakers 4 @numinternals 4");
    for (char const* const message : {"bypass 1", "air 1", "tr0 3", "cluster 1 2 3 4 300 3000", "delays 0 0 3.5 0.001",
                                      "source 2 xyz 1 2 3", "speakers az -31 32 111 -112"})
        first.Send(message);
    Lume::RoomState state = orvanverb_save_state(first.Record());
    EXPECT_TRUE(state.bypass && !state.mute);
    EXPECT_EQ(state.unknown, std::vector<std::string>{"delays 0 0 3.5 0.001"});
    second.Notifications();
    orvanverb_restore_state(second.Record(), state);
    EXPECT_EQ(second.Notifications(), 1);
    EXPECT_EQ(second.State(), first.State());
    EXPECT_EQ(orvanverb_save_state(second.Record()).Text(), state.Text());
    second.box.Enable(false);
    EXPECT_TRUE(orvanverb_save_state(second.Record()).mute);
    std::swap(state.mute, state.bypass);
    state.unknown = {"late_width 1 2 3 4"};
    state.controls[Lume::ControlIndex("air")] = 0.0f;
    orvanverb_restore_state(second.Record(), state);
    EXPECT_EQ(second.Get("mute") + second.Get("bypass") + second.Get("air") + second.Get("delays"),
              "1 0 0 0.000000 0.000000 0.000000 0.000000 ");
    EXPECT_EQ(orvanverb_save_state(second.Record()).unknown, state.unknown);
    EXPECT_EQ(orvanverb_record(second.Object()), second.Record());
    EXPECT_TRUE(orvanverb_record(ProbeBox().Object()) == nullptr && orvanverb_record(nullptr) == nullptr);
}

TEST(OrvanverbState, PositionsStayWithinReach) {
    PlacedBox box("@numsources 2 @numspeakers 4");
    const auto limited = [&](char const* message) {
        const auto before = orvanverb_source_positions(box.Record());
        box.Send(message);
        return orvanverb_limit_positions(box.Record(), before);
    };
    EXPECT_FALSE(limited("source 2 xyz -1 0 0"));
    EXPECT_FALSE(limited("source 2 xyz 0 0 2"));  // straight above: on the side from which it came
    EXPECT_NEAR(box.Record()->engine->GetSourcePosition(1).x, -4e-6f, 1e-8f);
    EXPECT_EQ(orvanverb_source_positions(box.Record())[1], box.Record()->engine->GetSourcePosition(1));
    EXPECT_TRUE(limited("source 1 xyz 1 -2e9 3"));
    EXPECT_EQ(box.Get("sourcespositions").substr(0, 35), "1.000000 -1000000.000000 3.000000 -");
    EXPECT_TRUE(limited("speaker 2 xyz 2e9 1 0"));
    EXPECT_FALSE(limited("speaker 3 xyz 2 1 0"));
    EXPECT_EQ(box.Record()->speakerspositions[3], 1e6f);
    EXPECT_EQ(box.Record()->engine->GetSpeakersPositions()[1].x, 1e6f);
}

}  // namespace
