# Writes a C++ source that holds the rows of a .coll file, `1, 0.5 0.25;` line by line, as an array of float rows:
# cmake -DINPUT=set.coll -DOUTPUT=set.cpp -DNAME=set -DROWS=710 -DVALUES=26 -P EmbedColl.cmake
set(rows "")
set(numRows 0)
file(READ "${INPUT}" text)
string(REGEX MATCHALL "[0-9]+,[^;]*;" lines "${text}")
# The list separator of CMake is the terminator of a row: each element has lost it.
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9]+,[ \t]*" "" line "${line}")
    string(STRIP "${line}" line)
    if(line STREQUAL "")
        continue()
    endif()
    string(REGEX REPLACE "[ \t]+" ", " line "${line}")
    string(REGEX MATCHALL "," commas "${line}")
    list(LENGTH commas numCommas)
    math(EXPR numValues "${numCommas} + 1")
    math(EXPR numRows "${numRows} + 1")
    if(NOT numValues EQUAL VALUES)
        message(FATAL_ERROR "${INPUT}: row ${numRows} has ${numValues} values, not ${VALUES}")
    endif()
    string(APPEND rows "    {${line}},\n")
endforeach()
if(NOT numRows EQUAL ROWS)
    message(FATAL_ERROR "${INPUT}: ${numRows} rows, not ${ROWS}")
endif()
file(WRITE "${OUTPUT}" "// Made from ${NAME}.coll, don't edit.
#include \"hrtf/builtin_sets.h\"

namespace Lume {

extern const float ${NAME}[${ROWS}][${VALUES}];
const float ${NAME}[${ROWS}][${VALUES}] = {
${rows}};

}  // namespace Lume
")
