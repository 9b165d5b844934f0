# Refuses an installation where it may not write, before the first file is there: this rule stands ahead of all others.
install(CODE "set(zyn_folders
    \"${CMAKE_INSTALL_BINDIR}\" \"${CMAKE_INSTALL_LIBDIR}\" \"${CMAKE_INSTALL_INCLUDEDIR}\" \"${CMAKE_INSTALL_DATADIR}\")"
    ALL_COMPONENTS)
install(SCRIPT ${CMAKE_CURRENT_LIST_DIR}/ZynCheckPrefix.cmake ALL_COMPONENTS)
