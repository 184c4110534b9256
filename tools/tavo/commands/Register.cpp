#include "commands/Commands.h"
#include "commands/Content.h"
#include "commands/RegistrationEdit.h"
#include "core/Failure.h"
#include "core/Session.h"
#include "core/Text.h"

#include <iostream>
#include <json/reader.h>
#include <memory>
#include <sstream>

namespace Brenmoor {
namespace Tavo {

namespace {

using TavoRemotingLib::HalcyrREST;

struct RegisterOptions {
    std::string file;
    std::optional<std::string> hostId;
    RegistrationEdits edits;
    bool print = false;
};

/// The library tells of a bad file on std::cout too, which is for results here.
class SilentCout {
public:
    SilentCout() : buffer(std::cout.rdbuf(nullptr)) {}
    SilentCout(const SilentCout&) = delete;
    SilentCout& operator=(const SilentCout&) = delete;
    ~SilentCout() {
        std::cout.rdbuf(buffer);
    }

private:
    std::streambuf* const buffer;
};

struct Registration {
    HalcyrREST::PayloadRegistration record;
    std::string document;
};

Registration ReadEdited(const RegisterOptions& options) {
    LoadOf(options.file);
    const SilentCout silent;
    try {
        Registration registration;
        registration.record = HalcyrREST::PayloadRegistration(options.file);
        EditRecord(options.edits, registration.record);
        const std::string document = registration.record.ToJSON(options.file);
        registration.document = EditHardware(options.edits, EditInterface(options.edits, document));
        return registration;
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& error) {
        throw LocalError("'" + options.file + "' is no registration file: " + error.what(),
                         "mend the file");
    }
}

Json::Value Parsed(const std::string& document) {
    Json::Value value;
    std::istringstream(document) >> value;
    return value;
}

void Register(Session& session, const RegisterOptions& options) {
    const Registration registration = ReadEdited(options);
    if (options.print) {
        session.output.Result(registration.document, Parsed(registration.document));
        return;
    }
    const std::string id = session.options.ids.empty() ? "" : session.Id();
    const std::string hostId = options.hostId.value_or(registration.record.hostID);
    auto& client = session.Client();
    session.Transfer([&] { client.RegisterPayloadWithContent(id, registration.document, hostId); });
    Json::Value result;
    result["id"] = id;
    result["hostId"] = hostId;
    session.output.Result(
        Escaped((id.empty() ? "" : id + ": ") + "registered as '" + registration.record.tag + "'") +
            "\n",
        result);
}

std::vector<Parameter> RegisterParameters(RegisterOptions& options) {
    RegistrationEdits& edits = options.edits;
    return {
        {"--set", "NAME=VALUE",
         "set tag, description, boardAddress, reportingAddress, corbaName or hostID",
         &edits.members},
        {"--interface", "NAME=VALUE", "set pn or swver of the interface; with both empty it goes",
         &edits.interface},
        {"--hardware", "N.NAME=VALUE",
         "set manufacturer, model, pn, serial, swver, tty, power or connector of hardware entry N, "
         "numbered from 1; one more than the last adds an entry",
         &edits.hardware},
        {"--drop-hardware", "N", "take out hardware entry N", &edits.dropped},
        {"--host-id", "ID", "the host, instead of the document's hostID", &options.hostId},
        {"--print", "", "print the document that would be sent, and send nothing", &options.print},
    };
}

} // namespace

Command RegisterCommand() {
    const auto options = std::make_shared<RegisterOptions>();
    Command command;
    command.name = "register";
    command.summary = "register the payload with a registration file";
    command.details = {
        "FILE is a JSON object of at most 32768 bytes; its outer braces may be missing. What the "
        "options do not name is sent as the file has it, and the file is not changed.",
        "The id may be left out, for a server that knows the payload by its host."};
    Parameter file{"FILE", "", "the registration file", &options->file};
    file.isRequired = true;
    file.isFile = true;
    command.arguments = {file};
    command.options = RegisterParameters(*options);
    command.examples = {
        {"Register, with a tag of this host's own",
         "tavo register ctd.json --set tag=ctd-2 --id P1"},
        {"See what would be sent for another probe and without the second entry",
         "tavo register ctd.json --hardware 1.serial=0042 --drop-hardware 2 --print"},
    };
    command.run = [options](Session& session) {
        Register(session, *options);
    };
    return command;
}

Command RegistrationCompleteCommand() {
    Command command;
    command.name = "registration-complete";
    command.summary = "tell the server that the payload's registration is complete";
    command.examples = {{"After the last 'tavo register'", "tavo registration-complete --id P1"}};
    command.run = [](Session& session) {
        const std::string& id = session.Id();
        auto& client = session.Client();
        session.Transfer([&] { client.RegistrationComplete(id); });
        Json::Value result;
        result["id"] = id;
        session.output.Result(Escaped(id) + ": registration is complete\n", result);
    };
    return command;
}

} // namespace Tavo
} // namespace Brenmoor
