#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

namespace program {

/// Samples that wait in a file without a name: beside an output, where there should be room for it, or among the
/// temporary files if that is a pipe. It is gone with this object, whatever ends the program.
class ScratchFile {
public:
    /// @param newOutput  path of the output that the samples are for, which failures name
    /// @throws WorkError
    explicit ScratchFile(std::string const& newOutput);

    /// Appends samples.
    /// @throws WorkError when the disk is full or the like
    void Write(float const* samples, std::size_t count);

    /// Goes back to the first sample.
    void Rewind();

    /// Reads on.
    /// @return samples read, 0 at the end
    std::size_t Read(float* samples, std::size_t count);

private:
    struct Closer {
        void operator()(std::FILE* open) const noexcept { std::fclose(open); }
    };

    [[noreturn]] void Fail() const;

    std::string output;
    std::string folder;
    std::unique_ptr<std::FILE, Closer> file;
};

}  // namespace program
