# Refuses to install where it may not write. Ahead of all other install rules, so that no file is written first.
install(CODE "set(zyn_folders
    \"${CMAKE_INSTALL_BINDIR}\" \"${CMAKE_INSTALL_LIBDIR}\"
    \"${CMAKE_INSTALL_INCLUDEDIR}\" \"${CMAKE_INSTALL_DATADIR}\")"
    ALL_COMPONENTS)
install(SCRIPT ${CMAKE_CURRENT_LIST_DIR}/ZynCheckPrefix.cmake ALL_COMPONENTS)
