// Lays the chart out on its sheet: marks, labels, legend, the reason of an empty chart.
#include "cli/picture/layout.h"

#include "cli/chart_table.h"
#include "cli/picture/legend.h"
#include "cli/picture/sheet.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace cli::picture {
namespace {

constexpr std::size_t kNameLength = 36;
constexpr double kRoom = 6.0;  // between the outermost mark and the frame, pixels

std::string captionOf(const std::string& name, const std::string& measure) {
    return cleanText(measure.empty() ? name : fmt::format("{} [{}]", name, measure));
}

std::string percent(double share) { return shortNumber(share * 100.0) + " %"; }

// Everything that the steps of one layout share.
class Layout {
public:
    Layout(const ChartDocument& document, const std::vector<Roof>& roofs,
           const std::vector<UnplacedRows>& unplaced, const PictureOptions& options)
        : m_document(document),
          m_options(options),
          m_colours(document),
          m_sizes(document),
          m_sheet(options,
                  cleanText(countSentence(document.rowCount(), unplaced) +
                            (options.note.empty() ? "" : "; " + options.note)),
                  visibleRanges(document, roofs), m_sizes.largest() + kRoom,
                  captionOf(document.nameX, document.measureX), captionOf(document.nameY, document.measureY)),
          m_picture(m_sheet.picture()) {
        placeMarks();
        m_sheet.addRoofs(roofs);
        placeLabels();
        writeLegend();
        writeMessage();
    }
    Picture take() { return std::move(m_picture); }

private:
    void placeMarks() {
        m_picture.isCrowded = SizeKey::isCrowded(m_document);
        std::map<std::string, Point> lastOfRow;
        for (const auto& point : m_document.points) {
            const auto center = m_sheet.onScreen(point.x, point.y);
            m_picture.marks.push_back(
                {center, m_sizes.radius(point), m_colours.colour(point), hoverOf(point)});
            if (point.id.empty()) continue;
            const auto [last, isFirst] = lastOfRow.try_emplace(point.id, center);
            if (!isFirst) m_picture.ties.push_back({last->second, center});
            last->second = center;
        }
        for (const auto& total : m_document.totals)
            m_picture.totals.push_back(
                {m_sheet.onScreen(total.x, total.y), kTotalRadius, {}, hoverOf(total)});
    }

    std::string coordinatesOf(double x, double y) const {
        return fmt::format("{}: {} {}\n{}: {} {}", cleanText(m_document.nameX),
                           shortNumber(std::pow(10.0, x)), cleanText(m_document.measureX),
                           cleanText(m_document.nameY), shortNumber(std::pow(10.0, y)),
                           cleanText(m_document.measureY));
    }

    std::string hoverOf(const ChartPoint& point) const {
        auto text = cleanText(point.name);
        if (!point.location.empty()) text += '\n' + cleanText(point.location);
        text += '\n' + coordinatesOf(point.x, point.y);
        text += "\nShare of time: " + (point.share ? percent(*point.share) : std::string("N/A"));
        if (point.seconds) text += fmt::format(" ({} s)", shortNumber(*point.seconds));
        if (!point.level.empty()) text += "\nMemory level: " + cleanText(point.level);
        if (!point.type.empty()) text += "\nType: " + cleanText(point.type);
        return text;
    }

    std::string hoverOf(const ChartTotal& total) const {
        return fmt::format("Program total: {}\n{}\n{}", cleanText(total.name), cleanText(total.description),
                           coordinatesOf(total.x, total.y));
    }

    void placeLabels() {
        LabelPlacer placer(m_picture.frame);
        for (const auto& mark : m_picture.marks) placer.avoid(mark.center, mark.radius);
        for (const auto& tie : m_picture.ties) placer.avoid(tie);
        for (const auto& total : m_picture.totals) placer.avoid(total.center, kTotalRadius);
        m_sheet.nameRoofs(placer);
        for (std::size_t i = 0; i < m_picture.totals.size(); ++i) {
            const bool several = m_picture.totals.size() > 1;
            const auto text = several ? "Total " + shorten(cleanText(m_document.totals[i].name), kNameLength)
                                      : std::string("Program total");
            m_sheet.keep(
                placer.placeAtMark(text, m_picture.totals[i].center, kTotalRadius, Label::Kind::Total));
        }
        labelPoints(placer);
    }

    void labelPoints(LabelPlacer& placer) {
        std::size_t named = 0;
        std::map<std::string, bool> seen;  // a row is named at one of its memory levels
        for (std::size_t i = 0; i < m_document.points.size() && named < m_options.namedPoints; ++i) {
            const auto& point = m_document.points[i];
            const auto text = shorten(cleanText(point.name), kNameLength);
            if (text.empty() || (!point.id.empty() && std::exchange(seen[point.id], true))) continue;
            ++named;
            const auto& mark = m_picture.marks[i];
            m_sheet.keep(placer.placeAtMark(text, mark.center, mark.radius, Label::Kind::Point));
        }
    }

    void writeLegend() {
        if (!m_picture.marks.empty()) {
            m_sheet.addHeading(m_colours.heading());
            for (const auto& entry : m_colours.entries())
                m_sheet.addRow(LegendRow::Kind::Colour, fmt::format("{} ({})", entry.text, entry.count),
                               entry.colour, 6.0);
        }
        const auto examples = m_sizes.examples();
        if (!examples.empty()) m_sheet.addHeading("Share of time");
        for (const double share : examples)
            m_sheet.addRow(LegendRow::Kind::Size, percent(share), {}, m_sizes.radius(share));
        if (!m_picture.totals.empty()) {
            m_sheet.addGap();
            m_sheet.addRow(LegendRow::Kind::Total, "program total");
        }
        m_sheet.listUnnamedRoofs();
    }

    void writeMessage() {
        if (m_document.hasData() && !m_document.points.empty()) return;
        constexpr double kWidth = 560.0, kSize = 15.0;
        m_picture.message = {m_document.hasData() ? "No rows to draw" : cleanText(m_document.noDataTitle)};
        for (auto& line : wrapped(cleanText(m_document.noDataDescription), kWidth, kSize))
            m_picture.message.push_back(std::move(line));
    }

    const ChartDocument& m_document;
    const PictureOptions& m_options;
    ColourKey m_colours;
    SizeKey m_sizes;
    Sheet m_sheet;
    Picture& m_picture;
};

}  // namespace

Picture layOut(const ChartDocument& document, const std::vector<Roof>& roofs,
               const std::vector<UnplacedRows>& unplaced, const PictureOptions& options) {
    return Layout(document, roofs, unplaced, options).take();
}

}  // namespace cli::picture
