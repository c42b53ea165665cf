#include "orvanverb/object/typed_lines.h"

#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <vector>

#ifdef ORVAN_EDITLINE
#include <editline/readline.h>
#endif

#include "orvanverb/common/user_folder.h"
#include "orvanverb/object/shell_words.h"

namespace program {

bool IsTyped() {
    return isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
}

#ifdef ORVAN_EDITLINE

namespace {

namespace fs = std::filesystem;

constexpr char prompt[] = "orvanverb~ ";
constexpr int keptLines = 1000;

/// Empty if it can't be made.
std::string HistoryFile() {
    const fs::path folder = UserFolder("XDG_STATE_HOME", ".local/state");
    if (folder.empty()) return {};
    std::error_code error;
    fs::create_directories(folder, error);
    return error ? std::string() : (folder / "shell_history").string();
}

/// The words that fit, one after the other, each to be freed by the library.
char* NextFit(char const* word, int number) {
    static std::vector<std::string> fits;
    static std::size_t next = 0;
    if (number == 0) {
        const std::string line = rl_line_buffer;
        const std::size_t end = static_cast<std::size_t>(rl_point), length = std::string(word).size();
        fits = WordsThatFit(line.substr(0, end - std::min(end, length)), word);
        next = 0;
    }
    return next < fits.size() ? strdup(fits[next++].c_str()) : nullptr;
}

char** Complete(char const* word, int, int) {
    rl_attempted_completion_over = 1;  // no names of files
    return rl_completion_matches(word, NextFit);
}

}  // namespace

TypedLines::TypedLines() : edited(IsTyped()) {
    if (!edited) return;
    static char blanks[] = " \t";  // colons and plus signs are parts of words
    rl_readline_name = "orvanverb";
    rl_completer_word_break_characters = blanks;
    rl_completion_append_character = ' ';
    rl_attempted_completion_function = Complete;
    using_history();
    stifle_history(keptLines);
    historyFile = HistoryFile();
    if (!historyFile.empty()) read_history(historyFile.c_str());
}

bool TypedLines::Next(std::string& line) {
    if (!edited) return std::cout && std::getline(std::cin, line);
    const std::unique_ptr<char, decltype(&std::free)> typed(readline(prompt), std::free);
    if (typed == nullptr) {
        std::cout << std::endl;  // the caller's prompt begins on a line of its own
        return false;
    }
    line = typed.get();
    HIST_ENTRY const* const last = history_get(history_base + history_length - 1);
    if (!line.empty() && (last == nullptr || line != last->line)) {
        add_history(line.c_str());
        if (!historyFile.empty()) write_history(historyFile.c_str());
    }
    return true;
}

#else

TypedLines::TypedLines() = default;

bool TypedLines::Next(std::string& line) {
    return std::cout && std::getline(std::cin, line);
}

#endif

}  // namespace program
