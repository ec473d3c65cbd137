// The way of a request: its head, its body, the answer, and what the client still had to say.
#include "cli/page/connection.h"

#include "cli/page/writer.h"
#include "cli/text.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <fmt/format.h>

#include <utility>

namespace cli::page {
namespace {

using std::chrono::seconds;

constexpr std::size_t kMostHead = 16384, kMostTarget = 8192;
// A request has to be there within that time, however it comes.
constexpr seconds kReadLimit(5), kAnswerLimit(60), kWriteLimit(30), kLingerLimit(1);

// What was sent isn't HTTP. A client that closes within a request hears no answer.
bool isOfProtocol(boost::beast::error_code error) {
    return error.category() == make_error_code(http::error::bad_method).category() &&
           error != http::error::end_of_stream && error != http::error::partial_message;
}

}  // namespace

Reply Refusal::reply() const {
    Writer writer;
    writer.object(
        [&] { writer.member("error", reason.empty() ? "there is nothing here" : cleanText(reason)); });
    return {status, std::make_shared<const std::string>(writer.take()), kJson, allow};
}

void refuse(http::status status, std::string reason, const char* allow) {
    throw Refusal{status, std::move(reason), allow};
}

Connection::Connection(Tcp::socket socket, Answerer& answerer, All& all)
    : m_place(all, this),
      m_answerer(answerer),
      m_stream(std::move(socket)),
      m_limit(m_stream.get_executor()),
      m_buffer(kMostHead + kMostBody) {
    m_parser.header_limit(kMostHead);
    m_parser.body_limit(kMostBody);
}

// A handler that goes on with `next`, or ends.
template <void (Connection::*next)()>
auto Connection::then() {
    return [self = shared_from_this()](Error error, std::size_t) {
        if (error)
            self->refuseUnread(error);
        else
            ((*self).*next)();
    };
}

void Connection::start() {
    m_stream.expires_after(kReadLimit);
    http::async_read_header(m_stream, m_buffer, m_parser, then<&Connection::takeHead>());
}

void Connection::takeHead() {
    const bool isLet = attempt([this] {
        if (request().target().size() > kMostTarget)
            refuse(http::status::uri_too_long, "the address is too long");
        m_answerer.check(request());
    });
    if (isLet) http::async_read(m_stream, m_buffer, m_parser, then<&Connection::takeRequest>());
}

void Connection::takeRequest() {
    m_state = State::waiting;
    attempt([this] { m_answerer.answer(*this); });
}

// True when there was no exception; otherwise that is the answer.
template <class Call>
bool Connection::attempt(Call&& call) {
    try {
        call();
        return true;
    } catch (const Refusal& refusal) {
        send(refusal.reply());
    } catch (const std::exception& error) {
        send(Refusal{http::status::internal_server_error, error.what()}.reply());
    }
    return false;
}

// Who doesn't speak the protocol is told; of a client that is slow or gone there is nothing to tell.
void Connection::refuseUnread(Error error) {
    if (error == http::error::body_limit)
        send(Refusal{http::status::payload_too_large, fmt::format("expected at most {} bytes", kMostBody)}
                 .reply());
    else if (error == http::error::header_limit)
        send(Refusal{http::status::request_header_fields_too_large, "the head is too long"}.reply());
    else if (isOfProtocol(error))
        send(Refusal{http::status::bad_request, "the request can't be understood"}.reply());
}

void Connection::wait() {
    m_limit.expires_after(kAnswerLimit);
    m_limit.async_wait([self = shared_from_this()](Error error) {
        if (!error)
            self->send(Refusal{http::status::service_unavailable, "the program is busy: try again"}.reply());
    });
}

void Connection::send(Reply reply) {
    if (m_state >= State::answering) return;
    m_state = State::answering;
    m_limit.cancel();
    m_text = std::move(reply.text);
    m_response.base() = m_answerer.head();
    m_response.result(reply.status);
    m_response.set(http::field::content_type, reply.type);
    if (reply.allow) m_response.set(http::field::allow, reply.allow);
    m_response.keep_alive(false);
    m_response.content_length(m_text->size());
    if (request().method() != http::verb::head) m_response.body() = {m_text->data(), m_text->size()};
    m_stream.expires_after(kWriteLimit);
    http::async_write(m_stream, m_response, [self = shared_from_this()](Error error, std::size_t) {
        if (!error) self->linger();
    });
}

// Closed with something unread, the socket would take the answer back from a client that hasn't read it.
void Connection::linger() {
    m_state = State::lingering;
    Error ignored;
    m_stream.socket().shutdown(Tcp::socket::shutdown_send, ignored);
    m_stream.expires_after(kLingerLimit);
    m_lingersUntil = std::chrono::steady_clock::now() + kLingerLimit;
    drain();
}

// The stream's own limit is for a client that says nothing: what comes without a pause always comes before.
void Connection::drain() {
    m_buffer.clear();
    const auto goOn = [self = shared_from_this()](Error error, std::size_t) {
        if (!error && std::chrono::steady_clock::now() < self->m_lingersUntil) self->drain();
    };
    m_stream.async_read_some(m_buffer.prepare(kMostHead), goOn);
}

Tcp::socket Connection::release() {
    m_state = State::answering;
    return m_stream.release_socket();
}

void Connection::stop() {
    if (m_state == State::reading || m_state == State::lingering) m_stream.close();
}

}  // namespace cli::page
