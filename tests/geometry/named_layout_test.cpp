#include "geometry/named_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "geometry/speakers.h"
#include "geometry/vector_algebra.h"

namespace {

using Lume::FindNamedLayout;
using Lume::NamedLayout;

// Red if a layout has a loudspeaker too many, one out of place (each has its mirror image), or a channel without one.
TEST(NamedLayout, HasWhatItsNameSays) {
    struct Counts {
        std::size_t loudspeakers, silent, above;
        std::uint32_t mask;
    };
    const std::map<std::string, Counts> wanted{
        {"5.0", {5, 0, 0, 0x607}},      {"5.1", {5, 1, 0, 0x60F}},      {"7.0", {7, 0, 0, 0x637}},
        {"7.1", {7, 1, 0, 0x63F}},      {"5.0.4", {9, 0, 4, 0x2D607}},  {"5.1.4", {9, 1, 4, 0x2D60F}},
        {"7.0.4", {11, 0, 4, 0x2D637}}, {"7.1.4", {11, 1, 4, 0x2D63F}}, {"9.1.6", {15, 1, 6, 0}},
        {"22.2", {22, 2, 9, 0}},        {"dome12", {12, 0, 6, 0}},      {"dome24", {24, 0, 12, 0}},
        {"dome48", {48, 0, 28, 0}}};
    EXPECT_EQ(Lume::NamedLayoutNames().size(), wanted.size());
    for (auto const& [name, counts] : wanted) {
        const NamedLayout layout = FindNamedLayout(name);
        ASSERT_EQ(layout.positions.size(), counts.loudspeakers) << name;
        EXPECT_EQ(layout.NumSilent(), counts.silent) << name;
        EXPECT_EQ(layout.channelMask, counts.mask) << name;
        EXPECT_EQ(static_cast<std::size_t>(std::count_if(layout.positions.begin(), layout.positions.end(),
                                                         [](auto& p) { return p.z > 0.1f; })),
                  counts.above)
            << name;
        std::multiset<std::size_t> played(layout.fileOrder.begin(), layout.fileOrder.end());
        for (std::size_t i = 0; i < layout.positions.size(); ++i) {
            EXPECT_EQ(played.count(i), 1u) << name;
            Lume::CartesianVector mirrored = layout.positions[i];
            mirrored.x = -mirrored.x;
            EXPECT_TRUE(std::any_of(layout.positions.begin(), layout.positions.end(),
                                    [&](auto& p) { return Distance(p, mirrored) < 1e-5f; }))
                << name << " " << i;
        }
        EXPECT_EQ(FindNamedLayout(layout.positions).positions.size(), counts.loudspeakers);
    }
    EXPECT_TRUE(FindNamedLayout("6.1").positions.empty());
    // Numbers without a name are spread over the sphere.
    for (const unsigned int number : {10u, 33u}) {
        const auto positions = Lume::UsualLayoutInSpace(number);
        ASSERT_EQ(positions.size(), number);
        Lume::CartesianVector sum{};
        for (auto const& p : positions) sum = sum + p;
        EXPECT_LT(Length(sum), 0.5f);
        const float apart = 2.9f / std::sqrt(static_cast<float>(number));
        for (auto const& p : positions)
            for (auto const& q : positions) EXPECT_TRUE(&p == &q || Distance(p, q) > apart) << number;
    }
}

// Red if a file's channel comes out of another loudspeaker than players of that layout expect, or if the engine's
// order for five and seven is another one than for counts.
TEST(NamedLayout, FilesHaveThePlayersOrder) {
    const NamedLayout five = FindNamedLayout("5.1");
    EXPECT_TRUE(std::equal(five.positions.begin(), five.positions.end(), Lume::Speakers::fiveDotOne));
    for (char const* name : {"5.1", "7.1", "7.1.4", "9.1.6", "22.2"}) {
        const NamedLayout layout = FindNamedLayout(name);
        for (std::size_t c = 0; c < layout.fileOrder.size(); ++c) {
            std::string const& label = layout.labels[c];
            if (layout.fileOrder[c] == NamedLayout::silent) {
                EXPECT_EQ(label.substr(0, 3), "LFE") << name;
                EXPECT_TRUE(c == 3 || c == 9) << name;
                continue;
            }
            Lume::CartesianVector const& p = layout.positions[layout.fileOrder[c]];
            if (label == "L" || label == "FL") {
                EXPECT_EQ(c, 0u);
                EXPECT_LT(p.x, -0.4f);
            }
            EXPECT_EQ(label.find('L') != std::string::npos, p.x < -0.1f) << name << " " << label;
            const bool isAbove = label.starts_with("Tp") || label.starts_with("Lt") || label.starts_with("Rt");
            EXPECT_EQ(isAbove, p.z > 0.1f) << name << " " << label;
            if (label == "Lrs" || label == "TpBL" || label == "Ltr") {
                EXPECT_LT(p.y, -0.4f) << label;
            }
        }
    }
}

}  // namespace
