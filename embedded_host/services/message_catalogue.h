// The texts of one language: the built-in ones, overridden by those of a file.
#pragma once

#include "host_interfaces/host_functions.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace embedded_host {

// Replaces %1 to %3 by the text forms of the arguments (empty where there is none) and %% by %. Any other %
// stays, and arguments are not searched for placeholders.
std::string formatMessage(const std::string& text, const std::vector<data_models2::variant_t>& arguments);

class MessageCatalogue final : public data_models2::IMessageCatalogue {
public:
    using Texts = std::unordered_map<std::string, std::string>;

    // The built-in texts of the language and those of `folder`/messages/<language>.json above them; what both
    // lack is English. Null when there is neither. A file that isn't an object of texts is ignored with an
    // assertion report.
    static std::shared_ptr<const MessageCatalogue> load(const std::string& language,
                                                        const std::string& folder);
    // Those that `load` has texts for, ascending.
    static std::vector<std::string> languages(const std::string& folder);

    explicit MessageCatalogue(Texts texts) : m_texts(std::move(texts)) {}
    bool has(const std::string& id) const override { return m_texts.count(id) != 0; }
    std::string format(const std::string& id,
                       const std::vector<data_models2::variant_t>& arguments) const override;
    const Texts& texts() const { return m_texts; }

private:
    const Texts m_texts;
};

}  // namespace embedded_host
