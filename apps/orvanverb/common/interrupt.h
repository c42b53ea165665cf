#pragma once

namespace program {

/// Lets the keyboard's interrupt and the request to end stop the work in an orderly way: from here on they only raise a
/// flag. Also makes a file beyond the size limit a write error instead of the end of the program.
void CatchInterrupts();

/// Whether one came.
bool Interrupted() noexcept;

}  // namespace program
