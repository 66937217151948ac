#pragma once

#include "platform/Exceptions.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace Orvanta {

/// A server could not be asked, or its answer came not whole. The text is the reason.
class HttpException : public ZelmException {
public:
    using ZelmException::ZelmException;
};

/// What a server has answered.
struct HttpAnswer {
    int status = 0;
    std::string body;
};

/// Asks servers by HTTP and HTTPS, on connections that are kept. Any thread may use it. Redirections are answers: a
/// token goes to the server that it is meant for and no other. A wait ends when nothing has come for some seconds, and
/// when the process is asked to stop.
class HttpClient {
public:
    /// `token` goes with every request ("Authorization: Bearer"); empty: none does.
    /// \throws HttpException when the system's library for it is missing
    explicit HttpClient(const std::string& token);
    ~HttpClient();
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    /// \throws HttpException
    [[nodiscard]] HttpAnswer Get(const std::string& address);

    /// The status alone, which is that of Get. \throws HttpException
    [[nodiscard]] int Head(const std::string& address);

    /// Puts a body there. \throws HttpException
    [[nodiscard]] HttpAnswer Put(const std::string& address, std::string_view body);

private:
    struct Connections;
    std::unique_ptr<Connections> connections_;
};

/// No answer is longer: what says so is no server of ours.
inline constexpr std::size_t LongestHttpBody = std::size_t{256} << 20U;

} // namespace Orvanta
