# How every target of this project is compiled.
#
# The order of floating-point operations is part of the behaviour: no contraction into fused operations and no fast-math,
# so that the same input gives the same bits at every optimisation level and on every x86-64 processor. Nor do the bytes
# of a build depend on where it was made: beside the sources, compilers are called with relative paths; elsewhere the
# sources' own path is cut off.
function(orvan_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    if(NOT EMSCRIPTEN)  # where it costs an indirection
        set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    endif()
    target_compile_options(${target} PRIVATE
        -ffp-contract=off
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wdouble-promotion
        $<$<BOOL:${ORVAN_WERROR}>:-Werror>)
    cmake_path(IS_PREFIX PROJECT_SOURCE_DIR "${CMAKE_BINARY_DIR}" NORMALIZE beside)
    if(NOT beside)
        target_compile_options(${target} PRIVATE -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
    endif()
endfunction()
