#include "patcher/atom.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using namespace max;

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

}  // namespace
