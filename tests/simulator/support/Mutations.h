#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

/// Good requests of payloads and of people, with some bytes of some of them changed, left out,
/// doubled or put in. The same seed gives the same requests on every machine.
class Mutations {
public:
    explicit Mutations(std::uint64_t seed) : numbers(seed) {}

    std::string Next();

private:
    std::size_t Below(std::size_t end);
    void Mutate(std::string& request);

    std::mt19937_64 numbers;
};

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
