// What an open page hears from the bulletin, as server-sent events over the socket of its request.
#pragma once

#include "cli/page/bulletin.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace cli::page {

// Owned by the operations that wait for its socket. All runs on the one thread of their context.
class EventStream : public std::enable_shared_from_this<EventStream> {
public:
    using Socket = boost::asio::ip::tcp::socket;
    // Tells of versions other than `version`. `ended` is called once, at the end; the bulletin outlives it.
    EventStream(Socket socket, const Bulletin& bulletin, int version,
                std::function<void(EventStream*)> ended);
    ~EventStream();
    EventStream(const EventStream&) = delete;
    EventStream& operator=(const EventStream&) = delete;

    // Writes `head`, then what is new.
    void start(std::string head);
    // There may be news.
    void look();
    void close();

private:
    void write(std::string text);
    void arm();
    void listen();

    Socket m_socket;
    const Bulletin& m_bulletin;
    int m_version;
    std::string m_fault;  // told last
    const std::function<void(EventStream*)> m_ended;
    std::string m_text;  // being written; empty: nothing is
    boost::asio::steady_timer m_timer;
    std::array<char, 64> m_heard{};
};

}  // namespace cli::page
