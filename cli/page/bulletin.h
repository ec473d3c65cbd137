// What the engine's thread tells all others of a served page: its text, its version, and what went wrong.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace cli::page {

struct News {
    std::uint64_t number = 0;  // rises with every change of what follows
    int version = 0;           // of the page
    std::shared_ptr<const std::string> page;
    std::string fault;  // why the files as they are now aren't shown; empty: they are
    bool isClosed = false;
};

// Safe from all threads.
class Bulletin {
public:
    News read() const;
    // Waits until the number is another one than `known` or the time has passed.
    News wait(std::uint64_t known, std::chrono::milliseconds limit) const;

    // Takes the fault away.
    void publish(int version, std::string page);
    void tell(std::string fault);
    // Nothing more will come.
    void close();

private:
    template <class Change>
    void change(Change&& change);

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    News m_news;
};

}  // namespace cli::page
