#include "registration/StyledText.h"

namespace Brenmoor {
namespace TavoRemotingLib {

StyledText::StyledText() : writer(Json::StreamWriterBuilder().newStreamWriter()) {}

std::string StyledText::Of(const Json::Value& value) {
    out.str(std::string());
    writer->write(value, &out);
    out << '\n';
    return out.str();
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
