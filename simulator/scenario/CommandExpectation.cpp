#include "PayloadExpectation.h"
#include "wire/EscapedText.h"

#include <set>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

class CommandAnswered : public PayloadExpectation {
public:
    explicit CommandAnswered(const Members& members)
        : PayloadExpectation(members), tag(OptionalText(members, "tag")),
          command(OptionalText(members, "command")), text(OptionalText(members, "text")),
          contained(OptionalText(members, "contains")),
          succeeded(OptionalFlag(members, "succeeded")),
          complete(OptionalFlag(members, "complete").value_or(true)) {
        if (!tag && !command) {
            throw BadRequest("Member 'tag' or 'command' is missing");
        }
    }

private:
    std::string MissingFrom(const Payload& payload) const override {
        std::set<std::uint64_t> numbers;
        bool delivered = false;
        payload.commands.Each([&](const Command& one) {
            if (Fits(tag, one.tag) && Fits(command, one.text)) {
                numbers.insert(one.number);
                delivered = delivered || one.state != Command::State::Queued;
            }
            return true;
        });
        if (numbers.empty()) {
            return "there is no such command";
        }
        std::string missing =
            delivered ? "it is delivered, but not answered" : "it is queued, but not delivered";
        payload.answers.Each([&](const Answer& answer) {
            if (numbers.count(answer.command) == 0) {
                return true;
            }
            missing = IsMet(answer) ? "" : "it is answered " + Described(answer);
            return !missing.empty();
        });
        return missing;
    }

    bool IsMet(const Answer& answer) const {
        return answer.complete == complete && Fits(succeeded, answer.succeeded) &&
               Fits(text, answer.text) &&
               (!contained || answer.text.find(*contained) != std::string::npos);
    }

    static std::string Described(const Answer& answer) {
        return "'" + Short(Escape(answer.text)) + "', " +
               (answer.complete ? "complete, " : "not complete, ") +
               (answer.succeeded ? "succeeded" : "not succeeded");
    }

    const std::optional<std::string> tag;
    const std::optional<std::string> command;
    const std::optional<std::string> text;
    const std::optional<std::string> contained;
    const std::optional<bool> succeeded;
    const bool complete;
};

} // namespace

ExpectationPtr ExpectCommand(const Json::Value& description) {
    return std::make_shared<CommandAnswered>(Members(
        description, {"id", "tag", "command", "complete", "succeeded", "text", "contains"}));
}

} // namespace TavoSimulator
} // namespace Brenmoor
