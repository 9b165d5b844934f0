# Run by cpack once each component is in its folder: adds the files that only packages have, and brings the rest into
# the form that packages need.
find_program(gzip gzip REQUIRED)

foreach(package IN LISTS CPACK_COMPONENTS_ALL)
    set(usr ${CPACK_TEMPORARY_DIRECTORY}/${package}/usr)
    set(doc ${usr}/share/doc/${package})
    file(MAKE_DIRECTORY ${doc} ${usr}/share/lintian/overrides)
    foreach(text IN ITEMS
        copyright=${doc}/copyright
        changelog=${doc}/changelog.Debian
        ../CHANGELOG.md=${doc}/changelog
        lintian-overrides=${usr}/share/lintian/overrides/${package})
        string(REPLACE "=" ";" text ${text})
        list(POP_FRONT text source)
        file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/${source} ${text})
        if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/${package}/${source}) # this package's own lines
            file(READ ${CMAKE_CURRENT_LIST_DIR}/${package}/${source} more)
            file(APPEND ${text} "${more}")
        endif()
        file(CHMOD ${text} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    endforeach()

    # The register of documents names the reference: without that, the package is not in it.
    if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/${package}/doc-base AND EXISTS ${usr}/share/doc/libzynphone-dev/html)
        file(MAKE_DIRECTORY ${usr}/share/doc-base)
        file(COPY_FILE ${CMAKE_CURRENT_LIST_DIR}/${package}/doc-base ${usr}/share/doc-base/${package}.${package})
        file(CHMOD ${usr}/share/doc-base/${package}.${package} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    endif()

    # Compressed without timestamps, so that the same files give the same package. Links lead to compressed pages.
    file(GLOB pages ${usr}/share/man/man*/*.[0-9])
    foreach(page IN LISTS pages)
        if(IS_SYMLINK ${page})
            file(READ_SYMLINK ${page} target)
            file(CREATE_LINK ${target}.gz ${page}.gz SYMBOLIC)
            file(REMOVE ${page})
            list(REMOVE_ITEM pages ${page})
        endif()
    endforeach()
    execute_process(COMMAND ${gzip} -9 -n ${doc}/changelog.Debian ${doc}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)

    file(GLOB binaries ${usr}/bin/* ${usr}/lib/*/lib*.so.*.* ${usr}/lib/*/zynphone/*.so
        ${usr}/lib/*/qt6/qml/ZynPhone/*.so)
    if(binaries)
        execute_process(
            COMMAND ${CPACK_ZYN_STRIP} --strip-unneeded --remove-section=.comment --remove-section=.note ${binaries}
            COMMAND_ERROR_IS_FATAL ANY)
    endif()
    execute_process(COMMAND find ${usr} -type d -exec chmod 755 {} + COMMAND_ERROR_IS_FATAL ANY)
endforeach()
