// SVG text: one function a layer, from back to front.
#include "cli/picture/svg.h"

#include "cli/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace cli::picture {
namespace {

constexpr std::string_view kFonts =
    "Inter, 'Segoe UI', 'Helvetica Neue', Helvetica, Arial, 'DejaVu Sans', sans-serif";

constexpr std::string_view kStyle = R"(
text { fill: #2b3440 }
.title { font-size: 20px; font-weight: 600 }
.subtitle, .note { font-size: 13px; fill: #5b6672 }
.caption { font-size: 14px; text-anchor: middle }
.tick { font-size: 12px; fill: #5b6672 }
.minor { stroke: #f1f3f5; stroke-width: 1 }
.major { stroke: #dde2e7; stroke-width: 1 }
.frame { fill: none; stroke: #9aa5b1; stroke-width: 1 }
.roof { stroke-linecap: round; stroke-width: 1.3; fill: none }
.memory { stroke: #3d5a80 }
.compute { stroke: #7a5230 }
.selected { stroke-width: 2.6 }
.other { stroke-dasharray: 9 5 }
.label { font-size: 12px; text-anchor: middle; paint-order: stroke; stroke: #ffffff; stroke-width: 3px;
  stroke-linejoin: round }
.label.memory { fill: #2f4a6d }
.label.compute { fill: #6b4526 }
.label.total { font-weight: 600 }
.leader { stroke: #8a95a1; stroke-width: 0.8 }
.tie { stroke: #b4bcc5; stroke-width: 1 }
.mark { fill-opacity: 0.55; stroke-width: 1.2 }
.many .mark { fill-opacity: 0.35; stroke-width: 0.5 }
.hollow { fill: #ffffff; fill-opacity: 0.4; stroke-width: 1.8 }
.arrow { stroke-width: 1.6; stroke-linejoin: round }
.thin .arrow { stroke-width: 1; opacity: 0.75 }
.many .arrow { stroke-width: 0.8; opacity: 0.55 }
.arrow:hover { stroke-width: 3 }
.total-mark { fill: #20262d; stroke: #ffffff; stroke-width: 1.5 }
.mark:hover, .total-mark:hover { fill-opacity: 1 }
.legend { font-size: 12px }
.heading { font-weight: 600 }
.message { font-size: 15px; text-anchor: middle }
.panel { fill: #ffffff; fill-opacity: 0.94; stroke: #9aa5b1 }
)";

constexpr double kBaseline = 0.35;  // from a line's middle to its baseline, in font sizes

class Writer {
public:
    std::string write(const Picture& picture) {
        head(picture);
        grid(picture);
        roofs(picture);
        marks(picture);
        arrows(picture);
        labels(picture);
        legend(picture);
        words(picture);
        return m_text + "</svg>\n";
    }

private:
    template <class... Args>
    void add(fmt::format_string<Args...> format, Args&&... args) {
        fmt::format_to(std::back_inserter(m_text), format, std::forward<Args>(args)...);
        m_text += '\n';
    }

    void head(const Picture& picture) {
        add(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {0:g} {1:g}" )"
            R"(width="{0:g}" height="{1:g}" font-family="{2}">)",
            picture.width, picture.height, kFonts);
        add("<style>{}</style>", kStyle);
        add(R"(<rect width="{:g}" height="{:g}" fill="#ffffff"/>)", picture.width, picture.height);
    }

    void grid(const Picture& picture) {
        const auto& frame = picture.frame;
        // Minor lines lie beneath the decades of both axes.
        for (const bool decades : {false, true}) {
            const char* style = decades ? "major" : "minor";
            for (const auto& tick : picture.x.ticks)
                if (tick.isDecade == decades)
                    line(style, {{tick.position, frame.top}, {tick.position, frame.bottom}});
            for (const auto& tick : picture.y.ticks)
                if (tick.isDecade == decades)
                    line(style, {{frame.left, tick.position}, {frame.right, tick.position}});
        }
        for (const auto& tick : picture.x.ticks) tickText(tick, "middle", tick.position, frame.bottom + 20.0);
        for (const auto& tick : picture.y.ticks)
            tickText(tick, "end", frame.left - 10.0, tick.position + 4.0);
        add(R"(<rect class="frame" x="{:.2f}" y="{:.2f}" width="{:.2f}" height="{:.2f}"/>)", frame.left,
            frame.top, frame.right - frame.left, frame.bottom - frame.top);
    }

    void line(std::string_view style, const Segment& segment) {
        add(R"(<line class="{}" x1="{:.2f}" y1="{:.2f}" x2="{:.2f}" y2="{:.2f}"/>)", style, segment.from.x,
            segment.from.y, segment.to.x, segment.to.y);
    }

    void tickText(const Tick& tick, std::string_view anchor, double x, double y) {
        if (tick.text.empty()) return;
        const auto raised = tick.exponent.empty()
                                ? std::string()
                                : fmt::format(R"(<tspan dy="-5" font-size="9">{}</tspan>)", tick.exponent);
        add(R"(<text class="tick" text-anchor="{}" x="{:.2f}" y="{:.2f}">{}{}</text>)", anchor, x, y,
            tick.text, raised);
    }

    void roofs(const Picture& picture) {
        for (const auto& roof : picture.roofs)
            add(R"(<line class="{}" x1="{:.2f}" y1="{:.2f}" x2="{:.2f}" y2="{:.2f}">)"
                R"(<title>{}</title></line>)",
                styleOf(roof), roof.line.from.x, roof.line.from.y, roof.line.to.x, roof.line.to.y,
                escapeXml(roof.hover));
    }

    static std::string styleOf(const RoofLine& roof) {
        return fmt::format("roof {}{}{}", roof.isMemory ? "memory" : "compute",
                           roof.isSelected ? " selected" : "", roof.isOther ? " other" : "");
    }

    void marks(const Picture& picture) {
        add("<g{}>", picture.isCrowded ? R"( class="many")" : "");
        for (const auto& tie : picture.ties) line("tie", tie);
        for (const auto& mark : picture.marks)
            add(R"(<circle class="{}" cx="{:.2f}" cy="{:.2f}" r="{:.2f}" fill="{}" stroke="{}">)"
                R"(<title>{}</title></circle>)",
                mark.isHollow ? "mark hollow" : "mark", mark.center.x, mark.center.y, mark.radius,
                mark.colour, mark.colour, escapeXml(mark.hover));
        add("</g>");
        for (const auto& total : picture.totals) diamond(total.center, total.hover);
    }

    void diamond(const Point& center, const std::string& hover) {
        add(R"(<path class="total-mark" d="M{0:.2f} {1:.2f}l{2:g} {2:g}l-{2:g} {2:g}l-{2:g} -{2:g}z">)"
            R"(<title>{3}</title></path>)",
            center.x, center.y - kTotalRadius, kTotalRadius, escapeXml(hover));
    }

    void arrows(const Picture& picture) {
        if (picture.arrows.empty()) return;
        add("<g{}>", picture.isCrowded       ? R"( class="many")"
                     : picture.hasThinArrows ? R"( class="thin")"
                                             : "");
        for (const auto& each : picture.arrows) arrow(each);
        add("</g>");
    }

    // A dot where it starts. The head gets smaller where it wouldn't fit.
    void arrow(const Arrow& each) {
        constexpr double kDot = 2.6, kHead = 9.0, kHalfHead = 4.2;
        const auto& [from, to] = each.line;
        const double size = std::hypot(to.x - from.x, to.y - from.y), head = std::min(kHead, size);
        add(R"(<g class="arrow" fill="{0}" stroke="{0}"><title>{1}</title>)"
            R"(<circle cx="{2:.2f}" cy="{3:.2f}" r="{4:g}"/>)",
            each.colour, escapeXml(each.hover), from.x, from.y, kDot);
        if (size > 0.0) {
            const auto foot = pointAt(each.line, 1.0 - head / size);
            const double half = kHalfHead * head / kHead;
            const double acrossX = half * (to.y - from.y) / size, acrossY = half * (from.x - to.x) / size;
            add(R"(<path d="M{:.2f} {:.2f}L{:.2f} {:.2f}"/>)", from.x, from.y, foot.x, foot.y);
            add(R"(<path stroke="none" d="M{:.2f} {:.2f}L{:.2f} {:.2f}L{:.2f} {:.2f}z"/>)", to.x, to.y,
                foot.x + acrossX, foot.y + acrossY, foot.x - acrossX, foot.y - acrossY);
        }
        add("</g>");
    }

    void labels(const Picture& picture) {
        for (const auto& label : picture.labels)
            if (label.leader) line("leader", *label.leader);
        for (const auto& label : picture.labels) {
            const auto& box = label.box;
            const double degrees = box.angle * 180.0 / M_PI;
            const auto turn = degrees == 0.0 ? std::string()
                                             : fmt::format(R"x( transform="rotate({:.2f} {:.2f} {:.2f})")x",
                                                           degrees, box.center.x, box.center.y);
            add(R"(<text class="label {}" x="{:.2f}" y="{:.2f}"{}>{}</text>)", styleOf(label), box.center.x,
                box.center.y + kBaseline * kLabelSize, turn, escapeXml(label.text));
        }
    }

    static std::string_view styleOf(const Label& label) {
        if (label.kind == Label::Kind::Total) return "total";
        if (label.kind == Label::Kind::Point) return "point";
        return label.box.angle == 0.0 ? "compute" : "memory";
    }

    void legend(const Picture& picture) {
        using Kind = LegendRow::Kind;
        for (const auto& row : picture.legend) {
            const auto& [x, y] = row.at;
            if (row.kind == Kind::Colour)
                add(R"(<circle class="mark" cx="{:.2f}" cy="{:.2f}" r="{:.2f}" fill="{}" stroke="{}"/>)", x,
                    y, row.radius, row.colour, row.colour);
            if (row.kind == Kind::Hollow)
                add(R"(<circle class="mark hollow" cx="{:.2f}" cy="{:.2f}" r="{:.2f}" stroke="{}"/>)", x, y,
                    row.radius, row.colour);
            if (row.kind == Kind::Arrow) arrow({{{x - 12.0, y}, {x + 16.0, y}}, row.colour, row.text});
            if (row.kind == Kind::Roof || row.kind == Kind::OtherRoof)
                line(row.kind == Kind::Roof ? "roof memory selected" : "roof memory selected other",
                     {{x - 16.0, y}, {x + 18.0, y}});
            if (row.kind == Kind::Size)
                add(R"(<circle cx="{:.2f}" cy="{:.2f}" r="{:.2f}" fill="#e7ebef" stroke="#8a95a1"/>)", x, y,
                    row.radius);
            if (row.kind == Kind::Total) diamond(row.at, row.text);
            const bool hasSymbol = row.kind != Kind::Heading && row.kind != Kind::Text;
            add(R"(<text class="legend{}" x="{:.2f}" y="{:.2f}">{}</text>)",
                row.kind == Kind::Heading ? " heading" : "", x + (hasSymbol ? 32.0 : 0.0),
                y + kBaseline * kLabelSize, escapeXml(row.text));
        }
    }

    void words(const Picture& picture) {
        const auto& frame = picture.frame;
        const double middleX = (frame.left + frame.right) / 2, middleY = (frame.top + frame.bottom) / 2;
        add(R"(<text class="title" x="{:g}" y="36">{}</text>)", frame.left, escapeXml(picture.title));
        add(R"(<text class="subtitle" x="{:g}" y="60">{}</text>)", frame.left, escapeXml(picture.subtitle));
        add(R"(<text class="caption" x="{:.2f}" y="{:.2f}">{}</text>)", middleX, frame.bottom + 46.0,
            escapeXml(picture.x.caption));
        add(R"x(<text class="caption" x="28" y="{0:.2f}" transform="rotate(-90 28 {0:.2f})">{1}</text>)x",
            middleY, escapeXml(picture.y.caption));
        double y = frame.bottom + 46.0 + 24.0;
        for (const auto& note : picture.notes) {
            add(R"(<text class="note" x="{:g}" y="{:.2f}">{}</text>)", frame.left, y, escapeXml(note));
            y += 18.0;
        }
        message(picture.message, {middleX, middleY});
    }

    void message(const std::vector<std::string>& lines, const Point& center) {
        if (lines.empty()) return;
        constexpr double kLine = 24.0, kHalfWidth = 310.0;
        const double height = kLine * static_cast<double>(lines.size()) + 28.0;
        add(R"(<rect class="panel" x="{:.2f}" y="{:.2f}" width="{:g}" height="{:g}" rx="6"/>)",
            center.x - kHalfWidth, center.y - height / 2, 2 * kHalfWidth, height);
        double y = center.y - height / 2 + 14.0 + kLine * 0.7;
        for (const auto& text : lines) {
            add(R"(<text class="message{}" x="{:.2f}" y="{:.2f}">{}</text>)",
                &text == &lines.front() ? " heading" : "", center.x, y, escapeXml(text));
            y += kLine;
        }
    }

    std::string m_text;
};

}  // namespace

std::string toSvg(const Picture& picture) { return Writer().write(picture); }

}  // namespace cli::picture
