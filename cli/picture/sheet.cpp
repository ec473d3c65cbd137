// Frame, roofs, legend: the parts that pictures share.
#include "cli/picture/sheet.h"

#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>

namespace cli::picture {
namespace {

constexpr double kMarginLeft = 92.0, kMarginTop = 84.0, kPanelWidth = 236.0;
constexpr double kAxisHeight = 62.0, kNoteLine = 18.0, kNoteSize = 13.0;
constexpr double kPanelGap = 28.0, kRowHeight = 22.0, kGap = 14.0;

std::string roofText(const Roof& roof) {
    constexpr double kGiga = 1e9;
    return cleanText(fmt::format("{}  {} {}", shorten(cleanText(roof.name), 60),
                                 shortNumber(roof.value / kGiga), roof.measure));
}

Scale padded(const Range& range, double from, double to, double pad) {
    const double inner = std::abs(to - from) - 2 * pad, more = pad * range.span() / inner;
    return {{range.low - more, range.high + more}, from, to};
}

}  // namespace

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

Sheet::Sheet(const PictureOptions& options, const std::string& note, const Ranges& ranges, double pad,
             std::string captionX, std::string captionY) {
    m_picture.width = options.width;
    m_picture.height = options.height;
    m_picture.title = shorten(cleanText(options.title), 80);
    m_picture.subtitle = shorten(cleanText(options.subtitle), 140);
    m_picture.notes = wrapped(note, options.width - kMarginLeft - kPanelGap, kNoteSize);

    auto& frame = m_picture.frame;
    frame = {kMarginLeft, kMarginTop, options.width - kPanelWidth - kPanelGap,
             options.height - kAxisHeight - kNoteLine * static_cast<double>(m_picture.notes.size()) - 12.0};
    m_legendY = frame.top;
    m_x = padded(ranges.x, frame.left, frame.right, pad);
    m_y = padded(ranges.y, frame.bottom, frame.top, pad);
    m_picture.x = {ticks(m_x), std::move(captionX)};
    m_picture.y = {ticks(m_y), std::move(captionY)};
    if (m_picture.x.caption.empty()) m_picture.x.caption = "Arithmetic intensity";
    if (m_picture.y.caption.empty()) m_picture.y.caption = "Performance";
}

void Sheet::addRoofs(const std::vector<Roof>& roofs, bool isOther) {
    const Ranges ranges{m_x.range, m_y.range};
    for (const auto& roof : roofs) {
        const auto span = roofSpan(roof, roofs, ranges);
        m_picture.roofs.push_back({{onScreen(span.from.x, span.from.y), onScreen(span.to.x, span.to.y)},
                                   roof.isMemory,
                                   roof.isSelected,
                                   roofText(roof),
                                   roof.value,
                                   isOther});
    }
}

void Sheet::keep(std::optional<Label> label) {
    if (label) m_picture.labels.push_back(std::move(*label));
}

void Sheet::nameRoofs(LabelPlacer& placer) {
    const auto& roofs = m_picture.roofs;
    for (const auto& roof : roofs) placer.addRoof(roof.line, roof.isMemory);
    // Selected ones, then highest first: where two roofs coincide the first one's label stands above, the
    // next one's below.
    std::vector<std::size_t> order(roofs.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return std::tie(roofs[a].isSelected, roofs[a].value) > std::tie(roofs[b].isSelected, roofs[b].value);
    });
    for (const auto i : order) {
        auto label = placer.placeOnRoof(roofs[i].hover, i, !roofs[i].isMemory);
        if (!label) m_unnamed.push_back(roofs[i].hover);
        keep(std::move(label));
    }
}

void Sheet::addRow(LegendRow::Kind kind, std::string text, std::string colour, double radius) {
    const double room = std::max(kRowHeight, 2 * radius + 6.0);
    const double left = m_picture.frame.right + kPanelGap;
    const bool hasSymbol = kind != LegendRow::Kind::Heading && kind != LegendRow::Kind::Text;
    const double textRoom = m_picture.width - left - (hasSymbol ? 56.0 : 8.0);
    auto cut = shorten(text, 48);
    for (auto most = length(cut); most > 4 && textWidth(cut, kLabelSize) > textRoom; --most)
        cut = shorten(text, most);
    m_legendY += room / 2;
    m_picture.legend.push_back(
        {kind, {left + (hasSymbol ? 22.0 : 0.0), m_legendY}, std::move(cut), std::move(colour), radius});
    m_legendY += room / 2;
}

void Sheet::addGap() { m_legendY += kGap; }

void Sheet::addHeading(const std::string& text) {
    if (!m_picture.legend.empty()) addGap();
    addRow(LegendRow::Kind::Heading, text);
}

void Sheet::listUnnamedRoofs() {
    if (m_unnamed.empty()) return;
    addHeading("Further roofs, highest first");
    const auto room =
        static_cast<std::size_t>(std::max(1.0, (m_picture.height - 40.0 - m_legendY) / kRowHeight));
    const bool isCut = m_unnamed.size() > room;
    const auto shown = isCut ? room - 1 : m_unnamed.size();
    for (std::size_t i = 0; i < shown; ++i) addRow(LegendRow::Kind::Text, m_unnamed[i]);
    if (isCut) addRow(LegendRow::Kind::Text, fmt::format("and {} more", m_unnamed.size() - shown));
}

}  // namespace cli::picture
