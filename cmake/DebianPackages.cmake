# Debian packages by CPack, one for each component that is built: `make deb`. What Debian wants beside the files, a
# copyright and a changelog, is made here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "The orvanverb~ developers")
set(CPACK_PACKAGE_CONTACT "The orvanverb~ developers <orvanverb@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_COMPONENTS_ALL "")
find_program(GZIP_PROGRAM gzip)

# orvan_package(COMPONENT PACKAGE SECTION TITLE LINES): what the component's package is called and says about itself.
function(orvan_package component package section title lines)
    string(TOUPPER ${component} upper)
    set(place ${PROJECT_BINARY_DIR}/debian/${package})
    file(READ ${PROJECT_SOURCE_DIR}/LICENSE licence)
    file(READ ${PROJECT_SOURCE_DIR}/NOTICE notice)
    file(WRITE ${place}/copyright "${licence}\n${notice}\n"
        "On Debian systems the GNU licences are in /usr/share/common-licenses/LGPL-2.1 and GPL-2.\n")
    orvan_build_date(date "%a, %d %b %Y %H:%M:%S +0000")
    file(WRITE ${place}/changelog "${package} (${PROJECT_VERSION}) unstable; urgency=medium\n\n"
        "  * CHANGELOG.md of the sources says what changed.\n\n -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    execute_process(COMMAND ${GZIP_PROGRAM} -9nf ${place}/changelog)
    install(FILES ${place}/copyright ${place}/changelog.gz DESTINATION share/doc/${package} COMPONENT ${component}
        EXCLUDE_FROM_ALL)
    set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${title}\n${lines}" PARENT_SCOPE)
endfunction()

set(about "A room of early reflections, a cluster of denser ones, and a late field whose
decay is set in three bands, around sources that stand and move where they
are told to.")
if(TARGET orvanverb)
    orvan_package(program orvanverb sound "room reverberator and spatialiser" "${about}
.
This is the program: it renders recordings, measures and proposes rooms,
pans and decodes, and makes filters for headphones.")
    set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "gnuplot-nox")
endif()
orvan_package(dev liborvan-dev libdevel "room reverberator and spatialiser, for programs" "${about}
.
This is the library, without dependencies: headers for C++ and C, the static
library, and what CMake and pkg-config need to find them.")
if(TARGET orvan_c)
    orvan_package(library liborvan-c1 libs "room reverberator and spatialiser, for C and other languages" "${about}
.
This is the shared library of the C interface.")
    # By hand: CPack makes them for all packages or for none.
    set(place ${PROJECT_BINARY_DIR}/debian/liborvan-c1/control)
    file(WRITE ${place}/shlibs "liborvan_c 1 liborvan-c1 (>= ${PROJECT_VERSION})\n")
    file(WRITE ${place}/triggers "activate-noawait ldconfig\n")
    set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${place}/shlibs ${place}/triggers)
    set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "liborvan-c1 (= ${PROJECT_VERSION})")
endif()
if(TARGET orvan_pd)
    orvan_package(pd pd-orvanverb sound "room reverberator and spatialiser, for Pure Data" "${about}
.
This is the external orvanverb~, with its help patch.")
    set(CPACK_DEBIAN_PD_PACKAGE_DEPENDS "puredata-core | pd")
endif()
if(TARGET orvan_lv2)
    orvan_package(lv2 lv2-orvanverb sound "room reverberator and spatialiser, as LV2 plug-ins" "${about}
.
These are plug-ins for Ardour and other hosts, from headphones to rings of
eight.")
    set(CPACK_DEBIAN_LV2_PACKAGE_PROVIDES "lv2-plugin")
endif()
if(TARGET orvanverb-live)
    orvan_package(live orvanverb-live sound "room reverberator and spatialiser, live" "${about}
.
This is the program for the stage: it plays a room through JACK, and is
driven by OSC and by a page in the browser.")
    set(CPACK_DEBIAN_LIVE_PACKAGE_RECOMMENDS "orvanverb")
endif()
include(CPack)
