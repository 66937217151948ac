#include "platform/HttpClient.h"

#include "platform/StopFlag.h"
#include "platform/windows/WideText.h"

#include <windows.h>
#include <winhttp.h>

namespace Orvanta {

namespace {

constexpr int WaitMilliseconds = 5000; // for a connection, for the beginning of an answer, for its next piece

/// A handle of the library; closes itself.
class Handle {
public:
    explicit Handle(HINTERNET handle) : handle_(handle) {
        if (handle_ == nullptr) {
            ThrowLastError();
        }
    }

    ~Handle() { WinHttpCloseHandle(handle_); }

    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    [[nodiscard]] HINTERNET Get() const noexcept { return handle_; }

    [[noreturn]] static void ThrowLastError() {
        const DWORD error = GetLastError();
        throw HttpException("WinHTTP error " + std::to_string(error));
    }

private:
    HINTERNET handle_;
};

void Require(BOOL succeeded) {
    if (succeeded == FALSE) {
        Handle::ThrowLastError();
    }
}

/// The parts of an address that the library wants one by one.
struct Parts {
    explicit Parts(const std::string& address) : text(ToWide(address)) {
        URL_COMPONENTS components = {};
        components.dwStructSize = sizeof components;
        components.dwHostNameLength = static_cast<DWORD>(-1);
        components.dwUrlPathLength = static_cast<DWORD>(-1);
        Require(WinHttpCrackUrl(text.c_str(), 0, 0, &components));
        host.assign(components.lpszHostName, components.dwHostNameLength);
        path.assign(components.lpszUrlPath, components.dwUrlPathLength);
        port = components.nPort;
        isSecure = components.nScheme == INTERNET_SCHEME_HTTPS;
    }

    std::wstring text;
    std::wstring host;
    std::wstring path;
    INTERNET_PORT port = 0;
    bool isSecure = false;
};

std::string ReadBody(HINTERNET request) {
    std::string body;
    char block[65536];
    for (DWORD read = 1; read > 0;) {
        Require(WinHttpReadData(request, block, sizeof block, &read));
        body.append(block, read);
        if (body.size() > LongestHttpBody) {
            throw HttpException("the answer is too long");
        }
        if (ProcessStopFlag().IsSet()) {
            throw HttpException("stopped");
        }
    }
    return body;
}

DWORD NumberOf(HINTERNET request, DWORD header) {
    DWORD number = 0;
    DWORD size = sizeof number;
    const BOOL isThere = WinHttpQueryHeaders(request, header | WINHTTP_QUERY_FLAG_NUMBER, WINHTTP_HEADER_NAME_BY_INDEX,
                                             &number, &size, WINHTTP_NO_HEADER_INDEX);
    return isThere != FALSE ? number : 0;
}

} // namespace

// The library keeps connections by itself, one session for all threads.
struct HttpClient::Connections {
    explicit Connections(const std::string& token)
        : session(WinHttpOpen(L"orvanta-analyzer", WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, WINHTTP_NO_PROXY_NAME,
                              WINHTTP_NO_PROXY_BYPASS, 0)),
          headers(token.empty() ? std::wstring() : L"Authorization: Bearer " + ToWide(token)) {
        Require(
            WinHttpSetTimeouts(session.Get(), WaitMilliseconds, WaitMilliseconds, WaitMilliseconds, WaitMilliseconds));
        // Apart from the others it has a minute and a half.
        DWORD answer = WaitMilliseconds;
        Require(WinHttpSetOption(session.Get(), WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, &answer, sizeof answer));
    }

    HttpAnswer Ask(const wchar_t* method, const std::string& address, std::string_view body) const {
        const Parts parts(address);
        const Handle connection(WinHttpConnect(session.Get(), parts.host.c_str(), parts.port, 0));
        const Handle request(WinHttpOpenRequest(connection.Get(), method, parts.path.c_str(), nullptr,
                                                WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
                                                parts.isSecure ? WINHTTP_FLAG_SECURE : 0));
        DWORD never = WINHTTP_OPTION_REDIRECT_POLICY_NEVER;
        Require(WinHttpSetOption(request.Get(), WINHTTP_OPTION_REDIRECT_POLICY, &never, sizeof never));
        const auto size = static_cast<DWORD>(body.size());
        Require(WinHttpSendRequest(request.Get(), headers.empty() ? WINHTTP_NO_ADDITIONAL_HEADERS : headers.c_str(),
                                   headers.empty() ? 0 : static_cast<DWORD>(-1), const_cast<char*>(body.data()), size,
                                   size, 0));
        Require(WinHttpReceiveResponse(request.Get(), nullptr));
        HttpAnswer answer;
        answer.status = static_cast<int>(NumberOf(request.Get(), WINHTTP_QUERY_STATUS_CODE));
        answer.body = ReadBody(request.Get());
        const DWORD told = NumberOf(request.Get(), WINHTTP_QUERY_CONTENT_LENGTH);
        if (std::wstring_view(method) == L"GET" && told > answer.body.size()) {
            throw HttpException("the answer ends early");
        }
        return answer;
    }

    Handle session;
    std::wstring headers;
};

HttpClient::HttpClient(const std::string& token) : connections_(std::make_unique<Connections>(token)) {}

HttpClient::~HttpClient() = default;

HttpAnswer HttpClient::Get(const std::string& address) {
    return connections_->Ask(L"GET", address, {});
}

int HttpClient::Head(const std::string& address) {
    return connections_->Ask(L"HEAD", address, {}).status;
}

HttpAnswer HttpClient::Put(const std::string& address, std::string_view body) {
    return connections_->Ask(L"PUT", address, body);
}

} // namespace Orvanta
