#pragma once

#include <string>

namespace program {

/// Lets the signals that end a program do so in an orderly way: what was being written goes, a line says so, and the
/// signal then takes its usual course, so that shells and scripts see what ended the program. This holds wherever it
/// stands at that moment, also where it waits for input.
///
/// A signal that was to be ignored stays so (nohup, background jobs). A pipe without a reader and a file beyond the
/// size limit become write errors.
void CatchSignals();

/// A file that a signal removes, as long as this object lives.
class RemovedOnSignal {
public:
    explicit RemovedOnSignal(std::string const& path);
    ~RemovedOnSignal();
    RemovedOnSignal(RemovedOnSignal const&) = delete;
    RemovedOnSignal& operator=(RemovedOnSignal const&) = delete;

private:
    int slot;  // below 0: none was left
};

}  // namespace program
