#include "orvanverb/object/shell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "orvanverb/object/shell_words.h"
#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

/// Types some lines and returns what was written.
std::string Type(program::Shell& shell, std::ostringstream& out, std::string const& lines) {
    out.str("");
    std::istringstream in(lines);
    for (std::string line; std::getline(in, line);)
        if (!shell.Handle(line)) break;
    return out.str();
}

// What the transcript can't hold: lines that are skipped, ends of lines, and the end.
TEST(Shell, SkipsCommentsAndQuits) {
    std::ostringstream out;
    program::Shell shell("@numsources 1", out);
    EXPECT_EQ(Type(shell, out, "# a comment\n\n  \t\n   # another"), "");
    EXPECT_EQ(Type(shell, out, ":get tr0\r"), "tr0 1.995000\n");
    EXPECT_EQ(Type(shell, out, ":quit\npostdspstatus"), "");
}

TEST(Shell, RunsAsAProgram) {
    const RunResult run =
        RunProgram({"shell", "@gain", "-3", "@numspeakers", "2"}, {}, "reset foo\n:get gain\n:quit\nversion\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "error: no attribute foo\ngain -3.000000\n");
    EXPECT_EQ(run.err, "");
    const std::string version = RunProgram({"--version"}).out;  // "orvanverb 4.2.6"
    EXPECT_TRUE(RunProgram({"shell"}, {}, "version\n")
                    .out.starts_with("post: Version " + version.substr(10, version.size() - 11) + " (Build "));
    const RunResult strict = RunProgram({"shell", "--strict"}, {}, "tr0 2\n# a comment\ndance\n:get tr0\n");
    ExpectComplaint(strict, 1, "line 3: error: ");
    EXPECT_EQ(strict.out.find("tr0 2"), std::string::npos);
    EXPECT_EQ(RunProgram({"shell", "--strict"}, {}, "tr0 2\n:get tr0\n").status, 0);
    const RunResult refused = RunProgram({"shell", "@numspeakers", "1"}, {}, "version\n");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, "error: Configuration not supported\nerror: couldnt create object\n");
}

// Words that the shell offers at a terminal are words that its object knows.
TEST(Shell, OffersWhatThereIs) {
    std::ostringstream out;
    program::Shell shell("", out);
    const std::vector<std::string> first = program::WordsThatFit("", "");
    EXPECT_GT(first.size(), 45u);
    for (std::string const& word : first) {
        if (word == ":quit" || word == "help") continue;
        const std::string answer = Type(shell, out, word);
        EXPECT_EQ(answer.find("understand"), std::string::npos) << answer;
        EXPECT_EQ(answer.find("no command"), std::string::npos) << answer;
    }
    for (std::string const& word : program::WordsThatFit("source 1 ", "")) {
        const std::string answer = Type(shell, out, "source 1 " + word + " 10 20 30");
        EXPECT_EQ(answer.find("unknown coordinate type"), std::string::npos) << answer;
    }
    for (std::string const& word : program::WordsThatFit("reverb ", ""))
        EXPECT_EQ(Type(shell, out, "reverb " + word + " 1"), "");
    using Words = std::vector<std::string>;
    EXPECT_EQ(program::WordsThatFit(":get ", "tr"), (Words{"tr0", "trh", "trl", "trm"}));
    EXPECT_EQ(program::WordsThatFit("\t:assist ", "i"), Words{"in"});
    EXPECT_EQ(program::WordsThatFit("source ", ""), Words{});
    EXPECT_EQ(program::WordsThatFit("speakers az 30 ", ""), Words{});
    for (std::string const& word : first) {
        const std::string help = program::ShellHelp(word);
        EXPECT_TRUE(help.starts_with(word)) << help;
    }
    EXPECT_NE(program::ShellHelp("sorce").find("did you mean source?"), std::string::npos);
}

TEST(Listing, ShowsTheAttributesToPeopleAndPrograms) {
    const std::string table = RunProgram({"attributes"}).out;
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 33);
    ExpectContains(table,
                   "\ntr0                float32          1.995             0.1 to 10    sec   global decay time\n");
    ExpectContains(table, " 10 to 180 ");  // early_width, whose range no inspector shows
    const std::string json = RunProgram({"attributes", "--json"}).out;
    for (char const* const piece : {"{\"name\": \"early_width\", \"type\": \"float32\", \"count\": 1, \"counted\": "
                                    "false, \"default\": 30, \"min\": 10, "
                                    "\"max\": 180, \"units\": \"deg\", ",
                                    "\"default\": [0, 0, 0, 0, 177, 5657], \"min\": null",
                                    "\"count\": 192, \"counted\": true, \"default\": null"})
        ExpectContains(json, piece);
}

// The page through a real processor: every attribute and message is on it.
TEST(Reference, BecomesAPage) {
    const TemporaryDirectory directory;
    const RunResult run = RunProgram({"reference"}, "cd '" + (directory / "") + "' && exec");
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string xml = ReadText(directory / "orvanverb~.ref.xml");
    EXPECT_EQ(xml.find("<name>classdescription"), std::string::npos);
    EXPECT_EQ(xml.find("<name>generatexml"), std::string::npos);
    const std::string convert = "cd '" + (directory / "") + "' && xsltproc orvan.xsl 'orvanverb~.ref.xml' > page.html";
    ASSERT_EQ(std::system(convert.c_str()), 0);  // NOLINT(bugprone-command-processor,cert-env33-c): a fixed command
    const std::string page = ReadText(directory / "page.html");
    for (char const* const piece :
         {"<tr id=\"tr0\">", "<td>global decay time</td>", "<td>0.10 to 10.00</td>", "<td>sec</td>",
          "<li><code>source</code></li>", "<h2>structure</h2>", "ensures zero signals"})
        ExpectContains(page, piece);
    std::size_t rows = 0;
    for (std::size_t at = page.find("<tr id="); at != page.npos; at = page.find("<tr id=", at + 1)) ++rows;
    EXPECT_EQ(rows, 32u);

    ExpectComplaint(RunProgram({"reference"}, "cd '" + (directory / "") + "' && exec"), 1, "--force");
    EXPECT_EQ(RunProgram({"reference"}, "cd /proc && exec").status, 1);
}

}  // namespace
