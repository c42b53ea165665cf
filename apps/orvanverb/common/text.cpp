#include "orvanverb/common/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numeric>
#include <utility>

namespace program {

namespace {

template <typename Number>
std::optional<Number> ParseWhole(std::string_view word) {
    Number value{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc{} || end != word.data() + word.size()) return std::nullopt;
    return value;
}

template <typename Number>
std::optional<Number> ParseFinite(std::string_view word) {
    // from_chars takes no plus sign, but people write +30 for "to the right".
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
    const std::optional<Number> value = ParseWhole<Number>(word);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

}  // namespace

std::vector<std::string> SplitWords(std::string_view line, std::string_view alsoSeparators) {
    const std::string separators = std::string(" \t\r\n").append(alsoSeparators);
    std::vector<std::string> words;
    for (std::size_t begin = line.find_first_not_of(separators); begin != std::string_view::npos;) {
        const std::size_t end = line.find_first_of(separators, begin);
        words.emplace_back(line.substr(begin, end - begin));
        begin = line.find_first_not_of(separators, end);
    }
    return words;
}

std::string JoinWords(std::vector<std::string> const& words) {
    std::string text;
    for (std::string const& word : words) text.append(text.empty() ? "" : " ").append(word);
    return text;
}

std::optional<float> ParseNumber(std::string_view word) {
    return ParseFinite<float>(word);
}

std::optional<double> ParseDouble(std::string_view word) {
    return ParseFinite<double>(word);
}

std::optional<unsigned int> ParseCount(std::string_view word) {
    return ParseWhole<unsigned int>(word);
}

std::string DidYouMean(std::string_view word, std::vector<std::string> const& names) {
    constexpr std::size_t mostSlips = 2;
    std::string nearest;
    std::size_t least = std::min(mostSlips, word.size() / 2) + 1;
    for (std::string const& name : names) {
        // Levenshtein's distance, row by row.
        std::vector<std::size_t> row(name.size() + 1);
        std::iota(row.begin(), row.end(), std::size_t{0});
        for (std::size_t i = 0; i < word.size(); ++i) {
            std::size_t diagonal = std::exchange(row[0], i + 1);
            for (std::size_t j = 0; j < name.size(); ++j) {
                const std::size_t change = diagonal + (word[i] == name[j] ? 0 : 1);
                diagonal = std::exchange(row[j + 1], std::min({change, row[j] + 1, row[j + 1] + 1}));
            }
        }
        if (row.back() >= least) continue;
        least = row.back();
        nearest = name;
    }
    return nearest.empty() ? "" : " (did you mean " + nearest + "?)";
}

std::string Counted(std::size_t number, std::string const& what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

std::string NumberText(float value) {
    std::array<char, 64> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    return {text.data(), result.ptr};
}

std::string FixedText(double value, int decimals) {
    std::array<char, 400> text{};  // room for the largest double in fixed notation
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    const std::string_view digits(text.data(), static_cast<std::size_t>(result.ptr - text.data()));
    const bool isZero = digits.find_first_not_of("-0.") == std::string_view::npos;
    return std::string(digits.substr(isZero && digits.front() == '-' ? 1 : 0));
}

}  // namespace program
