// The small chart, the memory tables and the bottleneck of one row, collected and given as property bags.
//
// Each widget keeps records, so that a bag and a JSON text of the same row are written from the same numbers.
#pragma once

#include "host_interfaces/model.h"

#include "roofline_model/roof_names.h"

#include <boost/property_tree/ptree.hpp>

#include <optional>
#include <string>
#include <vector>

namespace data_models2::roofline::helpers {

// The position of a value on a logarithmic axis; 0 for a value that isn't above 0.
double logPosition(double value);
// The position of a roof's peak in giga units; 0 for a roof of value 0.
double logHeight(const RoofItem& roof);
// How many percent of `whole` the `part` is, cut to an integer; 0 when `whole` isn't above 0.
int wholePercent(double part, double whole);

// A point on the small chart, logarithmic.
struct ChartLoop {
    struct Level {
        double traffic = 0.0;  // gigabytes
        std::string caption;
    };

    std::string name;
    double x = 0.0;  // intensity
    double y = 0.0;  // performance
    std::optional<Level> level = {};
};

struct ChartRoof {
    std::string name;
    bool isMemory = false;
    std::string measure;
    double height = 0.0;  // logarithm of giga units
};

struct ChartAxes {
    AxisText x;
    AxisText y;
};

// The row and what holds it back; positions are logarithmic.
struct BottleneckLoop {
    // What is known of a roof only.
    struct Limit {
        double crossingY = 0.0;  // the roof's height at the row's intensity
        double utilization = 0.0;
        std::string measure;
    };

    std::string name;  // of the roof, or of the factor that is no roof
    double x = 0.0;
    double y = 0.0;
    double roofHeight = 0.0;
    std::optional<Limit> limit = {};
};

struct MemoryMetric {
    struct Entry {
        std::string label;
        double value = 0.0;
        std::string caption;
    };

    std::string caption;
    std::string measure;
    std::string explanation;
    std::vector<Entry> entries;
};

// Keys whose spelling is part of the interface.
inline constexpr auto kTransferredKey = "dataTransffered";
inline constexpr auto kLevelPrefixKey = "memoryLevelPref";

// The text of a measure kind: 0 percent; empty for any other.
std::string getMeasureText(int measureKind);

class BaseRooflineWidget {
public:
    // Appends what is shown: a lead line with the message id `level`, what a roof is, self or total data, the
    // kind of call tree, the operations that dominate.
    void addExpl(const std::string& level, DataType dataType, bool isSelf, OperationsType operations);
    const std::vector<std::string>& explanation() const { return m_explanation; }
    // The member "explanation" when there is any.
    variant_bag_t get() const;

private:
    std::vector<std::string> m_explanation;
};

class RooflineWidget : public BaseRooflineWidget {
public:
    // Adds a point given in operations per byte and giga operations per second. The flag says whether the
    // loop is vectorised; no member is written from it.
    void addFunctionInstance(double intensity, double performance, bool isVectorized,
                             const std::string& name);
    // The same with the traffic of the point's memory level.
    void addFunctionInstance(const RooflinePoint& point, bool isVectorized, const std::string& name);
    void setRoofs(const std::vector<RoofItem>& computeRoofs, const std::vector<RoofItem>& memoryRoofs);
    void setOperationsType(OperationsType type) { m_operationsType = type; }
    void setLimitingRoof(const std::string& name) { m_limitingRoof = name; }
    void setBottleneck(const variant_bag_t& bottleneck) { m_bottleneck = bottleneck; }

    ChartAxes axes() const;
    const std::string& limitingRoof() const { return m_limitingRoof; }
    const std::vector<ChartLoop>& loops() const { return m_loops; }
    // The compute roofs, then the memory roofs.
    std::vector<ChartRoof> roofs() const;
    variant_bag_t get() const;

private:
    std::vector<ChartLoop> m_loops;
    std::vector<RoofItem> m_roofs;
    variant_bag_t m_bottleneck;
    std::string m_limitingRoof;
    OperationsType m_operationsType = OperationsType::Float;
};

class MemoryMetricWidget : public BaseRooflineWidget {
public:
    void addMetric(const std::vector<MemoryValue>& values, const std::string& caption,
                   const std::string& measure, const std::string& explanation);
    const std::vector<MemoryMetric>& metrics() const { return m_metrics; }
    variant_bag_t get() const;

private:
    std::vector<MemoryMetric> m_metrics;
};

class BottleneckWidget : public BaseRooflineWidget {
public:
    void addMessage(const std::string& text) { m_messages.push_back(text); }
    // All positions are logarithmic.
    void addLoopWithLimitingRoof(double x, double y, const std::string& name, double roofHeight,
                                 double crossingY, double utilization, int measureKind);
    void addLoopWithLimitingFactor(double x, double y, const std::string& name);
    const std::vector<BottleneckLoop>& loops() const { return m_loops; }
    const std::vector<std::string>& messages() const { return m_messages; }
    variant_bag_t get() const;

private:
    std::vector<BottleneckLoop> m_loops;
    std::vector<std::string> m_messages;
};

}  // namespace data_models2::roofline::helpers
