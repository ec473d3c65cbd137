// Lays the picture out: frame, roofs, marks, labels, legend, notes.
#include "cli/picture/layout.h"

#include "cli/chart_table.h"
#include "cli/picture/legend.h"
#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <tuple>

namespace cli::picture {
namespace {

constexpr double kMarginLeft = 92.0, kMarginTop = 84.0, kPanelWidth = 236.0;
constexpr double kAxisHeight = 62.0, kNoteLine = 18.0, kNoteSize = 13.0;
constexpr double kPanelGap = 28.0, kRowHeight = 22.0;
constexpr std::size_t kNameLength = 36;

std::string captionOf(const std::string& name, const std::string& measure) {
    return cleanText(measure.empty() ? name : fmt::format("{} [{}]", name, measure));
}

std::vector<std::string> wrapped(const std::string& text, double width, double fontSize) {
    std::vector<std::string> lines(1);
    for (std::size_t start = 0; start < text.size();) {
        const auto end = std::min(text.find(' ', start), text.size());
        const auto word = text.substr(start, end - start);
        auto& line = lines.back();
        if (line.empty()) {
            line = word;
        } else if (textWidth(line + ' ' + word, fontSize) <= width) {
            line += ' ' + word;
        } else {
            lines.push_back(word);
        }
        start = end + 1;
    }
    return lines;
}

std::string roofText(const Roof& roof) {
    constexpr double kGiga = 1e9;
    return cleanText(fmt::format("{}  {} {}", shorten(cleanText(roof.name), 60),
                                 shortNumber(roof.value / kGiga), roof.measure));
}

std::string percent(double share) { return shortNumber(share * 100.0) + " %"; }

// Everything that the steps of one layout share.
class Layout {
public:
    Layout(const ChartDocument& document, const std::vector<Roof>& roofs,
           const std::vector<UnplacedRows>& unplaced, const PictureOptions& options)
        : m_document(document), m_roofs(roofs), m_options(options), m_colours(document), m_sizes(document) {
        m_picture.width = options.width;
        m_picture.height = options.height;
        m_picture.title = shorten(cleanText(options.title), 80);
        m_picture.subtitle = shorten(cleanText(options.subtitle), 140);
        writeNotes(unplaced);
        makeScales();
        placeMarks();
        placeRoofs();
        placeLabels();
        writeLegend();
        writeMessage();
    }
    Picture take() { return std::move(m_picture); }

private:
    void writeNotes(const std::vector<UnplacedRows>& unplaced) {
        const auto sentence = countSentence(m_document.rowCount(), unplaced);
        m_picture.notes = wrapped(cleanText(sentence), m_options.width - kMarginLeft - kPanelGap, kNoteSize);
    }

    void makeScales() {
        auto& frame = m_picture.frame;
        frame = {
            kMarginLeft, kMarginTop, m_options.width - kPanelWidth - kPanelGap,
            m_options.height - kAxisHeight - kNoteLine * static_cast<double>(m_picture.notes.size()) - 12.0};
        // The outermost mark stands a whole mark's size inside the frame.
        const double pad = m_sizes.largest() + 6.0;
        const auto ranges = visibleRanges(m_document, m_roofs);
        m_x = padded(ranges.x, frame.left, frame.right, pad);
        m_y = padded(ranges.y, frame.bottom, frame.top, pad);
        // A document without data names no axes.
        m_picture.x = {ticks(m_x), captionOf(m_document.nameX, m_document.measureX)};
        m_picture.y = {ticks(m_y), captionOf(m_document.nameY, m_document.measureY)};
        if (m_picture.x.caption.empty()) m_picture.x.caption = "Arithmetic intensity";
        if (m_picture.y.caption.empty()) m_picture.y.caption = "Performance";
    }

    static Scale padded(const Range& range, double from, double to, double pad) {
        const double inner = std::abs(to - from) - 2 * pad, more = pad * range.span() / inner;
        return {{range.low - more, range.high + more}, from, to};
    }

    Point onScreen(double x, double y) const { return {m_x.at(x), m_y.at(y)}; }

    void placeMarks() {
        m_picture.isCrowded = SizeKey::isCrowded(m_document);
        std::map<std::string, Point> lastOfRow;
        for (const auto& point : m_document.points) {
            const auto center = onScreen(point.x, point.y);
            m_picture.marks.push_back(
                {center, m_sizes.radius(point), m_colours.colour(point), hoverOf(point)});
            if (point.id.empty()) continue;
            const auto [last, isFirst] = lastOfRow.try_emplace(point.id, center);
            if (!isFirst) m_picture.ties.push_back({last->second, center});
            last->second = center;
        }
        for (const auto& total : m_document.totals)
            m_picture.totals.push_back({onScreen(total.x, total.y), kTotalRadius, {}, hoverOf(total)});
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

    void placeRoofs() {
        const Ranges ranges{m_x.range, m_y.range};
        for (const auto& roof : m_roofs) {
            const auto span = roofSpan(roof, m_roofs, ranges);
            m_picture.roofs.push_back({{onScreen(span.from.x, span.from.y), onScreen(span.to.x, span.to.y)},
                                       roof.isMemory,
                                       roof.isSelected,
                                       roofText(roof)});
        }
    }

    void placeLabels() {
        LabelPlacer placer(m_picture.frame);
        for (const auto& mark : m_picture.marks) placer.avoid(mark.center, mark.radius);
        for (const auto& tie : m_picture.ties) placer.avoid(tie);
        for (const auto& total : m_picture.totals) placer.avoid(total.center, kTotalRadius);
        for (std::size_t i = 0; i < m_picture.roofs.size(); ++i)
            placer.addRoof(m_picture.roofs[i].line, m_picture.roofs[i].isMemory);
        const auto keep = [&](std::optional<Label> label) {
            if (label) m_picture.labels.push_back(std::move(*label));
            return label.has_value();
        };
        // Selected ones, then highest first: where two roofs coincide the first one's label stands above, the
        // next one's below.
        std::vector<std::size_t> order(m_roofs.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            return std::tie(m_roofs[a].isSelected, m_roofs[a].value) >
                   std::tie(m_roofs[b].isSelected, m_roofs[b].value);
        });
        for (const auto i : order) {
            const auto& roof = m_picture.roofs[i];
            if (!keep(placer.placeOnRoof(roof.hover, i, !roof.isMemory))) m_unlabelled.push_back(roof.hover);
        }
        for (std::size_t i = 0; i < m_picture.totals.size(); ++i) {
            const bool several = m_picture.totals.size() > 1;
            const auto text = several ? "Total " + shorten(cleanText(m_document.totals[i].name), kNameLength)
                                      : std::string("Program total");
            keep(placer.placeAtMark(text, m_picture.totals[i].center, kTotalRadius, Label::Kind::Total));
        }
        labelPoints(placer, keep);
    }

    template <class Keep>
    void labelPoints(LabelPlacer& placer, const Keep& keep) {
        std::size_t named = 0;
        std::map<std::string, bool> seen;  // a row is named at one of its memory levels
        for (std::size_t i = 0; i < m_document.points.size() && named < m_options.namedPoints; ++i) {
            const auto& point = m_document.points[i];
            const auto text = shorten(cleanText(point.name), kNameLength);
            if (text.empty() || (!point.id.empty() && std::exchange(seen[point.id], true))) continue;
            ++named;
            const auto& mark = m_picture.marks[i];
            keep(placer.placeAtMark(text, mark.center, mark.radius, Label::Kind::Point));
        }
    }

    void addRow(LegendRow::Kind kind, std::string text, std::string colour = {}, double radius = 0.0) {
        const double room = std::max(kRowHeight, 2 * radius + 6.0);
        const double left = m_picture.frame.right + kPanelGap;
        const bool hasSymbol = kind != LegendRow::Kind::Heading && kind != LegendRow::Kind::Text;
        const double textRoom = m_options.width - left - (hasSymbol ? 56.0 : 8.0);
        auto cut = shorten(text, 48);
        for (auto most = length(cut); most > 4 && textWidth(cut, kLabelSize) > textRoom; --most)
            cut = shorten(text, most);
        m_legendY += room / 2;
        m_picture.legend.push_back(
            {kind, {left + (hasSymbol ? 22.0 : 0.0), m_legendY}, std::move(cut), std::move(colour), radius});
        m_legendY += room / 2;
    }

    void addHeading(const std::string& text) {
        if (!m_picture.legend.empty()) m_legendY += 14.0;
        addRow(LegendRow::Kind::Heading, text);
    }

    void writeLegend() {
        m_legendY = m_picture.frame.top;
        if (!m_picture.marks.empty()) {
            addHeading(m_colours.heading());
            for (const auto& entry : m_colours.entries())
                addRow(LegendRow::Kind::Colour, fmt::format("{} ({})", entry.text, entry.count), entry.colour,
                       6.0);
        }
        const auto examples = m_sizes.examples();
        if (!examples.empty()) addHeading("Share of time");
        for (const double share : examples)
            addRow(LegendRow::Kind::Size, percent(share), {}, m_sizes.radius(share));
        if (!m_picture.totals.empty()) {
            m_legendY += 14.0;
            addRow(LegendRow::Kind::Total, "program total");
        }
        if (m_unlabelled.empty()) return;
        addHeading("Further roofs, highest first");
        const auto room =
            static_cast<std::size_t>(std::max(1.0, (m_picture.height - 40.0 - m_legendY) / kRowHeight));
        const bool isCut = m_unlabelled.size() > room;
        const auto shown = isCut ? room - 1 : m_unlabelled.size();
        for (std::size_t i = 0; i < shown; ++i) addRow(LegendRow::Kind::Text, m_unlabelled[i]);
        if (isCut) addRow(LegendRow::Kind::Text, fmt::format("and {} more", m_unlabelled.size() - shown));
    }

    void writeMessage() {
        if (m_document.hasData() && !m_document.points.empty()) return;
        constexpr double kWidth = 560.0, kSize = 15.0;
        m_picture.message = {m_document.hasData() ? "No rows to draw" : cleanText(m_document.noDataTitle)};
        for (auto& line : wrapped(cleanText(m_document.noDataDescription), kWidth, kSize))
            m_picture.message.push_back(std::move(line));
    }

    const ChartDocument& m_document;
    const std::vector<Roof>& m_roofs;
    const PictureOptions& m_options;
    ColourKey m_colours;
    SizeKey m_sizes;
    Scale m_x, m_y;
    std::vector<std::string> m_unlabelled;
    double m_legendY = 0.0;
    Picture m_picture;
};

}  // namespace

Picture layOut(const ChartDocument& document, const std::vector<Roof>& roofs,
               const std::vector<UnplacedRows>& unplaced, const PictureOptions& options) {
    return Layout(document, roofs, unplaced, options).take();
}

}  // namespace cli::picture
