#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "orvan.h"

namespace {

using Lume::Pan;

/// The class that is made; typeid(Lume::NullPanning) for the stand-in, which has no channels.
std::type_info const& Made(unsigned int numInputs, unsigned int numOutputs, int type, int role) {
    const std::unique_ptr<Pan> pan(
        Pan::factory(numInputs, numOutputs, static_cast<Pan::Type>(type), static_cast<Pan::SubType>(role)));
    Pan const& made = *pan;
    EXPECT_EQ(made.GetNumOutputs(), typeid(made) == typeid(Lume::NullPanning) ? 0u : numOutputs) << "type " << type;
    return typeid(made);
}

// Red if a bound moves by one, if a method makes another's panner, or if a role changes the ordinary panner of its
// method. What is made differs from what is supported for few outputs of some methods, on purpose.
TEST(Pan, SupportedAndMadeByNumberOfOutputs) {
    const auto expect = [](int type, std::type_info const& expected, auto&& isSupported, auto&& isMade) {
        for (unsigned int n = 0; n <= 70; ++n) {
            SCOPED_TRACE(testing::Message() << "type " << type << ", " << n << " outputs");
            EXPECT_EQ(Pan::SupportsConfiguration(static_cast<Pan::Type>(type), n), isSupported(n));
            for (const int role : {0, 1, 9})
                EXPECT_TRUE(Made(2, n, type, role) == (isMade(n) ? expected : typeid(Lume::NullPanning)));
            EXPECT_TRUE(Made(2, n, type, Pan::diffuse) == typeid(Lume::ReverbPanning));
        }
    };
    const auto from = [](unsigned int least) { return [=](unsigned int n) { return n >= least; }; };
    const auto none = from(1000);
    const auto isOneOf = [](std::vector<unsigned int> const& set) {
        return [set](unsigned int n) { return std::count(set.begin(), set.end(), n) == 1; };
    };
    const auto two = isOneOf({2}), threeOrFour = isOneOf({3, 4}), ring = isOneOf({4, 5, 6, 7, 8, 12});
    const auto odd = [](unsigned int n) { return n % 2 == 1; };
    expect(1, typeid(Lume::StereoXYPanning), two, two);
    expect(2, typeid(Lume::StereoMSPanning), two, two);
    expect(3, typeid(Lume::StereoABPanning), two, two);
    expect(4, typeid(Lume::SurroundPanning), threeOrFour, threeOrFour);
    expect(5, typeid(Lume::RecursivePanning), ring, ring);
    expect(6, typeid(Lume::AngularPanning), from(1), from(0));
    expect(7, typeid(Lume::Vbap2DPanning), from(2), from(2));
    expect(8, typeid(Lume::VbapPanning), from(3), from(3));
    expect(9, typeid(Lume::DbapPanning2D), from(3), from(1));
    expect(10, typeid(Lume::DbapPanning3D), from(3), from(1));
    expect(11, typeid(Lume::AmbisonicPanning), threeOrFour, threeOrFour);
    expect(12, typeid(Lume::HOA2DPanning), odd, odd);
    expect(13, typeid(Lume::HOA3DPanning), isOneOf({1, 4, 9, 16, 25, 36, 49, 64}), isOneOf({4, 9, 16, 25, 36, 49, 64}));
    expect(14, typeid(Lume::VDbapPanning), from(3), from(3));
    for (const int type : {15, 16, -1}) expect(type, typeid(Lume::NullPanning), none, none);

    std::type_info const* const binaural[] = {&typeid(Lume::BinauralPanningDirect),
                                              &typeid(Lume::BinauralPanningITD),
                                              &typeid(Lume::BinauralPanningIACC),
                                              &typeid(Lume::BinauralPanningNearfield),
                                              &typeid(Lume::BinauralPanningSphericalHarmonics),
                                              &typeid(Lume::BinauralPanningSphericalHeadModel),
                                              &typeid(Lume::BinauralPanningSnowmanModel),
                                              &typeid(Lume::BinauralPanningDirect)};
    for (int role = 0; role < 8; ++role) {
        EXPECT_TRUE(Made(2, 2, Pan::binaural, role) == *binaural[role]) << role;
        EXPECT_TRUE(Made(2, 3, Pan::binaural, role) == typeid(Lume::NullPanning)) << role;
    }
    EXPECT_TRUE(Made(1, 2, Pan::binaural, Pan::diffuse) == typeid(Lume::NullPanning));
    for (unsigned int n = 0; n <= 70; ++n) EXPECT_EQ(Pan::SupportsConfiguration(Pan::binaural, n), n == 2);
}

// Red if a construction that fails reaches the caller: this one asks for more memory than there can be.
TEST(Pan, FactorySwallowsFailures) {
    EXPECT_TRUE(Made(0xffffffffu, 0xffffffffu, Pan::vbap2d, Pan::direct) == typeid(Lume::NullPanning));
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

}  // namespace
