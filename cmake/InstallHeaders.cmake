# Installs the library's headers below DESTINATION/orvan, as `#include <orvan/orvan.h>`. What they include from the source
# tree ("dsp/ramp.h") is written out ("orvan/dsp/ramp.h"), so that no folder of ours gets into anybody's include path.
# In: SOURCE, FOLDERS, DESTINATION
set(headers orvan.h verb.h orvan_c.h)
foreach(folder ${FOLDERS})
    file(GLOB_RECURSE found RELATIVE ${SOURCE} ${SOURCE}/${folder}/*.h)
    list(APPEND headers ${found})
endforeach()
foreach(header ${headers})
    file(READ ${SOURCE}/${header} text)
    string(REGEX REPLACE "(\n#include \")" "\\1orvan/" text "${text}")
    set(target $ENV{DESTDIR}${DESTINATION}/orvan/${header})
    file(WRITE ${target} "${text}")
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES ${target})
endforeach()
