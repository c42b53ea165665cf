# Writes a C++ source that holds files as bytes: cmake -DOUTPUT=page_files.cpp -DFILES="a.html;b.js" -P EmbedFiles.cmake
set(arrays "")
set(rows "")
set(number 0)
foreach(file IN LISTS FILES)
    file(READ "${file}" bytes HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
    cmake_path(GET file FILENAME name)
    string(APPEND arrays "constexpr unsigned char file${number}[] = {${bytes}};\n")
    string(APPEND rows "    {\"${name}\", {reinterpret_cast<char const*>(file${number}), sizeof file${number}}},\n")
    math(EXPR number "${number} + 1")
endforeach()
file(WRITE "${OUTPUT}" "// Made from the files of the page, don't edit.
#include \"orvanverb-live/page/page_files.h\"

namespace live {

namespace {

${arrays}
const PageFile files[] = {
${rows}};

}  // namespace

const std::span<PageFile const> pageFiles{files};

}  // namespace live
")
