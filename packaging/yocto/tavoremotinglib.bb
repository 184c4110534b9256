SUMMARY = "Client library for a payload's talk with its vehicle's payload server"
LICENSE = "CLOSED"
SECTION = "libs"

# The source tree is the one that holds this recipe; its project() line has the version.
def tavo_version(d):
    import re
    lists = os.path.join(d.getVar("EXTERNALSRC"), "CMakeLists.txt")
    bb.parse.mark_dependency(d, lists)
    with open(lists) as text:
        return re.search(r"^ *VERSION ([0-9.]+)$", text.read(), re.MULTILINE).group(1)

EXTERNALSRC = "${@os.path.realpath(d.getVar('THISDIR') + '/../..')}"
EXTERNALSRC_BUILD = "${WORKDIR}/build"
PV = "${@tavo_version(d)}"

DEPENDS = "boost curl jsoncpp"

inherit cmake pkgconfig externalsrc

EXTRA_OECMAKE = "-DTAVO_BUILD_TESTS=OFF -DTAVO_BUILD_EXAMPLES=OFF"

# system-framework: the vehicle maker's recipe mirrinframework instead of the bundled edition.
PACKAGECONFIG ??= ""
PACKAGECONFIG[system-framework] = "-DTAVO_SYSTEM_FRAMEWORK=ON,-DTAVO_SYSTEM_FRAMEWORK=OFF,mirrinframework"
PACKAGECONFIG[simulator] = "-DTAVO_BUILD_SIMULATOR=ON,-DTAVO_BUILD_SIMULATOR=OFF,poco"
PACKAGECONFIG[tools] = "-DTAVO_BUILD_TOOLS=ON,-DTAVO_BUILD_TOOLS=OFF,cli11"
