#include "Scrutiny.h"
#include "wire/EscapedText.h"
#include "wire/Exchange.h"

#include <Poco/Exception.h>
#include <Poco/URI.h>
#include <algorithm>
#include <cctype>
#include <iterator>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

enum class Times { Once, AtMostOnce, AnyNumber };
enum class Value { Text, Filled, Unescaped, Number, Exactly };

/// One parameter of an operation.
struct Rule {
    const char* name = nullptr;
    Times times = Times::Once;
    Value value = Value::Text;
    /// What the value can be; with a number, what it is not.
    const char* first = nullptr;
    const char* second = nullptr;
};

struct Grammar {
    const char* operation;
    const char* method;
    /// Behind "op", in order.
    std::vector<Rule> rules;
};

constexpr Rule id{"id", Times::Once, Value::Text};
constexpr Rule remote{"remote", Times::AtMostOnce, Value::Filled};

const std::vector<Grammar>& Grammars() {
    static const std::vector<Grammar> grammars = {
        {"off", "GET", {id}},
        {"pwr",
         "GET",
         {id,
          {"sw", Times::AtMostOnce, Value::Text},
          {"cmd", Times::Once, Value::Exactly, "on", "off"}}},
        {"script", "GET", {id, {"cmd", Times::Once, Value::Text}}},
        {"metadone", "GET", {id}},
        {"offdelay",
         "GET",
         {id,
          {"delay", Times::Once, Value::Number},
          {"setdefault", Times::Once, Value::Exactly, "0"}}},
        {"poll",
         "GET",
         {{"id", Times::AnyNumber, Value::Text},
          {"format", Times::Once, Value::Exactly, "2"},
          {"gps", Times::AtMostOnce, Value::Exactly, "true"},
          {"shutdown", Times::AtMostOnce, Value::Exactly, "true"},
          {"maxcommands", Times::AtMostOnce, Value::Number, "1"},
          {"timeout", Times::Once, Value::Number}}},
        {"reply",
         "POST",
         {{"id", Times::Once, Value::Unescaped},
          {"tag", Times::Once, Value::Text},
          {"complete", Times::AtMostOnce, Value::Exactly, "false"},
          {"succeeded", Times::AtMostOnce, Value::Exactly, "false"}}},
        {"rawpacket", "POST", {id}},
        {"meta",
         "POST",
         {{"id", Times::AtMostOnce, Value::Filled}, {"hostid", Times::AtMostOnce, Value::Filled}}},
        {"upload", "POST", {id, remote}},
        {"uploadlegacy", "POST", {id, remote}},
        {"jar", "POST", {id}},
    };
    return grammars;
}

const Grammar* FindGrammar(const std::string& operation) {
    const auto& grammars = Grammars();
    const auto found = std::find_if(grammars.begin(), grammars.end(), [&](const Grammar& grammar) {
        return grammar.operation == operation;
    });
    return found == grammars.end() ? nullptr : &*found;
}

/// A parameter's name for a flag, whatever it is.
std::string Named(const std::string& name) {
    constexpr std::size_t most = 40;
    return "parameter '" + Escape(name.substr(0, most)) + "'";
}

bool IsHexadecimal(const std::string& digits) {
    return digits.size() == 2 && std::all_of(digits.begin(), digits.end(), [](unsigned char digit) {
               return std::isxdigit(digit) != 0;
           });
}

bool IsPassed(unsigned char byte) {
    const std::string_view others = "-_.~";
    return byte < 0x80 && (std::isalnum(byte) != 0 ||
                           others.find(static_cast<char>(byte)) != std::string_view::npos);
}

/// What is wrong with the escaping of a value, first of all; empty for nothing.
std::string EscapeFault(const std::string& value) {
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '+') {
            return "has a '+'";
        }
        if (value[i] != '%') {
            if (!IsPassed(static_cast<unsigned char>(value[i]))) {
                return "has an unescaped byte";
            }
            continue;
        }
        const std::string digits = value.substr(i + 1, 2);
        if (!IsHexadecimal(digits)) {
            return "has a broken escape";
        }
        if (digits.find_first_of("abcdef") != std::string::npos) {
            return "has small hexadecimal digits";
        }
        if (IsPassed(static_cast<unsigned char>(std::stoi(digits, nullptr, 16)))) {
            return "escapes a byte for nothing";
        }
        i += 2;
    }
    return "";
}

bool IsNumber(const std::string& text) {
    const std::string digits = text.substr(text.rfind('-', 0) == 0 ? 1 : 0);
    const bool allDigits = std::all_of(
        digits.begin(), digits.end(), [](unsigned char digit) { return std::isdigit(digit) != 0; });
    return allDigits && (digits == text ? !text.empty() : !digits.empty() && digits != "0") &&
           (digits.size() == 1 || digits[0] != '0');
}

bool IsSent(const Rule& rule, const std::string& value) {
    switch (rule.value) {
    case Value::Filled:
        return !value.empty();
    case Value::Number:
        return IsNumber(value) && (rule.first == nullptr || value != rule.first);
    case Value::Exactly:
        return value == rule.first || (rule.second != nullptr && value == rule.second);
    case Value::Text:
    case Value::Unescaped:
        break;
    }
    return true;
}

std::string ValueFault(const Rule& rule, const QueryPart& parameter) {
    if (!parameter.hasValue) {
        return "has no value";
    }
    const std::string fault = rule.value == Value::Unescaped ? "" : EscapeFault(parameter.value);
    if (!fault.empty()) {
        return fault;
    }
    return IsSent(rule, parameter.value) ? "" : "has a value that the client never sends";
}

/// Goes through the parameters of one operation.
class Watch {
public:
    explicit Watch(std::vector<Rule> theRules) : rules(std::move(theRules)), seen(rules.size()) {}

    void See(const QueryPart& parameter) {
        const auto rule = std::find_if(rules.begin(), rules.end(),
                                       [&](const Rule& one) { return one.name == parameter.name; });
        if (rule == rules.end()) {
            flags.push_back(Named(parameter.name) + " is unknown");
            return;
        }
        const auto place = static_cast<std::size_t>(rule - rules.begin());
        if (seen[place] && rule->times != Times::AnyNumber) {
            flags.push_back(Named(parameter.name) + " is repeated");
        } else if (place < last) {
            flags.push_back(Named(parameter.name) + " is out of order");
        }
        seen[place] = true;
        last = std::max(last, place);
        const std::string fault = ValueFault(*rule, parameter);
        if (!fault.empty()) {
            flags.push_back(Named(parameter.name) + " " + fault);
        }
    }

    std::vector<std::string> End() {
        for (std::size_t i = 0; i < rules.size(); ++i) {
            if (!seen[i] && rules[i].times == Times::Once) {
                flags.push_back(Named(rules[i].name) + " is missing");
            }
        }
        return std::move(flags);
    }

private:
    const std::vector<Rule> rules;
    std::vector<bool> seen;
    std::size_t last = 0;
    std::vector<std::string> flags;
};

} // namespace

std::vector<std::string> QueryFlags(const std::string& method, const std::string& query) {
    const std::vector<QueryPart> parameters = SplitQuery(query);
    const auto op = std::find_if(parameters.begin(), parameters.end(),
                                 [](const QueryPart& one) { return one.name == "op"; });
    if (op == parameters.end()) {
        return {"parameter 'op' is missing"};
    }
    const Grammar* const grammar = FindGrammar(op->value);
    if (grammar == nullptr) {
        return {"the operation is unknown"};
    }
    std::vector<Rule> rules = {{"op", Times::Once, Value::Filled}};
    rules.insert(rules.end(), grammar->rules.begin(), grammar->rules.end());
    Watch watch(std::move(rules));
    for (const QueryPart& parameter : parameters) {
        watch.See(parameter);
    }
    std::vector<std::string> flags = watch.End();
    if (method != grammar->method) {
        flags.push_back(std::string("the method is not ") + grammar->method);
    }
    return flags;
}

} // namespace TavoSimulator
} // namespace Brenmoor
