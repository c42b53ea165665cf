#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "orvan.h"
#include "support/allocation_count.h"
#include "support/channels.h"
#include "support/signals.h"

namespace {

using Lume::Decoder;

std::unique_ptr<Decoder> Make(unsigned int numInputs, unsigned int numOutputs, char const* type) {
    return std::unique_ptr<Decoder>(Decoder::factory(numInputs, numOutputs, type, "null"));
}

TEST(Decoder, NamesAndSynonyms) {
    for (const int none : {9, -1}) EXPECT_STREQ(Decoder::GetTypeName(static_cast<Decoder::Type>(none)), "null");
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
    EXPECT_TRUE(names.front() == "ambisonic" && names.back() == "uhj2bformat");
    Decoder::GetListOfAvailableDecoderSubType(names);
    EXPECT_EQ(names.size(), 17u);
    EXPECT_TRUE(Decoder::GetListOfAvailableDecoderType(", ").starts_with("ambisonic, bform"));
    EXPECT_TRUE(Decoder::GetListOfAvailableDecoderType(", ").ends_with(", uhj2bformat"));
}

template <typename Made>
void Expect(char const* type, unsigned int in, unsigned int out, bool supported) {
    SCOPED_TRACE(testing::Message() << type << " " << in << " to " << out);
    EXPECT_EQ(Decoder::SupportsConfiguration(type, in, out), supported);
    EXPECT_NE(dynamic_cast<Made*>(Make(in, out, type).get()), nullptr);
}

// Red if a bound of a rule or of a maker moves, or if a type makes another's decoder.
TEST(Decoder, SupportedAndMadeByNumbersOfChannels) {
    using namespace Lume;
    Expect<AmbisonicDecoder>("bformat", 3, 8, true);
    Expect<AmbisonicDecoder>("bformat", 5, 8, false);
    Expect<NullDecoder>("bformat", 6, 8, false);
    Expect<HOA2DDecoder>("hoa2D", 3, 6, true);
    Expect<HOA2DDecoder>("hoa2d", 5, 4, false);
    Expect<NullDecoder>("hoa2d", 6, 6, false);
    Expect<NullDecoder>("hoa2d", 1, 4, true);
    Expect<HOA3DDecoder>("ambisonic", 9, 8, true);
    Expect<HOA3DDecoder>("hoa3d", 4, 3, false);
    Expect<NullDecoder>("hoa3d", 8, 8, false);
    Expect<NullDecoder>("hoa3d", 1, 8, true);
    Expect<NullDecoder>("hoa3d", 81, 8, true);
    Expect<LtRt2LRSDecoder>("surround", 2, 3, true);
    Expect<LtRt2LCRSDecoder>("surround", 2, 4, true);
    Expect<LRS2LtRtDecoder>("surround", 3, 2, true);
    Expect<LRS2LCRSDecoder>("surround", 3, 4, true);
    Expect<LCRS2LtRtDecoder>("surround", 4, 2, true);
    Expect<LCRS2LRSDecoder>("surround", 4, 3, true);
    Expect<NullDecoder>("surround", 2, 2, true);
    Expect<NullDecoder>("surround", 2, 5, false);
    Expect<Bformat2UHJDecoder>("bformat2uhj", 3, 3, true);
    Expect<UHJ2BformatDecoder>("uhj2bformat", 2, 3, true);
    Expect<UHJ2BformatDecoder>("uhj2bformat", 4, 4, true);
    Expect<NullDecoder>("no such name", 7, 7, true);
    EXPECT_FALSE(Decoder::SupportsConfiguration("hoa2d", 0, 4));
    EXPECT_FALSE(Decoder::SupportsConfiguration("transaural", 2, 3));
    EXPECT_TRUE(Decoder::SupportsConfiguration("bformat2uhj", 3, 1));
    EXPECT_FALSE(Decoder::SupportsConfiguration("uhj2bformat", 3, 4));
    EXPECT_EQ(Make(3, 4, "bformat2uhj"), nullptr);
    EXPECT_EQ(Make(2, 4, "uhj2bformat"), nullptr);
}

// For each decoder that the factory makes: in place it gives the same bits as with arrays of its own, and in steady
// state it allocates nothing. Red if an output is written before an input of the same sample or block is read, or if
// Clear leaves something behind.
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
        const Channels inputs = NoiseChannels(numArrays, length), shared = inputs, outputs = inputs;
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
        apart->Clear();
        Channels silence(numInputs, block, 0.0f), out(numOutputs, block, 9.0f);
        apart->Process(out.pointers.data(), silence.pointers.data(), block, orvandsp::allActiveInputs);
        EXPECT_EQ(out.data, Channels(numOutputs, block, 0.0f).data);
    }
}

}  // namespace
