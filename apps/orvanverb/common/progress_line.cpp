#include "orvanverb/common/progress_line.h"

#include <unistd.h>

#include <string>

#include "orvanverb/common/messages.h"
#include "orvanverb/common/text.h"

namespace program {

namespace {

constexpr std::chrono::milliseconds interval{200};
constexpr char const* wipeLine = "\r\033[K";

}  // namespace

ProgressLine::ProgressLine(std::FILE* newStream)
    : stream(isatty(fileno(newStream)) != 0 && !IsQuiet() ? newStream : nullptr) {}

void ProgressLine::Show(double seconds, double expected) {
    if (!IsDue()) return;
    const double elapsed = std::chrono::duration<double>(Clock::now() - begin).count();
    std::string line = FixedText(seconds, 1) + " s";
    if (expected > 0.0 && seconds <= expected)
        line += " of " + FixedText(expected, 1) + " s (" + FixedText(100.0 * seconds / expected, 0) + " %)";
    else if (expected > 0.0)
        line += ", the tail";
    if (elapsed > 0.0) line += ", " + FixedText(seconds / elapsed, 0) + " times real time";
    Rewrite(line);
}

void ProgressLine::ShowPart(char const* what, double part) {
    if (IsDue()) Rewrite(std::string(what) + ": " + FixedText(100.0 * part, 0) + " %");
}

bool ProgressLine::IsDue() {
    if (stream == nullptr || Clock::now() < next) return false;
    next = Clock::now() + interval;
    return true;
}

void ProgressLine::Rewrite(std::string const& line) {
    std::fprintf(stream, "%s%s", wipeLine, line.c_str());
    std::fflush(stream);
    shown = true;
}

void ProgressLine::Wipe() {
    if (shown) std::fputs(wipeLine, stream);
    shown = false;
}

}  // namespace program
