#include "commands/Commands.h"
#include "commands/Content.h"
#include "core/Session.h"
#include "core/Text.h"

#include <memory>

namespace Brenmoor {
namespace Tavo {

namespace {

struct RespondOptions {
    std::string tag;
    std::optional<std::string> text;
    bool failed = false;
    bool incomplete = false;
};

void Respond(Session& session, const RespondOptions& options) {
    using TavoRemotingLib::HalcyrREST;
    const std::string& id = session.Id();
    auto& client = session.Client();
    const std::string text = options.text.has_value() ? *options.text : StandardInput();
    session.Transfer([&] {
        // The library sends this id as it is given.
        client.RespondToCommand(HalcyrREST::EncodeURL(id), options.tag, text, !options.incomplete,
                                !options.failed);
    });
    Json::Value result;
    result["id"] = id;
    result["tag"] = options.tag;
    result["complete"] = !options.incomplete;
    result["succeeded"] = !options.failed;
    session.output.Result(Escaped(id + ": answered '" + options.tag + "'") +
                              (options.failed ? ", failed" : "") +
                              (options.incomplete ? ", more follows" : "") + "\n",
                          result);
}

} // namespace

Command RespondCommand() {
    const auto options = std::make_shared<RespondOptions>();
    Command command;
    command.name = "respond";
    command.summary = "answer a command that a poll brought";
    command.details = {
        "TAG is the one that the command came with. The answer is TEXT or, without it, standard "
        "input. A command may be answered several times, all but the last with --incomplete."};
    command.arguments = {{"TAG", "", "the command's tag", &options->tag, {}, true},
                         {"TEXT", "", "the answer", &options->text}};
    command.options = {
        {"--failed", "", "the command failed", &options->failed},
        {"--incomplete", "", "the command is not complete yet", &options->incomplete},
    };
    command.examples = {
        {"A command is done", "tavo respond t17 'all is well' --id P1"},
        {"One that failed, with a program's output",
         "./measure 2>&1 | tavo respond t17 --failed --id P1"},
        {"One that is still at work", "tavo respond t17 '40 %' --incomplete --id P1"},
    };
    command.run = [options](Session& session) {
        Respond(session, *options);
    };
    return command;
}

} // namespace Tavo
} // namespace Brenmoor
