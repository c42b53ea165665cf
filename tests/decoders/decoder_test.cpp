#include "decoders/decoder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "decoders/ambisonic_decoder.h"
#include "decoders/hoa2d_decoder.h"
#include "decoders/hoa3d_decoder.h"
#include "decoders/lcrs2lrs_decoder.h"
#include "decoders/lcrs2ltrt_decoder.h"
#include "decoders/lrs2lcrs_decoder.h"
#include "decoders/lrs2ltrt_decoder.h"
#include "decoders/ltrt2lcrs_decoder.h"
#include "decoders/ltrt2lrs_decoder.h"
#include "decoders/null_decoder.h"
#include "support/allocation_count.h"
#include "support/signals.h"

namespace {

using Lume::Decoder;

std::unique_ptr<Decoder> Make(unsigned int numInputs, unsigned int numOutputs, char const* type,
                              char const* subType = "null") {
    return std::unique_ptr<Decoder>(Decoder::factory(numInputs, numOutputs, type, subType));
}

template <typename T>
bool Makes(unsigned int numInputs, unsigned int numOutputs, char const* type) {
    return dynamic_cast<T*>(Make(numInputs, numOutputs, type).get()) != nullptr;
}

TEST(Decoder, NamesAndSynonyms) {
    EXPECT_STREQ(Decoder::GetTypeName(static_cast<Decoder::Type>(9)), "null");
    EXPECT_STREQ(Decoder::GetTypeName(static_cast<Decoder::Type>(-1)), "null");
    EXPECT_STREQ(Decoder::GetTypeName(Decoder::uhj2bformat), "uhj2bformat");
    EXPECT_STREQ(Decoder::GetSubTypeName(Decoder::recursivesymmetricbiquads), "recursivesymmetricbiquads");
    EXPECT_EQ(Decoder::GetType("hoa"), Decoder::hoa3d);
    EXPECT_EQ(Decoder::GetType("Hoa"), Decoder::null);
    EXPECT_EQ(Decoder::GetSubType("leastSquares"), Decoder::leastsquares);
    // Looking a name up doesn't enter it.
    EXPECT_TRUE(Decoder::IsValidDecoderType("hoa"));
    EXPECT_FALSE(Decoder::IsValidDecoderType("Hoa"));

    std::vector<std::string> names;
    Decoder::GetListOfAvailableDecoderType(names);
    ASSERT_EQ(names.size(), 15u);
    EXPECT_EQ(names.front(), "ambisonic");
    EXPECT_EQ(names.back(), "uhj2bformat");
    Decoder::GetListOfAvailableDecoderSubType(names);
    EXPECT_EQ(names.size(), 17u);
    const std::string list = Decoder::GetListOfAvailableDecoderType(", ");
    EXPECT_EQ(list.substr(0, 16), "ambisonic, bform");
    EXPECT_EQ(list.substr(list.size() - 7), "bformat");
}

TEST(Decoder, SupportedNumbersOfChannels) {
    const auto supports = [](char const* type, unsigned int in, unsigned int out) {
        return Decoder::SupportsConfiguration(type, in, out);
    };
    EXPECT_TRUE(supports("hoa2d", 5, 6));
    EXPECT_FALSE(supports("hoa2d", 6, 6));
    EXPECT_FALSE(supports("hoa2d", 5, 4));
    EXPECT_FALSE(supports("hoa2d", 0, 4));
    EXPECT_TRUE(supports("hoa3d", 9, 8));
    EXPECT_FALSE(supports("hoa3d", 8, 8));
    EXPECT_FALSE(supports("hoa3d", 4, 3));
    EXPECT_TRUE(supports("surround", 2, 2));
    EXPECT_FALSE(supports("surround", 2, 5));
    EXPECT_TRUE(supports("uhj2bformat", 4, 4));
    EXPECT_FALSE(supports("uhj2bformat", 3, 4));
    EXPECT_FALSE(supports("transaural", 2, 3));
    EXPECT_TRUE(supports("bformat2uhj", 3, 1));
    EXPECT_TRUE(supports("no such name", 7, 7));
}

TEST(Decoder, FactoryBuildsByTypeAndChannels) {
    EXPECT_TRUE((Makes<Lume::AmbisonicDecoder>(5, 8, "bformat")));
    EXPECT_TRUE((Makes<Lume::NullDecoder>(6, 8, "bformat")));
    EXPECT_TRUE((Makes<Lume::HOA2DDecoder>(5, 8, "hoa2D")));
    EXPECT_TRUE((Makes<Lume::NullDecoder>(4, 8, "hoa2d")));
    EXPECT_TRUE((Makes<Lume::HOA3DDecoder>(9, 8, "ambisonic")));
    EXPECT_TRUE((Makes<Lume::NullDecoder>(1, 8, "hoa3d")));
    EXPECT_TRUE((Makes<Lume::NullDecoder>(81, 8, "hoa3d")));
    EXPECT_TRUE((Makes<Lume::LtRt2LRSDecoder>(2, 3, "surround")));
    EXPECT_TRUE((Makes<Lume::LtRt2LCRSDecoder>(2, 4, "surround")));
    EXPECT_TRUE((Makes<Lume::LRS2LtRtDecoder>(3, 2, "surround")));
    EXPECT_TRUE((Makes<Lume::LRS2LCRSDecoder>(3, 4, "surround")));
    EXPECT_TRUE((Makes<Lume::LCRS2LtRtDecoder>(4, 2, "surround")));
    EXPECT_TRUE((Makes<Lume::LCRS2LRSDecoder>(4, 3, "surround")));
    EXPECT_TRUE((Makes<Lume::NullDecoder>(2, 2, "surround")));
    EXPECT_TRUE((Makes<Lume::NullDecoder>(4, 4, "no such name")));
    EXPECT_EQ(Make(3, 4, "bformat2uhj"), nullptr);
    EXPECT_EQ(Make(2, 4, "uhj2bformat"), nullptr);
}

struct Channels {
    Channels(std::size_t count, std::size_t length, unsigned int seed) {
        for (std::size_t i = 0; i < count; ++i) {
            data.push_back(MakeNoise(seed + static_cast<unsigned int>(i), length));
            pointers.push_back(data.back().data());
        }
    }
    std::vector<float*> From(std::size_t sample) const {
        std::vector<float*> result = pointers;
        for (float*& pointer : result) pointer += sample;
        return result;
    }
    std::vector<std::vector<float>> data;
    std::vector<float*> pointers;
};

// For each decoder that the factory makes: in place it gives the same bits as with arrays of its own, and in steady
// state it allocates nothing. Red if an output is written before an input of the same sample or block is read.
TEST(Decoder, WorksInPlaceAndAllocatesNothing) {
    struct Case {
        unsigned int numInputs, numOutputs;
        char const* type;
        int hoaType;
    };
    constexpr std::size_t block = 64, length = 64 * block;
    for (const auto& [numInputs, numOutputs, type, hoaType] :
         {Case{2, 3, "null", 0},    {3, 2, "null", 0},        {4, 3, "bformat", 0},     {5, 8, "bformat", 0},
          {5, 8, "hoa2d", 0},       {5, 8, "hoa2d", 3},       {9, 8, "hoa3d", 1},       {9, 8, "hoa3d", 2},
          {9, 12, "hoa3d", 3},      {9, 12, "hoa3d", 4},      {2, 3, "surround", 0},    {2, 4, "surround", 0},
          {3, 2, "surround", 0},    {3, 4, "surround", 0},    {4, 2, "surround", 0},    {4, 3, "surround", 0},
          {4, 4, "bformat2uhj", 0}, {4, 3, "bformat2uhj", 0}, {3, 2, "bformat2uhj", 0}, {2, 3, "uhj2bformat", 0},
          {4, 4, "uhj2bformat", 0}}) {
        SCOPED_TRACE(testing::Message() << type << " " << numInputs << " to " << numOutputs << ", " << hoaType);
        const std::size_t numArrays = std::max(numInputs, numOutputs);
        Channels inputs(numArrays, length, 7), shared(numArrays, length, 7), outputs(numArrays, length, 99);
        const auto apart = Make(numInputs, numOutputs, type), inPlace = Make(numInputs, numOutputs, type);
        for (Decoder* decoder : {apart.get(), inPlace.get()}) {
            decoder->Configure(48000.0f, block, true);
            if (auto* hoa = dynamic_cast<Lume::HOADecoder*>(decoder))
                hoa->SetDecoderType(static_cast<Lume::HOADecoder::HOADecoderType>(hoaType));
        }
        for (std::size_t n = 0; n < length; n += block) {
            std::vector<float*> in = inputs.From(n), out = outputs.From(n), both = shared.From(n);
            const long before = AllocationCount();
            apart->Process(out.data(), in.data(), block, orvandsp::allActiveInputs);
            inPlace->Process(both.data(), both.data(), block, orvandsp::allActiveInputs);
            EXPECT_EQ(AllocationCount(), before);
        }
        for (unsigned int j = 0; j < numOutputs; ++j) EXPECT_EQ(outputs.data[j], shared.data[j]) << "output " << j;
    }
}

}  // namespace
