#pragma once

#include <string>

namespace program {

/// Whether somebody sits at both ends: standard input and output are a terminal.
bool IsTyped();

/// The lines of standard input. On a terminal, and where the program was built with libedit, they can be edited, and
/// completed by Tab; what was typed is kept in $XDG_STATE_HOME/orvanverb, usually ~/.local/state/orvanverb, line by
/// line, so that a signal loses nothing. A program has one such object.
class TypedLines {
public:
    TypedLines();

    /// The next line, without its end. False at the end of input, and when standard output has failed.
    bool Next(std::string& line);

private:
    bool edited = false;
    std::string historyFile;  // empty if there is none
};

}  // namespace program
