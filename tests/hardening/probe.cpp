// Calls that a hardened build guards.

#include <cstddef>
#include <cstring>

__attribute__((visibility("default"))) int Probe(const char* text, std::size_t size) {
    char bytes[16];
    std::memcpy(bytes, text, size);
    return bytes[size / 2];
}
