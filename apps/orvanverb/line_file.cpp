#include "orvanverb/line_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "orvanverb/program_error.h"
#include "orvanverb/text.h"

namespace program {

void ReadLineFile(std::string const& path, std::function<void(std::span<std::string const> words)> const& take) {
    std::ifstream file(path);
    if (!file) throw WorkError(path + ": " + std::generic_category().message(errno));
    if (std::filesystem::is_directory(path)) throw WorkError(path + ": is a directory");

    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (number == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);  // the mark that some editors put first
        line.resize(std::min(line.size(), line.find('#')));
        const std::vector<std::string> words = SplitWords(line);
        if (words.empty()) continue;
        try {
            take(words);
        } catch (std::invalid_argument const& error) {
            throw WorkError(path + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    if (file.bad()) throw WorkError(path + ": " + std::generic_category().message(errno));
}

}  // namespace program
