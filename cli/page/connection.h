// One request over a socket, and its answer: read within limits of size and time, answered once, closed.
#pragma once

#include "cli/page/listed.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/string_body.hpp>

#include <chrono>
#include <memory>
#include <string>

namespace cli::page {

namespace http = boost::beast::http;
using Tcp = boost::asio::ip::tcp;
using Request = http::request<http::string_body>;

inline constexpr auto kJson = "application/json";

struct Reply {
    http::status status = http::status::ok;
    std::shared_ptr<const std::string> text;
    const char* type = kJson;
    const char* allow = nullptr;  // the methods that there are, for one that isn't
};

// An answer other than what was asked for.
struct Refusal {
    http::status status = http::status::internal_server_error;
    std::string reason;  // empty: nothing is told
    const char* allow = nullptr;

    Reply reply() const;
};
[[noreturn]] void refuse(http::status status, std::string reason, const char* allow = nullptr);

class Connection;

// What connections want of their server, which outlives them. All of it runs on the one thread of both.
class Answerer {
public:
    virtual const http::response_header<>& head() const = 0;  // of every answer
    // Of a head, before a body is read. Throws Refusal.
    virtual void check(const Request& request) const = 0;
    // Leads to one `send` or `release`, now or later. Throws Refusal.
    virtual void answer(Connection& connection) = 0;

protected:
    ~Answerer() = default;
};

// Owned by what it waits for, its socket or its time limit: it ends with the last.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    static constexpr std::size_t kMostBody = 4096;  // bytes

    using All = Listed<Connection>::All;

    Connection(Tcp::socket socket, Answerer& answerer, All& all);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void start();
    const Request& request() const { return m_parser.get(); }
    // Only the first answer counts.
    void send(Reply reply);
    // For a `send` to come; after a minute the program is said to be busy.
    void wait();
    // The socket, for an answer of another kind.
    Tcp::socket release();
    // Closes it unless it is being answered.
    void stop();

private:
    using Error = boost::beast::error_code;
    enum class State { reading, waiting, answering, lingering };
    template <void (Connection::*next)()>
    auto then();
    template <class Call>
    bool attempt(Call&& call);
    void takeHead();
    void takeRequest();
    void refuseUnread(Error error);
    void linger();
    void drain();

    Listed<Connection> m_place;
    Answerer& m_answerer;
    boost::beast::tcp_stream m_stream;
    boost::asio::steady_timer m_limit;
    boost::beast::flat_buffer m_buffer;
    http::request_parser<http::string_body> m_parser;
    State m_state = State::reading;
    std::chrono::steady_clock::time_point m_lingersUntil;
    std::shared_ptr<const std::string> m_text;  // holds the body of what follows
    http::response<http::span_body<const char>> m_response;
};

}  // namespace cli::page
