#pragma once

#include <string>

namespace program {

/// Refuses an audio file that was cut off: a RIFF, RF64 or AIFF file with a chunk that reaches beyond its end. Readers
/// play what is there without a word, and half a recording looks like a whole one.
///
/// Sizes that recorders write when they don't know the length yet (0 for the data, or nearly 2 or 4 GiB) count as "up
/// to the end". Other kinds of file pass: FLAC tells its length, which AudioInput compares with what it got; Ogg pages
/// carry no total.
/// @throws WorkError
void RequireCompleteFile(std::string const& path);

}  // namespace program
