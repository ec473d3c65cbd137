// The HTTP side of a served page: who may ask for what, on this machine alone.
#pragma once

#include "cli/page/bulletin.h"
#include "cli/page/engine_thread.h"
#include "cli/page/page_file.h"
#include "cli/page/served_results.h"

#include <memory>
#include <string>

namespace cli::page {

// Letters and digits for an address, 192 bits of the system's randomness. Throws std::runtime_error when
// there is none.
std::string makeToken();

// What the server hands out. What is referred to outlives it.
struct Served {
    EngineThread& engine;
    ServedResults& results;  // asked on the engine's thread only
    Bulletin& bulletin;
    const Resources& resources;
    std::string token;
    bool isComparison = false;
};

// Answers from its own thread until it is destroyed, as docs/page_model.md says under "Served". The engine's
// thread is stopped before, so that nobody waits for it.
class Server {
public:
    // `port` 0: a free one. Throws std::runtime_error when the port can't be had.
    Server(Served served, int port);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // "http://127.0.0.1:8080/TOKEN/"
    std::string address() const;
    int port() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace cli::page
