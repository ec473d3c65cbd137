// Signals and their subscribers. A signal may die before its subscriber and the reverse; slots may connect
// and disconnect while a signal is raised.
#pragma once

#include "host_interfaces/export.h"

#include <boost/signals2/signal.hpp>

#include <algorithm>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace data_models2 {

// Base of an object that listens to signals: holds its connections and cuts them when it dies. A class whose
// slots use its own members cuts them in its own destructor, before the members go.
class OMBRIX_API subscriber_base_t {
public:
    subscriber_base_t() = default;
    subscriber_base_t(const subscriber_base_t&) = delete;
    subscriber_base_t& operator=(const subscriber_base_t&) = delete;
    virtual ~subscriber_base_t() { disconnectAll(); }

    void disconnect(const void* signal) {
        cut([signal](const Entry& entry) { return entry.first == signal; });
    }
    void disconnectAll() {
        cut([](const Entry&) { return true; });
    }

private:
    template <class... Args>
    friend class signal_t;
    using Entry = std::pair<const void*, boost::signals2::connection>;

    void remember(const void* signal, boost::signals2::connection connection) {
        const std::lock_guard lock(m_mutex);
        const auto isDead = [](const Entry& entry) { return !entry.second.connected(); };
        m_connections.erase(std::remove_if(m_connections.begin(), m_connections.end(), isDead),
                            m_connections.end());
        m_connections.emplace_back(signal, std::move(connection));
    }
    // Disconnects outside the lock: a slot object's destructor may come back here.
    template <class Predicate>
    void cut(Predicate predicate) {
        std::vector<Entry> gone;
        {
            const std::lock_guard lock(m_mutex);
            const auto first = std::stable_partition(m_connections.begin(), m_connections.end(),
                                                     [&](const Entry& entry) { return !predicate(entry); });
            gone.assign(first, m_connections.end());
            m_connections.erase(first, m_connections.end());
        }
        for (auto& entry : gone) entry.second.disconnect();
    }

    std::mutex m_mutex;
    std::vector<Entry> m_connections;
};

template <class... Args>
class OMBRIX_API signal_t {
public:
    void connect(subscriber_base_t& subscriber, std::function<void(Args...)> slot) {
        subscriber.remember(this, m_signal.connect(std::move(slot)));
    }
    void disconnect(subscriber_base_t& subscriber) { subscriber.disconnect(this); }
    void raise(Args... args) { m_signal(args...); }

private:
    boost::signals2::signal<void(Args...)> m_signal;
};

}  // namespace data_models2
