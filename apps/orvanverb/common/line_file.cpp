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

void ForEachLine(std::string const& path, std::function<void(Line&& line)> const& take) {
    constexpr std::size_t longest = 65536;  // several times what names every coordinate of 64 sources
    std::ifstream file(path == "-" ? "/dev/stdin" : path);
    if (!file) throw WorkError(path + ": " + std::generic_category().message(errno));
    if (std::filesystem::is_directory(path)) throw WorkError(path + ": is a directory");

    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        if (number == 1 && text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);  // the mark that some editors put first
        if (!Lume::IsText(text)) throw WorkError(At(path, number) + "is no text");
        text.resize(std::min(text.size(), text.find('#')));
        if (text.size() > longest) throw WorkError(At(path, number) + "is longer than 65536 characters");
        std::vector<std::string> words = SplitWords(text);
        if (!words.empty()) take({number, std::move(words)});
    }
    if (file.bad()) throw WorkError(path + ": " + std::generic_category().message(errno));
}

std::string At(std::string const& path, int line) {
    return path + ":" + std::to_string(line) + ": ";
}

void ReadLineFile(std::string const& path, std::function<void(std::span<std::string const> words)> const& take) {
    ForEachLine(path, [&](Line const& line) {
        try {
            take(line.words);
        } catch (std::invalid_argument const& error) {
            throw WorkError(At(path, line.number) + error.what());
        }
    });
}

}  // namespace program
