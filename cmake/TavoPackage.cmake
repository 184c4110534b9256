# What names no component of its own is a tool.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tools)

# tavo_install_library(<target> PACKAGE <name> DESCRIPTION <text> INCLUDE <folder>
#                      [DEPENDS <CMake package>...] [REQUIRES <pkg-config module>...])
#
# Installs a shared library with its headers, a CMake package and a pkg-config file. The package's
# target is Brenmoor::<name>; the library is the install component <name>, all else <name>-dev.
function(tavo_install_library target)
    cmake_parse_arguments(ARG "" "PACKAGE;DESCRIPTION;INCLUDE" "DEPENDS;REQUIRES" ${ARGN})
    set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${ARG_PACKAGE})
    set(development ${ARG_PACKAGE}-dev)

    install(TARGETS ${target} EXPORT ${ARG_PACKAGE}Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT ${ARG_PACKAGE} NAMELINK_COMPONENT ${development}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
    install(DIRECTORY ${ARG_INCLUDE}/${ARG_PACKAGE} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT ${development})
    install(EXPORT ${ARG_PACKAGE}Targets NAMESPACE Brenmoor:: DESTINATION ${package_dir}
        COMPONENT ${development})

    set(TAVO_PACKAGE ${ARG_PACKAGE})
    set(TAVO_DEPENDENCIES "")
    foreach(dependency IN LISTS ARG_DEPENDS)
        string(APPEND TAVO_DEPENDENCIES "find_dependency(${dependency})\n")
    endforeach()
    configure_package_config_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Package.cmake.in
        ${CMAKE_CURRENT_BINARY_DIR}/${ARG_PACKAGE}Config.cmake INSTALL_DESTINATION ${package_dir})
    write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/${ARG_PACKAGE}ConfigVersion.cmake
        VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
    install(FILES
        ${CMAKE_CURRENT_BINARY_DIR}/${ARG_PACKAGE}Config.cmake
        ${CMAKE_CURRENT_BINARY_DIR}/${ARG_PACKAGE}ConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT ${development})

    set(TAVO_DESCRIPTION ${ARG_DESCRIPTION})
    set(TAVO_LIBRARY ${target})
    list(JOIN ARG_REQUIRES ", " TAVO_REQUIRES)
    # From the .pc file up to the prefix, so that an installed tree may be moved.
    file(RELATIVE_PATH TAVO_UP /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/Package.pc.in
        ${CMAKE_CURRENT_BINARY_DIR}/${ARG_PACKAGE}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${ARG_PACKAGE}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${development})
endfunction()
