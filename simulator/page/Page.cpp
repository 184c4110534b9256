#include "Page.h"
#include "PageFiles.h"

#include <algorithm>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

constexpr char folder[] = "/page/";

// The page loads nothing, sends nothing and runs nothing but what this server has.
constexpr char policy[] =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; "
    "frame-ancestors 'none'";

} // namespace

bool IsPage(const std::string& target) {
    const std::string path = target.substr(0, target.find('?'));
    return path == "/" || path.rfind(folder, 0) == 0;
}

Reply PageReply(const Request& request) {
    const std::string name =
        request.path == "/" ? "index.html" : request.path.substr(sizeof folder - 1);
    const auto& files = PageFiles();
    const auto file = std::find_if(files.begin(), files.end(),
                                   [&](const PageFile& each) { return each.name == name; });
    if (file == files.end()) {
        throw NotFound("The page has no such file");
    }
    Reply reply;
    reply.type = file->type;
    reply.headers = {{"Cache-Control", "no-cache"},
                     {"ETag", file->tag},
                     {"Content-Security-Policy", policy},
                     {"X-Content-Type-Options", "nosniff"},
                     {"Referrer-Policy", "no-referrer"}};
    if (request.Header("If-None-Match") == file->tag) {
        reply.status = 304;
        reply.reason = "Not Modified";
        return reply;
    }
    reply.body = file->bytes;
    return reply;
}

} // namespace TavoSimulator
} // namespace Brenmoor
