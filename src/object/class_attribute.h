#pragma once

#include "object/host_api.h"

namespace orvanmax {

/// Adds an attribute to a class, and then what the attribute says about itself:
///
///     ClassAttribute(c, "tr0", float32, calcoffset(orvanverb_t, tr0), setter)
///         .Default(1.995f).Range(0.1f, 10.0f).Units("sec").Label("global decay time");
class ClassAttribute {
public:
    /// One value. The setter may be null: the host then writes the field.
    ClassAttribute(t_class* c, char const* name, t_symbol* type, long offset, method setter, long flags = 0);
    /// Up to size floats; how many are in use stands in the record at offsetCount, or it is always all of them (0).
    ClassAttribute(t_class* c, char const* name, long size, long offsetCount, long offset, method setter);

    ClassAttribute& Default(long value);
    ClassAttribute& Default(float value);
    ClassAttribute& DefaultText(char const* text) { return Number("default", text); }
    /// The host keeps values within the bounds.
    ClassAttribute& Clip(float minimum, float maximum);
    /// The same, and an inspector shows the bounds.
    ClassAttribute& Range(float minimum, float maximum);
    ClassAttribute& Units(char const* text) { return Say("units", text); }
    ClassAttribute& Style(char const* text) { return Say("style", text); }
    ClassAttribute& Label(char const* text) { return Say("label", text); }
    ClassAttribute& Category(char const* text) { return Say("category", text); }
    ClassAttribute& Description(char const* text) { return Say("description", text); }
    ClassAttribute& Invisible() { return Number("invisible", "1"); }
    ClassAttribute& DontReset() { return Number("dontreset", "1"); }

private:
    ClassAttribute& Say(char const* word, char const* text);
    ClassAttribute& Number(char const* word, char const* text);

    t_class* owner;
    char const* attributeName;
    t_object* attribute;
};

}  // namespace orvanmax
