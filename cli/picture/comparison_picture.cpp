// Lays a comparison out: an arrow a pair, a hollow mark a row without a partner.
#include "cli/picture/comparison_picture.h"

#include "embedded_host/embedded_host.h"

#include "cli/picture/sheet.h"
#include "cli/picture/svg.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

namespace cli {
namespace {

using namespace picture;

constexpr std::size_t kNameLength = 32;
constexpr double kRadius = 5.0, kPad = 16.0;

struct ChangeStyle {
    Change change;
    const char* colour;
    const char* text;
};
// As the legend lists them. Told apart by people with any kind of colour vision.
constexpr std::array<ChangeStyle, 4> kChanges{{{Change::Slower, "#D55E00", "slower"},
                                               {Change::Faster, "#0072B2", "faster"},
                                               {Change::Noise, "#7F7F7F", "within {} %"},
                                               {Change::Unknown, "#B4BCC5", "time unknown"}}};

struct SideStyle {
    std::vector<RowLine> Comparison::*rows;
    const char* colour;
    const char* text;
};
constexpr std::array<SideStyle, 2> kSides{
    {{&Comparison::beforeOnly, "#20262D", "base only"}, {&Comparison::afterOnly, "#009E73", "new only"}}};

ChartPoint pointOf(const RowLine& row) {
    ChartPoint point;
    point.x = std::log10(*row.intensity);
    point.y = std::log10(*row.performance);
    return point;
}

// What the frame must hold, in the form in which the axes take it.
ChartDocument pointsOf(const Comparison& comparison) {
    ChartDocument document;
    for (const auto& pair : comparison.pairs)
        if (pair.hasBothPoints())
            document.points.insert(document.points.end(), {pointOf(pair.before), pointOf(pair.after)});
    for (const auto& side : kSides)
        for (const auto& row : comparison.*side.rows)
            if (row.performance) document.points.push_back(pointOf(row));
    return document;
}

std::vector<Roof> allRoofs(const std::vector<RoofSet>& sets) {
    std::vector<Roof> roofs;
    for (const auto& set : sets) roofs.insert(roofs.end(), set.roofs.begin(), set.roofs.end());
    return roofs;
}

std::string measuresOf(const RowLine& row) {
    return fmt::format("{} s, {} GOP/s at {} OP/byte, limit: {}",
                       row.seconds ? shortNumber(*row.seconds) : "N/A", shortNumber(*row.performance),
                       shortNumber(*row.intensity), row.limit ? cleanText(row.limit->name) : "N/A");
}

class ComparisonLayout {
public:
    ComparisonLayout(const Comparison& comparison, const std::vector<RoofSet>& roofs,
                     const PictureOptions& options)
        : m_comparison(comparison),
          m_options(options),
          m_byDelta(comparison.pairs),
          m_sheet(options, note(comparison), visibleRanges(pointsOf(comparison), allRoofs(roofs)), kPad,
                  "Arithmetic intensity [OP/byte]", "Performance [GOP/s]"),
          m_picture(m_sheet.picture()) {
        sortPairs(m_byDelta, PairOrder::Delta);
        addRoofs(roofs);
        addArrows();
        addMarks();
        addLabels();
        addLegend(roofs);
    }
    std::string write() const { return toSvg(m_picture); }

private:
    static std::string note(const Comparison& comparison) {
        std::size_t drawn = 0, rows = 0, drawnRows = 0;
        for (const auto& pair : comparison.pairs) drawn += pair.hasBothPoints();
        for (const auto& side : kSides)
            for (const auto& row : comparison.*side.rows) ++rows, drawnRows += row.performance.has_value();
        auto text = fmt::format("{} pairs: {} drawn, {} without a point on one side or both",
                                comparison.pairs.size(), drawn, comparison.pairs.size() - drawn);
        if (rows > 0)
            text += fmt::format("; {} rows without a partner: {} drawn, {} without a point", rows, drawnRows,
                                rows - drawnRows);
        return text;
    }

    void addRoofs(const std::vector<RoofSet>& sets) {
        for (const auto& set : sets) m_sheet.addRoofs(set.roofs, &set != &sets.front());
    }

    Point place(const RowLine& row) const {
        const auto point = pointOf(row);
        return m_sheet.onScreen(point.x, point.y);
    }

    void addArrows() {
        constexpr std::size_t kMany = 500;
        for (auto pair = m_byDelta.rbegin(); pair != m_byDelta.rend(); ++pair)
            if (pair->hasBothPoints())
                m_picture.arrows.push_back(
                    {{place(pair->before), place(pair->after)}, colourOf(*pair), hoverOf(*pair)});
        m_picture.isCrowded = m_picture.arrows.size() > kMany;
    }

    const char* colourOf(const ComparedPair& pair) const {
        const auto change = m_comparison.changeOf(pair);
        return std::find_if(kChanges.begin(), kChanges.end(),
                            [change](const ChangeStyle& each) { return each.change == change; })
            ->colour;
    }

    static std::string hoverOf(const ComparedPair& pair) {
        const auto factor = pair.speedUp();
        return fmt::format("{}\nbase: {}\nnew: {}\nSpeed-up: {}\nMatch: {} %", cleanText(nameOf(pair)),
                           measuresOf(pair.before), measuresOf(pair.after),
                           factor ? shortNumber(*factor) : "N/A", shortNumber(pair.match));
    }

    void addMarks() {
        for (const auto& side : kSides)
            for (const auto& row : m_comparison.*side.rows)
                if (row.performance)
                    m_picture.marks.push_back(
                        {place(row), kRadius, side.colour,
                         fmt::format("{}\n{}: {}", cleanText(row.name), side.text, measuresOf(row)), true});
    }

    void addLabels() {
        LabelPlacer placer(m_picture.frame);
        for (const auto& arrow : m_picture.arrows) {
            placer.avoid(arrow.line);
            placer.avoid(arrow.line.from, kRadius);
            placer.avoid(arrow.line.to, kRadius);
        }
        for (const auto& mark : m_picture.marks) placer.avoid(mark.center, mark.radius);
        m_sheet.nameRoofs(placer);
        std::size_t named = 0;
        for (const auto& pair : m_byDelta) {
            const auto change = m_comparison.changeOf(pair);
            if (named == m_options.namedPoints) break;
            if (change == Change::Noise || !pair.hasBothPoints()) continue;
            ++named;
            const auto factor = pair.speedUp();
            const auto name = shorten(cleanText(nameOf(pair)), kNameLength);
            m_sheet.keep(placer.placeAtMark(
                factor ? fmt::format("{}  {}x", name, embedded_host::formatNumber(*factor, 2)) : name,
                place(pair.after), kRadius, Label::Kind::Point));
        }
    }

    void addLegend(const std::vector<RoofSet>& sets) {
        using Kind = LegendRow::Kind;
        m_sheet.addHeading("Base to new, by time");
        for (const auto& style : kChanges) addCounted(Kind::Arrow, style, countDrawn(style.change));
        for (const auto& side : kSides) {
            std::size_t count = 0;
            for (const auto& row : m_comparison.*side.rows) count += row.performance.has_value();
            addCounted(Kind::Hollow, side, count);
        }
        if (sets.size() > 1) {
            m_sheet.addHeading("Roofs, the selected ones");
            for (const auto& set : sets)
                m_sheet.addRow(&set == &sets.front() ? Kind::Roof : Kind::OtherRoof, cleanText(set.of));
        }
        m_sheet.listUnnamedRoofs();
    }

    std::size_t countDrawn(Change change) const {
        std::size_t count = 0;
        for (const auto& pair : m_comparison.pairs)
            count += pair.hasBothPoints() && m_comparison.changeOf(pair) == change;
        return count;
    }

    template <class Style>
    void addCounted(LegendRow::Kind kind, const Style& style, std::size_t count) {
        if (count == 0) return;
        const auto text = fmt::format(fmt::runtime(style.text), shortNumber(m_comparison.noise));
        m_sheet.addRow(kind, fmt::format("{} ({})", text, count), style.colour, kRadius);
    }

    const Comparison& m_comparison;
    const PictureOptions& m_options;
    std::vector<ComparedPair> m_byDelta;  // the largest change first
    Sheet m_sheet;
    Picture& m_picture;
};

}  // namespace

std::string drawComparison(const Comparison& comparison, const std::vector<RoofSet>& roofs,
                           const PictureOptions& options) {
    return ComparisonLayout(comparison, roofs, options).write();
}

}  // namespace cli
