#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace program {

/// What a command line came to. Each command adds itself to the parser, with options of its own; the one that is called
/// leaves here what it is to do.
struct Call {
    std::vector<std::string> attributes;  // of the object box: @name value ...
    std::function<int()> run;             // returns the exit status; none if there is nothing more to do

    /// For a command that throws unless it succeeds.
    void Will(std::function<void()> command) {
        run = [command = std::move(command)] { return command(), 0; };
    }
};

}  // namespace program
