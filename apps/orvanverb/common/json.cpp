#include "orvanverb/common/json.h"

#include <cmath>
#include <cstdio>

#include "orvanverb/common/text.h"

namespace program {

std::string JsonString(std::string const& text) {
    std::string quoted = "\"";
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '"' || letter == '\\') quoted += '\\';
        if (code < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", code);
            quoted += escape;
        } else {
            quoted += letter;
        }
    }
    return quoted + '"';
}

std::string JsonStrings(std::vector<std::string> const& texts) {
    JsonArray array;
    for (std::string const& text : texts) array.Add(JsonString(text));
    return array.Text();
}

std::string JsonNumber(double value) {
    return std::isfinite(value) ? NumberText(static_cast<float>(value)) : "null";
}

std::string JsonNumber(double value, int decimals) {
    return std::isfinite(value) ? FixedText(value, decimals) : "null";
}

}  // namespace program
