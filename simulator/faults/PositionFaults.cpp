#include "Parts.h"

namespace Brenmoor {
namespace TavoSimulator {

namespace {

/// An answer with this in the place of the position.
Fault Position(const char* name, const char* summary, const std::string& json) {
    return Answer(name, summary, "{\"gps\": " + json + "}");
}

} // namespace

std::vector<Fault> PositionFaults() {
    return {
        Position("gps-list", "the position is a list", "[59.9, 10.7, 1700000000]"),
        Position("gps-text", "the position is a text", "\"59.9 10.7\""),
        Position("gps-null", "the position is null", "null"),
        Position("gps-empty", "the position has no members", "{}"),
        Position("gps-error", "the position has an error and no numbers",
                 R"({"error": "no satellites"})"),
        Position("gps-error-number", "the position's error is a number",
                 R"({"latitude": 59.9, "longitude": 10.7, "timeFix": 1700000000, "error": 7})"),
        Position("latitude-missing", "a position without latitude",
                 R"({"longitude": 10.7, "timeFix": 1700000000})"),
        Position("latitude-text", "the latitude is a text",
                 R"({"latitude": "59.9", "longitude": 10.7, "timeFix": 1700000000})"),
        Position("latitude-null", "the latitude is null",
                 R"({"latitude": null, "longitude": 10.7, "timeFix": 1700000000})"),
        Position("latitude-off-the-globe", "the latitude is beyond the pole",
                 R"({"latitude": 1e300, "longitude": 10.7, "timeFix": 1700000000})"),
        Position("longitude-text", "the longitude is a text",
                 R"({"latitude": 59.9, "longitude": "10.7", "timeFix": 1700000000})"),
        Position("longitude-true", "the longitude is true",
                 R"({"latitude": 59.9, "longitude": true, "timeFix": 1700000000})"),
        Position("time-text", "the time of the fix is a text",
                 R"({"latitude": 59.9, "longitude": 10.7, "timeFix": "1700000000"})"),
        Position("time-negative", "the time of the fix is before all times",
                 R"({"latitude": 59.9, "longitude": 10.7, "timeFix": -1})"),
        Position("time-fraction", "the time of the fix has a fraction",
                 R"({"latitude": 59.9, "longitude": 10.7, "timeFix": 1700000000.75})"),
        Position("gps-whole-numbers", "a position in whole numbers, which is fine",
                 R"({"latitude": 60, "longitude": 11, "timeFix": 1700000000})"),
    };
}

} // namespace TavoSimulator
} // namespace Brenmoor
