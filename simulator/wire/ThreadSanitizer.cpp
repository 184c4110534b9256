// Linked into programs that are built with the thread sanitizer only.

// The Poco library is not built with the sanitizer, which therefore does not see the atomic counter
// that orders a connection's last use of its stop notice before the notice's destruction.
// The sanitizer's own name for it. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();

extern "C" const char* __tsan_default_suppressions() {
    return "race:Poco::Delegate<Poco::Net::HTTPServerConnection\n"
           "race:Poco::Net::TCPServer::run\n";
}
// NOLINTEND(bugprone-reserved-identifier)
