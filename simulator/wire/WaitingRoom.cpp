#include "WaitingRoom.h"

#include <array>
#include <cerrno>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Brenmoor {
namespace TavoSimulator {

namespace {

// So that those that are heard get their turn in between.
constexpr int mostAtOnce = 256;

const std::string refusal = "HTTP/1.1 503 Service Unavailable\r\nContent-Type: text/plain\r\n"
                            "Content-Length: 34\r\nConnection: close\r\n\r\n"
                            "The server has too much to do now\n";

bool Watch(int epoll, int descriptor) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    return epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

enum class Sound { Silence, Something, End };

Sound SoundFrom(int descriptor) {
    char first = '\0';
    const auto count = recv(descriptor, &first, 1, MSG_PEEK | MSG_DONTWAIT);
    if (count > 0) {
        return Sound::Something;
    }
    return count < 0 && (errno == EAGAIN || errno == EINTR) ? Sound::Silence : Sound::End;
}

void Refuse(int descriptor) {
    send(descriptor, refusal.data(), refusal.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    shutdown(descriptor, SHUT_WR);
    // What came and is not read would make a reset of the close, and the answer be lost.
    std::array<char, 4096> unread{};
    while (recv(descriptor, unread.data(), unread.size(), MSG_DONTWAIT) > 0) {
    }
    close(descriptor);
}

} // namespace

WaitingRoom::WaitingRoom(int theListening, std::size_t theMost,
                         std::chrono::milliseconds theLongest, std::function<bool()> theBusy)
    : listening(theListening), most(theMost), longest(theLongest), busy(std::move(theBusy)),
      epoll(epoll_create1(EPOLL_CLOEXEC)) {
    if (!Watch(epoll, listening)) {
        throw std::system_error(errno, std::generic_category(), "No connection can be awaited");
    }
}

WaitingRoom::~WaitingRoom() {
    while (!waiting.empty()) {
        DropOldest();
    }
    for (const int descriptor : heard) {
        close(descriptor);
    }
    close(epoll);
}

bool WaitingRoom::Await(std::chrono::milliseconds timeout) {
    if (!heard.empty()) {
        return true;
    }
    DropExpired();
    std::array<epoll_event, 64> events{};
    const int count = epoll_wait(epoll, events.data(), static_cast<int>(events.size()),
                                 static_cast<int>(timeout.count()));
    for (int i = 0; i < count; ++i) {
        const int descriptor = events.at(static_cast<std::size_t>(i)).data.fd;
        if (descriptor == listening) {
            AcceptAll();
        } else {
            Hear(descriptor);
        }
    }
    return !heard.empty();
}

int WaitingRoom::Take() {
    if (heard.empty()) {
        return -1;
    }
    const int descriptor = heard.front();
    heard.pop_front();
    return descriptor;
}

void WaitingRoom::AcceptAll() {
    for (int i = 0; i < mostAtOnce; ++i) {
        const int descriptor = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor >= 0) {
            Admit(descriptor);
        } else if (errno == EMFILE || errno == ENFILE) {
            MakeRoom();
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return;
        }
    }
}

void WaitingRoom::MakeRoom() {
    if (waiting.empty()) {
        // Others have all the descriptors; they will give some back.
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    } else {
        DropOldest();
    }
}

void WaitingRoom::Admit(int descriptor) {
    if (waiting.size() >= most) {
        DropOldest();
    }
    if (!Watch(epoll, descriptor)) {
        close(descriptor);
        return;
    }
    waiting.push_back({descriptor, Real::now()});
    places[descriptor] = std::prev(waiting.end());
}

void WaitingRoom::Hear(int descriptor) {
    const auto place = places.find(descriptor);
    if (place == places.end()) {
        return; // dropped a moment ago
    }
    const Sound sound = SoundFrom(descriptor);
    if (sound == Sound::Silence) {
        return; // a new one of the same number
    }
    Leave(place->second);
    if (sound == Sound::End) {
        close(descriptor);
    } else if (busy()) {
        Refuse(descriptor);
    } else {
        heard.push_back(descriptor);
    }
}

int WaitingRoom::Leave(std::list<Waiting>::iterator one) {
    const int descriptor = one->descriptor;
    epoll_ctl(epoll, EPOLL_CTL_DEL, descriptor, nullptr);
    places.erase(descriptor);
    waiting.erase(one);
    return descriptor;
}

void WaitingRoom::DropOldest() {
    close(Leave(waiting.begin()));
}

void WaitingRoom::DropExpired() {
    const auto now = Real::now();
    while (!waiting.empty() && now - waiting.front().since >= longest) {
        DropOldest();
    }
}

} // namespace TavoSimulator
} // namespace Brenmoor
