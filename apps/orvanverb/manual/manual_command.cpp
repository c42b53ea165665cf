#include "orvanverb/manual/manual_command.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/whole_file.h"
#include "orvanverb/manual/manual_text.h"

namespace program {

namespace {

/// A page for each command, of the name that man looks for.
void AddPages(CLI::App const& command, std::string const& words, std::map<std::string, std::string>& pages) {
    std::string name = words + ".1";
    for (char& letter : name)
        if (letter == ' ') letter = '-';
    pages[name] = ManPage(command, words, ORVANVERB_VERSION);
    for (CLI::App const* sub : command.get_subcommands([](CLI::App const*) { return true; }))
        AddPages(*sub, words + " " + sub->get_name(), pages);
}

CLI::App const& Find(CLI::App const& program, std::vector<std::string> const& words) {
    CLI::App const* command = &program;
    try {
        for (std::string const& word : words) command = command->get_subcommand(word);
    } catch (CLI::OptionNotFound const& error) {
        throw UsageError("manual: " + std::string(error.what()));
    }
    return *command;
}

int WriteFiles(std::string const& folder, std::map<std::string, std::string> const& files) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw WorkError(folder + ": " + error.message());
    for (auto const& [name, text] : files) WholeFile((std::filesystem::path(folder) / name).string()).Write(text);
    return 0;
}

int Print(std::string const& text) {
    std::fputs(text.c_str(), stdout);
    return 0;
}

}  // namespace

void AddManualCommand(CLI::App& app, Call& call) {
    CLI::App* command = app.add_subcommand("manual", "Write man pages, a completion for bash, or tables of options");
    struct Words {
        std::string man;
        bool completion = false;
        std::vector<std::string> table;
    };
    const auto words = std::make_shared<Words>();
    CLI::Option* const man =
        command->add_option("--man", words->man, "Write a page for every command into this folder");
    man->type_name("FOLDER");
    CLI::Option* const table =
        command->add_option("--table", words->table, "Print the options of a command, as a table in Markdown");
    table->type_name("COMMAND");
    CLI::Option* const bash = command->add_flag("--bash", words->completion, "Print a completion for bash");
    man->excludes(table)->excludes(bash);
    table->excludes(bash);
    command->require_option(1);
    command->footer(
        "  orvanverb manual --man ~/.local/share/man/man1\n"
        "  orvanverb manual --bash > ~/.local/share/bash-completion/completions/orvanverb");
    // The tables are those of the parser, which is gone when the command runs: the texts are made before.
    command->callback([&app, &call, words] {
        if (words->completion) {
            call.run = [text = BashCompletion(app)] { return Print(text); };
        } else if (!words->table.empty()) {
            call.run = [text = OptionTable(Find(app, words->table))] { return Print(text); };
        } else {
            std::map<std::string, std::string> pages;
            AddPages(app, app.get_name(), pages);
            call.run = [pages, folder = words->man] { return WriteFiles(folder, pages); };
        }
    });
}

}  // namespace program
