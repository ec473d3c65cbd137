// The results behind a served page: opened, watched, and opened anew when their files change.
#pragma once

#include "cli/page/bulletin.h"
#include "cli/page/page_file.h"
#include "cli/page/result.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace cli::page {

// All members belong to the engine's thread once `open` was called there.
class ServedResults {
public:
    struct Request {
        ResultSource source;
        std::string compare;  // the new result; empty: none
        std::string token;
    };
    // Tells everything to the bulletin, and gives up long work once that is closed. Both outlive this.
    ServedResults(Request request, const Resources& resources, Bulletin& bulletin);

    // Reads the files and publishes the first page. Throws as `openSession` does.
    void open();
    // Publishes a new page when the files have changed and stay as they are. When they can't be read, what
    // was shown stays and the bulletin tells why.
    void lookAgain();
    void close();

    // Of the page that was published last.
    int version() const { return m_version; }
    // `index` 0, or 1 of a comparison.
    const Result& at(std::size_t index) const { return m_results.at(index); }

    // Does what the body of `POST roof` says, then publishes a page with the new roofs. Throws UsageError for
    // a body that can't be meant, std::runtime_error when the values can't be kept (nothing has changed then)
    // or the page can't be made anew (the values are kept, and the text says so).
    void changeRoof(const std::string& body);

private:
    // What tells that a file was written: time in ticks of the file system's clock, bytes, inode.
    struct Stamp {
        std::int64_t time = 0;
        std::uintmax_t size = 0;
        std::uint64_t inode = 0;
        bool operator==(const Stamp&) const = default;
    };
    using Stamps = std::map<std::string, Stamp>;
    static Stamp stampOf(const std::string& path);
    Stamps stamps() const;
    // Why what was shown stays; empty: it doesn't.
    std::string reload();

    const Request m_request;
    const Resources& m_resources;
    Bulletin& m_bulletin;
    std::vector<Result> m_results;
    int m_version = 0;
    Stamps m_known, m_seen;  // when the files were read, and when they were last looked at
    std::chrono::steady_clock::time_point m_read;
};

}  // namespace cli::page
