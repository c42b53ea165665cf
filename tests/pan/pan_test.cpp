#include "pan/pan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "pan/null_panning.h"

namespace {

using Lume::Pan;

// Red if a bound of the rules moves by one. The sets are written out by hand: ground truth, not the rule again.
TEST(Pan, SupportsConfigurationByNumberOfOutputs) {
    const auto expect = [](std::vector<int> const& types, auto&& rule) {
        for (const int type : types) {
            for (unsigned int outputs = 0; outputs <= 70; ++outputs)
                EXPECT_EQ(Pan::SupportsConfiguration(static_cast<Pan::Type>(type), outputs), rule(outputs))
                    << "type " << type << ", " << outputs << " outputs";
        }
    };
    const auto isOneOf = [](std::vector<unsigned int> const& set) {
        return [set](unsigned int n) { return std::count(set.begin(), set.end(), n) == 1; };
    };
    expect({0, 1, 2, 3}, isOneOf({2}));
    expect({4, 11}, isOneOf({3, 4}));
    expect({5}, isOneOf({4, 5, 6, 7, 8, 12}));
    expect({6}, [](unsigned int n) { return n >= 1; });
    expect({7}, [](unsigned int n) { return n >= 2; });
    expect({8, 9, 10, 14}, [](unsigned int n) { return n >= 3; });
    expect({12}, [](unsigned int n) { return n % 2 == 1; });
    expect({13}, isOneOf({1, 4, 9, 16, 25, 36, 49, 64}));
    expect({15, 16, 1000, -1}, isOneOf({}));
}

bool Builds(unsigned int numInputs, unsigned int numOutputs, int type, int subType) {
    const std::unique_ptr<Pan> pan(
        Pan::factory(numInputs, numOutputs, static_cast<Pan::Type>(type), static_cast<Pan::SubType>(subType)));
    const bool isNull = dynamic_cast<Lume::NullPanning*>(pan.get()) != nullptr;
    EXPECT_EQ(pan->GetNumOutputs(), isNull ? 0u : numOutputs) << "type " << type;
    return !isNull;
}

// Red if a bound of a maker moves by one, or if a role changes the ordinary panner of its method. The makers differ
// from SupportsConfiguration for 0, 1 and 2 outputs of some methods, on purpose.
TEST(Pan, FactoryByNumberOfOutputs) {
    const auto expect = [](std::vector<int> const& types, auto&& rule) {
        for (const int type : types) {
            for (unsigned int outputs = 0; outputs <= 70; ++outputs) {
                for (const int role : {0, 1, 9})
                    EXPECT_EQ(Builds(2, outputs, type, role), rule(outputs)) << "type " << type << ", " << outputs;
                EXPECT_TRUE(Builds(2, outputs, type, Pan::diffuse));
            }
        }
    };
    expect({1, 2, 3}, [](unsigned int n) { return n == 2; });
    expect({4}, [](unsigned int n) { return n == 3 || n == 4; });
    expect({5}, [](unsigned int n) { return (n >= 4 && n <= 8) || n == 12; });
    expect({6}, [](unsigned int) { return true; });
    expect({7}, [](unsigned int n) { return n >= 2; });
    expect({8, 14}, [](unsigned int n) { return n >= 3; });
    expect({9, 10}, [](unsigned int n) { return n != 0; });
    expect({15, 16, -1}, [](unsigned int) { return false; });
    for (int role = 0; role < 7; ++role) EXPECT_FALSE(Builds(2, 3, Pan::binaural, role));
    EXPECT_FALSE(Builds(1, 2, Pan::binaural, Pan::diffuse));
}

// Red if a construction that fails reaches the caller: this one asks for more memory than there can be.
TEST(Pan, FactorySwallowsFailures) {
    EXPECT_FALSE(Builds(0xffffffffu, 0xffffffffu, Pan::vbap2d, Pan::direct));
}

// Red if a synonym is lost, if "null" becomes a key, or if a look-up enters the name that it looks for.
TEST(Pan, NamesAndSynonyms) {
    const std::vector<std::pair<char const*, int>> synonyms = {{"vbap3d", 8},   {"dbap2d", 9}, {"hoa2D", 12},
                                                               {"hoa3D", 13},   {"hoa", 13},   {"ambisonic", 13},
                                                               {"binaural", 0}, {"vdbap", 14}};
    for (auto const& [name, value] : synonyms) {
        EXPECT_TRUE(Pan::IsValidPanType(name)) << name;
        EXPECT_EQ(static_cast<int>(Pan::GetType(name)), value) << name;
    }
    for (char const* unknown : {"null", "VBAP", "", "nonsense"}) {
        EXPECT_EQ(Pan::GetType(unknown), Pan::null);
        EXPECT_FALSE(Pan::IsValidPanType(unknown));
        EXPECT_FALSE(Pan::SupportsConfiguration(unknown, 2));
    }
    EXPECT_TRUE(Pan::SupportsConfiguration("hoa2D", 5));
    EXPECT_FALSE(Pan::SupportsConfiguration("hoa", 8));

    std::vector<std::string> names(40, "left over");
    Pan::GetListOfAvailablePanType(names);
    ASSERT_EQ(names.size(), 16u);
    for (unsigned int i = 0; i < 15; ++i) EXPECT_EQ(static_cast<unsigned int>(Pan::GetType(names[i].c_str())), i);
    EXPECT_EQ(names[15], "null");
    EXPECT_STREQ(Pan::GetTypeName(static_cast<Pan::Type>(16)), "null");
    EXPECT_TRUE(Pan::GetListOfAvailablePanType(", ").ends_with("hoa3d, vdbap, null"));
}

// Red if the stand-in takes channels or touches its outputs.
TEST(NullPanning, HasNoChannelsAndLeavesItsOutputsAlone) {
    const std::unique_ptr<Pan> pan(Pan::factory(2, 2, "nonsense", "nonsense"));
    ASSERT_NE(dynamic_cast<Lume::NullPanning*>(pan.get()), nullptr);
    pan->SetNumInputs(4);
    pan->SetNumOutputs(4);
    pan->Configure(48000.0f, 32, false);
    EXPECT_EQ(pan->GetNumInputs(), 0u);
    EXPECT_EQ(pan->GetNumOutputs(), 0u);
    EXPECT_EQ(pan->GetSamplerate(), 48000.0f);
    float left[2] = {1.0f, 2.0f}, right[2] = {3.0f, 4.0f};
    float* channels[] = {left, right};
    pan->Process(channels, channels, 2, orvandsp::allActiveInputs);
    pan->ProcessAdding(channels, channels, 2, orvandsp::allActiveInputs);
    pan->Mute(channels, 2);
    EXPECT_EQ(left[0], 1.0f);
    EXPECT_EQ(right[1], 4.0f);
}

}  // namespace
