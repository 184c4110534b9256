#include "CurlUtils/TransferTest.h"
#include "support/GlobalLocale.h"

#include <type_traits>
#include <typeinfo>

namespace Brenmoor {
namespace TavoRemotingLib {
namespace Testing {

namespace {

using namespace CurlUtils;

TEST(ThrowEasy, CodeZeroReturns) {
    EXPECT_NO_THROW(ThrowEasy(CURLE_OK, "label"));
}

TEST(ThrowMulti, CodeZeroReturns) {
    EXPECT_NO_THROW(ThrowMulti(CURLM_OK, "label"));
}

TEST(ThrowFormAddError, CodeZeroReturns) {
    EXPECT_NO_THROW(ThrowFormAddError(static_cast<CURLFORMcode>(0)));
}

TEST(ThrowEasy, CouldntConnectNamesTheCallTheCodeAndLibcurlsText) {
    const auto throwIt = [] {
        ThrowEasy(CURLE_COULDNT_CONNECT, "curl_easy_perform");
    };
    ExpectThrows<CurlEasyException>(
        throwIt,
        "curl_easy_perform returned 7 (" + std::string(curl_easy_strerror(CURLE_COULDNT_CONNECT)) +
            ")",
        [](const CurlEasyException& e) { EXPECT_EQ(e.code, CURLE_COULDNT_CONNECT); });
}

TEST(ThrowEasy, EveryCodeButZeroThrows) {
    for (int code = 1; code < CURL_LAST; ++code) {
        ExpectEasyError([&] { ThrowEasy(static_cast<CURLcode>(code), "any"); }, "any", code);
    }
}

TEST(ThrowMulti, EveryCodeButZeroThrows) {
    for (int code = 1; code < CURLM_LAST; ++code) {
        ExpectMultiError([&] { ThrowMulti(static_cast<CURLMcode>(code), "any"); }, "any", code);
    }
}

TEST(ThrowMulti, MinusOneIsAnErrorLikeAnyOther) {
    const auto throwIt = [] {
        ThrowMulti(CURLM_CALL_MULTI_PERFORM, "curl_multi_perform()");
    };
    ExpectThrows<CurlMultiException>(
        throwIt,
        "curl_multi_perform() returned -1 (" +
            std::string(curl_multi_strerror(CURLM_CALL_MULTI_PERFORM)) + ")",
        [](const CurlMultiException& e) { EXPECT_EQ(e.code, CURLM_CALL_MULTI_PERFORM); });
}

TEST(ThrowFormAddError, CodeTwoIsTheWholeRestOfTheMessage) {
    ExpectThrows<CurlFormException>(
        [] { ThrowFormAddError(static_cast<CURLFORMcode>(2)); }, "curl_formadd() returned 2",
        [](const CurlFormException& e) { EXPECT_EQ(static_cast<int>(e.code), 2); });
}

TEST(ThrowFormAddError, EveryCodeButZeroThrows) {
    for (int code = 1; code < 8; ++code) {
        ExpectFormError([&] { ThrowFormAddError(static_cast<CURLFORMcode>(code)); }, code);
    }
}

TEST(ThrowEasy, EmptyLabelAndLabelWithZeroByteAreTakenAsTheyAre) {
    const std::string text = curl_easy_strerror(CURLE_READ_ERROR);
    ExpectThrows<CurlEasyException>([] { ThrowEasy(CURLE_READ_ERROR, ""); },
                                    " returned 26 (" + text + ")");
    try {
        ThrowEasy(CURLE_READ_ERROR, std::string("a\0b", 3));
        ADD_FAILURE();
    } catch (const CurlEasyException& e) {
        // Behind the zero byte the message goes on, unseen through what().
        EXPECT_STREQ(e.what(), "a");
    }
}

TEST(ThrowEasy, DigitsDoNotFollowTheProcesssLocale) {
    const GlobalLocale grouping(new DigitGrouping);
    ExpectEasyError([] { ThrowEasy(CURLE_OPERATION_TIMEDOUT, "any"); }, "any", 28);
    ExpectMultiError([] { ThrowMulti(CURLM_RECURSIVE_API_CALL, "any"); }, "any",
                     CURLM_RECURSIVE_API_CALL);
}

/// Each exception class carries its message, and is a std::runtime_error that can be copied.
template <typename Exception>
void ExpectCarries(const Exception& made) {
    static_assert(std::is_base_of<std::runtime_error, Exception>::value, "");
    static_assert(std::has_virtual_destructor<Exception>::value, "");
    try {
        throw made;
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(typeid(e).name(), typeid(Exception).name());
        EXPECT_STREQ(e.what(), "message");
    }
}

TEST(TransferExceptions, CarryTheirMessageAndCode) {
    const CurlEasyException easy(CURLE_WRITE_ERROR, "message");
    const CurlFormException form(static_cast<CURLFORMcode>(3), "message");
    const CurlMultiException multi(CURLM_BAD_SOCKET, "message");
    ExpectCarries(easy);
    ExpectCarries(form);
    ExpectCarries(multi);
    ExpectCarries(ConnectionFailure("message"));
    ExpectCarries(ServerDidNotRespond("message"));
    EXPECT_EQ(easy.code, CURLE_WRITE_ERROR);
    EXPECT_EQ(static_cast<int>(form.code), 3);
    EXPECT_EQ(multi.code, CURLM_BAD_SOCKET);
}

TEST(TransferExceptions, AreNotOfOneAnothersKind) {
    EXPECT_FALSE((std::is_base_of<CurlEasyException, CurlMultiException>::value));
    EXPECT_FALSE((std::is_base_of<CurlEasyException, CurlFormException>::value));
    EXPECT_FALSE((std::is_base_of<ConnectionFailure, ServerDidNotRespond>::value));
    EXPECT_FALSE((std::is_base_of<ServerDidNotRespond, ConnectionFailure>::value));
}

} // namespace

} // namespace Testing
} // namespace TavoRemotingLib
} // namespace Brenmoor
