#include "Page.h"

namespace Brenmoor {
namespace TavoSimulator {

bool IsPage(const std::string& target) {
    return target == "/";
}

Reply PageReply(const std::string&) {
    Reply reply;
    reply.type = "text/html; charset=utf-8";
    reply.body = "<!DOCTYPE html>\n<title>tavo-simulator</title>\n";
    return reply;
}

} // namespace TavoSimulator
} // namespace Brenmoor
