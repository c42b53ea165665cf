#include "orvanverb/options/file_roles.h"

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "orvanverb/common/part_file.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/layout/speaker_layout.h"

namespace program {

namespace {

namespace fs = std::filesystem;

using Files = std::vector<Options::NamedFile>;

void Add(Files& files, char const* role, std::optional<std::string> const& path) {
    if (path && !path->empty()) files.push_back({role, *path});
}

Files ReadFiles(Options const& options) {
    Files files = OtherReadFiles(options);
    for (std::string const& input : options.inputs) Add(files, "an input", input);
    return files;
}

bool AreSame(std::string const& a, std::string const& b) {
    std::error_code error;
    // Of pipes and devices both ends may be the same: standard input and output on one terminal.
    if (!IsReplaceable(a)) return a == b && a != standardOutputName;
    if (fs::equivalent(a, b, error)) return true;
    const fs::path first = fs::weakly_canonical(fs::absolute(a, error), error);
    return !error && first == fs::weakly_canonical(fs::absolute(b, error), error) && !error;
}

void RequireSeparateFiles(Options const& options) {
    Files others = ReadFiles(options);
    // Some may be words, as the names of built-in sets.
    std::erase_if(others, [](Options::NamedFile const& file) {
        std::error_code ignored;
        return !fs::exists(file.path, ignored);
    });
    for (Options::NamedFile const& written : WrittenFiles(options)) {
        for (Options::NamedFile const& other : others)
            if (AreSame(written.path, other.path))
                throw UsageError(written.path + ": can't be " + written.role + " and " + other.role + " at once");
        others.push_back(written);
    }
}

void RequireOneReaderOfStandardInput(Options const& options) {
    Files files = ReadFiles(options);
    std::erase_if(files, [](Options::NamedFile const& file) { return file.path != "-"; });
    if (files.size() > 1)
        throw UsageError(std::string("-: standard input can't be ") + files[0].role + " and " + files[1].role +
                         " at once");
}

}  // namespace

Files OtherReadFiles(Options const& options) {
    Files files = options.otherReads;
    if (options.speakers && !SpeakerLayout::IsName(*options.speakers))
        Add(files, "the layout of --speakers", options.speakers);
    Add(files, "the --preset", options.preset);
    Add(files, "the --scene", options.scene);
    Add(files, "the --state", options.state);
    Add(files, "the --hrtf", options.hrtf);
    return files;
}

Files WrittenFiles(Options const& options) {
    Files files = options.otherWrites;
    Add(files, "the output", options.output);
    Add(files, "the --save-state", options.saveState);
    return files;
}

void RequireSafeOutputs(Options const& options) {
    RequireOneReaderOfStandardInput(options);
    RequireSeparateFiles(options);
    std::error_code ignored;
    if (options.force) return;
    for (Options::NamedFile const& written : WrittenFiles(options))
        if (written.path != standardOutputName && fs::is_regular_file(written.path, ignored))
            throw WorkError(written.path + ": is there already; --force replaces it");
}

}  // namespace program
