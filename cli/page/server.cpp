// Who may ask for what, and where the answers come from.
#include "cli/page/server.h"

#include "cli/page/connection.h"
#include "cli/page/event_stream.h"
#include "cli/page/query.h"
#include "cli/page/quiet_thread.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/address_v4.hpp>
#include <boost/asio/post.hpp>
#include <boost/beast/http/write.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <sys/random.h>
#include <thread>
#include <utility>
#include <vector>

namespace cli::page {
namespace {

namespace asio = boost::asio;
using http::field;
using http::status;
using Error = boost::system::error_code;

constexpr std::size_t kMostConnections = 128, kMostStreams = 48;
constexpr std::chrono::seconds kEndLimit(2);

struct Method {
    http::verb verb;
    const char* name;
    const char* rule;
};
constexpr Method kRead{http::verb::get, "GET", "only GET reads"},
    kChange{http::verb::post, "POST", "only POST changes roofs"};

// Takes as long for a wrong text as for the right one, whatever they have in common.
bool isSame(std::string_view given, std::string_view secret) {
    if (given.size() != secret.size()) return false;
    volatile unsigned difference = 0;
    for (std::size_t i = 0; i < secret.size(); ++i)
        difference = difference | static_cast<unsigned>(given[i] ^ secret[i]);
    return difference == 0;
}

std::string_view viewOf(boost::beast::string_view text) { return {text.data(), text.size()}; }

int wholeNumber(const char* name, const std::string& text) {
    int number = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size())
        throw UsageError(fmt::format("{}: expected a whole number", name));
    return number;
}

}  // namespace

std::string makeToken() {
    std::array<unsigned char, 24> bytes{};
    if (::getentropy(bytes.data(), bytes.size()) != 0)
        throw std::runtime_error("the system has no random numbers for the page's address");
    return fmt::format("{:02x}", fmt::join(bytes, ""));
}

class Server::Impl final : public Answerer {
public:
    Impl(Served served, int port);
    ~Impl();

    std::string address() const { return fmt::format("http://127.0.0.1:{}{}", m_port, m_root); }
    int port() const { return m_port; }

private:
    using Answer = void (Impl::*)(const Query&, Connection&);
    struct Resource {
        std::string_view name;
        const Method& method;
        Answer answer;
    };
    static const std::array<Resource, 6> kResources;

    void open(int port);
    void accept();
    void end();

    const http::response_header<>& head() const override { return m_head; }
    void check(const Request& request) const override;
    void answer(Connection& connection) override;

    // These throw Refusal.
    void checkWhoAsks(const Request& request) const;
    const Resource& resourceOf(const Request& request) const;
    void checkBody(const Request& request) const;

    void page(const Query& query, Connection& connection);
    void chart(const Query& query, Connection& connection);
    void roofs(const Query& query, Connection& connection);
    void details(const Query& query, Connection& connection);
    void events(const Query& query, Connection& connection);
    void setRoof(const Query& query, Connection& connection);

    struct Statuses {
        status ofUsage;    // of a UsageError
        status ofFailure;  // of another exception
    };
    void ask(Connection& connection, std::function<std::string()> job, Statuses statuses);
    using AskOne = std::function<std::string(const Result&)>;
    void askResult(const Query& query, Connection& connection, status ofUsage, AskOne askOne);

    const Served m_served;
    const std::string m_root;
    http::response_header<> m_head;
    std::vector<std::string> m_hosts;
    int m_port = 0;

    // Those that live. They leave when the context lets go of them: never within a call, and before the sets
    // do.
    Connection::All m_connections;
    EventStream::All m_streams;

    asio::io_context m_context{1};  // run by one thread
    Tcp::acceptor m_acceptor{m_context};
    asio::steady_timer m_pause{m_context};
    std::promise<void> m_done;  // everything is answered
    std::thread m_thread;
};

const std::array<Server::Impl::Resource, 6> Server::Impl::kResources{{
    {"", kRead, &Impl::page},
    {"chart", kRead, &Impl::chart},
    {"roofs", kRead, &Impl::roofs},
    {"details", kRead, &Impl::details},
    {"events", kRead, &Impl::events},
    {"roof", kChange, &Impl::setRoof},
}};

Server::Impl::Impl(Served served, int port)
    : m_served(std::move(served)), m_root('/' + m_served.token + '/') {
    m_head.set("Content-Security-Policy", policyOf(m_served.resources, true) + "; frame-ancestors 'none'");
    m_head.set("X-Content-Type-Options", "nosniff");
    m_head.set("Referrer-Policy", "no-referrer");
    m_head.set("Cache-Control", "no-store");
    m_head.set("X-Frame-Options", "DENY");
    open(port);
    for (const auto* const host : {"127.0.0.1", "localhost"}) {
        m_hosts.push_back(fmt::format("{}:{}", host, m_port));
        if (m_port == 80) m_hosts.emplace_back(host);
    }
    accept();
    m_thread = startQuietly([this] {
        m_context.run();
        m_done.set_value();
    });
    const auto lookAgain = [this] {
        asio::post(m_context, [this] {
            for (auto* const stream : m_streams) stream->look();
        });
    };
    m_served.bulletin.setListener(lookAgain);
    lookAgain();  // at what came before
}

// Answers that are under way go out, unless their readers are too slow.
Server::Impl::~Impl() {
    m_served.bulletin.setListener({});
    asio::post(m_context, [this] { end(); });
    if (m_done.get_future().wait_for(kEndLimit) != std::future_status::ready) m_context.stop();
    m_thread.join();
}

void Server::Impl::open(int port) {
    const Tcp::endpoint here(asio::ip::address_v4::loopback(), static_cast<unsigned short>(port));
    Error error;
    m_acceptor.open(here.protocol(), error);
    // A port that was served a moment ago is free; one that is being served isn't.
    if (!error) m_acceptor.set_option(Tcp::acceptor::reuse_address(true), error);
    if (!error) m_acceptor.bind(here, error);
    if (!error) m_acceptor.listen(asio::socket_base::max_listen_connections, error);
    if (error)
        throw std::runtime_error(fmt::format("port {} is in use or not allowed: {}", port, error.message()));
    m_port = m_acceptor.local_endpoint().port();
}

void Server::Impl::accept() {
    m_acceptor.async_accept([this](Error error, Tcp::socket socket) {
        if (!m_acceptor.is_open()) return;
        if (error) {  // such as too many open files, which is so for a while
            m_pause.expires_after(std::chrono::milliseconds(100));
            return m_pause.async_wait([this](Error stopped) {
                if (!stopped) accept();
            });
        }
        if (m_connections.size() < kMostConnections)
            std::make_shared<Connection>(std::move(socket), *this, m_connections)->start();
        accept();
    });
}

void Server::Impl::end() {
    m_pause.cancel();
    m_acceptor.close();
    for (auto* const stream : m_streams) stream->close();
    for (auto* const connection : m_connections) connection->stop();
}

void Server::Impl::check(const Request& request) const {
    checkWhoAsks(request);
    if (request.count(field::range) > 0)
        refuse(status::range_not_satisfiable, "answers come whole, not in ranges");
    // In pieces it could be as long as it liked, by what stands between them.
    if (request.count(field::transfer_encoding) > 0)
        refuse(status::length_required, "expected Content-Length");
    if (resourceOf(request).method.verb == http::verb::post) checkBody(request);
}

// A page of elsewhere whose name was made to lead here has that name in its requests.
void Server::Impl::checkWhoAsks(const Request& request) const {
    const auto isOwn = [&](std::string_view host) {
        return std::find(m_hosts.begin(), m_hosts.end(), host) != m_hosts.end();
    };
    constexpr std::string_view kHttp = "http://";
    const auto host = viewOf(request[field::host]), origin = viewOf(request[field::origin]);
    const auto origins = request.count(field::origin);
    if (request.count(field::host) != 1 || !isOwn(host) || origins > 1 ||
        (origins == 1 && (origin.substr(0, kHttp.size()) != kHttp || !isOwn(origin.substr(kHttp.size())))))
        refuse(status::forbidden, "only pages of this program may ask");
}

const Server::Impl::Resource& Server::Impl::resourceOf(const Request& request) const {
    const auto target = viewOf(request.target());
    const auto path = target.substr(0, target.find('?'));
    if (!isSame(path.substr(0, m_root.size()), m_root)) refuse(status::not_found, {});
    const auto* const found = std::find_if(kResources.begin(), kResources.end(), [&](const Resource& each) {
        return each.name == path.substr(m_root.size());
    });
    if (found == kResources.end()) refuse(status::not_found, {});
    const auto& method = found->method;
    if (method.verb != request.method()) refuse(status::method_not_allowed, method.rule, method.name);
    return *found;
}

// A length that is known bounds what is read; packed bodies would have to be unpacked.
void Server::Impl::checkBody(const Request& request) const {
    if (request.count("X-Roofline-Token") != 1 ||
        !isSame(viewOf(request["X-Roofline-Token"]), m_served.token))
        refuse(status::forbidden, "the header X-Roofline-Token is missing or wrong");
    const auto type = viewOf(request[field::content_type]);
    if (type.substr(0, type.find(';')) != kJson || request.count(field::content_encoding) > 0)
        refuse(status::unsupported_media_type, "expected a body of application/json");
    if (request.count(field::content_length) != 1) refuse(status::length_required, "expected Content-Length");
}

void Server::Impl::answer(Connection& connection) {
    const auto& request = connection.request();
    try {
        const Query query(viewOf(request.target()));
        (this->*resourceOf(request).answer)(query, connection);
    } catch (const UsageError& error) {
        refuse(status::bad_request, error.what());
    }
}

// What the job tells comes over as a value: an exception stays on the engine's thread. The connection is let
// go on its own.
void Server::Impl::ask(Connection& connection, std::function<std::string()> job, Statuses statuses) {
    const auto tell = [this, weak = connection.weak_from_this()](Reply reply) {
        asio::post(m_context, [weak, reply = std::move(reply)] {
            if (const auto waiting = weak.lock()) waiting->send(reply);
        });
    };
    connection.wait();
    const auto run = [tell, job = std::move(job), statuses] {
        try {
            tell({status::ok, std::make_shared<const std::string>(job())});
        } catch (const Refusal& refusal) {
            tell(refusal.reply());
        } catch (const UsageError& error) {
            tell(Refusal{statuses.ofUsage, error.what()}.reply());
        } catch (const std::exception& error) {
            tell(Refusal{statuses.ofFailure, error.what()}.reply());
        }
    };
    m_served.engine.post({run, [tell] {
                              tell(Refusal{status::service_unavailable, "the program is stopping"}.reply());
                          }});
}

void Server::Impl::askResult(const Query& query, Connection& connection, status ofUsage, AskOne askOne) {
    const auto& result = query.value("result");
    if (result != "0" && !(m_served.isComparison && result == "1"))
        refuse(status::bad_request, m_served.isComparison ? "result: expected 0 or 1" : "result: expected 0");
    const auto version =
        query.has("version") ? std::optional(wholeNumber("version", query.value("version"))) : std::nullopt;
    auto job = [&results = m_served.results, version, index = result == "1" ? 1U : 0U,
                askOne = std::move(askOne)] {
        // Rows of other versions don't fit together.
        if (version && *version != results.version())
            refuse(status::conflict, fmt::format("version: {} is shown now", results.version()));
        return askOne(results.at(index));
    };
    ask(connection, std::move(job), {ofUsage, status::internal_server_error});
}

void Server::Impl::page(const Query&, Connection& connection) {
    connection.send({status::ok, m_served.bulletin.read().page, "text/html; charset=utf-8"});
}

void Server::Impl::chart(const Query& query, Connection& connection) {
    const auto& configuration = query.value("config");
    askResult(query, connection, status::bad_request,
              [configuration](const Result& result) { return result.chart(configuration); });
}

void Server::Impl::roofs(const Query& query, Connection& connection) {
    const auto& operations = query.value("operations");
    askResult(query, connection, status::bad_request,
              [operations](const Result& result) { return result.roofs(operations); });
}

void Server::Impl::details(const Query& query, Connection& connection) {
    const auto& id = query.value("id");
    askResult(query, connection, status::not_found,
              [id](const Result& result) { return result.details(id); });
}

void Server::Impl::setRoof(const Query&, Connection& connection) {
    auto job = [&results = m_served.results, body = connection.request().body()] {
        results.changeRoof(body);
        return std::string("{}");
    };
    ask(connection, std::move(job), {status::bad_request, status::conflict});
}

// What a page hears from then on. It names its own version, as the files may have changed since it was read.
void Server::Impl::events(const Query& query, Connection& connection) {
    if (m_streams.size() >= kMostStreams) refuse(status::service_unavailable, "too many pages are open");
    auto version = m_served.bulletin.read().version;
    if (query.has("version")) version = wholeNumber("version", query.value("version"));
    auto head = m_head;
    head.result(status::ok);
    head.set(field::content_type, "text/event-stream");
    head.set(field::connection, "close");
    const auto stream =
        std::make_shared<EventStream>(connection.release(), m_served.bulletin, version, m_streams);
    stream->start((std::ostringstream() << head).str());
}

Server::Server(Served served, int port) : m_impl(std::make_unique<Impl>(std::move(served), port)) {}
Server::~Server() = default;
std::string Server::address() const { return m_impl->address(); }
int Server::port() const { return m_impl->port(); }

}  // namespace cli::page
