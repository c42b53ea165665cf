#include "orvanverb/options/option_values.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <string_view>

#include "orvanverb/common/limits.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"

namespace program {

namespace {

bool AreSameLetters(std::string_view a, std::string_view b) {
    const auto lower = [](char letter) { return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : int{letter}; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

template <class Number>
Number Within(std::string const& option, std::string const& word, std::optional<Number> number, char const* what,
              Number least, Number most, std::string (*text)(Number), char const* unit) {
    if (!number || *number < least || *number > most)
        throw UsageError(option + ": '" + word + "' is no " + what + " from " + text(least) + " to " + text(most) +
                         unit);
    return *number;
}

}  // namespace

float NumberWithin(std::string const& option, std::string const& word, char const* what, float least, float most,
                   char const* unit) {
    return Within(option, word, ParseNumber(word), what, least, most, NumberText, unit);
}

unsigned int CountWithin(std::string const& option, std::string const& word, char const* what, unsigned int least,
                         unsigned int most, char const* unit) {
    return Within<unsigned int>(option, word, ParseCount(word), what, least, most, std::to_string, unit);
}

int ParseRate(std::string const& word) {
    return static_cast<int>(CountWithin("--rate", word, "sample rate", minRate, maxRate, " Hz"));
}

unsigned int ParseVectorSize(std::string const& word) {
    const std::optional<unsigned int> size = ParseCount(word);
    if (!size || *size < minVectorSize || *size > maxVectorSize || !std::has_single_bit(*size))
        throw UsageError("--vector: '" + word + "' is no power of two from " + std::to_string(minVectorSize) + " to " +
                         std::to_string(maxVectorSize));
    return *size;
}

FormatWish ParseFormat(std::string const& word) {
    const std::optional<FormatWish> format = ParseFormatWish(word);
    if (!format) throw UsageError("--format: '" + word + "' is none of " + FormatNames());
    return *format;
}

std::string ParseConvention(std::string const& word) {
    for (char const* name : {"SN3D", "N3D", "SN2D", "N2D"})
        if (AreSameLetters(word, name)) return name;
    throw UsageError("--convention: '" + word + "' is none of SN3D, N3D, SN2D and N2D");
}

std::string ParseSorting(std::string const& word) {
    if (AreSameLetters(word, "IncreasingDegrees") || AreSameLetters(word, "ACN")) return "IncreasingDegrees";
    if (AreSameLetters(word, "AlternateDegrees")) return "AlternateDegrees";
    throw UsageError("--sorting: '" + word + "' is neither IncreasingDegrees (ACN) nor AlternateDegrees");
}

}  // namespace program
