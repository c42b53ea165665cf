#include "hrtf/sdif_text.h"

namespace Lume {

namespace {

constexpr std::string_view whiteSpace(" \t\r\n\v\f\0", 7);

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(whiteSpace);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(whiteSpace) - begin + 1);
}

/// Cuts text at the first of some characters; the rest, without that character, stays in text.
std::string_view CutAt(std::string_view& text, std::string_view characters) {
    const std::size_t end = text.find_first_of(characters);
    const std::string_view head = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return head;
}

/// More pairs and more tables than any set has; what lies beyond is left out, so that a crafted text can't take many
/// times its size in memory.
constexpr std::size_t maxEntries = 4096;

void AddPair(std::string_view entry, std::string_view separators, SdifHashTableT& pairs) {
    if (pairs.size() >= maxEntries) return;
    entry = Trimmed(entry);
    const std::string_view name = CutAt(entry, separators);
    if (!name.empty()) pairs.push_back({std::string(name), std::string(Trimmed(entry))});
}

void AddTable(SdifHashTableT pairs, SdifListT& list) {
    if (list.tables.size() >= maxEntries) return;
    const auto number = static_cast<unsigned int>(list.tables.size() + 1);
    list.tables.push_back({std::move(pairs), number});
}

}  // namespace

void ParseNameValueText(std::string_view text, SdifListT& list) {
    const std::size_t brace = text.find('{');
    const std::string_view before = Trimmed(text.substr(0, brace));
    if (brace != std::string_view::npos && (before.empty() || before == "1NVT")) {
        while (text.find('{') != std::string_view::npos) {
            CutAt(text, "{");
            std::string_view block = CutAt(text, "}");
            SdifHashTableT pairs;
            while (!block.empty()) AddPair(CutAt(block, ";"), whiteSpace, pairs);
            AddTable(std::move(pairs), list);
        }
        return;
    }
    SdifHashTableT pairs;
    while (!text.empty()) {
        const std::string_view line = CutAt(text, "\n");
        AddPair(line, line.find('\t') != std::string_view::npos ? "\t" : " ", pairs);
    }
    AddTable(std::move(pairs), list);
}

void ParseTypeText(std::string_view text, std::set<SdifSignature>& types) {
    bool definition = false;
    while (!text.empty()) {
        const std::string_view word = CutAt(text, whiteSpace);
        if (word.empty()) continue;
        if (definition && word.size() >= 4) {
            SdifSignature signature = 0;
            for (const char character : word.substr(0, 4))
                signature = signature << 8 | static_cast<unsigned char>(character);
            types.insert(signature);
        }
        definition = word == "1MTD" || word == "1FTD";
    }
}

}  // namespace Lume
