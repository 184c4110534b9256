// A host that makes one call, and the private dirty memory that it then has.
// Usage: footprint_memory_... [GUEST_BASE] SERVER

#include "Operation.h"
#include "PrivateDirty.h"

#include <exception>
#include <iostream>

using namespace Brenmoor::TavoRemotingLib::Footprint;

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::cerr << "usage: " << argv[0] << " [GUEST_BASE] SERVER" << std::endl;
        return 2;
    }
    try {
        Poll({argv[argc - 1], "P1", {}, {}});
        PrintPrivateDirty(std::cout, argc == 3 ? argv[1] : nullptr);
    } catch (const std::exception& e) {
        std::cerr << argv[0] << ": " << e.what() << std::endl;
        return 1;
    }
    return 0;
}
