#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>

/// A file in memory with a path of its own, for tests that write one thousands of times.
class MemoryFile {
public:
    MemoryFile() : descriptor(memfd_create("test", 0)), name("/proc/self/fd/" + std::to_string(descriptor)) {}
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;
    ~MemoryFile() { close(descriptor); }

    /// Replaces the content.
    /// @return whether all of it was written
    bool Write(std::string const& content) const {
        return ftruncate(descriptor, 0) == 0 &&
               pwrite(descriptor, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size());
    }

    const int descriptor;
    const std::string name;
};
