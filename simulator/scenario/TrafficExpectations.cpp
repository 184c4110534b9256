#include "Expectation.h"
#include "operations/Operations.h"
#include "wire/Json.h"

#include <algorithm>
#include <limits>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

std::string OperationOf(const Members& members) {
    const std::string operation = members.Has("operation") ? members.Filled("operation") : "all";
    if (operation != "all" && !IsOperation(operation)) {
        throw BadRequest("There is no operation '" + operation + "'");
    }
    return operation;
}

bool Concerns(const TrafficEntry& entry, const std::string& operation) {
    return operation == "all" || operation == entry.operation;
}

/// How often something is to happen.
class Range {
public:
    Range(const Members& members, std::uint64_t absentLeast) : least(absentLeast) {
        const bool exact = members.Has("count");
        if (exact && (members.Has("atLeast") || members.Has("atMost"))) {
            throw BadRequest("Member 'count' excludes 'atLeast' and 'atMost'");
        }
        least = exact ? Bound(members, "count", 0) : Bound(members, "atLeast", least);
        most = exact ? least : Bound(members, "atMost", most);
        if (least > most) {
            throw BadRequest("Member 'atMost' is less than 'atLeast'");
        }
    }

    bool Holds(std::uint64_t count) const {
        return count >= least && count <= most;
    }

private:
    static std::uint64_t Bound(const Members& members, const char* name, std::uint64_t absent) {
        constexpr std::uint64_t greatest = std::numeric_limits<std::uint32_t>::max();
        return members.Has(name) ? members.Count(name, 0, greatest) : absent;
    }

    std::uint64_t least;
    std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
};

class Exchanges : public Expectation {
public:
    explicit Exchanges(const Members& members)
        : operation(OperationOf(members)), id(members.Has("id") ? members.Text("id") : ""),
          anyId(!members.Has("id")), range(members, members.Has("atMost") ? 0 : 1) {}

    void Note(const TrafficEntry& entry) override {
        const auto& ids = entry.ids;
        if (Concerns(entry, operation) &&
            (anyId || std::find(ids.begin(), ids.end(), id) != ids.end())) {
            ++count;
        }
    }

    std::string Missing(const World&) const override {
        return range.Holds(count) ? "" : "there were " + std::to_string(count);
    }

private:
    const std::string operation;
    const std::string id;
    const bool anyId;
    const Range range;
    std::uint64_t count = 0;
};

class NoFlags : public Expectation {
public:
    explicit NoFlags(const Members& members) : operation(OperationOf(members)) {}

    void Note(const TrafficEntry& entry) override {
        if (Concerns(entry, operation) && !entry.flags.empty() && first.empty()) {
            first = "exchange " + std::to_string(entry.number) + ": " + entry.flags.front();
        }
    }

    std::string Missing(const World&) const override {
        return first;
    }

private:
    const std::string operation;
    /// Where the client first misbehaved.
    std::string first;
};

class FaultHits : public Expectation {
public:
    explicit FaultHits(const Members& members)
        : name(FindFault(members.Filled("name")).name), operation(OperationOf(members)),
          range(members, members.Has("atMost") ? 0 : 1) {}

    void Note(const TrafficEntry& entry) override {
        if (Concerns(entry, operation) && entry.fault == name) {
            ++hits;
        }
    }

    std::string Missing(const World&) const override {
        return range.Holds(hits) ? "" : "it hit " + std::to_string(hits) + " replies";
    }

private:
    const std::string name;
    const std::string operation;
    const Range range;
    std::uint64_t hits = 0;
};

} // namespace

ExpectationPtr ExpectExchanges(const Json::Value& description) {
    return std::make_shared<Exchanges>(
        Members(description, {"operation", "id", "count", "atLeast", "atMost"}));
}

ExpectationPtr ExpectNoFlags(const Json::Value& description) {
    return std::make_shared<NoFlags>(Members(description, {"operation"}));
}

ExpectationPtr ExpectFault(const Json::Value& description) {
    return std::make_shared<FaultHits>(
        Members(description, {"name", "operation", "count", "atLeast", "atMost"}));
}

} // namespace TavoSimulator
} // namespace Brenmoor
