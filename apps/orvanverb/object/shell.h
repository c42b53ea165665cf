#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "patcher/box.h"

namespace program {

/// One object orvanverb~ under the hands of a user, or of a script, who types messages.
///
/// Each line is a message to the object. Lines that start with a colon are for the shell:
///
///     :get NAME              the value of an attribute: NAME v1 v2 ...
///     :state                 the saved state: state v1 v2 ...
///     :restore v1 v2 ...     hands a list to the object as its state
///     :preset, :recall       stores a preset, and recalls it
///     :assist in|out INDEX   the text of an inlet or outlet, counted from 0
///     :dsp RATE BLOCK        starts audio
///     :notifications         how many changes the object announced since the last such line
///     :quit
///
/// Empty lines and lines that start with # are skipped. Each console line of the object is written at once, behind
/// its level: "post: ", "warn: ", "error: " or "bug: ". Scripts read this: the format is stable.
class Shell {
public:
    /// @param attributes  of the object box, "@numsources 2 @tr0 3"; lines of its creation are written to `newOut`
    Shell(std::string const& attributes, std::ostream& newOut);

    /// False if the class refused to make the object.
    bool HasObject() const { return box.Object() != nullptr; }

    /// The first line that was an error; empty if there was none yet.
    std::string const& FirstError() const { return firstError; }

    /// Does what a line asks for. False if it asks to quit.
    bool Handle(std::string const& line);

private:
    void Write(std::string const& line);
    void WriteValues(std::string const& head, std::vector<max::t_atom> const& atoms);
    void Command(std::string const& line);
    void Get(std::vector<max::t_atom> const& arguments);
    void Assist(std::vector<max::t_atom> const& arguments);
    void StartAudio(std::vector<max::t_atom> const& arguments);

    std::ostream& out;
    std::string firstError;
    long notifications = 0;
    std::vector<max::t_atom> preset;
    max::Box box;
};

/// Runs a shell on standard input and output. Returns the exit status.
/// @param strict  ends with status 1 at the first error, which is told on standard error, too
int RunShell(std::string const& attributes, bool strict);

}  // namespace program
