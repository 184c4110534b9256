#include "Load.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <sys/resource.h>

// Usage: tavo_load polls PORT PROCESS SPEED PAYLOADS SECONDS
//        tavo_load hostile PORT PROCESS REQUESTS CONNECTIONS
int main(int count, char** arguments) {
    using namespace Brenmoor::TavoSimulator::Load;
    const std::string usage = "usage: tavo_load polls PORT PROCESS SPEED PAYLOADS SECONDS\n"
                              "       tavo_load hostile PORT PROCESS REQUESTS CONNECTIONS\n";
    const auto number = [&](int index) {
        return static_cast<unsigned>(std::stoul(arguments[index]));
    };
    std::signal(SIGPIPE, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    try {
        const std::string what = count > 3 ? arguments[1] : "";
        Target target;
        if (what == "polls" && count == 7) {
            target.port = static_cast<std::uint16_t>(number(2));
            target.process = static_cast<pid_t>(number(3));
            target.speed = std::stod(arguments[4]);
            return RunPolls(target, number(5), std::chrono::seconds(number(6))) ? 0 : 1;
        }
        if (what == "hostile" && count == 6) {
            target.port = static_cast<std::uint16_t>(number(2));
            target.process = static_cast<pid_t>(number(3));
            return RunHostile(target, number(4), number(5)) ? 0 : 1;
        }
        std::cerr << usage;
        return 2;
    } catch (const std::exception& failure) {
        std::cerr << "tavo_load: " << failure.what() << '\n';
        return 1;
    }
}
