#include "cli/page/bulletin.h"

#include <utility>

namespace cli::page {

News Bulletin::read() const {
    const std::lock_guard lock(m_mutex);
    return m_news;
}

void Bulletin::setListener(std::function<void()> hear) {
    const std::lock_guard lock(m_mutex);
    m_hear = std::move(hear);
}

template <class Change>
void Bulletin::change(Change&& change) {
    const std::lock_guard lock(m_mutex);
    change(m_news);
    if (m_hear) m_hear();
}

void Bulletin::publish(int version, std::string page) {
    auto text = std::make_shared<const std::string>(std::move(page));
    change([&](News& news) {
        news.version = version;
        news.page = std::move(text);
        news.fault.clear();
    });
}

void Bulletin::tell(std::string fault) {
    change([&](News& news) { news.fault = std::move(fault); });
}

void Bulletin::close() {
    change([](News& news) { news.isClosed = true; });
}

}  // namespace cli::page
