// A page that is served: its results, the thread that asks them, and the server, started and ended in order.
#pragma once

#include "cli/page/server.h"

#include <string>

namespace cli::page {

// Serves from its construction to its destruction.
class LivePage {
public:
    // Throws as `openSession` and `Server` do.
    LivePage(const ServeRequest& request, const Resources& resources);
    ~LivePage();
    LivePage(const LivePage&) = delete;
    LivePage& operator=(const LivePage&) = delete;

    std::string address() const { return m_server->address(); }
    int port() const { return m_server->port(); }
    const std::string& token() const { return m_token; }

private:
    const std::string m_token;
    Bulletin m_bulletin;
    ServedResults m_results;
    EngineThread m_engine;
    std::unique_ptr<Server> m_server;
};

}  // namespace cli::page
