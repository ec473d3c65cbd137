// What the engine's thread tells all others of a served page: its text, its version, and what went wrong.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace cli::page {

struct News {
    int version = 0;  // of the page
    std::shared_ptr<const std::string> page;
    std::string fault;  // why the files as they are now aren't shown; empty: they are
    bool isClosed = false;
};

// Safe from all threads.
class Bulletin {
public:
    News read() const;
    // `hear` is called after each change, from the thread of the change, and must not come back here. Once
    // another one is set (or an empty one), it is no more.
    void setListener(std::function<void()> hear);

    // Takes the fault away.
    void publish(int version, std::string page);
    void tell(std::string fault);
    // Nothing more will come.
    void close();

private:
    template <class Change>
    void change(Change&& change);

    mutable std::mutex m_mutex;
    News m_news;
    std::function<void()> m_hear;
};

}  // namespace cli::page
