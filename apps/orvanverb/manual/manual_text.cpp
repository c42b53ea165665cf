#include "orvanverb/manual/manual_text.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <functional>
#include <sstream>

namespace program {

namespace {

/// Positionals first, in their order, then options.
std::vector<CLI::Option const*> Options(CLI::App const& command) {
    std::vector<CLI::Option const*> options;
    for (const bool positional : {true, false})
        for (CLI::Option const* option : command.get_options())
            if (option->get_positional() == positional && option != command.get_help_ptr()) options.push_back(option);
    return options;
}

/// "-o, --output", or the name of a positional.
std::string Names(CLI::Option const& option) {
    std::string names = option.get_positional() ? option.get_name(true) : option.get_name(false, true);
    if (const std::size_t comma = names.find(','); comma != names.npos) names.insert(comma + 1, " ");
    return names;
}

/// What stands behind it: "FILE ...".
std::string Values(CLI::Option const& option) {
    if (option.get_expected_max() == 0 || option.get_type_size_max() == 0) return {};
    return option.get_type_name() + (option.get_expected_max() > 1 ? " ..." : "");
}

/// A description is broken into lines for a terminal; here it is one.
std::string OneLine(std::string text) {
    for (char& letter : text)
        if (letter == '\n') letter = ' ';
    return text;
}

/// For troff: no letter is a command, and a minus is one.
std::string Troff(std::string const& text) {
    std::string result;
    for (const char letter : text) {
        if ((letter == '.' || letter == '\'') && (result.empty() || result.back() == '\n')) result += "\\&";
        if (letter == '\\' || letter == '-') result += '\\';
        result += letter == '\\' ? 'e' : letter;
    }
    return result;
}

std::string Upper(std::string text) {
    for (char& letter : text) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    return text;
}

std::string Joined(std::string words, char by) {
    for (char& letter : words)
        if (letter == ' ') letter = by;
    return words;
}

std::vector<CLI::App const*> Commands(CLI::App const& command) {
    return command.get_subcommands([](CLI::App const*) { return true; });
}

}  // namespace

std::string ManPage(CLI::App const& command, std::string const& words, std::string const& version) {
    const std::string name = Joined(words, '-');
    const std::vector<CLI::Option const*> options = Options(command);
    const std::vector<CLI::App const*> commands = Commands(command);
    std::ostringstream page;
    page << ".TH " << Troff(Upper(name)) << " 1 \"\" \"orvanverb " << version << "\" \"User Commands\"\n.SH NAME\n"
         << Troff(name) << " \\- " << Troff(OneLine(command.get_description())) << "\n.SH SYNOPSIS\n.B "
         << Troff(words);
    if (!commands.empty()) page << "\n.I COMMAND\n[\\fIOPTIONS\\fR]";
    for (CLI::Option const* option : options)
        if (option->get_positional() || option->get_required())
            page << "\n"
                 << (option->get_positional() ? "" : "\\fB" + Troff(option->get_name()) + "\\fR ") << "\\fI"
                 << Troff(Values(*option)) << "\\fR";
    if (commands.empty()) page << "\n[\\fIOPTIONS\\fR]";
    page << "\n";
    if (!commands.empty()) page << ".SH COMMANDS\n";
    for (CLI::App const* sub : commands)
        page << ".TP\n.BR " << Troff(name + "-" + sub->get_name()) << " (1)\n"
             << Troff(OneLine(sub->get_description())) << "\n";
    page << ".SH OPTIONS\n";
    for (CLI::Option const* option : options)
        page << ".TP\n\\fB" << Troff(Names(*option)) << "\\fR"
             << (Values(*option).empty() ? "" : " \\fI" + Troff(Values(*option)) + "\\fR") << "\n"
             << Troff(OneLine(option->get_description())) << "\n";
    page << ".TP\n\\fB\\-h, \\-\\-help\\fR\nShow the options and end\n";
    if (!command.get_footer().empty()) page << ".SH NOTES\n.nf\n" << Troff(command.get_footer()) << "\n.fi\n";
    page << ".SH EXIT STATUS\n0 for success, 1 for a failure at work, 2 for a wrong command line.\n";
    if (name != "orvanverb") page << ".SH SEE ALSO\n.BR orvanverb (1)\n";
    return page.str();
}

std::string OptionTable(CLI::App const& command) {
    std::string rows = "| Option | What it does |\n|---|---|\n";
    const auto escaped = [](std::string const& text, std::string const& letters) {
        std::string result;
        for (const char letter : text)
            result.append(letters.find(letter) < letters.size() ? "\\" : "").push_back(letter);
        return result;
    };
    for (CLI::Option const* option : Options(command)) {
        const std::string values = Values(*option);
        rows += "| `" + escaped(Names(*option) + (values.empty() ? "" : " " + values), "|") + "` | " +
                escaped(OneLine(option->get_description()), "|@<") + " |\n";
    }
    return rows;
}

std::string BashCompletion(CLI::App const& program) {
    std::string cases, parents = "|";
    const std::function<void(CLI::App const&, std::string const&)> add = [&](CLI::App const& command,
                                                                             std::string const& words) {
        std::string completions;
        for (CLI::App const* sub : Commands(command)) completions += " " + sub->get_name();
        for (CLI::Option const* option : command.get_options())
            for (std::string const& name : option->get_lnames()) completions += " --" + name;
        cases += "        \"" + words + "\") words=\"" + completions.substr(1) + "\" ;;\n";
        if (!Commands(command).empty()) parents += words + "|";
        for (CLI::App const* sub : Commands(command)) add(*sub, words + " " + sub->get_name());
    };
    add(program, program.get_name());
    return "# Completion of orvanverb for bash\n"
           "_orvanverb() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command words i\n"
           "    COMPREPLY=()\n"
           "    command=orvanverb\n"
           "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
           "        [[ ${COMP_WORDS[i]} == [a-z]* && \"" +
           parents +
           "\" == *\"|$command|\"* ]] || break\n"
           "        command+=\" ${COMP_WORDS[i]}\"\n"
           "    done\n"
           "    case $command in\n" +
           cases +
           "    esac\n"
           "    if [[ $previous == --preset ]]; then\n"
           "        words=$(\"${COMP_WORDS[0]}\" presets 2>/dev/null | sed '1d; s/ .*//')\n"
           "    elif [[ $current != -* && $words != [a-z]* ]]; then\n"
           "        words=\n"
           "    fi\n"
           "    [[ -n $words ]] && mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
           "}\n"
           "complete -o default -o bashdefault -F _orvanverb orvanverb\n";
}

}  // namespace program
