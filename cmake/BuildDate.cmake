# The date that the object tells with its version, "Nov 15 2010": that of the sources and not of the day, so that the
# same sources always give the same bytes. SOURCE_DATE_EPOCH decides, as packagers set it; otherwise the commit; in
# sources without git, the change log.
# orvan_build_date(VARIABLE [FORMAT])
function(orvan_build_date variable)
    set(format "%b %d %Y")
    if(ARGC GREATER 1)
        set(format ${ARGV1})
    endif()
    if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
        execute_process(COMMAND git log -1 --format=%ct WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
            OUTPUT_VARIABLE seconds OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
        if(NOT seconds)
            file(TIMESTAMP ${PROJECT_SOURCE_DIR}/CHANGELOG.md seconds "%s" UTC)
        endif()
        set(ENV{SOURCE_DATE_EPOCH} ${seconds})
        set(own TRUE)
    endif()
    string(TIMESTAMP date ${format} UTC)
    if(own)
        unset(ENV{SOURCE_DATE_EPOCH})
    endif()
    set(${variable} ${date} PARENT_SCOPE)
endfunction()
