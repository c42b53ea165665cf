# Writes a C++ source that holds a .coll file, `1, 0.5 0.25;` line by line, as one text:
# cmake -DINPUT=set.coll -DOUTPUT=set.cpp -DNAME=set -P EmbedText.cmake
file(READ "${INPUT}" text)
# A literal for each line: compilers limit the length of one.
string(REPLACE "\n" "\\n\"\n    \"" text "${text}")
file(WRITE "${OUTPUT}" "// Made from ${NAME}.coll, don't edit.
#include \"hrtf/builtin_sets.h\"

char const* const Lume::${NAME}_coll =
    \"${text}\";
")
