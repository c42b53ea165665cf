#pragma once

#include <string>
#include <vector>

/// What became of one run of a program.
struct RunResult {
    int status = -1;       // exit status
    std::string out, err;  // standard output and standard error
    long peakMemoryKb = 0;
    double processorSeconds = 0.0;
};

/// Runs a command, whose first word is its program.
RunResult RunCommand(std::vector<std::string> const& words, std::string const& before = {},
                     std::string const& input = {});

/// Runs the real program, with the leave to replace what it wrote before.
/// @param before  shell words in front of it: "ulimit -f 8;", "timeout -s INT 1"
/// @param input   what it reads from standard input
RunResult RunProgram(std::vector<std::string> const& arguments, std::string const& before = {},
                     std::string const& input = {});

/// Runs it and ends the test, with what it said, unless it succeeds.
RunResult RunWell(std::vector<std::string> const& arguments);

void ExpectContains(std::string const& text, std::string const& piece);

/// Fails unless a run ended with a status and one line on standard error that names the culprit.
void ExpectComplaint(RunResult const& run, int status, std::string const& culprit);

/// Words, and more behind them.
std::vector<std::string> Joined(std::vector<std::string> words, std::vector<std::string> const& more);
