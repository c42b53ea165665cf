#include "orvanverb/object/reference.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "object/orvanverb_class.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/whole_file.h"
#include "orvanverb/object/style_sheet.h"
#include "patcher/box.h"

namespace program {

namespace {

constexpr char const* pageName = "orvanverb~.ref.xml";
constexpr char const* styleSheetName = "orvan.xsl";

[[noreturn]] void Fail(std::string const& name) {
    throw WorkError(name + ": " + std::generic_category().message(errno != 0 ? errno : EIO));
}

void WriteStyleSheet() {
    WholeFile(styleSheetName).Write(styleSheet);
}

/// The object doesn't say whether it could write its page: look for it.
void WritePage() {
    std::error_code error;
    std::filesystem::remove(pageName, error);
    errno = 0;
    orvanverb_main();
    max::Box("orvanverb~").Send("generatexml");
    if (!std::filesystem::exists(pageName)) Fail(pageName);
    std::ifstream file(pageName);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text.ends_with("</external>\n")) return;
    std::filesystem::remove(pageName, error);
    throw WorkError(std::string(pageName) + ": could not be written whole");
}

}  // namespace

void WriteReference(bool force) {
    for (char const* name : {pageName, styleSheetName})
        if (!force && std::filesystem::exists(name))
            throw WorkError(std::string(name) + ": is there already; --force replaces it");
    WriteStyleSheet();
    WritePage();
    std::fprintf(stderr, "%s: written, to be read with %s beside it\n", pageName, styleSheetName);
}

}  // namespace program
