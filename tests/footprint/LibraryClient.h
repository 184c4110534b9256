#pragma once

#include <TavoRemotingLib/HalcyrREST.h>

#include <ostream>
#include <streambuf>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Footprint {

/// Takes everything and keeps nothing.
class Discarded : private std::streambuf {
public:
    Discarded() : stream(this) {}

    std::ostream stream;

private:
    int_type overflow(int_type character) override {
        return traits_type::not_eof(character);
    }
    std::streamsize xsputn(const char*, std::streamsize count) override {
        return count;
    }
};

/// Has the library write all it can, uploads and replies too.
class SilentLogger : private Discarded, public MirrinFramework::Logger {
public:
    SilentLogger() : Logger(Discarded::stream, 8) {}
};

} // namespace Footprint
} // namespace TavoRemotingLib
} // namespace Brenmoor
