#pragma once

#include "Exchange.h"

#include <Poco/Net/HTTPServerRequest.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/Net/StreamSocket.h>
#include <functional>

namespace Brenmoor {
namespace TavoSimulator {

/// What the exchanges of payloads and those of people have in common: from Poco's request to a
/// Reply, and from there to Poco's response.

Poco::Net::StreamSocket& SocketOf(Poco::Net::HTTPServerRequest& request);

/// False once the other side has hung up.
bool IsPeerPresent(Poco::Net::HTTPServerRequest& request);

/// Throws a Refusal for another version than HTTP/1.1 and HTTP/1.0, and for content without an end.
void RequirePlainFrame(const Poco::Net::HTTPServerRequest& request);

/// What `answer` returns, or the reply to the Refusal, or other exception, that it throws.
Reply AnswerOrRefuse(const std::function<Reply()>& answer);

/// Reads what is left of the request, up to a limit. False when there is more.
bool Drain(Poco::Net::HTTPServerRequest& request);

/// Sends the reply, all of it.
void Send(const Reply& reply, Poco::Net::HTTPServerResponse& response);

} // namespace TavoSimulator
} // namespace Brenmoor
