#pragma once

#include <MirrinFramework/Logger.h>
#include <MirrinFramework/TempFile.h>
#include <TavoRemotingLib/Export.h>

#include <cstddef>
#include <curl/curl.h>
#include <iosfwd>
#include <stdexcept>
#include <string>
#include <sys/select.h>
#include <sys/time.h>
#include <vector>

namespace Brenmoor {
namespace TavoRemotingLib {

/// One HTTP exchange per object, performed whole in its constructor: when the constructor returns,
/// the reply is in the object; when it throws, nothing is left behind. The environment's
/// http_proxy, all_proxy, no_proxy and their like are honoured, and TMPDIR by uploads.
///
/// An exchange blocks its thread and belongs to it. Distinct exchanges share nothing and may run
/// on distinct threads at once. Before the first thread starts, a host must call
/// curl_global_init() itself where libcurl is older than 7.84 or was built without a thread-safe
/// global initialisation.
namespace CurlUtils {

/// A call of libcurl's easy interface failed; `code` is what it returned.
class TAVO_EXPORT CurlEasyException : public std::runtime_error {
public:
    /// `message` is for what().
    CurlEasyException(CURLcode code, const std::string& message);
    ~CurlEasyException() override;

    CURLcode code; ///< what the call returned
};

/// libcurl refused a part of an upload's form; `code` is what curl_formadd() returned.
class TAVO_EXPORT CurlFormException : public std::runtime_error {
public:
    /// `message` is for what().
    CurlFormException(CURLFORMcode code, const std::string& message);
    ~CurlFormException() override;

    CURLFORMcode code; ///< what curl_formadd() returned
};

/// A call of libcurl's multi interface failed; `code` is what it returned.
class TAVO_EXPORT CurlMultiException : public std::runtime_error {
public:
    /// `message` is for what().
    CurlMultiException(CURLMcode code, const std::string& message);
    ~CurlMultiException() override;

    CURLMcode code; ///< what the call returned
};

/// No connection had been made, and libcurl told no error of its own or was not asked for it.
class TAVO_EXPORT ConnectionFailure : public std::runtime_error {
public:
    explicit ConnectionFailure(const std::string& message); ///< for what()
    ~ConnectionFailure() override;
};

/// The connection was made, but not one header line came back.
class TAVO_EXPORT ServerDidNotRespond : public std::runtime_error {
public:
    explicit ServerDidNotRespond(const std::string& message); ///< for what()
    ~ServerDidNotRespond() override;
};

/// Returns when `code` is 0, and otherwise throws a CurlEasyException. `label` names the libcurl
/// call; the message is label, " returned ", the code, " (", libcurl's text, ")".
TAVO_EXPORT void ThrowEasy(CURLcode code, const std::string& label);
/// The same with a CurlMultiException.
TAVO_EXPORT void ThrowMulti(CURLMcode code, const std::string& label);
/// The same with a CurlFormException, whose message is "curl_formadd() returned " and the code.
TAVO_EXPORT void ThrowFormAddError(CURLFORMcode code);

/// What every exchange has: the reply as it arrived, and the libcurl handles, which are released
/// with the object. An object stays where it was made, since libcurl keeps its address.
class TAVO_EXPORT CurlOperationBase {
public:
    /// Keeps a copy of `requestUrl`; makes no handle and no connection.
    explicit CurlOperationBase(const std::string& requestUrl);
    CurlOperationBase(const CurlOperationBase&) = delete;
    CurlOperationBase& operator=(const CurlOperationBase&) = delete;
    virtual ~CurlOperationBase();

    /// Every header line in the order of arrival, line end kept, status line first. A reply with
    /// interim blocks (100 Continue) or chunked trailers has all their lines here.
    std::vector<std::string> headers;
    /// The reply's body, held in memory whole; any byte values.
    std::string body;

protected:
    /// Makes the easy handle, the multi handle too when `useMulti`, and installs the callbacks.
    /// Throws std::runtime_error when a handle cannot be made.
    void InitCurl(bool useMulti);

    /// Hands `value` to libcurl with exactly its type; throws CurlEasyException when refused.
    template <typename T>
    void SetOpt(CURLoption option, T value) {
        const CURLcode code = curl_easy_setopt(curl, option, value);
        if (code != CURLE_OK) {
            ThrowEasy(code, "curl_easy_setopt");
        }
    }

    /// libcurl's callback for a piece of the body. `userData` is the address of a `self`. Returns
    /// the number of bytes kept, or 0 when keeping them failed, which makes libcurl end the
    /// transfer with code 23: an exception must not travel through its C code.
    static std::size_t WriteDataFunc(char* data, std::size_t size, std::size_t count,
                                     void* userData) noexcept;
    /// The same for a header line.
    static std::size_t WriteHeaderFunc(void* data, std::size_t size, std::size_t count,
                                       void* userData) noexcept;
    /// Appends to `body` for WriteDataFunc().
    std::size_t WriteData(char* data, std::size_t size, std::size_t count) noexcept;
    /// Appends to `headers` for WriteHeaderFunc().
    std::size_t WriteHeader(void* data, std::size_t size, std::size_t count) noexcept;

    /// Releases the handles; safe to call again.
    void cleanup() noexcept;

    /// @cond Steps that the library's own transfers share; not for classes outside of it.
    TAVO_LOCAL void SetUploadOptions(curl_httppost* form, curl_slist* headerList, bool verbose,
                                     long timeoutSeconds);
    TAVO_LOCAL void Perform();
    TAVO_LOCAL void ThrowUnlessConnected();
    TAVO_LOCAL void ThrowUnlessAnswered() const;
    TAVO_LOCAL void LogReply(MirrinFramework::Logger& logger) const;
    /// @endcond

    CURL* curl;              ///< null before InitCurl() and behind cleanup()
    CURLM* multi;            ///< likewise, and without the multi interface
    std::string url;         ///< what is asked for
    CurlOperationBase* self; ///< this object, for the callbacks
};

/// One HTTP GET.
class TAVO_EXPORT HttpGet : public CurlOperationBase {
public:
    /// Gets `requestUrl`, a complete URL, and blocks until the reply is there.
    ///
    /// The connection may take 10 seconds, the whole exchange `limitSeconds` + 1 (0 to 2147482;
    /// libcurl refuses other values). `logger` gets the request line always and the reply at
    /// level 8; it is not kept. `trace` shows libcurl's own trace on standard error.
    ///
    /// Throws CurlEasyException (no connection, time-out, broken reply), ConnectionFailure,
    /// ServerDidNotRespond, or std::runtime_error when libcurl gives no handle. The status of the
    /// reply is not looked at: a 404 is a reply like any other.
    HttpGet(const std::string& requestUrl, MirrinFramework::Logger& logger, bool trace,
            long limitSeconds);
    ~HttpGet() override;

    /// Frees the connection now instead of with the object; `headers` and `body` stay.
    void Close();

    /// Writes the reply, numbered line by line, to `out`.
    void DebugOut(std::ostream& out) const;

protected:
    /// @cond For the library's own client: takes the address over instead of copying it.
    TAVO_LOCAL HttpGet(MirrinFramework::Logger& logger, bool trace, long limitSeconds,
                       std::string&& requestUrl);
    /// @endcond

    bool verbose;        ///< whether libcurl's trace is shown
    long timeoutSeconds; ///< the exchange's limit as given
};

/// A text turned into a file, and the three parts of an upload's form.
///
/// The file is removed when the object is destroyed. It must outlive the transfer, which reads it.
class TAVO_EXPORT FormAddFileCopyFromString : public MirrinFramework::TempFile {
public:
    /// Adds the parts "file" (the file's content), "filename" (its path as text) and "submit" to
    /// the form between `first` and `last`, which the caller frees with curl_formfree().
    ///
    /// The file is the path that `content` holds when `contentIsFileName`, otherwise a temporary
    /// one with the bytes of `content`. A path ends at its first zero byte. `name` is not used.
    /// Throws CurlFormException, or std::system_error when the temporary file, which is made in
    /// any case, cannot be created or written; parts added before stay in the form.
    FormAddFileCopyFromString(curl_httppost*& first, curl_httppost*& last, const std::string& name,
                              const std::string& content, bool contentIsFileName);

private:
    friend class PostFile;
    friend class PostFile2;

    TAVO_LOCAL FormAddFileCopyFromString(curl_httppost*& first, curl_httppost*& last,
                                         const char* content, std::size_t size,
                                         bool contentIsFileName);
};

/// A multipart upload through libcurl's multi interface; it logs nothing.
class TAVO_EXPORT PostFile : public CurlOperationBase {
public:
    // Inline, because the size of a timeval is the host's choice on a 32-bit target.

    /// A set of FD_SETSIZE (1024) descriptors, empty when made.
    class MyFdSet : public fd_set {
    public:
        MyFdSet() : fd_set() {
            FD_ZERO(this);
        }

        /// Whether any descriptor is in it.
        bool HasBits() const {
            for (int descriptor = 0; descriptor < FD_SETSIZE; ++descriptor) {
                if (FD_ISSET(descriptor, this)) {
                    return true;
                }
            }
            return false;
        }
    };

    /// A waiting time, 1 microsecond when made.
    class MyTimeval : public timeval {
    public:
        MyTimeval() : timeval() {
            Reset(-1);
        }

        /// Sets the time; a negative one means 1 microsecond, so that no wait is endless.
        void Reset(long milliseconds) {
            tv_sec = 0;
            tv_usec = 1;
            if (milliseconds >= 0) {
                tv_sec = milliseconds / 1000;
                tv_usec = (milliseconds % 1000) * 1000;
            }
        }
    };

    /// As PostFile2, but without a log, and without asking for the transfer's own result: one that
    /// broke off after the connection and the first header line counts as done.
    ///
    /// A failed transfer is a ConnectionFailure when there was no connection (also for an address
    /// that is no URL), else a ServerDidNotRespond when there was no header line (also for a
    /// time-out and a file that cannot be read). Throws CurlMultiException when a call of the
    /// multi interface itself fails, CurlEasyException for a limit that libcurl refuses, and
    /// std::runtime_error when waiting fails, which a signal with a handler is enough to cause.
    /// Descriptors of 1024 and above are not waited for.
    PostFile(const std::string& requestUrl, const std::string& name, const std::string& content,
             bool contentIsFileName, bool verbose, long timeoutSeconds);
    ~PostFile() override;

protected:
    curl_httppost* formPost; ///< the form's first part
    curl_httppost* formLast; ///< its last part
    curl_slist* headerList;  ///< header lines of the request's own

private:
    TAVO_LOCAL explicit PostFile(const std::string& requestUrl);
    TAVO_LOCAL void Wait();
};

/// A multipart upload: one HTTP POST with the parts "file", "filename" and "submit".
class TAVO_EXPORT PostFile2 : public CurlOperationBase {
public:
    /// Posts `content`, or the file whose path it is when `contentIsFileName`, and blocks until
    /// the reply is there. Content that is not a file name travels with one zero byte appended.
    ///
    /// Limits as for HttpGet. `logger` gets the request and a dump of the content at level 7 (the
    /// text of `name` stands for a file's content) and the reply at level 8; it is not kept.
    ///
    /// Throws what HttpGet throws, also for a file that cannot be read; CurlFormException;
    /// std::system_error when the temporary file, which is made in any case, cannot be created or
    /// written; and std::bad_alloc. A directory is sent as an empty file, and the path "-" means
    /// standard input, as libcurl has it.
    PostFile2(const std::string& requestUrl, const std::string& name, const std::string& content,
              MirrinFramework::Logger& logger, bool contentIsFileName, bool verbose,
              long timeoutSeconds);
    ~PostFile2() override;

protected:
    curl_httppost* formPost; ///< the form's first part
    curl_httppost* formLast; ///< its last part
    curl_slist* headerList;  ///< header lines of the request's own

private:
    TAVO_LOCAL explicit PostFile2(const std::string& requestUrl);
};

} // namespace CurlUtils
} // namespace TavoRemotingLib
} // namespace Brenmoor
