#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "orvanverb/common/interrupt.h"

namespace program {

/// What an output's name that stands for standard output is.
constexpr char const* standardOutputName = "-";

/// Whether an output is a file, or can become one: no pipe, no device, not standard output.
bool IsReplaceable(std::string const& path);

/// Whether an output can't be gone back in: a named pipe, or standard output where that is one.
bool IsPipe(std::string const& path);

/// Tells without writing anything what a PartFile would complain of.
/// @throws WorkError that names the file, if it can't be written there
void RequireWritable(std::string const& path);

/// A file in the making. What is written goes to a part beside the wanted file, which takes its name when all is done:
/// what stands under the final name is whole, and an existing file stays as it was until then. The new one has the
/// rights of the one that it replaces, and stands where a symbolic link leads.
///
/// A part has a name that nobody else has, and is locked as long as its writer lives. Parts of the same file that
/// nobody holds any more are what a killed program or a crash left: they are removed.
///
/// What can't be replaced, as a pipe or /dev/null, is written as it comes, and so is standard output.
class PartFile {
public:
    /// @throws WorkError that names the file, if it can't be written there
    explicit PartFile(std::string path);
    /// Removes the part unless it was committed.
    ~PartFile();
    PartFile(PartFile const&) = delete;
    PartFile& operator=(PartFile const&) = delete;

    /// Of the part, open for reading and writing, or of what can't be replaced. It stays this object's own.
    int Descriptor() const noexcept { return descriptor; }
    /// Empty for what can't be replaced.
    std::string const& PartPath() const noexcept { return partPath; }

    /// Gives the part its name.
    /// @throws WorkError that names the file
    void Commit();

    /// @throws WorkError "FILE: can't be written: why"
    [[noreturn]] void Fail(std::string const& why) const;
    /// @throws as above, with what errno says
    [[noreturn]] void FailAsErrno() const;

private:
    void RemoveStaleParts() const;
    void Open();
    void OpenInPlace();
    void KeepRights() const;

    std::string path;       // as the user wrote it
    std::string finalPath;  // behind links
    std::string prefix;     // of the names of its parts
    std::string partPath;   // empty when there is nothing to remove
    int descriptor = -1;
    std::optional<RemovedOnSignal> onSignal;
};

}  // namespace program
