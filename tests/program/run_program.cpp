#include "program/run_program.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <stdexcept>

#include "program/sound_files.h"

namespace {

std::string Quote(std::string const& word) {
    std::string quoted("'");
    for (const char letter : word) {
        if (letter == '\'')
            quoted.append("'\\''");
        else
            quoted.push_back(letter);
    }
    quoted.push_back('\'');
    return quoted;
}

}  // namespace

RunResult RunCommand(std::vector<std::string> const& words, std::string const& before, std::string const& input) {
    const TemporaryDirectory directory;
    WriteText(directory / "in", input);
    // Appended, not added: g++ 12 sees overlapping copies in `"text" + string` and warns.
    std::string command = before;
    command.append(before.empty() ? "exec" : "");
    for (std::string const& word : words) command.append(" ").append(Quote(word));
    command.append(" <").append(Quote(directory / "in"));
    command.append(" >").append(Quote(directory / "out")).append(" 2>").append(Quote(directory / "err"));

    std::string shell = "sh", flag = "-c";
    char* call[] = {shell.data(), flag.data(), command.data(), nullptr};
    pid_t process = 0;
    if (posix_spawnp(&process, "sh", nullptr, nullptr, call, environ) != 0) throw std::runtime_error("no shell");
    int status = 0;
    rusage usage{};
    wait4(process, &status, 0, &usage);

    RunResult result;
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    result.out = ReadText(directory / "out");
    result.err = ReadText(directory / "err");
    result.peakMemoryKb = usage.ru_maxrss;
    for (timeval const& time : {usage.ru_utime, usage.ru_stime})
        result.processorSeconds += static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    return result;
}

RunResult RunProgram(std::vector<std::string> const& arguments, std::string const& before, std::string const& input) {
    std::vector<std::string> words{ORVANVERB_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    // Tests render to the same name again and again.
    if (std::find(words.begin(), words.end(), "-o") != words.end() ||
        (words.size() > 2 && words[1] == "hrtf" && words[2] != "info"))
        words.emplace_back("--force");
    return RunCommand(words, before, input);
}

RunResult RunWell(std::vector<std::string> const& arguments) {
    RunResult run = RunProgram(arguments);
    if (run.status != 0) throw std::runtime_error("status " + std::to_string(run.status) + ": " + run.err + run.out);
    return run;
}

void ExpectContains(std::string const& text, std::string const& piece) {
    EXPECT_NE(text.find(piece), std::string::npos) << "'" << piece << "' in: " << text;
}

void ExpectComplaint(RunResult const& run, int status, std::string const& culprit) {
    EXPECT_EQ(run.status, status) << culprit << ": " << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_TRUE(run.err.starts_with("orvanverb: ")) << run.err;
    ExpectContains(run.err, culprit);
}

std::vector<std::string> Joined(std::vector<std::string> words, std::vector<std::string> const& more) {
    words.insert(words.end(), more.begin(), more.end());
    return words;
}
