// The stack that an operation needs, in bytes: for the process's first call, for a further one, and
// for one that the server refuses.
// Usage: footprint_stack_... FILE OPERATION SERVER     FILE is a registration document
//        footprint_stack_...                           lists the operations

#include "Operation.h"
#include "StackDepth.h"

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

using namespace Brenmoor::TavoRemotingLib::Footprint;

namespace {

std::vector<Operation> Operations() {
    std::vector<Operation> all = Gets();
    for (const std::vector<Operation>& more : {Uploads(), Documents()}) {
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

Operation Find(const std::string& name) {
    for (const Operation& operation : Operations()) {
        if (operation.name == name) {
            return operation;
        }
    }
    throw std::runtime_error("there is no operation " + name);
}

std::string Content(const std::string& fileName) {
    std::ifstream file(fileName);
    if (!file) {
        throw std::runtime_error("cannot read " + fileName);
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::size_t Measure(const Operation& operation, const Call& call, bool mustThrow) {
    const Depth depth = MeasureStack([&] { operation.run(call); });
    if (depth.error.empty() == mustThrow) {
        throw std::runtime_error(operation.name + (" with id " + call.id) + ": " +
                                 (mustThrow ? "nothing was thrown" : depth.error));
    }
    return depth.bytes;
}

void Run(const std::string& file, const std::string& name, const std::string& server) {
    const Operation operation = Find(name);
    Call call = {server, "P1", file, Content(file)};
    const std::size_t first = Measure(operation, call, false);
    const std::size_t further = Measure(operation, call, false);
    call.id = "refused";
    const std::size_t refused = Measure(operation, call, operation.throwsWhenRefused);
    std::cout << first << " " << further << " " << refused << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 1) {
        for (const Operation& operation : Operations()) {
            std::cout << operation.name << "\n";
        }
        return 0;
    }
    if (argc != 4) {
        std::cerr << "usage: " << argv[0] << " [FILE OPERATION SERVER]" << std::endl;
        return 2;
    }
    try {
        Run(argv[1], argv[2], argv[3]);
    } catch (const std::exception& e) {
        std::cerr << argv[0] << ": " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
