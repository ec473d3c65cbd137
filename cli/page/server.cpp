// The only file of the program that includes the HTTP library.
#include "cli/page/server.h"

#include "cli/page/quiet_thread.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <functional>
#include <httplib.h>
#include <sys/random.h>
#include <thread>
#include <utility>

namespace cli::page {
namespace {

using httplib::Request;
using httplib::Response;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr auto kJson = "application/json";
// The library bounds a line of a request's head only once it has read it all: a program on this machine can
// make this one large, which it could as well do with its own memory.
constexpr std::size_t kMostBody = 4096, kMostParameter = 256;
// A stream of events holds a thread for as long as its page is open.
constexpr int kMostStreams = 48, kWorkers = 8;
constexpr milliseconds kAnswerLimit = std::chrono::minutes(1);

// An answer other than what was asked for.
struct Refusal {
    int status = 500;
    std::string reason;  // empty: nothing is told
};

[[noreturn]] void refuse(int status, std::string reason) { throw Refusal{status, std::move(reason)}; }

// Takes as long for a wrong text as for the right one, whatever they have in common.
bool isSame(const std::string& given, const std::string& secret) {
    if (given.size() != secret.size()) return false;
    volatile unsigned difference = 0;
    for (std::size_t i = 0; i < secret.size(); ++i)
        difference = difference | static_cast<unsigned>(given[i] ^ secret[i]);
    return difference == 0;
}

// As a stream of known length: the library would compress a text, which takes longer than the way to the
// browser next door. The library doesn't check that the piece it asks for is one of the text.
void answer(Response& response, std::shared_ptr<const std::string> text, const char* type) {
    const auto size = text->size();
    response.status = 200;
    response.set_content_provider(
        size, type, [text = std::move(text)](std::size_t at, std::size_t length, httplib::DataSink& sink) {
            if (at > text->size()) return false;
            return sink.write(text->data() + at, std::min(length, text->size() - at));
        });
}

std::string errorJson(const std::string& reason) {
    Writer writer;
    writer.object([&] { writer.member("error", cleanText(reason)); });
    return writer.take();
}

void write(Response& response, const Refusal& refusal) {
    response.status = refusal.status;
    response.set_content(errorJson(refusal.reason.empty() ? "there is nothing here" : refusal.reason), kJson);
}

std::string parameter(const Request& request, const char* name) {
    if (request.get_param_value_count(name) != 1) refuse(400, fmt::format("{}: expected one value", name));
    auto value = request.get_param_value(name);
    if (value.size() > kMostParameter) refuse(400, fmt::format("{}: the value is too long", name));
    return value;
}

// Only with SO_REUSEADDR: the library's own choice lets another program share the port.
void setSocketOptions(socket_t socket) {
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

}  // namespace

std::string makeToken() {
    std::array<unsigned char, 24> bytes{};
    if (::getentropy(bytes.data(), bytes.size()) != 0)
        throw std::runtime_error("the system has no random numbers for the page's address");
    return fmt::format("{:02x}", fmt::join(bytes, ""));
}

class Server::Impl {
public:
    Impl(Served served, int port) : m_served(std::move(served)), m_root('/' + m_served.token + '/') {
        setUp();
        m_port = bind(port);
        for (const auto* const host : {"127.0.0.1", "localhost", "[::1]"}) {
            m_hosts.push_back(fmt::format("{}:{}", host, m_port));
            if (m_port == 80) m_hosts.emplace_back(host);
        }
        m_thread = startQuietly([this] {
            m_http.listen_after_bind();
            m_hasEnded = true;
        });
        // `stop` does nothing earlier.
        while (!m_http.is_running() && !m_hasEnded) std::this_thread::yield();
    }
    ~Impl() {
        m_http.stop();
        m_thread.join();
    }

    std::string address() const { return fmt::format("http://127.0.0.1:{}{}", m_port, m_root); }
    int port() const { return m_port; }

private:
    using Answer = void (Impl::*)(const Request&, Response&);
    struct Resource {
        std::string_view name;
        Answer get;
    };
    static constexpr auto resources() {
        return std::array<Resource, 5>{{{"", &Impl::page},
                                        {"chart", &Impl::chart},
                                        {"roofs", &Impl::roofs},
                                        {"details", &Impl::details},
                                        {"events", &Impl::events}}};
    }

    void setUp();
    int bind(int port);

    // All throw Refusal.
    void checkWhoAsks(const Request& request) const;
    std::string nameOf(const Request& request) const;
    void checkBody(const Request& request) const;
    bool handle(const Request& request, Response& response);

    void page(const Request& request, Response& response);
    void chart(const Request& request, Response& response);
    void roofs(const Request& request, Response& response);
    void details(const Request& request, Response& response);
    void events(const Request& request, Response& response);
    void setRoof(const Request& request, Response& response);

    using AskOne = std::function<std::string(const Result&)>;
    void askResult(const Request& request, Response& response, int statusOfUsage, AskOne askOne);
    struct Statuses {
        int ofUsage;  // of a UsageError, and of any other
        int ofFailure;
    };
    std::shared_ptr<const std::string> ask(std::function<std::string()> job, Statuses statuses);

    Served m_served;
    const std::string m_root;
    std::vector<std::string> m_hosts;
    std::atomic<int> m_streams = 0;
    std::atomic<bool> m_hasEnded = false;
    int m_port = 0;
    httplib::Server m_http;
    std::thread m_thread;
};

// One function decides on every request before a body is read: nothing depends on patterns of paths.
void Server::Impl::setUp() {
    const auto policy = policyOf(m_served.resources, true) + "; frame-ancestors 'none'";
    m_http.set_default_headers({{"Content-Security-Policy", policy},
                                {"X-Content-Type-Options", "nosniff"},
                                {"Referrer-Policy", "no-referrer"},
                                {"Cache-Control", "no-store"},
                                {"X-Frame-Options", "DENY"}});
    m_http.new_task_queue = [] { return new httplib::ThreadPool(kMostStreams + kWorkers); };
    m_http.set_socket_options(setSocketOptions);
    m_http.set_tcp_nodelay(true);
    // A connection for each request: an idle one would hold a thread, and the end of the program too.
    m_http.set_keep_alive_max_count(1);
    m_http.set_keep_alive_timeout(1);
    m_http.set_read_timeout(seconds(2));
    m_http.set_payload_max_length(kMostBody);

    const auto guarded = [](auto call, Response& response) {
        try {
            return call();
        } catch (const Refusal& refusal) {
            write(response, refusal);
        } catch (const std::exception& error) {
            write(response, {500, error.what()});
        }
        return true;
    };
    m_http.set_pre_routing_handler([this, guarded](const Request& request, Response& response) {
        return guarded([&] { return handle(request, response); }, response)
                   ? httplib::Server::HandlerResponse::Handled
                   : httplib::Server::HandlerResponse::Unhandled;
    });
    // Reached by what `handle` has let through.
    m_http.Post(".*", [this, guarded](const Request& request, Response& response) {
        const auto set = [&] {
            setRoof(request, response);
            return true;
        };
        guarded(set, response);
    });
    // Of the library's own refusals, such as of addresses that are too long.
    const httplib::Server::Handler explain = [](const Request&, Response& response) {
        if (response.body.empty()) write(response, {response.status, "the request can't be understood"});
    };
    m_http.set_error_handler(explain);
}

int Server::Impl::bind(int port) {
    const auto* const host = "127.0.0.1";
    const auto got = port == 0 ? m_http.bind_to_any_port(host) : m_http.bind_to_port(host, port) ? port : -1;
    if (got <= 0) throw std::runtime_error(fmt::format("port {} is in use or not allowed", port));
    return got;
}

// A page of elsewhere whose name was made to lead here has that name in its requests.
void Server::Impl::checkWhoAsks(const Request& request) const {
    const auto isOwn = [&](const std::string& host) {
        return std::find(m_hosts.begin(), m_hosts.end(), host) != m_hosts.end();
    };
    const std::string_view http = "http://";
    const auto origin = request.get_header_value("Origin");
    const auto origins = request.get_header_value_count("Origin");
    if (request.get_header_value_count("Host") != 1 || !isOwn(request.get_header_value("Host")) ||
        origins > 1 || (origins == 1 && (origin.rfind(http, 0) != 0 || !isOwn(origin.substr(http.size())))))
        refuse(403, "only pages of this program may ask");
}

std::string Server::Impl::nameOf(const Request& request) const {
    if (!isSame(request.path.substr(0, m_root.size()), m_root)) refuse(404, {});
    return request.path.substr(m_root.size());
}

// A length that is known bounds what is read; packed bodies would be unpacked.
void Server::Impl::checkBody(const Request& request) const {
    if (!isSame(request.get_header_value("X-Roofline-Token"), m_served.token))
        refuse(403, "the header X-Roofline-Token is missing or wrong");
    const auto type = request.get_header_value("Content-Type");
    if (type.substr(0, type.find(';')) != kJson || request.has_header("Content-Encoding"))
        refuse(415, "expected a body of application/json");
    const auto length = request.get_header_value("Content-Length");
    if (request.has_header("Transfer-Encoding") || length.empty()) refuse(411, "expected Content-Length");
    std::size_t bytes = 0;
    const auto end = std::from_chars(length.data(), length.data() + length.size(), bytes);
    if (end.ec != std::errc() || end.ptr != length.data() + length.size() || bytes > kMostBody)
        refuse(413, fmt::format("expected at most {} bytes", kMostBody));
}

// False for what needs its body.
bool Server::Impl::handle(const Request& request, Response& response) {
    checkWhoAsks(request);
    const auto name = nameOf(request);
    const auto all = resources();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const Resource& each) { return each.name == name; });
    const bool isRoof = name == "roof";
    if (request.has_header("Range")) refuse(416, "answers come whole, not in ranges");
    if (found == all.end() && !isRoof) refuse(404, {});
    if (request.method != (isRoof ? "POST" : "GET")) {
        response.set_header("Allow", isRoof ? "POST" : "GET");
        refuse(405, isRoof ? "only POST changes roofs" : "only GET reads");
    }
    if (isRoof) {
        checkBody(request);
        return false;
    }
    (this->*found->get)(request, response);
    return true;
}

// Exceptions stay on the engine's thread: what they tell comes over as a value.
std::shared_ptr<const std::string> Server::Impl::ask(std::function<std::string()> job, Statuses statuses) {
    struct Outcome {
        std::shared_ptr<const std::string> text;  // null: refused
        Refusal refusal;
    };
    const auto work = [job = std::move(job), statuses]() -> Outcome {
        try {
            return {std::make_shared<const std::string>(job()), {}};
        } catch (const UsageError& error) {
            return {nullptr, {statuses.ofUsage, error.what()}};
        } catch (const std::exception& error) {
            return {nullptr, {statuses.ofFailure, error.what()}};
        }
    };
    try {
        auto outcome = m_served.engine.ask(work, kAnswerLimit);
        if (outcome.text) return outcome.text;
        throw std::move(outcome.refusal);
    } catch (const NotNow& error) {
        refuse(503, error.what());
    }
}

void Server::Impl::askResult(const Request& request, Response& response, int statusOfUsage, AskOne askOne) {
    const auto result = parameter(request, "result");
    if (result != "0" && !(m_served.isComparison && result == "1"))
        refuse(400, m_served.isComparison ? "result: expected 0 or 1" : "result: expected 0");
    auto job = [&results = m_served.results, index = result == "1" ? 1U : 0U, askOne = std::move(askOne)] {
        return askOne(results.at(index));
    };
    answer(response, ask(std::move(job), {statusOfUsage, 500}), kJson);
}

void Server::Impl::page(const Request&, Response& response) {
    answer(response, m_served.bulletin.read().page, "text/html; charset=utf-8");
}

void Server::Impl::chart(const Request& request, Response& response) {
    askResult(request, response, 400, [configuration = parameter(request, "config")](const Result& result) {
        return result.chart(configuration);
    });
}

void Server::Impl::roofs(const Request& request, Response& response) {
    askResult(request, response, 400, [operations = parameter(request, "operations")](const Result& result) {
        return result.roofs(operations);
    });
}

void Server::Impl::details(const Request& request, Response& response) {
    askResult(request, response, 404,
              [id = parameter(request, "id")](const Result& result) { return result.details(id); });
}

void Server::Impl::setRoof(const Request& request, Response& response) {
    auto job = [&results = m_served.results, body = request.body] {
        results.changeRoof(body);
        return std::string("{}");
    };
    answer(response, ask(std::move(job), {400, 409}), kJson);
}

// What a page hears from then on. It names its own version, as the files may have changed since it was read.
void Server::Impl::events(const Request& request, Response& response) {
    if (m_streams.fetch_add(1) >= kMostStreams) {
        --m_streams;
        refuse(503, "too many pages are open");
    }
    struct Stream {
        std::uint64_t number = 0;
        int version = 0;
        std::string fault;
        std::chrono::steady_clock::time_point told = {};  // long ago: the first word opens the stream
    };
    auto stream = std::make_shared<Stream>();
    stream->version = m_served.bulletin.read().version;
    if (request.has_param("version")) {
        const auto known = request.get_param_value("version");
        std::from_chars(known.data(), known.data() + known.size(), stream->version);
    }
    response.set_chunked_content_provider(
        "text/event-stream",
        [&bulletin = m_served.bulletin, stream](std::size_t, httplib::DataSink& sink) {
            constexpr seconds kHeartbeat(15), kLook(1);
            const auto news = bulletin.wait(stream->number, kLook);
            if (news.isClosed) {
                sink.done();
                return true;
            }
            if (!sink.is_writable()) return false;
            std::string text;
            if (news.version != stream->version)
                text += fmt::format("event: changed\ndata: {}\n\n", news.version);
            if (!news.fault.empty() && news.fault != stream->fault)
                text += fmt::format("event: fault\ndata: {}\n\n", news.fault);
            const auto now = std::chrono::steady_clock::now();
            if (text.empty() && now - stream->told > kHeartbeat) text = ":\n\n";
            *stream = {news.number, news.version, news.fault, text.empty() ? stream->told : now};
            return text.empty() || sink.write(text.data(), text.size());
        },
        [this](bool) { --m_streams; });
    response.status = 200;
}

Server::Server(Served served, int port) : m_impl(std::make_unique<Impl>(std::move(served), port)) {}
Server::~Server() = default;
std::string Server::address() const { return m_impl->address(); }
int Server::port() const { return m_impl->port(); }

}  // namespace cli::page
