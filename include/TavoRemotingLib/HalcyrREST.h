#pragma once

#include <MirrinFramework/ByteArray.h>
#include <MirrinFramework/Logger.h>
#include <TavoRemotingLib/Export.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {

/// The payload's client of the vehicle's payload server.
///
/// Each operation that sends something is one blocking HTTP exchange on the calling thread. It
/// returns when the server has answered with a status line ending in " OK", and throws otherwise;
/// then nothing is kept, retried or left behind, and the client is as it was. Whether the server
/// has done what was asked is unknown when the failure came behind the request. Unless an operation
/// says otherwise, making the connection may take 10 seconds and the whole exchange 301; it cannot
/// be cancelled. The reply is held in memory whole, and a text to upload passes through a temporary
/// file in TMPDIR or /tmp. docs/errors.md lists every message.
///
/// Every such operation may throw
///   - CurlUtils::CurlEasyException: no connection, time-out, broken reply, an address that is no
///   URL
///   - CurlUtils::ConnectionFailure, CurlUtils::ServerDidNotRespond: no usable exchange took place
///   - std::runtime_error: the status line is missing or does not end in " OK"
///   - std::bad_alloc
/// and those that upload also CurlUtils::CurlFormException, and std::system_error when the
/// temporary file that every upload makes cannot be created or written. All but std::bad_alloc
/// derive from std::runtime_error.
///
/// JSON is read by jsoncpp. Nesting of more than 1000 levels is its own Json::RuntimeError, a
/// std::exception that is no std::runtime_error; and while the process's global C++ locale has a
/// decimal point other than ".", jsoncpp refuses numbers with a fraction or drops the fraction.
///
/// Strings are bytes of any value, taken as they are, and of any length. A `long` has 32 bits on
/// the target. Several threads may use one client at once: it never changes, and each call has its
/// own connection; a record belongs to one thread at a time. The logger must outlive the client.
class HalcyrREST {
public:
    /// The reply to a poll had no body.
    class TAVO_EXPORT EmptyCommandException : public std::runtime_error {
    public:
        explicit EmptyCommandException(const std::string& message); ///< for what()
        ~EmptyCommandException() override;
    };

    /// A step of reading JSON failed with this very error, and was told with its context.
    class TAVO_EXPORT JSONParsingError : public std::runtime_error {
    public:
        explicit JSONParsingError(const std::string& message); ///< for what()
        ~JSONParsingError() override;
    };

    /// A command of a poll's reply lacks a member or its response tag.
    class TAVO_EXPORT RemoteCommandFormatError : public std::runtime_error {
    public:
        explicit RemoteCommandFormatError(const std::string& message); ///< for what()
        ~RemoteCommandFormatError() override;
    };

    /// The server held a poll for its whole time and had nothing to report.
    class TAVO_EXPORT ServerTimeoutOnRequest : public std::runtime_error {
    public:
        explicit ServerTimeoutOnRequest(const std::string& message); ///< for what()
        ~ServerTimeoutOnRequest() override;
    };

    /// One command addressed to the payload.
    class RemoteCommand {
    public:
        RemoteCommand() = default;
        /// Reads one command object with the string members "id" and "command", braces optional.
        /// Throws RemoteCommandFormatError, or std::runtime_error for a text that is not JSON.
        TAVO_EXPORT explicit RemoteCommand(const std::string& json);

        std::string tag;     ///< quote it in RespondToCommand()
        std::string command; ///< all that follows the tag, untrimmed
        std::string id;      ///< the command's identifier
        bool isFile = false; ///< the text began with "file:", in any case of letters
    };

    /// The vehicle's position.
    class GPSInfo {
    public:
        GPSInfo() = default;
        /// Reads one position object, braces optional. A missing or non-numeric member is told by
        /// `hasError`; throws only for a text that is not JSON, std::runtime_error as a rule.
        TAVO_EXPORT explicit GPSInfo(const std::string& json);

        bool received = false; ///< the server sent a position, usable or not
        bool hasError = false; ///< it is not usable; `errorText` says why
        std::string errorText; ///< the server's words, or the library's for a missing number
        double latitude = std::numeric_limits<double>::quiet_NaN();  ///< degrees; NaN if not sent
        double longitude = std::numeric_limits<double>::quiet_NaN(); ///< degrees; NaN if not sent
        /// The time of the fix, in the server's unit; NaN if not sent.
        double timeFix = std::numeric_limits<double>::quiet_NaN();
    };

    /// Whether the payload is to shut down.
    class ShutdownInfo {
    public:
        ShutdownInfo() = default;
        /// Ignores the text: only Poll() says whether a shutdown is requested.
        TAVO_EXPORT explicit ShutdownInfo(const std::string& text);

        bool requested = false; ///< the payload is to shut down now
    };

    /// The payload's interface, the first entry of the list "interface" of a registration document.
    ///
    /// A document is JSON text, braces optional. All functions here and in PRHardware throw
    /// std::runtime_error with the JSON library's message for a text that is not JSON.
    class PRInterface {
    public:
        PRInterface() = default;

        /// Replaces the record by one entry's members; those missing or not strings are empty. A
        /// text that is not JSON leaves the record as it was.
        TAVO_EXPORT void InitFromJSON(const std::string& entry);
        /// Replaces the record by the document's first entry. Without one the record stays as it
        /// was. Throws std::runtime_error when that entry is not an object.
        TAVO_EXPORT void InitFromRegJSON(const std::string& document);
        /// The document with its list "interface" replaced by this record, or removed when both
        /// members are empty.
        TAVO_EXPORT std::string UpdateJSON(const std::string& document) const;

        std::string partNumber; ///< "pn"
        std::string swVer;      ///< "swver", of the interface's software
    };

    /// One piece of hardware, an entry of the list "hardware" of a registration document.
    class PRHardware {
    public:
        PRHardware() = default;

        /// Replaces the record by one entry's members; those missing or of another type are
        /// empty. A text that is not JSON leaves a blank record.
        TAVO_EXPORT void InitFromJSON(const std::string& entry);
        /// Replaces the list by the document's entries; without any it becomes empty. For a text
        /// that is not JSON the list stays as it was; for an entry that is not an object the call
        /// throws std::runtime_error and the list holds the entries before it.
        TAVO_EXPORT static void InitFromRegJSON(const std::string& document,
                                                std::vector<PRHardware>& list);
        /// The document with its list "hardware" replaced by the records that are not blank. An
        /// empty list removes the member; a list of blank records only sets it to null.
        TAVO_EXPORT static std::string UpdateJSON(const std::string& document,
                                                  const std::vector<PRHardware>& list);

        std::string manufacturer; ///< "manufacturer"
        std::string model;        ///< "model"
        std::string partNumber;   ///< "pn"
        std::string serialNumber; ///< "serial"
        std::string swVer;        ///< "swver"
        std::string tty;          ///< "tty", the serial device
        bool hasPower = false;    ///< whether `power` is meant; it is not written otherwise
        int power = 0;            ///< "power", copied through; its unit is the server's
        std::string connector;    ///< "connector" of the vehicle's power-switch unit
    };

    /// The members of the registration document that the library reads and writes.
    class PayloadRegistration {
    public:
        PayloadRegistration() = default;
        /// Reads the registration file (JSON, braces optional, at most 32768 bytes).
        ///
        /// Throws std::invalid_argument for a larger file, std::length_error for one that cannot
        /// be opened, std::ios_base::failure for one that cannot be read, std::runtime_error for
        /// one that is not JSON, each also told on standard output without a line end; and the
        /// JSON library's own std::exception for a member that cannot be converted.
        TAVO_EXPORT explicit PayloadRegistration(const std::string& fileName);

        /// The file's document with the six members written over it, all others carried through.
        /// A file that cannot be read is told on standard output, and the document then has the
        /// six members alone.
        TAVO_EXPORT std::string ToJSON(const std::string& fileName) const;

        std::string tag;                    ///< "tag"
        std::string description;            ///< "description", for people
        std::uint16_t boardAddress = 0;     ///< "boardAddress"; a greater one is read modulo 65536
        std::uint16_t reportingAddress = 0; ///< "reportingAddress"; likewise
        std::string corbaName;              ///< "corbaName"
        std::string hostID;                 ///< "hostID"
    };

    /// `server` is a host name or address, with ":" and a port if wanted, and goes into request
    /// addresses as it is. `verbose` shows libcurl's own trace on standard error. Nothing is sent.
    TAVO_EXPORT HalcyrREST(const std::string& server, MirrinFramework::Logger& logger,
                           bool verbose);

    /// The value escaped for a query string: every byte but letters, digits and - _ . ~ as a
    /// percent sign and two capital hexadecimal digits. What a letter is, is the C locale's say.
    TAVO_EXPORT static std::string EncodeURL(const std::string& value);

    /// Asks the server to switch the payload off.
    TAVO_EXPORT void TurnPayloadOff(const std::string& id);

    /// Switches the named power switch. Throws std::runtime_error also when the reply's body is
    /// not "OK" (white space around it is allowed).
    TAVO_EXPORT void SetPayloadKELDSwitch(const std::string& id, const std::string& switchName,
                                          bool on);
    /// The same without naming a switch.
    TAVO_EXPORT void SetPayloadKELDSwitch(const std::string& id, bool on);
    /// A switch name without on or off would otherwise be taken for true.
    template <typename T>
    void SetPayloadKELDSwitch(const std::string& id, const T* switchName) = delete;

    /// Has the server run a script and returns the reply's body as received. A script that takes
    /// longer than an exchange may is a CurlUtils::CurlEasyException with code 28.
    TAVO_EXPORT std::string RunScript(const std::string& id, const std::string& command);

    /// Tells the server that the payload's registration is complete.
    TAVO_EXPORT void RegistrationComplete(const std::string& id);

    /// Asks the server to postpone the payload's shutdown; the unit of `delay` is the server's.
    /// Messages about the status line name this operation "Poll".
    TAVO_EXPORT void DelayShutdown(const std::string& id, long delay);

    /// Uploads a JAR file for installation. One that is missing or cannot be read is a
    /// CurlUtils::CurlEasyException with code 26.
    TAVO_EXPORT void InstallJar(const std::string& id, const std::string& jarFile);

    /// Answers a command received from Poll(). `complete` false says that the command is
    /// not complete yet, `succeeded` false that it failed. `id` goes into the request address
    /// unescaped.
    TAVO_EXPORT void RespondToCommand(const std::string& id, const std::string& tag,
                                      const std::string& response, bool complete, bool succeeded);

    /// Asks for commands, position and shutdown in one request that the server may hold open.
    ///
    /// A null pointer means that this result is not asked for. `timeoutMs` is how long the server
    /// may hold the request, in milliseconds; a negative one means an hour. The call may block for
    /// that time, rounded up to whole seconds, and 61 seconds more. `maxCommands` tells the server
    /// how many commands to return at most; 0 or less asks for none.
    ///
    /// Throws, besides what every operation may throw (CurlUtils::CurlEasyException with code 43
    /// for a time above 2147422000 ms, which libcurl refuses),
    ///   - std::invalid_argument: nothing was asked for; nothing was sent or changed
    ///   - ServerTimeoutOnRequest: nothing happened in that time; the usual reason to poll again
    ///   - EmptyCommandException: the reply had no body
    ///   - RemoteCommandFormatError: a command is malformed
    ///   - std::runtime_error: not JSON, an error told by the server, a command that is not an
    ///     object, or nothing in the reply that was asked for
    ///   - the JSON library's own std::exception for members of a wrong type or deep nesting
    /// After all but the first, `commands` holds the commands read before the failure (none, as a
    /// rule), and the flags of `gps` and `shutdown` are cleared unless already filled in.
    ///
    /// `ids` is only read.
    TAVO_EXPORT void Poll(std::vector<std::string>& ids, std::vector<RemoteCommand>* commands,
                          GPSInfo* gps, ShutdownInfo* shutdown, long timeoutMs, long maxCommands);

    /// Sends a packet of any bytes for relay to shore. It travels as ASCII text with escapes.
    TAVO_EXPORT void SendRawPacketToShore(const std::string& id,
                                          const MirrinFramework::ByteArray& packet);
    /// The same with the bytes of a string.
    TAVO_EXPORT void SendRawPacketToShore(const std::string& id, const std::string& packet);

    /// Sends a file for relay to shore, under the name `remote` unless that is empty. Throws
    /// std::invalid_argument, before anything is sent, when the file does not exist, and
    /// boost::filesystem::filesystem_error when that cannot be found out.
    TAVO_EXPORT void SendFileToShoreLegacy(const std::string& id, const std::string& fileName,
                                           const std::string& remote);
    /// The same through the current operation; a file that is missing or cannot be read is a
    /// CurlUtils::CurlEasyException with code 26. A folder is sent as an empty file, "-" is
    /// standard input, and a FIFO blocks until it has a writer.
    TAVO_EXPORT void SendFileToShore(const std::string& id, const std::string& fileName,
                                     const std::string& remote);

    /// The document that RegisterPayload() sends, with its outer braces; nothing is sent. See
    /// PayloadRegistration::ToJSON().
    TAVO_EXPORT std::string GetPayloadRegistrationContent(const std::string& fileName,
                                                          const PayloadRegistration& registration);
    /// Registers the payload with the document made of its file and its record. `id` and
    /// `hostId` may be empty and are then not sent. A file that cannot be read is no failure.
    TAVO_EXPORT void RegisterPayload(const std::string& id, const std::string& fileName,
                                     const PayloadRegistration& registration,
                                     const std::string& hostId);
    /// The same with a ready document. White space around it and its outer braces are removed, the
    /// braces only if both are there; it is not checked otherwise.
    TAVO_EXPORT void RegisterPayloadWithContent(const std::string& id, const std::string& content,
                                                const std::string& hostId);

private:
    std::string Address(const char* operation) const;
    std::string Address(const char* operation, const std::string& id) const;
    std::string Get(std::string&& address, const std::string& label) const;
    std::string Get(std::string&& address, const std::string& label, long timeoutSeconds) const;
    void Upload(const std::string& address, const std::string& content, bool contentIsFileName,
                const std::string& label) const;
    void SendFile(const char* operation, const std::string& id, const std::string& fileName,
                  const std::string& remote, const std::string& label) const;
    void Switch(const std::string& address) const;

    const std::string server;
    const bool verbose;
    MirrinFramework::Logger& logger;
};

/// Returns when the first line of `headers` that begins with "HTTP" ends in " OK", white space
/// behind it aside; throws std::runtime_error otherwise. `label` names the operation in messages.
TAVO_EXPORT void ExpectOKHeaders(const std::vector<std::string>& headers, const std::string& label);

/// ExpectOKHeaders() for a finished transfer. Neither the status code nor later status lines count,
/// so a final reply behind an interim one fails.
template <typename Transfer>
void ExpectOK(const Transfer& transfer, const std::string& label) {
    ExpectOKHeaders(transfer.headers, label);
}

} // namespace TavoRemotingLib
} // namespace Brenmoor
