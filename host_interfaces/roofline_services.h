// The services that the library offers to its host.
#pragma once

#include "host_interfaces/export.h"
#include "host_interfaces/model.h"
#include "host_interfaces/signals.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace data_models2 {

struct ComparisonData;
class IResultController;

class OMBRIX_API ISummaryDataProvider {
public:
    // Answers with the summary's JSON text, at once or when it is known; a kind other than 0 answers with an
    // empty text, an empty `callback` then throws std::bad_function_call. A projection never answers.
    virtual void loadSummaryData(int kind, const std::function<void(const std::string&)>& callback) = 0;
    virtual ~ISummaryDataProvider() = default;
};

// The roofline of one row, worked out when it is made; afterwards it is read-only and safe to read from
// several threads. No exception leaves an operation; what isn't known is an empty value.
class OMBRIX_API IRowRooflineInfo {
public:
    virtual ~IRowRooflineInfo() = default;
    // The total point; its operations type is Undefined when the row has none.
    virtual RooflinePoint getPoint() const = 0;
    // The points by memory level, ascending from the core.
    virtual std::vector<RooflinePoint> getMemLevelPoints() const = 0;
    // The memory roofs that apply to the row, ascending by value.
    virtual std::vector<RoofItem> getMemoryRoofs() const = 0;
    // The compute roof of a type that applies to the row; Undefined asks for the row's own type. A default
    // roof (id 0) when there is none.
    virtual RoofItem getComputeRoof(OperationsType type) const = 0;
    // Of the total point (true) or the one nearest above any memory-level point (false).
    virtual LimitingRoof getLimitingRoof(bool total) const = 0;
    // Whether the row has a point, roofs and what limits it.
    virtual bool isValid() const = 0;
    // The details of the row as bags: its small chart, its memory tables, its bottleneck with further
    // messages.
    virtual variant_bag_t getRooflineVariantBag() const = 0;
    virtual variant_bag_t getMemoryMetricsVariantBag() const = 0;
    virtual variant_bag_t getBotteleneckVariantBag(std::vector<std::string> messages) const = 0;
    virtual bool areTotalMetricsAvailable() const = 0;
    virtual bool areMemLevelMetricsAvailable() const = 0;
    // At most one entry a level, percent; empty when the table wasn't made.
    virtual std::vector<MemoryValue> getMemoryValues(RooflineMemoryValuesType type) const = 0;
    // All of the row's details, a JSON object.
    virtual std::string getRooflineData() const = 0;
    // Adds roofs that only this kind of analysis has.
    virtual void extendMemoryRoofs(std::vector<RoofItem>& roofs) const = 0;
};

// The roofline of a whole result. No exception leaves an operation (but for the one told above): what can't
// be answered is answered with an empty text, `false`, or a document that says why. All calls of one object
// come from one thread, the one on which the view model raises its load signal.
//
// A configuration is what was chosen in the option tree: option values joined with "-", such as "f-1-L1-all";
// a group that is not mentioned stands at its default.
class OMBRIX_API IRooflineInfo : public ISummaryDataProvider {
public:
    // What the selected roofs are chosen for.
    enum class Perspective : int { Vectorized = 1, NotVectorized = 2, Program = 3 };

    // The option tree, a JSON object.
    virtual std::string getRooflineOptions() const = 0;
    // The chart without its roofs, a JSON object. A null dataset is replaced by the view model's own.
    virtual std::string getRooflineData(sptr_t<IDataset> dataset, const std::string& configuration) = 0;
    // The same with the dataset of total data.
    virtual std::string getRooflineData(sptr_t<IDataset> dataset, sptr_t<IDataset> secondDataset,
                                        const std::string& configuration) = 0;
    // The roofs for a thread set-up, a JSON array.
    virtual std::string getRoofs(const std::string& configuration, const RoofThreadingFeatures& features,
                                 Perspective perspective) const = 0;
    // The roofs of each thread set-up that a chart can offer, a JSON array; an empty text for a projection.
    virtual std::string getAllRoofs(const std::string& configuration) const = 0;
    // Which roofs are shown at first, a JSON object.
    virtual std::string getSelectedRoofs(const std::string& configuration, Perspective perspective) const = 0;
    // Cores, packages and used threads, a JSON object; an empty text for a projection.
    virtual std::string getThreadsInfo() const = 0;
    // The details of the loops that `request` names, a JSON array.
    virtual std::string getLoopAdditionalInfo(const std::string& request,
                                              std::shared_ptr<IResultController> controller,
                                              const std::string& configuration) const = 0;
    virtual bool clearHighlighting(DataType type) = 0;
    // The whole configuration that the given option values stand for.
    virtual std::string getRooflineConfigurationStr(const std::vector<std::string>& captions) const = 0;
    // The values of a matched pair of rows, a JSON object.
    virtual std::string getComparisonData(const ComparisonData& data, const std::string& ids,
                                          const std::string& configuration) const = 0;
    // Of one row of the dataset of self data; of any other row nothing is known. Float work dominates: 1, 0
    // (also when the row's instruction mix isn't known), 2 unknown. Width of its floats: 0 single, 1 double,
    // 2 unknown. Width of its integers: 0 to 6 for 4 to 256 bits, 7 unknown.
    virtual int getDominatingOperationType(sptr_t<RowNode> row) const = 0;
    virtual int getDominatingFloatType(sptr_t<RowNode> row) const = 0;
    virtual int getDominatingIntType(sptr_t<RowNode> row) const = 0;
    // The template of a report, a JSON object: everything that it tells but the loops.
    virtual std::string getReportTemplate(std::shared_ptr<IResultController>) const { return {}; }
    // The user's own value of a roof, bytes or operations per second, for a thread set-up.
    virtual bool setCustomRoofValues(RoofId, unsigned long long /*value*/, const RoofThreadingFeatures&) {
        return false;
    }
    virtual bool clearCustomRoofValues(const RoofThreadingFeatures&) { return false; }

    // Raised when a background task has changed answers. A slot, like a summary's callback, may ask the
    // engine anything but must not destroy it.
    signal_t<> changed;
};

}  // namespace data_models2
