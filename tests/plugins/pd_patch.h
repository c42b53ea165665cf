#pragma once

#include <string>
#include <vector>

#include "program/run_program.h"

/// A patch of Pd, built object by object. In messages, separators are written as in a patch file: \; and \,
class PdPatch {
public:
    /// @return its number, for Connect
    int Object(std::string const& text);
    int Message(std::string const& text);
    /// @param name  of the box: pd name
    int Subpatch(PdPatch const& patch, std::string const& name);
    void Connect(int from, int outlet, int to, int inlet);
    /// A message that is sent as soon as the patch is open, or later [ms].
    void At(double milliseconds, std::string const& message);

    std::string Text() const;

private:
    int Add(std::string const& line);

    int number = 0;
    std::string objects, connections;
};

/// Opens a patch file in the real Pd, with the external of this build, and lets it run as fast as it can until it
/// quits.
/// @param options  more words of the command line
/// @param before   as in RunCommand
RunResult RunPd(std::string const& path, std::vector<std::string> const& options = {}, std::string const& before = {});
