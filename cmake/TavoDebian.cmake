# Debian packages, one for each install component: cpack, or scripts/package for all architectures.
# What is installed for them alone (documents under share/doc, manual pages) is left out of a plain
# cmake --install.

set(TAVO_MAINTAINER "TavoRemotingLib maintainers <maintainers@tavoremotinglib.example>"
    CACHE STRING "Name and mail address that the Debian packages give")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT ${TAVO_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE tavoremotinglib)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_COMPONENTS_ALL "")

set(debian ${PROJECT_BINARY_DIR}/debian)
set(abi ${PROJECT_VERSION_MAJOR})

# tavo_gzip(<file> <name>): compresses to <name>.gz, the same bytes for the same content.
function(tavo_gzip file name)
    execute_process(COMMAND gzip -9n INPUT_FILE ${file} OUTPUT_FILE ${debian}/${name}.gz
        COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# tavo_debian_package(<component> <package> SECTION <section> SUMMARY <line> DESCRIPTION <text>
#                     [DEPENDS <package>...] [SHARED_LIBRARY])
# Dependencies on shared libraries are not given but found.
macro(tavo_debian_package component package)
    cmake_parse_arguments(ARG "SHARED_LIBRARY" "SECTION;SUMMARY;DESCRIPTION" "DEPENDS" ${ARGN})
    string(TOUPPER ${component} upper)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${ARG_SECTION})
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${ARG_SUMMARY}\n${ARG_DESCRIPTION}")
    list(JOIN ARG_DEPENDS ", " CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS)
    if(ARG_SHARED_LIBRARY)
        # CPack would write scripts that call ldconfig, but not beside scripts of these names. There
        # are none (it warns), and so the package has none: the trigger does it.
        set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA
            ${PROJECT_SOURCE_DIR}/packaging/triggers ${debian}/no/postinst ${debian}/no/postrm)
    endif()
    install(FILES ${PROJECT_SOURCE_DIR}/packaging/copyright ${debian}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

# Debian's changelog has this version's entries of CHANGELOG.md, in Debian's form.
file(READ ${PROJECT_SOURCE_DIR}/CHANGELOG.md changes)
if(NOT changes MATCHES "\n## ${PROJECT_VERSION}")
    message(FATAL_ERROR "CHANGELOG.md says nothing of version ${PROJECT_VERSION}.")
endif()
string(REGEX REPLACE "^.*\n## ${PROJECT_VERSION}[^\n]*\n+" "" changes "${changes}")
string(REGEX REPLACE "\n+## .*$" "" changes "${changes}")
string(STRIP "${changes}" changes)
string(REPLACE "\n- " "\n* " changes "\n${changes}")
string(REPLACE "\n" "\n  " changes "${changes}")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(CONFIGURE OUTPUT ${debian}/changelog @ONLY CONTENT
"@CPACK_DEBIAN_PACKAGE_SOURCE@ (@PROJECT_VERSION@) bookworm; urgency=medium
@changes@

 -- @TAVO_MAINTAINER@  @date@
")
tavo_gzip(${debian}/changelog changelog)

set(shlibs_local ${debian}/shlibs.local)
set(shlibs "libTavoRemotingLib ${abi} libtavoremoting${abi} (>= ${PROJECT_VERSION})\n")
set(framework "")
if(NOT TAVO_SYSTEM_FRAMEWORK)
    string(APPEND shlibs "libMirrinFramework ${abi} libmirrinframework${abi} (>= ${PROJECT_VERSION})\n")
    set(framework libmirrinframework-dev)
    tavo_debian_package(MirrinFramework libmirrinframework${abi} SECTION libs SHARED_LIBRARY
        SUMMARY "framework types of a vehicle's maker, development edition"
        DESCRIPTION "A small edition of the types that TavoRemotingLib takes from the vehicle
maker's framework: a logger, byte arrays and temporary files. It serves
development and tests, a vehicle has the maker's own.")
    tavo_debian_package(MirrinFramework-dev libmirrinframework-dev SECTION libdevel
        DEPENDS "libmirrinframework${abi} (= ${PROJECT_VERSION})"
        SUMMARY "framework types of a vehicle's maker, development files"
        DESCRIPTION "Headers, CMake package and pkg-config file of the development edition of
MirrinFramework.")
endif()
tavo_debian_package(TavoRemotingLib libtavoremoting${abi} SECTION libs SHARED_LIBRARY
    SUMMARY "client library for a payload's talk with its vehicle's server"
    DESCRIPTION "With this library a payload's own computer polls its vehicle's payload server
for commands, position and shutdown, answers commands, switches power,
registers itself, and hands packets and files over for relay to shore.")
tavo_debian_package(TavoRemotingLib-dev libtavoremoting-dev SECTION libdevel
    DEPENDS "libtavoremoting${abi} (= ${PROJECT_VERSION})" ${framework}
        "libcurl4-openssl-dev | libcurl-dev"
    SUMMARY "client library for a vehicle's payload server, development files"
    DESCRIPTION "Headers, CMake package and pkg-config file of TavoRemotingLib, and the sources
of example host programs.")
install(FILES packaging/lintian-overrides RENAME libtavoremoting${abi}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
    COMPONENT TavoRemotingLib EXCLUDE_FROM_ALL)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libtavoremoting-dev
    COMPONENT TavoRemotingLib-dev EXCLUDE_FROM_ALL
    FILES_MATCHING PATTERN *.cpp PATTERN *.json PATTERN CMakeLists.txt PATTERN handler.*)

if(TARGET tavo-simulator OR TARGET tavo)
    tavo_debian_package(tools tavo-tools SECTION devel
        SUMMARY "client and payload server on the command line"
        DESCRIPTION "tavo talks to a vehicle's payload server as a payload does: it polls, answers,
switches, registers and sends. tavo-simulator plays the payload server of a
vehicle on a developer's machine, so that a payload's software can be tried
and tested without the vehicle.")
endif()
if(TARGET tavo-simulator)
    configure_file(packaging/tavo-simulator.1.in ${debian}/tavo-simulator.1 @ONLY)
    tavo_gzip(${debian}/tavo-simulator.1 tavo-simulator.1)
    install(FILES ${debian}/tavo-simulator.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools EXCLUDE_FROM_ALL)
endif()
if(TARGET tavo_documents)
    get_target_property(pages tavo_documents TAVO_FOLDER)
    install(DIRECTORY ${pages}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
        COMPONENT tools EXCLUDE_FROM_ALL FILES_MATCHING PATTERN *.1.gz)
    install(FILES ${PROJECT_SOURCE_DIR}/packaging/tavo-agent.service
        DESTINATION lib/systemd/system COMPONENT tools EXCLUDE_FROM_ALL)
    install(FILES ${pages}/tavo.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME tavo COMPONENT tools EXCLUDE_FROM_ALL)
    install(FILES ${pages}/_tavo DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
        COMPONENT tools EXCLUDE_FROM_ALL)
endif()

# CPack finds dependencies with dpkg-shlibdeps, which has to be told of more than CPack can tell it.
set(foreign "")
if(CMAKE_LIBRARY_ARCHITECTURE STREQUAL arm-linux-gnueabihf)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
    set(foreign "env DEB_HOST_ARCH=armhf")
    set(sysroot "-S${CMAKE_SYSROOT}")
endif()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
file(WRITE ${shlibs_local} "${shlibs}")
configure_file(packaging/shlibdeps.in ${debian}/shlibdeps @ONLY)
file(WRITE ${debian}/cpack.cmake "set(SHLIBDEPS_EXECUTABLE ${debian}/shlibdeps)\n")
set(CPACK_PROJECT_CONFIG_FILE ${debian}/cpack.cmake)

include(CPack)
