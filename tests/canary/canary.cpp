#include <climits>
#include <cstring>
#include <thread>
#include <vector>

namespace {

int shared = 0;

void Overflow() {
    volatile char* const bytes = new char[8];
    bytes[8] = 'x';
    delete[] bytes;
}

void Leak() {
    volatile char* bytes = new char[8];
    bytes[0] = 'x';
    bytes = nullptr;
}

int Arithmetic() {
    volatile int number = INT_MAX;
    return number + 1;
}

void Race() {
    std::thread other([] { ++shared; });
    ++shared;
    other.join();
}

int Index() {
    const std::vector<int> numbers(8);
    volatile std::size_t index = 8;
    // cppcheck-suppress containerOutOfBounds
    return numbers[index];
}

} // namespace

/// Commits the fault that its argument names, and succeeds if nobody minds.
int main(int, char** argv) {
    const char* const fault = argv[1];
    if (std::strcmp(fault, "overflow") == 0) {
        Overflow();
    } else if (std::strcmp(fault, "leak") == 0) {
        Leak();
    } else if (std::strcmp(fault, "arithmetic") == 0) {
        Arithmetic();
    } else if (std::strcmp(fault, "index") == 0) {
        Index();
    } else {
        Race();
    }
    return 0;
}
