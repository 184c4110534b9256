#include "agent/Agent.h"
#include "agent/Notify.h"
#include "core/Failure.h"

namespace Brenmoor {
namespace Tavo {

void Agent::KeepAlive() {
    NotifyManager("WATCHDOG=1");
    if (!isToShutDown || options.postpone == 0 || Clock::now() < nextPostponement) {
        return;
    }
    for (const std::string& id : ids) {
        NotifyManager("WATCHDOG=1"); // each may take minutes
        try {
            client.DelayShutdown(id, options.postpone);
        } catch (const std::exception& error) {
            Warn("not postponed: " + FailureOf(error, session.options.server).Line());
        }
    }
    nextPostponement = Clock::now() + std::chrono::milliseconds(options.postpone * 500);
}

void Agent::ShutDown() {
    isToShutDown = true;
    if (!isPrepared) {
        HandleAll();
        if (options.onShutdown && !signals.StopRequested()) {
            RunOnShutdown();
        }
        AnswerAll();
        isPrepared = !signals.StopRequested();
    }
    // A stopped agent leaves the rest to the next one, which is told to shut down, too.
    for (const std::string& id : ids) {
        if (!signals.StopRequested()) {
            NotifyManager("WATCHDOG=1");
            client.TurnPayloadOff(id);
        }
    }
    if (signals.StopRequested()) {
        return;
    }
    isOff = true;
    Json::Value line;
    line["event"] = "off";
    session.output.Result("off\n", line);
}

void Agent::RunOnShutdown() {
    HandlerCall call;
    call.words = {*options.onShutdown};
    call.environment = {{"TAVO_ID", ids.front()}};
    call.longest = std::chrono::seconds(options.handlerTimeout);
    call.mostOutput = static_cast<std::size_t>(options.outputLimit);
    call.alive = [this] {
        KeepAlive();
    };
    KeepAlive();
    const HandlerResult result = RunOrFail(call);
    if (!result.succeeded) {
        Warn("the shutdown's program failed: " + result.output);
    }
}

} // namespace Tavo
} // namespace Brenmoor
