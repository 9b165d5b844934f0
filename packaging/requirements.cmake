# Read by cpack before all else: refuses what would make packages that are wrong.
function(refuse line)
    message(NOTICE "ZynPhone: ${line}")
    message(FATAL_ERROR "No package was made.")
endfunction()

# Where the libraries go, and by which paths they are found, is settled when the build folder is configured.
if(NOT CPACK_INSTALL_PREFIX STREQUAL "/usr")
    refuse("packages are made of a build for /usr, this one is for ${CPACK_INSTALL_PREFIX}: scripts/package")
endif()

# Without these, cpack would leave dependencies out without a word.
foreach(needed IN ITEMS "dpkg-shlibdeps dpkg-dev" "file file" "readelf binutils")
    separate_arguments(needed)
    list(POP_FRONT needed program)
    find_program(found ${program} NO_CACHE)
    if(NOT found)
        refuse("packages need ${program} (Debian: ${needed})")
    endif()
    unset(found)
endforeach()
