// HTTP as browsers and others would speak it to the program, and as they would not.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace cli::test {

using Headers = std::vector<std::pair<std::string, std::string>>;

struct HttpAnswer {
    int status = 0;  // 0: none came
    std::map<std::string, std::string> headers;
    std::string body;
};

// One request to 127.0.0.1, with a `Host` unless `headers` name one.
HttpAnswer askHttp(int port, const std::string& method, const std::string& target,
                   const Headers& headers = {}, const std::string& body = {});

// What comes back for these bytes until the server closes, from one who has nothing more to say once
// `isDone`.
std::string sayRaw(int port, const std::string& text, bool isDone = false);

// Says `text`, then goes on with a byte after each pause, and never listens.
class Talker {
public:
    Talker(int port, std::string text, std::chrono::milliseconds pause);
    ~Talker();
    bool isCutOff() const { return m_isCutOff; }

private:
    std::atomic<bool> m_isDone = false, m_isCutOff = false;
    std::thread m_thread;
};

// Listens to the events of a page.
class Listener {
public:
    Listener(int port, const std::string& target);
    ~Listener();
    // What was heard, once `text` is in it, or after 20 seconds; "END" is heard when the server has closed.
    std::string waitFor(const std::string& text);

private:
    void listen(int port, const std::string& target);
    void hear(const std::string& text);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_heard;
    std::thread m_thread;
};

}  // namespace cli::test
