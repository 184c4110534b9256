#pragma once

#include <MirrinFramework/ByteArray.h>

#include <string>

namespace Brenmoor {
namespace MirrinFramework {

inline ByteArray Bytes(const std::string& text) {
    return ByteArray(text.data(), text.size());
}

} // namespace MirrinFramework
} // namespace Brenmoor
