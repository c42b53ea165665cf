#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "object/attribute_value.h"
#include "object/console_lines.h"
#include "object/orvanverb_class.h"
#include "orvanverb/object/shell.h"
#include "program/sound_files.h"

namespace {

/// All that an attribute says about itself, sorted.
std::string Said(t_attr const& attribute) {
    std::vector<std::string> words;
    for (auto const& [name, atoms] : attribute.attributes) {
        std::string text;
        orvanmax::atomarray2string(static_cast<long>(atoms.size()), atoms.data(), text);
        words.push_back(std::string(name->s_name).append(" = ").append(text));
    }
    std::sort(words.begin(), words.end());
    std::string all;
    for (std::string const& word : words) all.append("| ").append(word);
    return all;
}

/// The registered class: messages, then attributes, in their order.
std::string DescribeClass() {
    std::ostringstream out;
    for (t_messlist const& message : orvanverb_class->c_messages) {
        out << "message " << message.m_sym->s_name;
        for (const short type : message.m_type) out << ' ' << type;
        out << '\n';
    }
    for (auto const& attribute : orvanverb_class->c_attributes) {
        out << "attribute " << attribute->name->s_name << ' ' << attribute->type->s_name << ' ' << attribute->size
            << (attribute->offsetCount != 0 ? "* " : " ") << (attribute->setter != nullptr ? "set " : "written ")
            << attribute->flags;
        if (attribute->useMin || attribute->useMax)
            out << ", " << attribute->minimum << " to " << attribute->maximum << ' ';
        out << Said(*attribute) << '\n';
    }
    return out.str();
}

/// Types all lines of a transcript anew: those behind "> ".
class Typist {
public:
    std::string Answer(std::string const& line) {
        out.str("");
        if (line == ":class") {
            out << DescribeClass();
        } else if (line == ":new" || line.starts_with(":new ")) {
            shell.reset();
            shell = std::make_unique<program::Shell>(line.substr(4), out);
        } else {
            shell->Handle(line);
        }
        // The date of the build is nobody's contract.
        return std::regex_replace(out.str(), std::regex("\\(Build [^)]*\\)"), "(Build DATE)");
    }

private:
    std::ostringstream out;
    std::unique_ptr<program::Shell> shell;
};

// Every message, attribute and console line of the object, its states and its notifications, letter for letter: scripts
// and patches of other people read them. Red for any change of them.
TEST(Transcript, IsTheOneOnFile) {
    std::istringstream expected(ReadText(ORVAN_TRANSCRIPT));
    std::vector<std::string> lines, typed;
    Typist typist;
    for (std::string line; std::getline(expected, line);) {
        lines.push_back(line);
        if (line.starts_with("# ")) {
            if (!typed.empty()) typed.emplace_back();
            typed.push_back(line);
        } else if (line.starts_with("> ")) {
            typed.push_back(line);
            std::istringstream answer(typist.Answer(line.substr(2)));
            for (std::string said; std::getline(answer, said);) typed.push_back(said);
        }
    }
    const auto differ = std::mismatch(lines.begin(), lines.end(), typed.begin(), typed.end());
    if (differ.first == lines.end() && differ.second == typed.end()) return;
    const std::string present = testing::TempDir() + "transcript.new";
    std::ofstream file(present);
    for (std::string const& line : typed) file << line << '\n';
    FAIL() << "line " << differ.first - lines.begin() + 1 << ": "
           << (differ.second != typed.end() ? *differ.second : "(end)") << "\ninstead of "
           << (differ.first != lines.end() ? *differ.first : "(end)") << "\nall of it: " << present;
}

}  // namespace
