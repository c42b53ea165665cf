#include "hrtf/max_msp_coll_file_parser.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <string_view>

#include "dsp/orvan_dsp_exception.h"

namespace Lume {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n\v\f";

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(whiteSpace);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
}

}  // namespace

bool GetTrimmedLine(std::istream& stream, std::string& line) {
    line.clear();
    std::streambuf* const buffer = stream.rdbuf();
    constexpr int end = std::char_traits<char>::eof();
    int character = buffer->sbumpc();
    if (character == end) return false;
    for (; character != end && character != '\n' && character != '\r'; character = buffer->sbumpc())
        line += static_cast<char>(character);
    line = Trimmed(line);
    return true;
}

std::vector<float> ParseFloats(std::string const& text, std::size_t maxCount) {
    std::vector<float> values;
    char const* next = text.data();
    char const* const end = next + text.size();
    while (values.size() < maxCount) {
        next = std::find_if(next, end, [](char c) { return whiteSpace.find(c) == std::string_view::npos; });
        if (next != end && *next == '+') ++next;
        // As double: a tiny number then becomes 0 instead of an error.
        double value = 0.0;
        const auto [after, error] = std::from_chars(next, end, value);
        constexpr auto greatest = static_cast<double>(std::numeric_limits<float>::max());
        if (error != std::errc() || !(std::abs(value) <= greatest)) break;
        values.push_back(static_cast<float>(value));
        next = after;
    }
    return values;
}

MaxMSPCollFileParser MaxMSPCollFileParser::OfFile(std::string const& fileName) {
    std::ifstream stream(fileName, std::ios::binary);
    if (!stream) throw orvandsp::OrvanDspException("can't open the file " + fileName, __FILE__, __LINE__);
    return MaxMSPCollFileParser(stream);
}

MaxMSPCollFileParser::MaxMSPCollFileParser(std::istream& stream) {
    std::string line;
    while (GetTrimmedLine(stream, line)) {
        const std::size_t comma = line.find(',');
        if (comma == std::string::npos) continue;
        const std::size_t semicolon = line.find(';', comma);
        if (semicolon == std::string::npos) continue;

        const std::string_view number = Trimmed(std::string_view(line).substr(0, comma));
        int index = 0;
        const auto [after, error] = std::from_chars(number.data(), number.data() + number.size(), index);
        if (error != std::errc() || after != number.data() + number.size()) continue;
        if (index != static_cast<int>(numRows) + 1) continue;

        const std::size_t maxCount = index == 1 ? std::numeric_limits<std::size_t>::max() : numValuesPerRow;
        std::vector<float> values = ParseFloats(line.substr(comma + 1, semicolon - comma - 1), maxCount);
        if (index == 1) numValuesPerRow = static_cast<unsigned int>(values.size());
        rows.emplace(index, std::move(values));
        ++numRows;
    }
}

bool MaxMSPCollFileParser::HasEqualRows() const {
    return std::all_of(rows.begin(), rows.end(),
                       [this](auto const& row) { return row.second.size() == numValuesPerRow; });
}

}  // namespace Lume
