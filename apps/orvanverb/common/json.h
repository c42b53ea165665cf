#pragma once

#include <string>
#include <vector>

/// JSON, for programs that read what this one says.
namespace program {

std::string JsonString(std::string const& text);

/// An array of them.
std::string JsonStrings(std::vector<std::string> const& texts);

/// null for what is not finite.
/// @param decimals  at most, where they are told; else as many as single precision needs
std::string JsonNumber(double value);
std::string JsonNumber(double value, int decimals);

/// An object in the making.
class JsonObject {
public:
    /// @param json  of the value
    void Add(std::string const& name, std::string const& json) {
        members.append(members.empty() ? "" : ", ").append(JsonString(name)).append(": ").append(json);
    }
    std::string Text() const { return "{" + members + "}"; }

private:
    std::string members;
};

/// An array in the making.
class JsonArray {
public:
    void Add(std::string const& json) { items.append(items.empty() ? "" : ", ").append(json); }
    std::string Text() const { return "[" + items + "]"; }

private:
    std::string items;
};

}  // namespace program
