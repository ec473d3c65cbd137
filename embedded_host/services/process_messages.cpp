// The messages of this process: chosen before the first look-up, fixed from then on.
#include "embedded_host/embedded_host.h"
#include "embedded_host/services/message_catalogue.h"

#include <filesystem>
#include <mutex>
#include <system_error>

namespace embedded_host {
namespace {

std::string programFolder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string();
}

// What the catalogue will be made of.
class Choice {
public:
    bool setLanguage(const std::string& language) {
        const std::lock_guard lock(m_mutex);
        if (m_isFixed) return false;
        auto catalogue = MessageCatalogue::load(language, m_folder);
        if (!catalogue) return false;
        m_language = language;
        m_catalogue = std::move(catalogue);
        return true;
    }
    void setFolder(const std::string& folder) {
        const std::lock_guard lock(m_mutex);
        if (m_isFixed) return;
        m_folder = folder;
        m_catalogue.reset();
    }
    std::vector<std::string> languages() {
        const std::lock_guard lock(m_mutex);
        return MessageCatalogue::languages(m_folder);
    }
    std::shared_ptr<const MessageCatalogue> fix() {
        const std::lock_guard lock(m_mutex);
        m_isFixed = true;
        // The language may have gone with the folder that had it.
        if (!m_catalogue) m_catalogue = MessageCatalogue::load(m_language, m_folder);
        if (!m_catalogue) m_catalogue = MessageCatalogue::load("en", m_folder);
        return m_catalogue;
    }

private:
    std::mutex m_mutex;
    std::string m_language = "en";
    std::string m_folder = programFolder();
    std::shared_ptr<const MessageCatalogue> m_catalogue;
    bool m_isFixed = false;
};

Choice& choice() {
    static Choice instance;
    return instance;
}

// A handle that may be had early, since only its first look-up fixes the language.
class ProcessCatalogue final : public data_models2::IMessageCatalogue {
public:
    bool has(const std::string& id) const override { return catalogue().has(id); }
    std::string format(const std::string& id,
                       const std::vector<data_models2::variant_t>& arguments) const override {
        return catalogue().format(id, arguments);
    }

private:
    static const MessageCatalogue& catalogue() {
        static const auto fixed = choice().fix();
        return *fixed;
    }
};

}  // namespace

bool setLanguage(const std::string& language) { return choice().setLanguage(language); }
std::vector<std::string> availableLanguages() { return choice().languages(); }
void setMessageFolder(const std::string& folder) { choice().setFolder(folder); }

}  // namespace embedded_host

namespace data_models2 {

std::shared_ptr<const IMessageCatalogue> loadMessageCatalogue(const std::string& name) {
    static const auto catalogue = std::make_shared<const embedded_host::ProcessCatalogue>();
    return name == "data_models.roofline" ? catalogue : nullptr;
}

}  // namespace data_models2
