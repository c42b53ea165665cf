#include "orvanverb/common/gnuplot.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/whole_file.h"

namespace program {

namespace {

/// A directory for what goes to gnuplot and comes from it.
class WorkDirectory {
public:
    WorkDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "orvanverb-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw WorkError(name + ": " + std::generic_category().message(errno));
        path = name;
    }
    ~WorkDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    WorkDirectory(WorkDirectory const&) = delete;
    WorkDirectory& operator=(WorkDirectory const&) = delete;
    std::string operator/(char const* name) const { return (path / name).string(); }

private:
    std::filesystem::path path;
};

std::string ReadAll(std::string const& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// @return the exit status
int Run(std::string const& script, std::string const& errors) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::string name = "gnuplot", argument = script;
    char* words[] = {name.data(), argument.data(), nullptr};
    pid_t process = 0;
    const int failure = posix_spawnp(&process, "gnuplot", &actions, nullptr, words, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw WorkError("pictures are drawn by gnuplot, which can't be run (" +
                        std::generic_category().message(failure) + "); on Debian: apt-get install gnuplot-nox");
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

bool IsSvg(std::string const& path) {
    return path.ends_with(".svg");
}

}  // namespace

void RequirePictureName(std::string const& path) {
    if (!IsSvg(path) && !path.ends_with(".png"))
        throw UsageError("'" + path + "' is no name for a picture: it must end in .svg or .png");
}

void DrawPicture(std::string const& path, int width, int height, std::string const& script) {
    WholeFile file(path);
    const WorkDirectory directory;
    const std::string picture = directory / "picture", source = directory / "script", errors = directory / "errors";
    const std::string size = std::to_string(width) + "," + std::to_string(height);
    {
        std::ofstream out(source);
        out << "set encoding utf8\nset terminal "
            << (IsSvg(path) ? "svg size " + size + " dynamic font 'DejaVu Sans,13' background '#ffffff'"
                            : "pngcairo size " + size + " font 'DejaVu Sans,10' background '#ffffff'")
            << "\nset output '" << picture << "'\n"
            << script << "\nset output\n";
        out.close();
        if (!out) throw WorkError(source + ": can't be written");
    }
    if (Run(source, errors) != 0) {
        std::istringstream said(ReadAll(errors));
        std::string line, last;
        while (std::getline(said, line))
            if (!line.empty()) last = line;
        throw WorkError(path + ": gnuplot failed: " + last);
    }
    file.Write(ReadAll(picture));
}

std::string PlotText(std::string const& text) {
    std::string plain;
    for (const char letter : text) {
        if (letter == '_' || letter == '^' || letter == '@' || letter == '{' || letter == '}' || letter == '&' ||
            letter == '~' || letter == '\\')
            plain += "\\\\";
        if (letter == '"' || letter == '\n') continue;
        plain += letter;
    }
    return plain;
}

}  // namespace program
