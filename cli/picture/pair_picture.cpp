// Lays pairs out: an arrow a pair, a hollow mark a row without a partner.
#include "cli/picture/pair_picture.h"

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

struct Side {
    std::vector<RowLine> Comparison::*rows;
    std::string PairLook::*text;
    const char* colour;
};
constexpr std::array<Side, 2> kSides{{{&Comparison::beforeOnly, &PairLook::beforeOnly, "#20262D"},
                                      {&Comparison::afterOnly, &PairLook::afterOnly, "#009E73"}}};

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

class PairLayout {
public:
    PairLayout(const Comparison& comparison, const std::vector<RoofSet>& roofs, const PictureOptions& options,
               const PairLook& look)
        : m_comparison(comparison),
          m_options(options),
          m_look(look),
          m_pairs(comparison.pairs),
          m_sheet(options, note(), visibleRanges(pointsOf(comparison), allRoofs(roofs)), kPad,
                  fmt::format("{} [{}/byte]", look.intensity, look.operations),
                  fmt::format("Performance [G{}/s]", look.operations)),
          m_picture(m_sheet.picture()) {
        sortPairs(m_pairs, look.order);
        addRoofs(roofs);
        addArrows();
        addMarks();
        addLabels();
        addLegend(roofs);
    }
    std::string write() const { return toSvg(m_picture); }

private:
    std::string note() const {
        const auto all = m_comparison.pairs.size();
        std::size_t drawn = 0;
        for (const auto& pair : m_comparison.pairs) drawn += pair.hasBothPoints();
        auto text = fmt::format("{} pairs: {} drawn, {} without a point on one side or both", all, drawn,
                                all - drawn);
        for (const auto& side : kSides)
            if (const auto& rows = m_comparison.*side.rows; !rows.empty())
                text += fmt::format("; {} {}: {} drawn, {} without a point", rows.size(), m_look.*side.text,
                                    countPoints(rows), rows.size() - countPoints(rows));
        return m_options.note.empty() ? text : text + "; " + m_options.note;
    }

    static std::size_t countPoints(const std::vector<RowLine>& rows) {
        return static_cast<std::size_t>(std::count_if(
            rows.begin(), rows.end(), [](const RowLine& row) { return row.performance.has_value(); }));
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
        for (auto pair = m_pairs.rbegin(); pair != m_pairs.rend(); ++pair) {
            if (!pair->hasBothPoints()) continue;
            const auto& colour = m_look.arrows.at(m_look.arrowOf(*pair)).colour;
            const Segment line{place(pair->before), place(pair->after)};
            m_picture.arrows.push_back({m_look.marksEnds ? upToMark(line) : line, colour, hoverOf(*pair)});
            if (m_look.marksEnds) m_picture.marks.push_back({line.to, kRadius, colour, hoverOf(*pair)});
        }
        m_picture.isCrowded = m_picture.arrows.size() > kMany;
        m_picture.hasThinArrows = m_look.marksEnds;
    }

    static Segment upToMark(const Segment& line) {
        const double size = std::hypot(line.to.x - line.from.x, line.to.y - line.from.y);
        return size > kRadius ? Segment{line.from, pointAt(line, 1.0 - kRadius / size)} : line;
    }

    std::string measuresOf(const RowLine& row) const {
        return fmt::format("{} s, {} G{}/s at {} {}/byte{}", row.seconds ? shortNumber(*row.seconds) : "N/A",
                           shortNumber(*row.performance), m_look.operations, shortNumber(*row.intensity),
                           m_look.operations, cleanText(m_look.remarkOf(row)));
    }

    std::string hoverOf(const ComparedPair& pair) const {
        const auto factor = pair.speedUp();
        return fmt::format("{}\n{}: {}\n{}: {}\nSpeed-up: {}\n{}", cleanText(nameOf(pair)), m_look.before,
                           measuresOf(pair.before), m_look.after, measuresOf(pair.after),
                           factor ? shortNumber(*factor) : "N/A", cleanText(m_look.lastLineOf(pair)));
    }

    void addMarks() {
        for (const auto& side : kSides)
            for (const auto& row : m_comparison.*side.rows)
                if (row.performance)
                    m_picture.marks.push_back(
                        {place(row), kRadius, side.colour,
                         fmt::format("{}\n{}: {}", cleanText(row.name), m_look.*side.text, measuresOf(row)),
                         true});
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
        for (const auto& pair : m_pairs) {
            if (named == m_options.namedPoints) break;
            if (!pair.hasBothPoints() || !m_look.isNamed(pair)) continue;
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
        m_sheet.addHeading(m_look.heading);
        std::vector<std::size_t> counts(m_look.arrows.size());
        for (const auto& pair : m_comparison.pairs)
            if (pair.hasBothPoints()) ++counts.at(m_look.arrowOf(pair));
        for (std::size_t i = 0; i < counts.size(); ++i)
            addCounted(Kind::Arrow, m_look.arrows[i].text, m_look.arrows[i].colour, counts[i]);
        if (!m_look.legendNote.empty()) m_sheet.addRow(Kind::Text, m_look.legendNote);
        for (const auto& side : kSides)
            addCounted(Kind::Hollow, m_look.*side.text, side.colour, countPoints(m_comparison.*side.rows));
        if (sets.size() > 1) {
            m_sheet.addHeading("Roofs, the selected ones");
            for (const auto& set : sets)
                m_sheet.addRow(&set == &sets.front() ? Kind::Roof : Kind::OtherRoof, cleanText(set.of));
        }
        m_sheet.listUnnamedRoofs();
    }

    void addCounted(LegendRow::Kind kind, const std::string& text, const std::string& colour,
                    std::size_t count) {
        if (count > 0) m_sheet.addRow(kind, fmt::format("{} ({})", cleanText(text), count), colour, kRadius);
    }

    const Comparison& m_comparison;
    const PictureOptions& m_options;
    const PairLook& m_look;
    std::vector<ComparedPair> m_pairs;  // in the look's order
    Sheet m_sheet;
    Picture& m_picture;
};

}  // namespace

std::string drawPairs(const Comparison& pairs, const std::vector<RoofSet>& roofs,
                      const PictureOptions& options, const PairLook& look) {
    return PairLayout(pairs, roofs, options, look).write();
}

}  // namespace cli
