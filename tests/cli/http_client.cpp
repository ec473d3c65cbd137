#include "tests/cli/http_client.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <array>
#include <chrono>

namespace cli::test {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using Tcp = asio::ip::tcp;

struct Dialogue {
    asio::io_context context{1};
    Tcp::socket socket{context};

    explicit Dialogue(int port) {
        socket.connect({asio::ip::address_v4::loopback(), static_cast<unsigned short>(port)});
    }
};

}  // namespace

HttpAnswer askHttp(int port, const std::string& method, const std::string& target, const Headers& headers,
                   const std::string& body) {
    Dialogue dialogue(port);
    http::request<http::string_body> request(http::string_to_verb(method), target, 11, body);
    request.set(http::field::host, "127.0.0.1:" + std::to_string(port));
    if (!body.empty()) request.prepare_payload();
    for (const auto& [name, value] : headers) request.set(name, value);
    boost::system::error_code error;
    http::write(dialogue.socket, request, error);

    boost::beast::flat_buffer buffer;
    http::response_parser<http::string_body> parser;
    parser.body_limit(boost::none);
    http::read(dialogue.socket, buffer, parser, error);
    if (error) return {};
    HttpAnswer answer{static_cast<int>(parser.get().result_int()), {}, parser.get().body()};
    for (const auto& field : parser.get())
        answer.headers.emplace(field.name_string().to_string(), field.value().to_string());
    return answer;
}

std::string sayRaw(int port, const std::string& text, bool isDone) {
    Dialogue dialogue(port);
    boost::system::error_code error;
    asio::write(dialogue.socket, asio::buffer(text), error);
    if (isDone) dialogue.socket.shutdown(Tcp::socket::shutdown_send, error);
    std::string answer;
    asio::read(dialogue.socket, asio::dynamic_buffer(answer), error);
    return answer;
}

Talker::Talker(int port, std::string text, std::chrono::milliseconds pause)
    : m_thread([this, port, text = std::move(text), pause]() mutable {
          Dialogue dialogue(port);
          boost::system::error_code error;
          for (; !m_isDone && !error; text = "a") {
              asio::write(dialogue.socket, asio::buffer(text), error);
              std::this_thread::sleep_for(pause);
          }
          m_isCutOff = error.failed();
      }) {}

Talker::~Talker() {
    m_isDone = true;
    m_thread.join();
}

Listener::Listener(int port, const std::string& target)
    : m_thread([this, port, target] { listen(port, target); }) {}

Listener::~Listener() { m_thread.join(); }

void Listener::listen(int port, const std::string& target) {
    Dialogue dialogue(port);
    asio::write(
        dialogue.socket,
        asio::buffer("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n\r\n"));
    std::array<char, 4096> piece{};
    boost::system::error_code error;
    while (const auto size = dialogue.socket.read_some(asio::buffer(piece), error))
        hear({piece.data(), size});
    hear("END");
}

void Listener::hear(const std::string& text) {
    const std::lock_guard lock(m_mutex);
    m_heard += text;
    m_changed.notify_all();
}

std::string Listener::waitFor(const std::string& text) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, std::chrono::seconds(20),
                       [&] { return m_heard.find(text) != std::string::npos; });
    return m_heard;
}

}  // namespace cli::test
