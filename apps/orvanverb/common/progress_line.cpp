#include "orvanverb/common/progress_line.h"

#include <unistd.h>

#include <string>

#include "orvanverb/common/text.h"

namespace program {

namespace {

constexpr std::chrono::milliseconds interval{200};
constexpr char const* wipeLine = "\r\033[K";

}  // namespace

ProgressLine::ProgressLine(std::FILE* newStream) : stream(isatty(fileno(newStream)) != 0 ? newStream : nullptr) {}

void ProgressLine::Show(double seconds, double expected) {
    if (stream == nullptr) return;
    const Clock::time_point now = Clock::now();
    if (now < next) return;
    next = now + interval;
    const double elapsed = std::chrono::duration<double>(now - begin).count();
    std::string line = FixedText(seconds, 1) + " s";
    if (expected > 0.0 && seconds <= expected)
        line += " of " + FixedText(expected, 1) + " s (" + FixedText(100.0 * seconds / expected, 0) + " %)";
    else if (expected > 0.0)
        line += ", the tail";
    if (elapsed > 0.0) line += ", " + FixedText(seconds / elapsed, 0) + " times real time";
    std::fprintf(stream, "%s%s", wipeLine, line.c_str());
    std::fflush(stream);
    shown = true;
}

void ProgressLine::Wipe() {
    if (shown) std::fputs(wipeLine, stream);
    shown = false;
}

}  // namespace program
