#include "support/Wire.h"

#include "page/Page.h"
#include "page/PageFiles.h"

namespace Brenmoor {
namespace TavoSimulator {
namespace Testing {

namespace {

using Page = ServerTest;

const PageFile& File(const std::string& name) {
    for (const PageFile& file : PageFiles()) {
        if (file.name == name) {
            return file;
        }
    }
    throw std::out_of_range(name);
}

std::string Headers(const std::string& reply) {
    return reply.substr(0, reply.find("\r\n\r\n") + 2);
}

const char policy[] = "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; "
                      "connect-src 'self'; base-uri 'none'; form-action 'none'; "
                      "frame-ancestors 'none'";

TEST_F(Page, EveryFileIsServedAsItLiesInTheSourceTree) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(PAGE_FILES)) {
        const std::string name = entry.path().filename();
        EXPECT_EQ(BodyOf(Get("/page/" + name)), ReadFile(entry.path())) << name;
        ++count;
    }
    EXPECT_EQ(count, PageFiles().size());
    EXPECT_EQ(BodyOf(Get("/")), ReadFile(PAGE_FILES "/index.html"));
    EXPECT_EQ(BodyOf(Get("/?anything")), ReadFile(PAGE_FILES "/index.html"));
}

TEST_F(Page, HasItsTypeTagAndPolicy) {
    EXPECT_EQ(Headers(Get("/page/base.css")), "HTTP/1.1 200 OK\r\n"
                                              "Connection: Close\r\n"
                                              "Cache-Control: no-cache\r\n"
                                              "ETag: " +
                                                  File("base.css").tag +
                                                  "\r\n"
                                                  "Content-Security-Policy: " +
                                                  policy +
                                                  "\r\n"
                                                  "X-Content-Type-Options: nosniff\r\n"
                                                  "Referrer-Policy: no-referrer\r\n"
                                                  "Content-Type: text/css; charset=utf-8\r\n"
                                                  "Content-Length: " +
                                                  std::to_string(File("base.css").bytes.size()) +
                                                  "\r\n");
    EXPECT_EQ(File("index.html").type, "text/html; charset=utf-8");
    EXPECT_EQ(File("main.js").type, "text/javascript; charset=utf-8");
    EXPECT_EQ(File("icon.svg").type, "image/svg+xml");
}

TEST_F(Page, ABrowserThatHasAFileIsNotSentItAgain) {
    const auto get = [&](const std::string& tag) {
        return Exchange(server.Port(), "GET /page/main.js HTTP/1.1\r\nHost: localhost\r\n"
                                       "If-None-Match: " +
                                           tag + "\r\nConnection: close\r\n\r\n");
    };
    const std::string unchanged = get(File("main.js").tag);
    EXPECT_EQ(StatusLine(unchanged), "HTTP/1.1 304 Not Modified");
    EXPECT_EQ(BodyOf(unchanged), "");
    EXPECT_EQ(StatusLine(get(File("base.css").tag)), "HTTP/1.1 200 OK");
    EXPECT_EQ(File("main.js").tag.size(), 18U);
}

TEST_F(Page, HasNoOtherFilesAndTakesNoOtherMethod) {
    for (const char* const target : {"/page/", "/page/nothing", "/page/../main.js", "/page/%2e"}) {
        EXPECT_EQ(Get(target),
                  ReplyText("404 Not Found", "text/plain", "The page has no such file\n"))
            << target;
    }
    EXPECT_EQ(StatusLine(Post("/", "{}")), "HTTP/1.1 405 Method Not Allowed");
    EXPECT_EQ(StatusLine(Get("/pages")), "HTTP/1.1 404 Not Found");
}

TEST_F(Page, IsNoPartOfTheTraffic) {
    Get("/");
    Get("/?anything");
    Get("/page/nothing");
    EXPECT_EQ(JsonText(ParsedJson(BodyOf(Get("/sim/v1/traffic")))["exchanges"]), "[]");
}

TEST_F(Page, AnotherSitesPageGetsNothing) {
    EXPECT_EQ(StatusLine(Exchange(server.Port(), "GET / HTTP/1.1\r\nHost: rebound.example\r\n"
                                                 "Connection: close\r\n\r\n")),
              "HTTP/1.1 403 Forbidden");
}

TEST_F(Page, AnotherSiteMayLinkToIt) {
    EXPECT_EQ(StatusLine(Exchange(server.Port(), "GET / HTTP/1.1\r\nHost: localhost\r\n"
                                                 "Sec-Fetch-Site: cross-site\r\n"
                                                 "Connection: close\r\n\r\n")),
              "HTTP/1.1 200 OK");
}

TEST(PageAbsent, HeadlessServersHaveNoPage) {
    const TempFolder folder;
    Settings settings = SettingsIn(folder.path + "/data");
    settings.page = false;
    World world(settings);
    const Server server(world, "127.0.0.1", 0, nullptr);
    for (const char* const target : {"/", "/page/main.js"}) {
        EXPECT_EQ(Exchange(server.Port(), GetText(target)),
                  ReplyText("404 Not Found", "text/plain",
                            "The page is not served, as --headless asks\n"))
            << target;
    }
    EXPECT_EQ(StatusLine(Exchange(server.Port(), GetText("/sim/v1/state"))), "HTTP/1.1 200 OK");
}

} // namespace

} // namespace Testing
} // namespace TavoSimulator
} // namespace Brenmoor
