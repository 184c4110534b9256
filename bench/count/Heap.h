#pragma once

/// What an object counts that is loaded before all others (LD_PRELOAD) and stands in for calls of
/// the C library.
struct BenchCounts {
    unsigned long allocations; ///< calls that gave memory, a realloc() included
    unsigned long peak;        ///< most bytes in use, above those in use at the start
    unsigned long copied;      ///< bytes that were copied, by the kernel too
    unsigned long descriptors; ///< most descriptors open, above those open at the start
};

// Weak, for a program to ask whether they are there.
extern "C" {
__attribute__((weak, visibility("default"))) void BenchStart();
__attribute__((weak, visibility("default"))) BenchCounts BenchStop();
}
