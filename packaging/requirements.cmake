# Read by cpack first: refuses to make wrong packages.
function(refuse line)
    message(NOTICE "ZynPhone: ${line}")
    message(FATAL_ERROR "No package was made.")
endfunction()

# Configuring the build folder settles where the libraries go and by which paths they are found.
if(NOT CPACK_INSTALL_PREFIX STREQUAL "/usr")
    refuse("packages are made of a build for /usr, this one is for ${CPACK_INSTALL_PREFIX}: scripts/package")
endif()

# Without these, cpack would silently leave out dependencies.
foreach(needed IN ITEMS "dpkg-shlibdeps dpkg-dev" "file file" "readelf binutils")
    separate_arguments(needed)
    list(POP_FRONT needed program)
    find_program(found ${program} NO_CACHE)
    if(NOT found)
        refuse("packages need ${program} (Debian: ${needed})")
    endif()
    unset(found)
endforeach()
