#include "Expectation.h"
#include "PayloadExpectation.h"
#include "wire/EscapedText.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::string SmallHexadecimal(const Members& members, const char* name, std::size_t digits) {
    std::string text = members.Text(name);
    for (char& digit : text) {
        digit = static_cast<char>(std::tolower(static_cast<unsigned char>(digit)));
    }
    if (text.find_first_not_of("0123456789abcdef") != std::string::npos ||
        (digits == 0 ? text.size() % 2 != 0 : text.size() != digits)) {
        throw BadRequest("Member '" + std::string(name) + "' must be " +
                         (digits == 0 ? "pairs of" : std::to_string(digits)) +
                         " hexadecimal digits");
    }
    return text;
}

class FileArrived : public PayloadExpectation {
public:
    explicit FileArrived(const Members& members)
        : PayloadExpectation(members), operation(OptionalText(members, "operation")),
          name(OptionalText(members, "name")), remote(OptionalText(members, "remote")) {
        constexpr std::uint64_t most = std::uint64_t{1} << 60;
        if (members.Has("size")) {
            size = members.Count("size", 0, most);
        }
        if (members.Has("sha256")) {
            sha256 = SmallHexadecimal(members, "sha256", 64);
        }
    }

private:
    std::string MissingFrom(const Payload& payload) const override {
        std::string last;
        bool found = false;
        payload.files.Each([&](const KeptFile& file) {
            last =
                file.name + " of " + std::to_string(file.size) + " bytes, SHA-256 " + file.sha256;
            found = Fits(operation, file.operation) && Fits(name, file.name) &&
                    Fits(remote, file.remote) && Fits(size, file.size) && Fits(sha256, file.sha256);
            return !found;
        });
        if (found) {
            return "";
        }
        return last.empty() ? "no file arrived" : "no such file arrived; the last is " + last;
    }

    const std::optional<std::string> operation;
    const std::optional<std::string> name;
    const std::optional<std::string> remote;
    std::optional<std::uint64_t> size;
    std::optional<std::string> sha256;
};

class PacketArrived : public PayloadExpectation {
public:
    explicit PacketArrived(const Members& members)
        : PayloadExpectation(members),
          text(members.Has("hex") ? FromHexadecimal(members) : Escaped(members)) {}

private:
    static std::string Escaped(const Members& members) {
        return Escape(Unescape(members.Text("text")));
    }

    static std::string FromHexadecimal(const Members& members) {
        if (members.Has("text")) {
            throw BadRequest("Members 'hex' and 'text' exclude each other");
        }
        const std::string digits = SmallHexadecimal(members, "hex", 0);
        std::string bytes;
        for (std::size_t at = 0; at < digits.size(); at += 2) {
            bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
        }
        return Escape(bytes);
    }

    std::string MissingFrom(const Payload& payload) const override {
        bool found = false;
        std::string last;
        payload.packets.Each([&](const Packet& packet) {
            last = Escape(packet.bytes);
            found = last == text;
            return !found;
        });
        if (found) {
            return "";
        }
        return payload.packets.Size() == 0 ? "no packet arrived"
                                           : "no such packet arrived; the last is " + Short(last);
    }

    /// Escaped.
    const std::string text;
};

/// "a.b[0].c", from the outermost member inwards. Null where there is none.
const Json::Value* Member(const Json::Value& document, const std::vector<std::string>& path) {
    const Json::Value* value = &document;
    for (const std::string& step : path) {
        if (step.front() == '[') {
            const auto index = static_cast<Json::ArrayIndex>(std::stoul(step.substr(1)));
            if (!value->isArray() || index >= value->size()) {
                return nullptr;
            }
            value = &(*value)[index];
        } else if (!value->isObject() || !value->isMember(step)) {
            return nullptr;
        } else {
            value = &(*value)[step];
        }
    }
    return value;
}

std::vector<std::string> Path(const std::string& text) {
    std::vector<std::string> path;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of(".[", begin + 1), text.size());
        const std::string step = text.substr(begin, end - begin);
        const bool isIndex = step.front() == '[' && step.size() > 2 && step.size() < 10 &&
                             step.find_first_not_of("0123456789", 1) == step.size() - 1 &&
                             step.back() == ']';
        if (!isIndex && (step == "." || step.front() == '[')) {
            throw BadRequest("Member 'member' is no path as in \"hardware[0].pn\"");
        }
        path.push_back(!isIndex && step.front() == '.' ? step.substr(1) : step);
        begin = end;
    }
    return path;
}

class Registered : public PayloadExpectation {
public:
    explicit Registered(const Members& members)
        : PayloadExpectation(members), path(members.Has("member") ? Path(members.Filled("member"))
                                                                  : std::vector<std::string>()) {
        if (members.Has("equals")) {
            wanted = members.Value("equals");
        }
    }

private:
    std::string MissingFrom(const Payload& payload) const override {
        if (!payload.registration) {
            return "it is not registered";
        }
        const Json::Value* const value = Member(*payload.registration, path);
        if (value == nullptr) {
            return "there is no such member";
        }
        return !wanted || *value == *wanted ? "" : "it is " + JsonLine(*value);
    }

    const std::vector<std::string> path;
    std::optional<Json::Value> wanted;
};

class PayloadIs : public PayloadExpectation {
public:
    explicit PayloadIs(const Members& members)
        : PayloadExpectation(members), off(OptionalFlag(members, "off")),
          complete(OptionalFlag(members, "registrationComplete")),
          told(OptionalFlag(members, "shutdownTold")) {}

private:
    std::string MissingFrom(const Payload& payload) const override {
        std::string missing;
        const auto check = [&](const char* name, const std::optional<bool>& wanted, bool is) {
            if (!Fits(wanted, is)) {
                missing += (missing.empty() ? "" : ", ") + std::string(name) + " is " +
                           (is ? "true" : "false");
            }
        };
        check("off", off, payload.off);
        check("registrationComplete", complete, payload.registrationComplete);
        check("shutdownTold", told, payload.shutdownTold);
        return missing;
    }

    const std::optional<bool> off;
    const std::optional<bool> complete;
    const std::optional<bool> told;
};

class SwitchIs : public PayloadExpectation {
public:
    explicit SwitchIs(const Members& members)
        : PayloadExpectation(members), name(OptionalText(members, "name")), on(members.Flag("on")) {
    }

private:
    std::string MissingFrom(const Payload& payload) const override {
        std::optional<bool> state = payload.mainSwitch;
        if (name) {
            const auto found = payload.switches.find(*name);
            state =
                found == payload.switches.end() ? std::nullopt : std::optional<bool>(found->second);
        }
        if (!state) {
            return "it was never turned";
        }
        return *state == on ? "" : std::string("it is ") + (*state ? "on" : "off");
    }

    const std::optional<std::string> name;
    const bool on;
};

} // namespace

ExpectationPtr ExpectFile(const Json::Value& description) {
    return std::make_shared<FileArrived>(
        Members(description, {"id", "operation", "name", "remote", "size", "sha256"}));
}

ExpectationPtr ExpectPacket(const Json::Value& description) {
    return std::make_shared<PacketArrived>(Members(description, {"id", "text", "hex"}));
}

ExpectationPtr ExpectRegistration(const Json::Value& description) {
    return std::make_shared<Registered>(Members(description, {"id", "member", "equals"}));
}

ExpectationPtr ExpectPayload(const Json::Value& description) {
    return std::make_shared<PayloadIs>(
        Members(description, {"id", "off", "registrationComplete", "shutdownTold"}));
}

ExpectationPtr ExpectSwitch(const Json::Value& description) {
    return std::make_shared<SwitchIs>(Members(description, {"id", "name", "on"}));
}

} // namespace TavoSimulator
} // namespace Brenmoor
