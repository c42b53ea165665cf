#pragma once

#include <string>

#include "patcher/box.h"

/// A box, and all that it said.
class RecordingBox {
public:
    explicit RecordingBox(std::string const& text);

    max::t_object* Object() { return box.Object(); }
    /// Sends a message and returns the lines that came, "level: text|level: text|".
    std::string Send(std::string const& message);
    /// The lines that came since the last call.
    std::string Lines();
    /// What was sent out of outlets since the last call, "selector atoms |".
    std::string Output();
    /// How many notifications came since the last call.
    int Notifications();
    /// The value of an attribute, "value value ".
    std::string Get(char const* name);
    /// The whole state, "value value ".
    std::string State();

private:
    std::string lines, output;
    int notifications = 0;

public:
    max::Box box;
};
