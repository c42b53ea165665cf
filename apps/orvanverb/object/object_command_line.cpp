#include "orvanverb/object/object_command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <memory>

#include "orvanverb/common/text.h"
#include "orvanverb/object/attribute_listing.h"
#include "orvanverb/object/control_listing.h"
#include "orvanverb/object/reference.h"
#include "orvanverb/object/shell.h"

namespace program {

namespace {

void AddListing(CLI::App& app, Call& call, char const* name, char const* description, std::string (*table)(),
                std::string (*json)()) {
    CLI::App* const command = app.add_subcommand(name, description);
    command->footer(std::string("  orvanverb ").append(name).append("\n  orvanverb ").append(name).append(" --json"));
    const auto asJson = std::make_shared<bool>(false);
    command->add_flag("--json", *asJson, "As JSON, for programs");
    command->callback([&call, asJson, table, json] {
        call.run = [asJson, table, json] {
            std::fputs((*asJson ? json() : table()).c_str(), stdout);
            return 0;
        };
    });
}

}  // namespace

void AddObjectCommands(CLI::App& app, Call& call) {
    CLI::App* shell = app.add_subcommand("shell", "Make an object orvanverb~ and send it messages from standard input");
    shell->footer(
        "The object is made with the attributes that follow the command: shell @numsources 2 @tr0 3\n"
        "Each line is a message to the object. Lines that begin with a colon are for the shell: :get NAME, :state,\n"
        ":restore VALUES, :preset, :recall, :assist in|out INDEX, :dsp RATE BLOCK, :notifications, :quit.\n"
        "On a terminal help explains all of them, Tab completes words, and the arrows find earlier lines, which are "
        "kept in\n"
        "~/.local/state/orvanverb.\n"
        "  orvanverb shell @numsources 2 @numspeakers 8\n"
        "  echo postattributes | orvanverb shell --strict @tr0 3");
    const auto strict = std::make_shared<bool>(false);
    shell->add_flag("--strict", *strict, "End with status 1 at the first error, and tell it on standard error, too");
    shell->callback([&call, strict] {
        call.run = [words = JoinWords(call.attributes), strict] { return RunShell(words, *strict); };
    });
    AddListing(app, call, "attributes", "List the attributes of orvanverb~", AttributeTable, AttributeJson);
    AddListing(app, call, "controls", "List the controls of the room, as --set and files name them", ControlTable,
               ControlJson);
    CLI::App* reference =
        app.add_subcommand("reference", "Write the reference page of orvanverb~, and its style sheet, where you are");
    reference->footer(
        "orvanverb~.ref.xml and orvan.xsl; browsers, and xsltproc, make a page of the two.\n"
        "  orvanverb reference\n"
        "  orvanverb reference --force && xsltproc orvan.xsl 'orvanverb~.ref.xml' > reference.html");
    const auto force = std::make_shared<bool>(false);
    reference->add_flag("-f,--force", *force, "Replace files that are there");
    reference->callback([&call, force] { call.Will([force] { WriteReference(*force); }); });
}

}  // namespace program
