// What every roofline picture has: its frame and axes, roofs and their names, a legend beside, notes below.
#pragma once

#include "cli/picture/layout.h"

#include <optional>
#include <string>
#include <vector>

namespace cli::picture {

// Lines no wider than `width` pixels, broken at blanks.
std::vector<std::string> wrapped(const std::string& text, double width, double fontSize);

class Sheet {
public:
    // Everything within `ranges` stands at least `pad` pixels inside the frame. Texts are clean; an axis
    // without a caption has its usual one.
    Sheet(const PictureOptions& options, const std::string& note, const Ranges& ranges, double pad,
          std::string captionX, std::string captionY);

    Picture& picture() { return m_picture; }
    // Decimal logarithms.
    Point onScreen(double x, double y) const { return {m_x.at(x), m_y.at(y)}; }

    // A set of roofs; the ones of an other set are told apart from the first one's.
    void addRoofs(const std::vector<Roof>& roofs, bool isOther = false);
    // `placer` knows all marks by now.
    void nameRoofs(LabelPlacer& placer);
    void keep(std::optional<Label> label);

    // Each below the last one.
    void addHeading(const std::string& text);
    void addRow(LegendRow::Kind kind, std::string text, std::string colour = {}, double radius = 0.0);
    void addGap();
    // The roofs that found no place for their names.
    void listUnnamedRoofs();

private:
    Picture m_picture;
    Scale m_x, m_y;
    std::vector<std::string> m_unnamed;
    double m_legendY = 0.0;
};

}  // namespace cli::picture
