#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

using When = Fault::When;

/// Unread bytes make a reset of the close that follows.
void CloseUnread(Line& line, const Occasion&) {
    line.AwaitBody();
}

void ResetBeforeBody(Line& line, const Occasion&) {
    line.AwaitBody();
    line.Reset();
}

void ResetInBody(Line& line, const Occasion&) {
    line.ReadBody(1);
    line.Reset();
}

void CloseInBody(Line& line, const Occasion&) {
    line.ReadBody(1);
}

void NeverRead(Line& line, const Occasion&) {
    line.Hold();
}

/// A reply before the body was read, which is read behind it.
Play Early(int status, const std::string& reason) {
    return [=](Line& line, const Occasion&) {
        Reply reply = Ok();
        reply.status = status;
        reply.reason = reason;
        line.Send(ReplyText(reply));
        line.ReadBody();
    };
}

void ResetBeforeReply(Line& line, const Occasion&) {
    line.Reset();
}

std::string FirstLines(const Occasion& occasion) {
    return StatusText(occasion.healthy) + TypeText(occasion.healthy);
}

std::string Head(const Occasion& occasion) {
    return HeadText(occasion.healthy);
}

} // namespace

std::vector<Fault> ConnectionFaults() {
    return {
        {"close-before-body", "the connection is closed once the head has come", When::BeforeBody,
         CloseUnread},
        {"reset-before-body", "the connection is reset once the head has come", When::BeforeBody,
         ResetBeforeBody},
        {"close-in-upload", "the connection is closed while the upload comes", When::InBody,
         CloseInBody},
        {"reset-in-upload", "the connection is reset while the upload comes", When::InBody,
         ResetInBody},
        {"upload-unread", "the upload is never read, nor anything answered", When::BeforeBody,
         NeverRead},
        {"early-413", "413 Content Too Large before the upload was read", When::BeforeBody,
         Early(413, "Content Too Large")},
        {"early-ok", "200 OK before the upload was read", When::BeforeBody, Early(200, "OK")},
        {"reset-before-reply", "the connection is reset once the whole request has come",
         When::InReply, ResetBeforeReply},
        {"reset-in-head", "the connection is reset in the middle of the reply's head",
         When::InReply, SendsThenResets(FirstLines)},
        {"reset-after-head", "the connection is reset behind the reply's head", When::InReply,
         SendsThenResets(Head)},
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
