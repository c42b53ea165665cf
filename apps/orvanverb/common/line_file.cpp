#include "orvanverb/common/line_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "room/room_state.h"

namespace program {

std::vector<Line> ReadLines(std::string const& path) {
    std::ifstream file(path == "-" ? "/dev/stdin" : path);
    if (!file) throw WorkError(path + ": " + std::generic_category().message(errno));
    if (std::filesystem::is_directory(path)) throw WorkError(path + ": is a directory");

    std::vector<Line> lines;
    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        if (number == 1 && text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);  // the mark that some editors put first
        if (!Lume::IsText(text)) throw WorkError(At(path, number) + "is no text");
        text.resize(std::min(text.size(), text.find('#')));
        std::vector<std::string> words = SplitWords(text);
        if (!words.empty()) lines.push_back({number, std::move(words)});
    }
    if (file.bad()) throw WorkError(path + ": " + std::generic_category().message(errno));
    return lines;
}

std::string At(std::string const& path, int line) {
    return path + ":" + std::to_string(line) + ": ";
}

void ReadLineFile(std::string const& path, std::function<void(std::span<std::string const> words)> const& take) {
    for (Line const& line : ReadLines(path)) {
        try {
            take(line.words);
        } catch (std::invalid_argument const& error) {
            throw WorkError(At(path, line.number) + error.what());
        }
    }
}

}  // namespace program
