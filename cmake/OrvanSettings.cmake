# How every target of this project is compiled.
#
# The order of floating-point operations is part of the behaviour: no contraction into fused operations and no fast-math,
# so that the same input gives the same bits at every optimisation level and on every x86-64 processor.
function(orvan_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${target} PRIVATE
        -ffp-contract=off
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wdouble-promotion
        $<$<BOOL:${ORVAN_WERROR}>:-Werror>)
endfunction()
