#include "registration/StyledText.h"

namespace Brenmoor {
namespace TavoRemotingLib {

namespace {

/// The usual settings, made on first use, since that takes as long as reading a command does. Never
/// destroyed: a host may poll until its very end.
const Json::StreamWriterBuilder& Settings() {
    static const auto* const settings = new Json::StreamWriterBuilder();
    return *settings;
}

} // namespace

StyledText::StyledText() : writer(Settings().newStreamWriter()) {}

std::string StyledText::Of(const Json::Value& value) {
    out.str(std::string());
    writer->write(value, &out);
    out << '\n';
    return out.str();
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
