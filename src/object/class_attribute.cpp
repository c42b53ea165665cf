#include "object/class_attribute.h"

#include <charconv>
#include <string>

namespace orvanmax {

namespace {

/// The text of "%f", whatever the decimal point of the process's locale is.
std::string Fixed(float value) {
    constexpr int decimals = 6;
    char text[64];
    auto const end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals).ptr;
    return {text, end};
}

}  // namespace

ClassAttribute::ClassAttribute(t_class* c, char const* name, t_symbol* type, long offset, method setter, long flags)
    : owner(c), attributeName(name), attribute(attr_offset_new(name, type, flags, nullptr, setter, offset)) {
    class_addattr(owner, attribute);
}

ClassAttribute::ClassAttribute(t_class* c, char const* name, long size, long offsetCount, long offset, method setter)
    : owner(c),
      attributeName(name),
      attribute(attr_offset_array_new(name, common_symbols_init()->s_float32, size, 0, nullptr, setter, offsetCount,
                                      offset)) {
    class_addattr(owner, attribute);
}

ClassAttribute& ClassAttribute::Default(long value) {
    return Number("default", std::to_string(value).c_str());
}

ClassAttribute& ClassAttribute::Default(float value) {
    return Number("default", Fixed(value).c_str());
}

ClassAttribute& ClassAttribute::Clip(float minimum, float maximum) {
    attr_addfilter_clip(attribute, static_cast<double>(minimum), static_cast<double>(maximum), 1, 1);
    return *this;
}

ClassAttribute& ClassAttribute::Range(float minimum, float maximum) {
    Clip(minimum, maximum);
    Number("minvalue", Fixed(minimum).c_str());
    return Number("maxvalue", Fixed(maximum).c_str());
}

ClassAttribute& ClassAttribute::Say(char const* word, char const* text) {
    class_attr_addattr_parse(owner, attributeName, word, common_symbols_init()->s_symbol, 0, text);
    return *this;
}

ClassAttribute& ClassAttribute::Number(char const* word, char const* text) {
    class_attr_addattr_parse(owner, attributeName, word, common_symbols_init()->s_float32, 0, text);
    return *this;
}

}  // namespace orvanmax
