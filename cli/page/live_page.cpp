#include "cli/page/live_page.h"

#include <future>
#include <memory>

namespace cli::page {

LivePage::LivePage(const ServeRequest& request, const Resources& resources)
    : m_token(makeToken()),
      m_results({request.source, request.compare, m_token}, resources, m_bulletin),
      m_engine({[this] { m_results.lookAgain(); }, [this] { m_results.close(); }}) {
    // Shared: it isn't over there yet when it is known here.
    const auto opening = std::make_shared<std::packaged_task<void()>>([this] { m_results.open(); });
    m_engine.post({[opening] { (*opening)(); }, [] {}});
    opening->get_future().get();
    m_server = std::make_unique<Server>(
        Served{m_engine, m_results, m_bulletin, resources, m_token, !request.compare.empty()}, request.port);
}

// Who waits is told first: the server ends once its last answer is out.
LivePage::~LivePage() {
    m_bulletin.close();
    m_engine.stop();
}

}  // namespace cli::page
