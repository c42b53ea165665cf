#pragma once

namespace program {

/// Fills the places of standard streams that the caller closed, so that no file of ours comes to stand there and takes
/// what is meant for people: reading from them and writing to them still fails. Lets a long print be one write, so that
/// FinishStandardOutput knows why it failed.
void PrepareStandardStreams();

/// Writes what is left for standard output.
/// @return whether all that was printed got there
/// @throws WorkError if it didn't, unless the reader had enough of it and went
bool FinishStandardOutput();

}  // namespace program
