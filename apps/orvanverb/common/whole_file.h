#pragma once

#include <fstream>
#include <string>
#include <string_view>

namespace program {

/// A file that is written in one go. The bytes go to a file beside the wanted one, which takes its name when all of
/// them are there: what stands under the final name is whole, and an existing file stays as it was until then. Made
/// before long work, it tells at once that the place can't be written.
class WholeFile {
public:
    /// @throws WorkError that names the file
    explicit WholeFile(std::string newPath);
    /// Removes what wasn't finished.
    ~WholeFile();
    WholeFile(WholeFile const&) = delete;
    WholeFile& operator=(WholeFile const&) = delete;

    /// Writes all that the file holds and gives it its name.
    /// @throws WorkError that names the file
    void Write(std::string_view bytes);

private:
    [[noreturn]] void Fail() const;

    std::string path;         // as the user wrote it
    std::string finalPath;    // behind links
    std::string partialPath;  // empty when there is nothing to remove
    std::ofstream file;
};

}  // namespace program
