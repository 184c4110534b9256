#include "StackDepth.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <pthread.h>
#include <stdexcept>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

namespace {

constexpr std::uint32_t paint = 0xA5C35A3C;
constexpr std::size_t stackSize = 1048576;

alignas(4096) std::array<std::uint32_t, stackSize / sizeof paint> stack;

struct Run {
    const std::function<void()>& action;
    std::string error;
    std::uintptr_t begin;
};

void* OnThread(void* argument) {
    Run& run = *static_cast<Run*>(argument);
    run.begin = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    try {
        run.action();
    } catch (const std::exception& e) {
        run.error = e.what();
    }
    return nullptr;
}

void Check(int error) {
    if (error != 0) {
        throw std::runtime_error("cannot run a thread on the painted stack");
    }
}

} // namespace

Depth MeasureStack(const std::function<void()>& action) {
    stack.fill(paint);
    Run run = {action, {}, 0};
    pthread_attr_t attributes;
    pthread_t thread;
    Check(pthread_attr_init(&attributes));
    Check(pthread_attr_setstack(&attributes, stack.data(), sizeof stack));
    Check(pthread_create(&thread, &attributes, &OnThread, &run));
    Check(pthread_join(thread, nullptr));
    Check(pthread_attr_destroy(&attributes));
    const auto* const end =
        std::find_if(stack.begin(), stack.end(), [](std::uint32_t word) { return word != paint; });
    if (end == stack.begin()) {
        throw std::runtime_error("the painted stack was too small");
    }
    return {run.begin - reinterpret_cast<std::uintptr_t>(end), run.error};
}

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
