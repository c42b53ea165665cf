#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Small readers and writers of text that do not depend on the user's locale.
namespace program {

/// The words of a line: blanks, tabs, carriage returns and the characters of `alsoSeparators` part them.
std::vector<std::string> SplitWords(std::string_view line, std::string_view alsoSeparators = {});

/// Words with a blank between each two.
std::string JoinWords(std::vector<std::string> const& words);

/// A whole word as a finite number, with an optional sign; nothing if it is anything else.
std::optional<float> ParseNumber(std::string_view word);
/// The same where single precision is too coarse, as for times.
std::optional<double> ParseDouble(std::string_view word);

/// A whole word as a whole number without sign; nothing if it is anything else.
std::optional<unsigned int> ParseCount(std::string_view word);

/// What somebody who wrote a word may have meant: the nearest of the names, at most two slips of a key away and with
/// most letters right; empty if there is none. " (did you mean tr0?)"
std::string DidYouMean(std::string_view word, std::vector<std::string> const& names);

/// "1 channel", "2 channels".
std::string Counted(std::size_t number, std::string const& what);

/// The shortest text that reads back as the same number: 0.1, 30, -7.5.
std::string NumberText(float value);

/// A number with a fixed count of decimals; never -0.
std::string FixedText(double value, int decimals);

}  // namespace program
