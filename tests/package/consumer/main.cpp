#include <TavoRemotingLib/CurlUtils.h>
#include <TavoRemotingLib/HalcyrREST.h>

#include <iostream>

/// Succeeds when the library is there and its exceptions can be told apart across its border.
int main() {
    using namespace Brenmoor;
    MirrinFramework::Logger logger(std::cout, 0);
    TavoRemotingLib::HalcyrREST client("127.0.0.1:1", logger, false);
    try {
        client.TurnPayloadOff("P 1");
    } catch (const TavoRemotingLib::CurlUtils::CurlEasyException& e) {
        std::cout << "caught " << e.code << ": " << e.what() << std::endl;
        return e.code == CURLE_COULDNT_CONNECT ? 0 : 1;
    }
    return 1;
}
