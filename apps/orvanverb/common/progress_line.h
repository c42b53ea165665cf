#pragma once

#include <chrono>
#include <cstdio>
#include <string>

namespace program {

/// One line on a terminal that says how far the work is, rewritten a few times a second and wiped at the end. Where the
/// stream is no terminal, or all is to be quiet, it stays silent.
class ProgressLine {
public:
    explicit ProgressLine(std::FILE* stream);
    ~ProgressLine() { Wipe(); }
    ProgressLine(ProgressLine const&) = delete;
    ProgressLine& operator=(ProgressLine const&) = delete;

    /// @param seconds   rendered so far
    /// @param expected  in all, 0 if not known; behind it the tail runs
    void Show(double seconds, double expected);

    /// @param what  is being done
    /// @param part  of it that is done, 0 to 1
    void ShowPart(char const* what, double part);

    void Wipe();

private:
    bool IsDue();
    void Rewrite(std::string const& line);

    using Clock = std::chrono::steady_clock;

    std::FILE* stream;  // null: not a terminal
    Clock::time_point begin = Clock::now();
    Clock::time_point next = begin;
    bool shown = false;
};

}  // namespace program
