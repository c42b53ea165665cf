#include "dsp/repeatable_random.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

// Red if a seed, negative ones and 0 included, or the wrap of the state goes another way than the C library's.
TEST(RepeatableRandom, IsTheSequenceOfTheGnuLibrary) {
    orvandsp::RepeatableRandom one(1);
    EXPECT_EQ(one.Next(), 1804289383);  // as everybody has seen it
    EXPECT_EQ(one.Next(), 846930886);
#ifdef __GLIBC__
    for (const unsigned int seed : {0u, 1u, 2u, 12345u, 0x7fffffffu, 0x80000000u, 0xfffffff0u}) {
        orvandsp::RepeatableRandom random(seed);
        std::srand(seed);
        for (int i = 0; i < 2000; ++i) ASSERT_EQ(random.Next(), std::rand()) << seed << " at " << i;
    }
#endif
}

}  // namespace
