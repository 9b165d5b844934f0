# zynphone_add_test(NAME name COMMAND command [argument...]
#                   [SCRIPT file] [WORKING_DIRECTORY folder] [ENVIRONMENT VARIABLE=value...])
#
# add_test() for a test that needs a handset: the command runs in one of its own, by 'zynphone run', which starts the
# services for it. SCRIPT is what happens on its phone server's line, relative to the current source folder. The name of
# a program that the project builds stands for its path; generator expressions work everywhere. Where the kernel allows
# no private handset, the test is skipped.
function(zynphone_add_test)
    cmake_parse_arguments(PARSE_ARGV 0 ARG "" "NAME;SCRIPT;WORKING_DIRECTORY" "COMMAND;ENVIRONMENT")
    if(DEFINED ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "zynphone_add_test: what is '${ARG_UNPARSED_ARGUMENTS}'?")
    endif()
    if(NOT DEFINED ARG_NAME OR NOT DEFINED ARG_COMMAND)
        message(FATAL_ERROR "zynphone_add_test: a test has a NAME and a COMMAND")
    endif()

    # Not in the cache: another installation may be found next time.
    get_property(programs GLOBAL PROPERTY ZYNPHONE_PROGRAMS)
    find_program(zynphone zynphone NO_CACHE HINTS "${programs}")
    if(NOT zynphone)
        message(FATAL_ERROR "zynphone_add_test: there is no program 'zynphone' in ${programs} or in the PATH: "
            "install the package zynphone-tools")
    endif()

    set(options "")
    if(DEFINED ARG_SCRIPT)
        if(NOT ARG_SCRIPT MATCHES "^\\$<")
            cmake_path(ABSOLUTE_PATH ARG_SCRIPT BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
        endif()
        set(options --script "${ARG_SCRIPT}")
    endif()
    set(folder "")
    if(DEFINED ARG_WORKING_DIRECTORY)
        set(folder WORKING_DIRECTORY "${ARG_WORKING_DIRECTORY}")
    endif()

    # As add_test() does for its first word. The target may come later than the test. A list operation would split
    # words with semicolons.
    list(GET ARG_COMMAND 0 program)
    if(program MATCHES "^[A-Za-z0-9_.:+-]+$")
        set(is_built "$<TARGET_EXISTS:${program}>")
        set(program "$<${is_built}:$<TARGET_FILE:${program}>>$<$<NOT:${is_built}>:${program}>")
        string(REGEX REPLACE "^[^;]+" "${program}" ARG_COMMAND "${ARG_COMMAND}")
    endif()
    # An empty word would be lost on the way.
    foreach(pass IN ITEMS 1 2)
        string(REPLACE ";;" ";$<1:>;" ARG_COMMAND "${ARG_COMMAND}")
    endforeach()
    string(REGEX REPLACE ";$" ";$<1:>" ARG_COMMAND "${ARG_COMMAND}")
    add_test(NAME "${ARG_NAME}" COMMAND "${zynphone}" run ${options} -- ${ARG_COMMAND} ${folder})
    set_property(TEST "${ARG_NAME}" PROPERTY SKIP_RETURN_CODE 77)
    set_property(TEST "${ARG_NAME}" PROPERTY ENVIRONMENT "${ARG_ENVIRONMENT}")
endfunction()
