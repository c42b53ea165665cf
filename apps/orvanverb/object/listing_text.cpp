#include "orvanverb/object/listing_text.h"

#include <algorithm>

#include "orvanverb/common/json.h"

namespace program {

std::string AlignedText(TextRows const& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (auto const& row : rows)
        for (std::size_t c = 0; c < row.size(); ++c) widths[c] = std::max(widths[c], row[c].size());
    std::string text;
    for (auto const& row : rows) {
        std::string line;
        for (std::size_t c = 0; c < row.size(); ++c) line.append(row[c]).append(widths[c] + 2 - row[c].size(), ' ');
        text.append(line, 0, line.find_last_not_of(' ') + 1).push_back('\n');
    }
    return text;
}

std::string Join(std::vector<std::string> const& words, char const* between) {
    std::string text;
    for (std::string const& word : words) text.append(text.empty() ? "" : between).append(word);
    return text;
}

std::string JsonText(std::string const& text) {
    return text.empty() ? "null" : JsonString(text);
}

}  // namespace program
