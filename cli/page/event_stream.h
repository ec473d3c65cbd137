// What an open page hears from the bulletin, as server-sent events over the socket of its request.
#pragma once

#include "cli/page/bulletin.h"
#include "cli/page/listed.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <array>
#include <memory>
#include <string>

namespace cli::page {

// Owned by the operations that wait for its socket. All runs on the one thread of their context.
class EventStream : public std::enable_shared_from_this<EventStream> {
public:
    using Socket = boost::asio::ip::tcp::socket;
    using All = Listed<EventStream>::All;

    // Tells of versions other than `version`. The bulletin outlives it.
    EventStream(Socket socket, const Bulletin& bulletin, int version, All& all);
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

    Listed<EventStream> m_place;
    Socket m_socket;
    const Bulletin& m_bulletin;
    int m_version;
    std::string m_fault;  // told last
    std::string m_text;   // being written; empty: nothing is
    boost::asio::steady_timer m_timer;
    std::array<char, 64> m_heard{};
};

}  // namespace cli::page
