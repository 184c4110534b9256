# Writes a C++ source that holds files as string literals, each with a tag that changes with its bytes.
# Run as: cmake -DFOLDER=<where they lie> -DFILES=<their names> -DOUTPUT=<the source> -P EmbedFiles.cmake
set(type.html "text/html; charset=utf-8")
set(type.css "text/css; charset=utf-8")
set(type.js "text/javascript; charset=utf-8")
set(type.svg "image/svg+xml")

set(rows "")
foreach(name IN LISTS FILES)
    file(READ "${FOLDER}/${name}" bytes)
    string(FIND "${bytes}" ")embedded\"" end)
    if(NOT end EQUAL -1)
        message(FATAL_ERROR "${name} contains the end of a string literal")
    endif()
    get_filename_component(extension "${name}" LAST_EXT)
    if(NOT DEFINED "type${extension}")
        message(FATAL_ERROR "${name} is of no type that is known here")
    endif()
    string(SHA256 digest "${bytes}")
    string(SUBSTRING "${digest}" 0 16 tag)
    string(APPEND rows
        "    {\"${name}\", \"${type${extension}}\", \"\\\"${tag}\\\"\",\n     R\"embedded(${bytes})embedded\"},\n")
endforeach()

# Left alone when nothing has changed, so that nothing is compiled anew.
file(CONFIGURE OUTPUT "${OUTPUT}" @ONLY CONTENT [[
#include "page/PageFiles.h"

namespace Brenmoor {
namespace TavoSimulator {

const std::vector<PageFile>& PageFiles() {
    static const std::vector<PageFile> files = {
@rows@    };
    return files;
}

} // namespace TavoSimulator
} // namespace Brenmoor
]])
