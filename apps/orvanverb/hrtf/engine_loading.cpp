#include "orvanverb/hrtf/engine_loading.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <system_error>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"

namespace program {

namespace {

/// Makes a file's folder the working one for a while.
class FolderOf {
public:
    explicit FolderOf(std::filesystem::path const& path) : before(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {
        if (before >= 0 && path.has_parent_path() && chdir(path.parent_path().c_str()) == 0) name = path.filename();
        if (name.empty()) name = path;
    }
    ~FolderOf() {
        [[maybe_unused]] const int back = fchdir(before);
        close(before);
    }
    FolderOf(FolderOf const&) = delete;
    FolderOf& operator=(FolderOf const&) = delete;

    std::string name;

private:
    int before;
};

}  // namespace

void RequireSetFile(std::string const& path, std::string const& extensions) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) throw WorkError(path + ": " + std::generic_category().message(ENOENT));
    if (!std::filesystem::is_regular_file(path, error)) throw WorkError(path + ": is no file");
    const std::vector<std::string> words = SplitWords(extensions, ",");
    if (std::none_of(words.begin(), words.end(),
                     [&](std::string const& word) { return word.starts_with('.') && path.ends_with(word); }))
        throw WorkError(path + ": a name that ends in " + extensions + " is expected");
}

void LoadQuietly(std::string const& path, std::function<void(std::string const& name)> const& load) {
    const FolderOf folder(path);
    try {
        load(folder.name);
    } catch (std::exception const& error) {
        // The engine's messages end in the name, which stands in front here.
        std::string why = error.what();
        if (const std::size_t name = why.find(folder.name); name != std::string::npos) why.erase(name);
        while (why.ends_with(' ') || why.ends_with('?')) why.pop_back();
        throw WorkError(path + ": " + why);
    }
}

std::string RateRemark(std::string const& path, Lume::HrtfHeaderInfos const& header, int samplerate) {
    if (header.samplingRate == static_cast<unsigned int>(samplerate)) return {};
    return path + ": was made for " + std::to_string(header.samplingRate) + " Hz, the output has " +
           std::to_string(samplerate) + "; orvanverb hrtf convert makes one for it";
}

}  // namespace program
