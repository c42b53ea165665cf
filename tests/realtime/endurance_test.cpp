#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "engine/room_format.h"
#include "room/room.h"
#include "support/channels.h"
#include "support/signals.h"

// Rooms of any shape under anything, for as long as one likes: bounded, at a steady cost, and silent in the end.

namespace {

using Lume::Room;
using Random = std::mt19937;

constexpr float bad[] = {std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity(),
                         1e30f,
                         3e38f,
                         1e-40f};

unsigned int Below(unsigned int limit, Random& random) {
    return static_cast<unsigned int>(random()) % limit;
}

double Uniform(Random& random) {
    return static_cast<double>(random()) * 0x1p-32;
}

double Between(double least, double greatest, Random& random) {
    return least * std::pow(greatest / least, Uniform(random));
}

/// Half of the values at an end of their range. Levels stay, so that what grows has grown by itself.
std::size_t Disturb(Room& room, Random& random) {
    const std::size_t control = Below(static_cast<unsigned int>(Lume::roomControls.size()), random);
    Lume::RoomControl const& row = Lume::roomControls[control];
    const double part = random() % 2 == 0 ? Below(2, random) : Uniform(random);
    if (std::string(row.unit) != "dB")
        room.Set(control, row.least + static_cast<float>(part) * (row.greatest - row.least));
    const auto place = [&] { return static_cast<float>(20.0 * Uniform(random) - 10.0); };
    room.PlaceSource(Below(room.NumSources(), random), {place(), place(), place()});
    return control;
}

/// The processor's time for this thread [s].
double Cost() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Memory of the process [bytes].
std::size_t Resident() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

struct Player {
    Player(Room& newRoom, std::size_t block)
        : room(newRoom), in(room.NumSources(), block, 0.0f), out(room.NumSpeakers(), block, 0.0f) {}

    /// One block; its cost [s].
    double Play(std::size_t numSamples) {
        const double start = Cost();
        room.Process(out.pointers.data(), in.pointers.data(), numSamples);
        return Cost() - start;
    }
    void Fill(std::span<float const> noise) {
        for (std::size_t i = 0; i < in.data.size(); ++i)
            for (std::size_t t = 0; t < in.data[i].size(); ++t) in.data[i][t] = noise[(977 * i + t) % noise.size()];
    }
    float Loudest(std::size_t numSamples) const {
        float loudest = 0.0f;
        for (auto const& channel : out.data)
            for (std::size_t t = 0; t < numSamples; ++t) {
                if (!std::isfinite(channel[t])) return std::numeric_limits<float>::infinity();
                loudest = std::max(loudest, std::fabs(channel[t]));
            }
        return loudest;
    }

    Room& room;
    Channels in, out;
};

/// One random room at a random rate, in random blocks, fed with samples, controls and places that are none.
void Sweep(unsigned int seed) {
    Random random(seed);
    Lume::RoomFormat const* format = nullptr;
    unsigned int numOutputs = 2 + Below(random() % 4 == 0 ? 63 : 7, random);
    if (random() % 2 == 0) {
        format = &Lume::roomFormats[Below(static_cast<unsigned int>(Lume::roomFormats.size()), random)];
        while (!format->supports(numOutputs)) numOutputs = numOutputs % 64 + 1;
    }
    Room room(1 + Below(random() % 4 == 0 ? 64 : 4, random), numOutputs, 2 + Below(15, random), format);
    const auto rate =
        static_cast<float>(random() % 2 == 0 ? Between(8000, 192000, random) : Between(1000, 768000, random));
    const auto block = static_cast<std::size_t>(Between(1, 16384, random));
    const bool steady = random() % 2 == 0;
    SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << room.NumSources() << " to "
                                    << (format != nullptr ? format->name : "") << " " << numOutputs << ", "
                                    << room.NumInternals() << " channels, " << rate << " Hz, block " << block);
    room.Configure(rate, block, 0, steady ? Lume::SteadyVectors::Blocks::Steady : Lume::SteadyVectors::Blocks::Varying);
    Player player(room, block);
    const std::vector<float> noise = MakeNoise(seed, 4096, 0.1f);
    for (std::size_t played = 0, i = 0; i < 20 || (i < 500 && played < 3000); ++i) {
        player.Fill(noise);
        Disturb(room, random);
        if (i % 4 == 0) {
            const float value = bad[Below(std::size(bad), random)];
            player.in.data[Below(room.NumSources(), random)][Below(static_cast<unsigned int>(block), random)] = value;
            room.PlaceSource(0, {value, 1.0f, value});
            const std::size_t control = Below(static_cast<unsigned int>(Lume::roomControls.size()), random);
            if (std::string(Lume::roomControls[control].unit) != "dB") room.Set(control, value);
        }
        const std::size_t count = steady ? block : 1 + Below(static_cast<unsigned int>(block), random);
        player.Play(count);
        played += count;
        ASSERT_LE(player.Loudest(count), 1e3f) << "block " << i;
        if (played > 100000) break;
    }
    EXPECT_EQ(room.NumBadOutputs(), 0u);
    room.Clear();
    for (auto& channel : player.in.data) std::ranges::fill(channel, 0.0f);
    for (std::size_t left = room.Latency() + 1; left > 0; left -= std::min(left, block)) player.Play(block);
    player.Play(block);
    EXPECT_EQ(player.Loudest(block), 0.0f) << "after Clear";
}

// Red if any combination gives a sample that isn't finite or grows, loops for ever, or leaves something behind.
TEST(Endurance, AnyShapeRateAndBlockIsBounded) {
    for (unsigned int seed = 0; seed < 40; ++seed) Sweep(seed);
}

TEST(Endurance, SLOW_AnyShapeRateAndBlockIsBounded) {
    for (unsigned int seed = 100; seed < 1100; ++seed) Sweep(seed);
}

struct Shape {
    unsigned int numSources, numOutputs, numInternals;
};
constexpr Shape shapes[] = {{1, 2, 8}, {6, 6, 8}, {2, 5, 16}};
constexpr std::size_t block = 64;
constexpr float rate = 48000.0f;

// Red if denormals slow a dying room, or if a change makes one block do the work of more than three. Each block counts
// with the least of equal runs, of as many as it takes: what else the machine does is not the room's. What changes for
// the first time comes from main memory: of that, a second is heard before the minute begins.
TEST(Endurance, SLOW_CostIsSteady) {
    const std::vector<float> noise = MakeNoise(1, 4096, 0.5f);
    for (auto const& [numSources, numOutputs, numInternals] : shapes) {
        std::vector<double> sounding(3000, 1.0), silent(45000, 1.0), changing(45750, 1.0);
        std::vector<std::size_t> told;  // a control each eighth block
        double sounds = 0.0, fades = 0.0, median = 0.0, unprepared = 0.0;
        auto slowest = changing.begin();
        const auto isSteady = [&] {
            // Sixteen lines of a late field take twice as long to be judged as eight.
            const double limit = numInternals > 8 ? 3.5 : 3.0;
            return *slowest <= limit * median && unprepared <= 6.0 * median && fades <= 1.1 * sounds;
        };
        for (int run = 0; run < 3 || (run < 15 && !isSteady()); ++run) {
            Room room(numSources, numOutputs, numInternals);
            room.Configure(rate, block);
            Player player(room, block);
            player.Fill(noise);
            for (double& cost : sounding) cost = std::min(cost, player.Play(block));
            for (auto& channel : player.in.data) std::ranges::fill(channel, 0.0f);
            for (double& cost : silent) cost = std::min(cost, player.Play(block));
            Random random(5);
            player.Fill(noise);
            told.clear();
            for (std::size_t i = 0; i < changing.size(); ++i) {
                const double start = Cost();
                if (i % 8 == 0) told.push_back(Disturb(room, random));
                changing[i] = std::min(changing[i], Cost() - start + player.Play(block));
            }
            sounds = Median(sounding);
            // The last tenth of a minute of silence: a tail of some 700 dB below.
            fades = Median({silent.end() - 4500, silent.end()});
            median = Median(changing);
            unprepared = *std::max_element(changing.begin(), changing.begin() + 750);
            slowest = std::max_element(changing.begin() + 750, changing.end());
        }
        char const* const name =
            Lume::roomControls[told[static_cast<std::size_t>(slowest - changing.begin()) / 8]].name;
        std::printf("%u to %u: silence %.2f of signal, slowest block %.2f of the median (%s), before that %.2f\n",
                    numSources, numOutputs, fades / sounds, *slowest / median, name, unprepared / median);
        EXPECT_TRUE(isSteady());
    }
}

// ORVAN_SOAK_SECONDS of sound, 30 unless it says otherwise. Red if memory or cost creep, or if the room gets so loud
// that its guard has work.
TEST(Endurance, SLOW_Soak) {
    char const* const wanted = std::getenv("ORVAN_SOAK_SECONDS");
    const double seconds = wanted != nullptr ? std::atof(wanted) : 30.0;
    const std::vector<float> noise = MakeNoise(2, 4096, 0.1f);
    for (auto const& [numSources, numOutputs, numInternals] : shapes) {
        Room room(numSources, numOutputs, numInternals);
        room.Configure(rate, block);
        Player player(room, block);
        Random random(numSources);
        const auto numBlocks = static_cast<std::size_t>(seconds * static_cast<double>(rate) / block);
        std::size_t early = 0;
        float loudest = 0.0f;
        // Written to now, so that they don't count as growth.
        std::vector<double> first(numBlocks / 10 + 1, 1.0), last = first;
        first.clear();
        last.clear();
        std::size_t told = 0, loudestAfter = 0;
        for (std::size_t i = 0; i < numBlocks; ++i) {
            if (i % 100 == 0) player.Fill(noise);
            if (i % 20 == 0) told = Disturb(room, random);
            const double cost = player.Play(block);
            if (i < numBlocks / 10) first.push_back(cost);
            if (i == numBlocks / 10) early = Resident();
            if (i >= numBlocks - numBlocks / 10) last.push_back(cost);
            if (const float here = player.Loudest(block); here > loudest) {
                loudest = here;
                loudestAfter = told;
            }
        }
        const std::size_t grown = Resident() - std::min(Resident(), early);
        std::printf(
            "%u to %u: %.0f s, loudest sample %.2f after %s, %llu silenced, memory +%zu KB, cost %.2f of the first "
            "tenth's\n",
            numSources, numOutputs, seconds, static_cast<double>(loudest), Lume::roomControls[loudestAfter].name,
            static_cast<unsigned long long>(room.NumBadOutputs()), grown / 1024, Median(last) / Median(first));
        // Filters whose crossovers jump thump, those of the late field into a tail that may be infinite.
        EXPECT_LE(loudest, 1e4f);
        EXPECT_EQ(room.NumBadOutputs(), 0u);
        EXPECT_LE(grown, std::size_t{1} << 20);
        EXPECT_LE(Median(last), 1.3 * Median(first));
    }
}

}  // namespace
