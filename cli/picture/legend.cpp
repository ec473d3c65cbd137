// Colours and sizes of marks.
#include "cli/picture/legend.h"

#include "cli/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

namespace cli::picture {
namespace {

// Told apart by people with any kind of colour vision; the last one stands for all further groups.
constexpr std::array<const char*, 7> kPalette{"#0072B2", "#D55E00", "#009E73", "#CC79A7",
                                              "#E69F00", "#56B4E9", "#7F7F7F"};
constexpr std::size_t kMostTypes = kPalette.size() - 1;

// Many marks are drawn smaller.
constexpr std::size_t kMany = 500;
constexpr double kSmallest = 4.0, kSmallestOfMany = 2.5, kLargest = 22.0;

}  // namespace

ColourKey::ColourKey(const ChartDocument& document) {
    std::set<std::string> types;
    for (const auto& point : document.points) types.insert(point.type);
    if (document.levels().size() > 1) {
        m_by = By::Level;
    } else if (types.size() > 1 && types.size() <= kMostTypes) {
        m_by = By::Type;
    }
    for (const auto& point : document.points) {
        const auto text = groupOf(point);
        auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                  [&](const Entry& each) { return each.text == text; });
        if (entry == m_entries.end()) entry = m_entries.insert(entry, {text, {}, 0});
        ++entry->count;
    }
    // Levels keep the document's order, innermost first.
    if (m_by != By::Level)
        std::stable_sort(m_entries.begin(), m_entries.end(),
                         [](const Entry& a, const Entry& b) { return a.count > b.count; });
    if (m_entries.size() > kPalette.size()) {
        auto& rest = m_entries[kMostTypes];
        for (auto i = kMostTypes + 1; i < m_entries.size(); ++i) rest.count += m_entries[i].count;
        rest.text = "others";
        m_entries.resize(kPalette.size());
    }
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        m_entries[i].colour = kPalette[i];
        m_index[m_entries[i].text] = i;
    }
}

const char* ColourKey::heading() const {
    static constexpr std::array<const char*, 3> kHeadings{"Memory level", "Loop type", "Code"};
    return kHeadings.at(static_cast<std::size_t>(m_by));
}

std::string ColourKey::groupOf(const ChartPoint& point) const {
    if (m_by == By::Level) return cleanText(point.level);
    if (m_by == By::Type) return point.type.empty() ? "no type" : cleanText(point.type);
    if (!point.vectorised) return "vectorisation unknown";
    return *point.vectorised ? "vectorised" : "not vectorised";
}

const std::string& ColourKey::colour(const ChartPoint& point) const {
    const auto found = m_index.find(groupOf(point));
    return found == m_index.end() ? m_entries.back().colour : m_entries[found->second].colour;
}

SizeKey::SizeKey(const ChartDocument& document)
    : m_smallest(isCrowded(document) ? kSmallestOfMany : kSmallest), m_largest(kLargest) {
    for (const auto& point : document.points) m_topShare = std::max(m_topShare, point.share.value_or(0.0));
}

bool SizeKey::isCrowded(const ChartDocument& document) { return document.points.size() > kMany; }

double SizeKey::radius(const ChartPoint& point) const { return radius(point.share.value_or(0.0)); }

double SizeKey::radius(double share) const {
    if (m_topShare <= 0.0 || share <= 0.0) return m_smallest;
    return std::clamp(m_largest * std::sqrt(share / m_topShare), m_smallest, m_largest);
}

std::vector<double> SizeKey::examples() const {
    static constexpr std::array<double, 13> kRound{1.0,  0.5,  0.2,  0.1,  0.05, 0.02, 0.01,
                                                   5e-3, 2e-3, 1e-3, 5e-4, 2e-4, 1e-4};
    std::vector<double> found;
    for (const double share : kRound) {
        if (share > m_topShare || found.size() == 3) continue;
        // A third of the last one's area or less: sizes that the eye tells apart.
        if (found.empty() || share <= found.back() / 3) found.push_back(share);
    }
    return found;
}

}  // namespace cli::picture
