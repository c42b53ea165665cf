#pragma once

#include <istream>
#include <map>
#include <string>
#include <vector>

namespace Lume {

/// Reads the next line of a text, which ends at a return or a line feed, without white space at its ends.
/// @return false at the end of the text
bool GetTrimmedLine(std::istream& stream, std::string& line);

/// Reads as many floats, separated by blanks, as a text begins with, up to a number. Independent of the locale; a
/// number that isn't finite in single precision ends the list.
std::vector<float> ParseFloats(std::string const& text, std::size_t maxCount);

/// Parses a text of numbered rows, `1, 0.5 0.25 -1;`, in the form in which patching hosts keep collections.
///
/// Rows must be numbered on from 1; lines that aren't, or that aren't rows at all, are skipped. The first row sets how
/// many values a row has, and of later ones at most that many are read.
class MaxMSPCollFileParser {
public:
    explicit MaxMSPCollFileParser(std::istream& stream);
    /// Parses a file.
    /// @throws orvandsp::OrvanDspException if it can't be opened
    static MaxMSPCollFileParser OfFile(std::string const& fileName);

    /// The rows by their number, from 1.
    std::map<int, std::vector<float>> rows;
    unsigned int numRows = 0;
    unsigned int numValuesPerRow = 0;

    /// Whether all rows have as many values as the first.
    bool HasEqualRows() const;
};

}  // namespace Lume
