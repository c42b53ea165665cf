#include "room/room.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "geometry/vector_algebra.h"
#include "pan/set_file.h"
#include "room/layout_remarks.h"
#include "room/room_rig.h"
#include "support/allocation_count.h"
#include "support/failure.h"
#include "support/lock_count.h"
#include "support/temporary_file.h"

namespace {

using Lume::ControlIndex;
using Lume::Room;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

bool DenormalsCount() {
    volatile float tiny = 1e-40f;
    return tiny * 1.0f != 0.0f;
}

}  // namespace

// Red if the ring loses its place, if the vector size follows the block, or if the engine sees other calls.
TEST(Room, BlocksOfAnySizeGiveTheSameSamples) {
    Room plain(2, 5);
    plain.Configure(44100.0f, 64);
    const Recording wanted = Play(plain, 8000, 20000);
    EXPECT_GT(LevelDb(wanted[0]), -60.0);
    for (const std::size_t block : {1u, 100u, 480u, 1024u}) {
        Room room(2, 5);
        room.Configure(44100.0f, block, 64);
        const std::size_t late = room.Latency();
        const Recording heard = Play(room, 8000, 20000);
        for (std::size_t c = 0; c < wanted.size(); ++c)
            for (std::size_t i = late; i < heard[c].size(); ++i)
                ASSERT_EQ(heard[c][i], wanted[c][i - late]) << "block " << block << ", sample " << i;
    }
}

// Red if a source's gain acts behind the room or on another source, jumps while it plays, or costs bits where it is 1.
TEST(Room, ASourceHasALevelAheadOfTheRoom) {
    Room plain(2, 5), room(2, 5);
    EXPECT_TRUE(room.SetSourceGain(0, -6.0f));
    EXPECT_FALSE(room.SetSourceGain(2, 0.0f) || room.SetSourceGain(0, notANumber) || room.SetSourceMuted(2, true));
    constexpr std::size_t block = 64, numFrames = 4096;
    std::vector<float> left(numFrames), right(numFrames), quieter(numFrames);
    for (std::size_t n = 0; n < numFrames; ++n) {
        left[n] = std::sin(0.1f * static_cast<float>(n));
        right[n] = n == 0 ? 1.0f : 0.0f;
        quieter[n] = std::pow(10.0f, -0.3f) * left[n];
    }
    const auto play = [&](Room& played, std::vector<float> const& first) {
        std::vector<std::vector<float>> sound(5, std::vector<float>(numFrames));
        for (std::size_t at = 0; at < numFrames; at += block) {
            float const* const inputs[] = {&first[at], &right[at]};
            float* outputs[5];
            for (std::size_t c = 0; c < 5; ++c) outputs[c] = &sound[c][at];
            played.Process(outputs, inputs, block);
        }
        return sound;
    };
    plain.Configure(48000.0f, block);
    room.Configure(48000.0f, block);
    EXPECT_EQ(play(plain, quieter), play(room, left));
    // A muted source dies away in 20 ms.
    room.SetBypassed(true);
    for (const unsigned int source : {0u, 1u}) room.SetSourceMuted(source, true);
    for (std::vector<float>* const sound : {&left, &right}) std::fill(sound->begin(), sound->end(), 1.0f);
    const auto passed = play(room, left);
    for (std::size_t source : {0u, 1u}) {
        std::vector<float> const& heard = passed[source];
        for (std::size_t n = 1; n < numFrames; ++n) ASSERT_NEAR(heard[n], heard[n - 1], 1.1f / 960.0f);
        EXPECT_NEAR(heard[0], source == 0 ? 0.5f : 1.0f, 0.01f);
        EXPECT_EQ(heard[960], 0.0f);
    }
}

// Red if any of what is promised to be so allocates, locks, or leaves the processor without denormal numbers.
TEST(Room, ListenerAndEarsChangeWithoutMemoryAndLeaveTheFloatingPointMode) {
    const TemporaryFile file(".hrtf", FlatSetFile(0.5f));
    for (const unsigned int speakers : {2u, 6u}) {
        Room room(2, speakers);
        room.Configure(48000.0f, 48, 64);
        Play(room, 4800, 9600);
        Lume::Ears ears;
        if (room.HasEars()) ears = room.PrepareEars(file.name);
        std::vector<float> block(48, 0.1f);
        const std::vector<float*> arrays(speakers, block.data());
        ASSERT_TRUE(DenormalsCount());
        const long allocations = AllocationCount(), locks = LockCount();
        room.SetOrientation({30.0f, 10.0f, -5.0f});
        room.SetDirectLevel(-6.0f);
        room.SetRoomLevel(-6.0f);
        const bool taken = !room.HasEars() || room.TakeEars(ears);
        for (int i = 0; i < 100; ++i) room.Process(arrays.data(), arrays.data(), 48);
        EXPECT_EQ(AllocationCount() - allocations, 0) << speakers;
        EXPECT_EQ(LockCount() - locks, 0);
        EXPECT_TRUE(taken);
        EXPECT_TRUE(DenormalsCount());
    }
}

TEST(Room, LimitsValuesAndRefusesWhatIsNoNumber) {
    Room room(1, 4);
    EXPECT_TRUE(room.Set(ControlIndex("tr0"), 1e30f));
    EXPECT_EQ(room.Get(ControlIndex("tr0")), 10.0f);
    EXPECT_FALSE(room.Set(ControlIndex("tr0"), notANumber));
    EXPECT_FALSE(room.Set(Lume::roomControls.size(), 1.0f));
    EXPECT_EQ(room.Get(ControlIndex("tr0")), 10.0f);
    EXPECT_TRUE(room.PlaceSource(0, {1e30f, 1.0f, -std::numeric_limits<float>::infinity()}));
    EXPECT_EQ(room.SourcePosition(0).x, Room::maxCoordinate);
    EXPECT_EQ(room.SourcePosition(0).z, -Room::maxCoordinate);
    EXPECT_FALSE(room.PlaceSource(0, {notANumber, 1.0f, 0.0f}));
    EXPECT_FALSE(room.PlaceSource(1, {1.0f, 1.0f, 0.0f}));
    EXPECT_EQ(room.SourcePosition(0).x, Room::maxCoordinate);
    EXPECT_FALSE(room.PlaceSpeaker(2, {0.0f, notANumber, 0.0f}));
    EXPECT_FALSE(room.PlaceSpeaker(4, {1.0f, 1.0f, 0.0f}));
    EXPECT_FALSE(room.SetOrientation({notANumber, 0.0f, 0.0f}));
    EXPECT_EQ(room.GetOrientation(), Lume::Orientation{});
}

// Red if a level reaches the other layer, misses one of early reflections, cluster and late field, sets aside a
// control, leaves a rest of what is switched off, or gets into the state.
TEST(Room, LevelsAreThoseOfWholeLayersOnTopOfTheControls) {
    constexpr float off = -std::numeric_limits<float>::infinity();
    const auto play = [](float direct, float roomDb) {
        Room room(2, 5);
        room.Set(ControlIndex("direct_gain"), -3.0f);
        room.Set(ControlIndex("early_gain"), 2.0f);
        const std::string before = room.SaveState().Text();
        EXPECT_TRUE(room.SetDirectLevel(direct) && room.SetRoomLevel(roomDb));
        EXPECT_FALSE(room.SetDirectLevel(notANumber) || room.SetRoomLevel(-off));
        EXPECT_EQ(room.SaveState().Text(), before);
        room.Configure(48000.0f, 64);
        room.Settle();
        return Play(room, 8000, 20000);
    };
    const Recording whole = play(0.0f, 0.0f), direct = play(0.0f, off), answer = play(off, 0.0f),
                    mixed = play(6.0206f, -6.0206f), silent = play(off, off);
    EXPECT_GT(LevelDb(direct[0]), -60.0);
    EXPECT_GT(LevelDb(answer[0]), -60.0);
    for (std::size_t c = 0; c < whole.size(); ++c)
        for (std::size_t i = 0; i < whole[c].size(); ++i) {
            ASSERT_NEAR(direct[c][i] + answer[c][i], whole[c][i], 2e-6f) << c << " " << i;
            ASSERT_NEAR(2.0f * direct[c][i] + 0.5f * answer[c][i], mixed[c][i], 2e-6f) << c << " " << i;
            ASSERT_EQ(silent[c][i], 0.0f);
        }
}

// Red if a shape, a rate or a size that the engine itself doesn't ask about gets through, or leaves a trace.
TEST(Room, RefusesWhatNoRoomHas) {
    EXPECT_THROW(Room(65, 2), std::invalid_argument);
    EXPECT_THROW(Room(1, 1), std::invalid_argument);
    EXPECT_THROW(Room(1, 2, 17), std::invalid_argument);
    EXPECT_THROW(Room(1, 5, 8, Lume::FindRoomFormat("ambix")), std::invalid_argument);
    EXPECT_THROW(Room(std::make_unique<Lume::OrvanVerb>(8)), std::invalid_argument);
    for (auto const& [sources, speakers] : {std::pair{1u, 1u}, {0u, 6u}}) {
        auto engine = std::make_unique<Lume::OrvanVerb>(8);
        engine->Configure(48000.0f, 64, sources, speakers);
        EXPECT_THROW(Room(std::move(engine)), std::invalid_argument) << sources << " " << speakers;
    }
    Room room(1, 6);
    room.Configure(48000.0f, 64);
    for (const float rate : {0.0f, -48000.0f, 1e9f, notANumber})
        EXPECT_NE(ComplaintOf([&] { room.Configure(rate, 64); }).find("1000 to 768000 Hz"), std::string::npos) << rate;
    EXPECT_THROW(room.Configure(48000.0f, 0), std::invalid_argument);
    for (const std::size_t vector : {8u, 48u, 16384u})
        EXPECT_THROW(room.Configure(48000.0f, 96, vector), std::invalid_argument) << vector;
    EXPECT_EQ(room.Samplerate(), 48000.0f);
    EXPECT_EQ(room.VectorSize(), 64u);
    for (const std::size_t vector : {16u, 8192u}) {
        room.Configure(48000.0f, 96, vector);
        EXPECT_EQ(room.VectorSize(), vector);
    }
    room.Configure(48000.0f, 1u << 15);
    EXPECT_EQ(Lume::RoomState::Parse(room.SaveState().Text()).vectorSize, Room::maxVectorSize);
}

// Red if rounding at a right angle decides on which side of a ring a source is heard.
TEST(Room, ASourceAboveKeepsItsAzimuth) {
    Room room(1, 8);
    for (const Lume::CartesianVector& above : {Lume::CartesianVector{0.0f, -1e-7f, 2.0f}, {0.0f, 0.0f, -3.0f}}) {
        room.PlaceSource(0, {0.5f, -0.5f, 0.0f});
        room.PlaceSource(0, above);
        const Lume::CartesianVector heard = room.SourcePosition(0);
        EXPECT_EQ(heard.z, above.z);
        EXPECT_FLOAT_EQ(heard.x, -heard.y);
        EXPECT_GT(heard.x, 0.0f);
        EXPECT_LT(heard.x, 1e-5f);
        room.PlaceSource(0, heard);
        EXPECT_TRUE(room.SourcePosition(0) == heard) << "restored";
    }
    room.PlaceSource(0, {0.0f, 0.0f, 0.0f});
    EXPECT_TRUE(room.SourcePosition(0) == Lume::CartesianVector());
}

// Red if a room keeps quiet about what pan warns of, or looks at loudspeakers that its format doesn't have.
TEST(Room, TellsWhatItsLoudspeakersCannotPlay) {
    const auto remarks = [](char const* format, std::vector<Lume::CartesianVector> const& speakers) {
        std::string text;
        for (std::string const& line : LayoutRemarks(Room(1, speakers, 8, Lume::FindRoomFormat(format)))) text += line;
        return text;
    };
    const Lume::CartesianVector left{-1.0f, 0.0f, 0.0f}, right{1.0f, 0.0f, 0.0f}, ahead{0.0f, 1.0f, 0.0f},
        behind{0.0f, -1.0f, 0.0f}, top{0.0f, 0.0f, 1.0f};
    EXPECT_EQ(remarks("", {left, ahead, right, behind}), "");
    EXPECT_NE(remarks("", {left, ahead, right}).find("between the azimuths 90 and -90"), std::string::npos);
    for (char const* const noLoudspeakers : {"", "stereo"}) EXPECT_EQ(remarks(noLoudspeakers, {left, right}), "");
    EXPECT_EQ(remarks("ambix", {left, right, ahead, behind}), "");
    for (char const* format : {"vbap", "dome"}) {
        EXPECT_EQ(remarks(format, {left, top, right, ahead, behind}), "");
        EXPECT_NE(remarks(format, {left, right, ahead, behind}).find("one plane"), std::string::npos);
        EXPECT_TRUE(LayoutRemarks(Room(1, 24, 8, Lume::FindRoomFormat(format))).empty()) << "as it comes";
    }
}

// A single one of them makes an engine silent or deafening for good. Red if the room hears it, or doesn't count it.
TEST(Room, KeepsBadSamplesOut) {
    for (const float bad : {notANumber, std::numeric_limits<float>::infinity(), -1e7f}) {
        Room clean(1, 2), room(1, 2);
        std::vector<float> in(512, 0.25f), out[2] = {std::vector<float>(512), std::vector<float>(512)};
        float const* const inputs[] = {in.data()};
        float* const outputs[] = {out[0].data(), out[1].data()};
        clean.Configure(48000.0f, 512);
        room.Configure(48000.0f, 512);
        for (int i = 0; i < 30; ++i) {
            in[100] = i == 20 ? 0.0f : 0.25f;
            clean.Process(outputs, inputs, 512);
            const std::vector<float> wanted = out[1];
            if (i == 20) in[100] = bad;
            room.Process(outputs, inputs, 512);
            EXPECT_EQ(out[1], wanted) << i;
        }
        EXPECT_EQ(room.NumBadInputs(), 1u);
        EXPECT_EQ(room.NumBadOutputs(), 0u);
    }
}

// Red if a room that has run away reaches a loudspeaker, isn't emptied, or comes back with a bang.
TEST(Room, EmptiesARoomThatRunsAwayAndFadesItIn) {
    Room room(1, 4);
    room.Configure(48000.0f, 64);
    Play(room, 24000, 24000);
    room.Engine().SetDirectGain(140.0f);  // past the limit of the control
    const Recording wild = Play(room, 24000, 24000);
    for (auto const& channel : wild)
        for (const float sample : channel) ASSERT_LE(std::abs(sample), 1e6f);
    EXPECT_GT(room.NumBadOutputs(), 0u);
    EXPECT_EQ(LevelDb(std::span(wild[0]).last(1000)), -std::numeric_limits<double>::infinity());
    room.Set(ControlIndex("direct_gain"), 0.0f);
    Play(room, 0, 9600);
    const Recording back = Play(room, 48000, 48000);
    EXPECT_LT(LevelDb(std::span(back[0]).first(240)), LevelDb(std::span(back[0]).last(4800)) - 10.0);
    EXPECT_GT(LevelDb(std::span(back[0]).last(4800)), -40.0);

    // By itself: a tenth of a second from silence to all.
    Lume::OutputGuard guard;
    guard.Configure(48000.0f);
    std::vector<float> vector(48, 1e7f);
    float* const outputs[] = {vector.data()};
    EXPECT_TRUE(guard.Check(outputs, 1, 48));
    for (int i = 0; i < 4896; ++i) {
        if (i % 48 == 0) {
            std::ranges::fill(vector, 1.0f);
            EXPECT_FALSE(guard.Check(outputs, 1, 48));
        }
        ASSERT_NEAR(vector[static_cast<std::size_t>(i % 48)], std::min(static_cast<float>(i) / 4800.0f, 1.0f), 1e-4f)
            << i;
    }
}

// Red if clearing leaves a tail, as the engine's own does in the air filters.
TEST(Room, IsSilentWhenCleared) {
    Room room(1, 6);
    room.Configure(48000.0f, 64);
    room.Set(ControlIndex("air"), 1.0f);
    Play(room, 24000, 24000);
    room.Clear();
    for (auto const& channel : Play(room, 0, 48000))
        for (const float sample : channel) ASSERT_EQ(sample, 0.0f);
}

// Red if a frozen room bangs when its decay jumps: what the air filters held of it is then no longer turned down.
TEST(Room, IsSilentWhenAFrozenTailIsGivenAnotherDecay) {
    Room room(1, 6);
    room.Configure(48000.0f, 64);
    for (auto const& [name, value] : {std::pair{"air", 1.0f}, {"infinite", 1.0f}, {"tr0", 0.1f}})
        room.Set(*Lume::FindControl(name), value);
    EXPECT_GT(LevelDb(std::span(Play(room, 48000, 96000)[0]).last(4800)), -40.0);
    room.Set(ControlIndex("tr0"), 2.0f);
    EXPECT_LT(LevelDb(Play(room, 0, 9600)[0]), -120.0);
}

// Red if an output that stands on another input is written before that is read.
TEST(Room, BypassCopiesAcrossSharedArrays) {
    Room room(2, 3);
    room.Configure(48000.0f, 64);
    room.SetBypassed(true);
    std::vector<float> a(64, 1.0f), b(64, 2.0f), c(64, 3.0f);
    float const* const inputs[] = {a.data(), b.data()};
    float* const outputs[] = {b.data(), a.data(), c.data()};
    room.Process(outputs, inputs, 64);
    EXPECT_EQ(b[5], 1.0f);
    EXPECT_EQ(a[5], 2.0f);
    EXPECT_EQ(c[5], 0.0f);
    room.SetMuted(true);
    room.Process(outputs, inputs, 64);
    EXPECT_EQ(b[5], 0.0f);
}

// Red if ears need a stop, come late, or if a file that doesn't fit takes the present ones away or doesn't say why.
TEST(Room, TakesEarsWhileItRuns) {
    const TemporaryFile quiet(".hrtf", FlatSetFile(0.1f)), loud(".hrtf", FlatSetFile(1.0f));
    Room room(1, 2);
    room.LoadEars(loud.name);
    for (char const* const layer : {"early_gain", "cluster_gain", "room_gain"})
        room.Set(*Lume::FindControl(layer), -60.0f);
    room.Configure(48000.0f, 64);
    const double before = LevelDb(Play(room, 24000, 24000)[0]);
    Lume::Ears ears = room.PrepareEars(quiet.name);
    ASSERT_TRUE(room.TakeEars(ears));
    EXPECT_EQ(room.CurrentEars().path, quiet.name);
    Play(room, 4800, 4800);
    EXPECT_NEAR(LevelDb(Play(room, 24000, 24000)[0]), before - 20.0, 1.0);

    ears = room.PrepareEars(loud.name);
    room.Configure(48000.0f, 128);
    EXPECT_FALSE(room.TakeEars(ears)) << "made for other vectors";

    const TemporaryFile mono(".hrtf", FlatSetFile(1.0f, 1));
    const TemporaryFile noise(".hrtf", "no set"), other(".wav", "RIFF");
    EXPECT_EQ(ComplaintOf([&] { room.LoadEars(mono.name); }), mono.name + ": NumChannels: 2 ears are expected, not 1");
    EXPECT_EQ(ComplaintOf([&] { room.LoadEars(other.name); }),
              other.name + ": a name that ends in .hrtf or .coll is expected");
    EXPECT_EQ(ComplaintOf([&] { room.LoadEars("/nowhere/x.hrtf"); }), "/nowhere/x.hrtf: No such file or directory");
    EXPECT_NE(ComplaintOf([&] { room.LoadEars(noise.name); }).find(noise.name + ": "), std::string::npos);
    EXPECT_EQ(ComplaintOf([&] { Room(1, 4).PrepareEars(loud.name); }),
              loud.name + ": ears are for headphones, and this room plays 4 loudspeakers");
    EXPECT_EQ(room.CurrentEars().path, quiet.name);
}
