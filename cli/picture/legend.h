// What colours and sizes of marks mean.
#pragma once

#include "cli/chart_document.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace cli::picture {

// Groups points by what tells most of them apart: memory level, else loop type, else vectorised or not.
class ColourKey {
public:
    struct Entry {
        std::string text;
        std::string colour;
        std::size_t count = 0;
    };
    explicit ColourKey(const ChartDocument& document);
    const char* heading() const;
    const std::vector<Entry>& entries() const { return m_entries; }
    const std::string& colour(const ChartPoint& point) const;

private:
    std::string groupOf(const ChartPoint& point) const;

    enum class By { Level, Type, Vectorised };
    By m_by = By::Vectorised;
    std::vector<Entry> m_entries;
    std::map<std::string, std::size_t> m_index;
};

// Area by share of time.
class SizeKey {
public:
    explicit SizeKey(const ChartDocument& document);
    static bool isCrowded(const ChartDocument& document);
    double radius(const ChartPoint& point) const;
    double radius(double share) const;
    double largest() const { return m_largest; }
    // Round shares that make telling examples, descending; none when no share is known.
    std::vector<double> examples() const;

private:
    double m_smallest, m_largest;
    double m_topShare = 0.0;
};

}  // namespace cli::picture
