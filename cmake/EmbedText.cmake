# Writes a C++ source that holds a .coll file, `1, 0.5 0.25;` line by line, as one text:
# cmake -DINPUT=set.coll -DOUTPUT=set.cpp -DNAME=set -DROWS=34 -DVALUES=26 -P EmbedText.cmake
if(EXISTS "${INPUT}")
    file(READ "${INPUT}" text)
else()
    # Until the set is there: filters that pass everything.
    math(EXPR zeros "${VALUES} - 2")
    string(REPEAT " 0" ${zeros} zeros)
    set(text "")
    foreach(row RANGE 1 ${ROWS})
        string(APPEND text "${row}, 0 1${zeros};\n")
    endforeach()
endif()
# A literal for each line: compilers limit the length of one.
string(REPLACE "\n" "\\n\"\n    \"" text "${text}")
file(WRITE "${OUTPUT}" "// Made from ${NAME}.coll, don't edit.
#include \"hrtf/builtin_sets.h\"

char const* const Lume::${NAME}_coll =
    \"${text}\";
")
