// The served page, asked through HTTP as a browser and others would.
#include "cli/page/live_page.h"
#include "cli/page/opening.h"
#include "cli/page/query.h"
#include "tests/cli/http_client.h"
#include "tests/cli/program_run.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <future>
#include <thread>

namespace cli {
namespace {

using namespace std::chrono_literals;
using test::Headers;
using test::HttpAnswer;
using test::Listener;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string kFolder = OMBRIX_SOURCE_DIR "/examples/quick/";
// Needs no Node.js.
const page::Resources kResources{{"<title>{{TITLE}}</title>{{MODEL}}"}, {"script-src 'none'"}};

class Serve : public test::FolderTest {
protected:
    const std::string machineText = embedded_host::readFile(kFolder + "machine.json");
    const std::string resultText = embedded_host::readFile(kFolder + "result.json");
    const std::string machine = file("machine.json", machineText);
    const std::string result = file("result.json", resultText);
    const ServeRequest request{{result, {}, {}}, {}, 0};
    std::unique_ptr<page::LivePage> live = std::make_unique<page::LivePage>(request, kResources);

    std::string under(const std::string& path) const { return '/' + live->token() + '/' + path; }
    HttpAnswer ask(const std::string& method, const std::string& target, const Headers& headers = {},
                   const std::string& body = {}) const {
        return test::askHttp(live->port(), method, target, headers, body);
    }
    HttpAnswer get(const std::string& path, const Headers& headers = {}) const {
        return ask("GET", under(path), headers);
    }
    HttpAnswer post(const std::string& body, const Headers& more = {}) const {
        Headers headers{{"X-Roofline-Token", live->token()}, {"Content-Type", "application/json"}};
        headers.insert(headers.end(), more.begin(), more.end());
        return ask("POST", under("roof"), headers, body);
    }
};

TEST_F(Serve, AnswersWhatTheBuilderGives) {
    live.reset();  // one thread at a time hears of the library's tasks
    std::map<std::string, std::string> expected;
    {
        const auto results = page::openResults(request.source, {});
        const auto& own = results.front();
        const auto configuration = own.configurations().back(), id = own.rows().lines.front().id;
        expected = {{"chart?result=0&config=" + configuration, own.chart(configuration)},
                    {"roofs?result=0&operations=i", own.roofs("i")},
                    {"details?result=0&id=" + id, own.details(id)}};
    }
    live = std::make_unique<page::LivePage>(request, kResources);
    for (const auto& [path, body] : expected) EXPECT_EQ(get(path).body, body) << path;
    const auto page = get("");
    EXPECT_THAT(page.body, HasSubstr("<title>"));
    for (const auto& [name, value] : Headers{{"Content-Security-Policy", "connect-src 'self'"},
                                             {"Content-Security-Policy", "frame-ancestors 'none'"},
                                             {"Cache-Control", "no-store"},
                                             {"X-Content-Type-Options", "nosniff"},
                                             {"X-Frame-Options", "DENY"},
                                             {"Referrer-Policy", "no-referrer"}})
        EXPECT_THAT(page.headers.at(name), HasSubstr(value)) << name;
}

TEST_F(Serve, TurnsStrangersAndNonsenseAway) {
    const auto own = "127.0.0.1:" + std::to_string(live->port());
    const auto wrong = std::string(live->token().size(), '0');
    const std::tuple<std::string, Headers, int> rows[] = {
        {under(""),
         {{"Host", "localhost:" + std::to_string(live->port())}, {"Origin", "http://" + own}},
         200},
        {under(""), {{"Host", "rebound.example:" + std::to_string(live->port())}}, 403},
        {under(""), {{"Host", "127.0.0.1:1"}}, 403},
        {under(""), {{"Origin", "http://elsewhere.example"}}, 403},
        {under(""), {{"Origin", "null"}}, 403},
        {under(""), {{"Origin", "https://" + own}}, 403},
        {under("roofs?result=0&operations=f"), {{"Range", "bytes=0-99999"}}, 416},
        {"/", {}, 404},
        {"/" + live->token(), {}, 404},
        {"/" + wrong + "/", {}, 404},
        {under("../" + live->token() + "/"), {}, 404},
        {under("%2e%2e/machine.json"), {}, 404},
        {under("roof"), {}, 405},
        {under("events?version=1x"), {}, 400},
        {under("chart?result=0&config=f-1-L9-all"), {}, 400},
        {under("chart?result=0"), {}, 400},
        {under("chart?result=0&config=f-1-L1-all&version=x"), {}, 400},
        {under("chart?result=1&config=f-1-L1-all"), {}, 400},
        {under("roofs?result=0&operations=%3Cb%3E%ff"), {}, 400},
        {under("details?result=0&id=" + std::string(300, '1')), {}, 400},
        {under("details?result=0&id=4711"), {}, 404},
        {under("chart?config=" + std::string(9000, 'f')), {}, 414},
    };
    for (const auto& [path, headers, status] : rows) {
        const auto answer = ask("GET", path, headers);
        EXPECT_EQ(answer.status, status) << path;
        EXPECT_EQ(answer.body.find(status == 200 ? "<title>" : R"({"error":")"), 0u) << answer.body;
    }
}

TEST_F(Serve, AnswersWhatIsNoRequest) {
    const auto port = std::to_string(live->port());
    const auto host = " HTTP/1.1\r\nHost: 127.0.0.1:" + port + "\r\n";
    const std::pair<std::string, std::string> rows[] = {
        {"\x16\x03\x01 GET / of another protocol\r\n\r\n", "400 "},
        {"GET " + under("") + host + "A: " + std::string(20000, 'a') + "\r\n\r\n", "431 "},
        {"GET " + under("") + " HTTP/1.1\r\n\r\n", "403 "},
        {"GET http://127.0.0.1" + under("") + host + "\r\n", "404 "},
        {"HEAD " + under("") + host + "\r\n", "405 "},
        {"GET " + under("") + host + "Content-Length: 5000\r\n\r\n", "413 "},
        {"GET " + under("") + host + "Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n", "411 "},
        {"GET " + under("") + host + "Host: elsewhere.example\r\n\r\n", "403 "},
        {"GET " + under("") + host + "Origin: http://127.0.0.1:" + port + "\r\nOrigin: null\r\n\r\n", "403 "},
        {"POST " + under("roof") + host + "X-Roofline-Token: " + live->token() +
             "\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n",
         "411 "},
    };
    for (const auto& [text, status] : rows)
        EXPECT_EQ(test::sayRaw(live->port(), text).find("HTTP/1.1 " + status), 0u) << text.substr(0, 60);
    const auto head = test::sayRaw(live->port(), rows[4].first);
    EXPECT_THAT(head, HasSubstr("\r\nAllow: GET\r\n"));
    EXPECT_EQ(head.find("\r\n\r\n"), head.size() - 4) << "without a body";
    // Each leaves its place to the next.
    for (int i = 0; i < 150; ++i)
        EXPECT_THAT(test::sayRaw(live->port(), "GET " + under("events") + host + "\r\n", true),
                    HasSubstr("text/event-stream"));
    EXPECT_EQ(get("").status, 200);
}

TEST_F(Serve, SetsRoofsForThoseWhoMay) {
    const std::string set =
        R"({"result":0,"id":6,"value":4e10,"threadCount":0,"packageCount":0,"single":false})";
    const auto before = get("roofs?result=0&operations=f").body;
    const std::tuple<std::string, Headers, int> rows[] = {
        {set, {{"Origin", "http://elsewhere.example"}}, 403},
        {set, {{"X-Roofline-Token", ""}}, 403},
        {set, {{"X-Roofline-Token", std::string(live->token().size(), '0')}}, 403},
        {set, {{"Content-Type", "text/plain"}}, 415},
        {set, {{"Content-Encoding", "gzip"}}, 415},
        {set + std::string(4096, ' '), {}, 413},
        {"", {}, 411},
        {"{\"result\":0,\"id\":6", {}, 400},
        {R"({"result":0,"id":6})", {}, 400},
        {R"({"result":0,"id":6,"value":-1})", {}, 400},
        {R"({"result":0,"id":6,"value":1e300})", {}, 400},
        {R"({"result":1,"id":6,"value":1})", {}, 400},
        {R"({"result":0,"id":4711,"value":1})", {}, 400},
        {R"({"result":0,"id":6,"value":1,"threads":4})", {}, 400},
    };
    for (const auto& [body, headers, status] : rows)
        EXPECT_EQ(post(body, headers).status, status) << body.substr(0, 60);
    EXPECT_EQ(ask("POST", under("roofs?result=0&operations=f"), {}, set).status, 405);
    EXPECT_EQ(embedded_host::readFile(machine), machineText);

    Listener listener(live->port(), under("events"));
    listener.waitFor(":\n\n");
    EXPECT_EQ(post(set).body, "{}");
    EXPECT_THAT(get("roofs?result=0&operations=f").body, HasSubstr(R"("id":6,"val":40000000000)"));
    EXPECT_EQ(post(R"({"result":0,"id":0,"value":null})").status, 200);
    EXPECT_EQ(get("roofs?result=0&operations=f").body, before);
    std::this_thread::sleep_for(2s);  // for a change that would be taken for a foreign one
    EXPECT_THAT(get("").body, HasSubstr("<title>"));
    EXPECT_THAT(listener.waitFor("data: 3"), AllOf(HasSubstr("data: 3"), Not(HasSubstr("data: 4"))));

    file("result.json", "{");
    const auto halfDone = post(set);
    EXPECT_EQ(halfDone.status, 409) << "kept, but not to be shown";
    EXPECT_THAT(halfDone.body, HasSubstr("result.json"));
    std::filesystem::remove(machine);
    EXPECT_EQ(post(set).status, 409);
    live.reset();
}

TEST_F(Serve, LoadsOnceForAnotherMachine) {
    file("other.json", machineText);
    auto changed = resultText;
    changed.replace(changed.find("\"machine.json"), 13, "\"other.json");
    Listener listener(live->port(), under("events"));
    listener.waitFor(":\n\n");
    file("result.json", changed);
    listener.waitFor("data: 2");
    std::this_thread::sleep_for(2s);  // for a second load
    EXPECT_THAT(listener.waitFor("data: 2"), AllOf(HasSubstr("data: 2"), Not(HasSubstr("data: 3"))));
    live.reset();
}

// Tells the program to end, once its address is out.
class Interrupter : public std::stringbuf {
protected:
    int sync() override { return str().find("http://") == std::string::npos ? 0 : ::raise(SIGTERM); }
};

TEST_F(Serve, EndsWhenItIsTold) {
    if (!page::resources()) GTEST_SKIP() << "no page in this build";
    live.reset();
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto serve = [this] {
        Interrupter interrupter;
        std::ostream out(&interrupter), err(nullptr);
        Console console{out, err};
        std::_Exit(runServe(request, console));
    };
    EXPECT_EXIT(serve(), ::testing::ExitedWithCode(kDone), "");
}

TEST_F(Serve, CutsOffThoseWhoNeverEnd) {
    const auto port = live->port();
    const auto half = "GET " + under("") + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\nA: ";
    const test::Talker slow(port, half, 200ms), answered(port, "GET / \r\n\r\n", 0ms);
    std::this_thread::sleep_for(3s);
    EXPECT_TRUE(answered.isCutOff()) << "a second after its answer";
    EXPECT_FALSE(slow.isCutOff());
    std::this_thread::sleep_for(4s);
    EXPECT_TRUE(slow.isCutOff()) << "five seconds after its first word";

    const test::Talker late(port, half, 200ms);
    std::this_thread::sleep_for(200ms);
    const auto start = std::chrono::steady_clock::now();
    live.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1500ms) << "sooner than the limit that ends all";
}

TEST_F(Serve, TellsChangesFaultsAndItsEnd) {
    std::vector<std::unique_ptr<Listener>> tabs;
    for (int i = 0; i < 12; ++i)
        tabs.push_back(std::make_unique<Listener>(live->port(), under("events?version=1")));
    file("result.json", "{");
    EXPECT_THAT(tabs.front()->waitFor("event: fault"), HasSubstr("result.json"));
    EXPECT_EQ(get("roofs?result=0&operations=f").status, 200) << "what was read stays";
    auto changed = resultText;
    changed.replace(changed.find("\"name\": \""), 9, "\"name\": \"other_");
    file("result.json", changed);
    for (const auto& tab : tabs) EXPECT_THAT(tab->waitFor("data: 2"), HasSubstr("event: changed"));
    EXPECT_THAT(get("").body, HasSubstr("<title>other_"));
    for (const auto* const path :
         {"chart?result=0&config=f-1-L1-all", "roofs?result=0&operations=f", "details?result=0&id=6"})
        for (const auto& [version, status] : {std::pair("", 200), {"&version=2", 200}, {"&version=1", 409}})
            EXPECT_EQ(get(std::string(path) + version).status, status) << path << version;
    Listener late(live->port(), under("events?version=1"));
    EXPECT_THAT(late.waitFor("data: 2"), HasSubstr("event: changed")) << "changed since its page was read";

    const auto start = std::chrono::steady_clock::now();
    live.reset();
    for (const auto& tab : tabs) EXPECT_THAT(tab->waitFor("END"), HasSubstr("END"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
}

TEST(EngineThread, TellsThoseWhoWaitWhenItStops) {
    std::promise<void> started, goOn;
    std::atomic<int> run = 0, dropped = 0;
    const page::EngineThread::Job counted{[&] { ++run; }, [&] { ++dropped; }};
    page::EngineThread engine({[] {}, [] {}});
    engine.post({[&] { started.set_value(), goOn.get_future().wait(); }, [] {}});
    started.get_future().wait();
    engine.post(counted);
    auto stopping = std::async(std::launch::async, [&] { engine.stop(); });
    while (dropped == 0) std::this_thread::yield();
    EXPECT_NE(stopping.wait_for(0ms), std::future_status::ready) << "what runs is waited for";
    goOn.set_value();
    stopping.get();
    engine.post(counted);
    EXPECT_EQ(dropped, 2);
    EXPECT_EQ(run, 0);
}

TEST_F(Serve, AnswersThoseWhoWaitWhenItStops) {
    page::Bulletin bulletin;
    page::ServedResults results({request.source, {}, {}}, kResources, bulletin);
    page::EngineThread engine({[] {}, [] {}});
    const page::Server server({engine, results, bulletin, kResources, "token", false}, 0);
    std::promise<void> started, goOn;
    engine.post({[&] { started.set_value(), goOn.get_future().wait(); }, [] {}});
    started.get_future().wait();
    auto waiting = std::async(std::launch::async, [&] {
        return test::askHttp(server.port(), "GET", "/token/chart?result=0&config=f-1-L1-all").status;
    });
    std::this_thread::sleep_for(300ms);
    auto stopping = std::async(std::launch::async, [&] { engine.stop(); });
    EXPECT_EQ(waiting.wait_for(20s), std::future_status::ready) << "though another job is run";
    EXPECT_EQ(waiting.get(), 503);
    goOn.set_value();
    stopping.get();
}

TEST(Query, IsTakenFromAnAddress) {
    const page::Query query("/a%20/b?x=1%2b2+3&y&e=5&%7a==&&e=" + std::string(256, 'e') +
                            "&l=" + std::string(257, 'l'));
    EXPECT_EQ(query.value("x"), "1+2 3");
    EXPECT_EQ(query.value("y"), "");
    EXPECT_EQ(query.value("z"), "=");
    for (const auto* const name : {"a", "e", "l"}) EXPECT_THROW(query.value(name), UsageError) << name;
    EXPECT_TRUE(query.has("e"));
    EXPECT_FALSE(query.has("a"));
    for (const auto* const target : {"?%", "?a=%4", "?a=%4g", "?a=%-1"})
        EXPECT_THROW(page::Query{target}, UsageError) << target;
}

}  // namespace
}  // namespace cli
