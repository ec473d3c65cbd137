#include "cli/page/event_stream.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <fmt/format.h>

#include <chrono>
#include <utility>

namespace cli::page {
namespace {

// A word now and then tells both sides that the other is there.
constexpr std::chrono::seconds kHeartbeat(15), kWriteLimit(10);
constexpr auto kHeartbeatText = ":\n\n";

using Error = boost::system::error_code;

}  // namespace

EventStream::EventStream(Socket socket, const Bulletin& bulletin, int version, All& all)
    : m_place(all, this),
      m_socket(std::move(socket)),
      m_bulletin(bulletin),
      m_version(version),
      m_timer(m_socket.get_executor()) {}

void EventStream::start(std::string head) {
    listen();
    write(std::move(head) + kHeartbeatText);
}

void EventStream::look() {
    if (!m_text.empty()) return;  // looked at again when that is out
    const auto news = m_bulletin.read();
    if (news.isClosed) return close();
    std::string text;
    if (std::exchange(m_version, news.version) != news.version)
        text += fmt::format("event: changed\ndata: {}\n\n", news.version);
    if (std::exchange(m_fault, news.fault) != news.fault && !news.fault.empty())
        text += fmt::format("event: fault\ndata: {}\n\n", news.fault);
    if (!text.empty()) write(std::move(text));
}

void EventStream::write(std::string text) {
    m_text = std::move(text);
    arm();
    boost::asio::async_write(m_socket, boost::asio::buffer(m_text),
                             [self = shared_from_this()](Error error, std::size_t) {
                                 if (error || !self->m_socket.is_open()) return self->close();
                                 self->m_text.clear();
                                 self->arm();
                                 self->look();
                             });
}

void EventStream::arm() {
    m_timer.expires_after(m_text.empty() ? kHeartbeat : kWriteLimit);
    m_timer.async_wait([self = shared_from_this()](Error error) {
        // Armed anew when its time was already up, it has another one to wait for.
        if (error || self->m_timer.expiry() > std::chrono::steady_clock::now()) return;
        if (self->m_text.empty())
            self->write(kHeartbeatText);
        else
            self->close();
    });
}

// A client has nothing more to say: the end of its side is the end.
void EventStream::listen() {
    m_socket.async_read_some(boost::asio::buffer(m_heard),
                             [self = shared_from_this()](Error error, std::size_t) {
                                 if (error)
                                     self->close();
                                 else
                                     self->listen();
                             });
}

void EventStream::close() {
    m_timer.cancel();
    Error ignored;
    m_socket.close(ignored);
}

}  // namespace cli::page
