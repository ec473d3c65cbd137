// The host's model of a result: datasets of rows, the roof table and the view models that give them.
#pragma once

#include "host_interfaces/export.h"
#include "host_interfaces/ids.h"
#include "host_interfaces/records.h"
#include "host_interfaces/values.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace data_models2 {

template <class... Args>
class signal_t;

class OMBRIX_API IRowSpecification : public IRefCounted {
public:
    // Bits of `row_type`.
    virtual std::uint64_t getRowType() const = 0;
};

class OMBRIX_API IColumnSpecification : public IRefCounted {
public:
    virtual FieldId getField() const = 0;
};

// A node of a tree of rows or columns.
template <class Specification>
class OMBRIX_API INode : public IRefCounted {
public:
    // Unique in its dataset; the same row has the same id in every dataset of a result.
    virtual std::uint64_t getId() const = 0;
    // Null when the node carries none.
    virtual sptr_t<Specification> getSpecification() const = 0;
    // Null at the top.
    virtual sptr_t<INode> getParent() const = 0;
    // Sets `children` to the first child and returns their number, or returns -1 when there are none.
    // `from` and `depth` are 0 and 1: all direct children.
    virtual int getChildren(generic_iterator_t<sptr_t<INode>>& children, int from, int depth) const = 0;
};

using RowNode = INode<IRowSpecification>;
using ColumnNode = INode<IColumnSpecification>;
using RowIterator = generic_iterator_t<sptr_t<RowNode>>;

// Rows by columns. Reading is safe from several threads at once.
class OMBRIX_API IDataset : public IRefCounted {
public:
    virtual DataType getDataType() const = 0;
    // Null for a field that the dataset lacks. Constant time.
    virtual sptr_t<ColumnNode> getColumn(FieldId field) const = 0;
    // True and fills `out` when the cell has a value; false for a missing cell, a null or a foreign row or
    // column. `aggregation` is 0: the cell as stored.
    virtual bool getValue(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column, int aggregation,
                          variant_t& out) const = 0;
    // The same for a text cell; a number is given in decimal.
    virtual bool getString(const sptr_t<RowNode>& row, const sptr_t<ColumnNode>& column, int aggregation,
                           std::string& out) const = 0;
    // The top rows. `from` is 0.
    virtual RowIterator getRows(int from) const = 0;
    // The identifier of the source object that the row stands for; several rows may share one.
    virtual std::uint64_t getObjectId(const sptr_t<RowNode>& row) const = 0;
};

// Finds rows by what they have to do with each other, across the datasets of one result.
class OMBRIX_API IRowNavigator : public IRefCounted {
public:
    // The rows below `row`, one level, in the order of the result.
    static constexpr int kRowsBelow = 2;

    // Sequences of the rows that stand in `relation` to `row`; they are rows of the dataset that `row` is of.
    // `from` and `depth` are 1 and 1. Empty for a null or foreign row and a relation that isn't known.
    virtual generic_iterator_t<RowIterator> getRelatedRows(int relation, const sptr_t<RowNode>& row, int from,
                                                           int depth) const = 0;
};

// Leads from a row of one dataset to the same row in another one.
class OMBRIX_API IDatasetRowLinker {
public:
    virtual ~IDatasetRowLinker() = default;
    // The row with the same id; null when there is none, and for a null row.
    virtual sptr_t<RowNode> getLinkedRow(const sptr_t<RowNode>& row) const = 0;
};

// Does something for each row of a tree. The bag given is what the parent's visit returned.
template <class Node>
class OMBRIX_API IVisitHandler : public IRefCounted {
public:
    // Before the children; set `skipChildren` to leave them out.
    virtual variant_bag_t handlePreVisit(const sptr_t<Node>& node, const variant_bag_t& parent,
                                         bool& skipChildren) = 0;
    // After the children.
    virtual variant_bag_t handlePostVisit(const sptr_t<Node>& node, const variant_bag_t& parent) = 0;
};

// Walks a dataset, depth first, parents before children; uses no recursion, so any depth is safe.
class OMBRIX_API IDatasetHelper : public IRefCounted {
public:
    // With `preVisitOnly` the handler's `handlePostVisit` is never called.
    virtual void visit(const sptr_t<IVisitHandler<RowNode>>& handler, bool preVisitOnly) = 0;
};

// The roofs of the machine, measured and the user's own.
class OMBRIX_API IRoofManager {
public:
    virtual ~IRoofManager() = default;
    // The roofs of a configuration made by `roof::getCpuRoofConfiguration` or
    // `roof::getGpuRoofConfiguration`; all roofs for an empty text.
    virtual generic_iterator_t<RoofItem> getRoofs(const std::string& configuration) const = 0;
    // Replaces the values of the given roofs (bytes or operations per second) for a configuration; false when
    // refused.
    virtual bool setCustomRoofValues(const std::map<RoofId, std::uint64_t>& values,
                                     const std::string& configuration) = 0;
    // Goes back to the measured values; false when refused.
    virtual bool clearCustomRoofValues(const std::string& configuration) = 0;
};

// What every kind of analysis asks of its view model.
class OMBRIX_API IViewModelBase {
public:
    // Why the load signal was raised. Only `Result` is told apart.
    enum class LoadType : int { Result = 0, Refresh = 1 };
    using LoadSignal = signal_t<LoadType, const std::string&>;

    virtual ~IViewModelBase() = default;
    // Null when the result has no such rows.
    virtual sptr_t<IDataset> getDataset(DataType type) const = 0;
    // Null when no machine is known.
    virtual std::shared_ptr<IRoofManager> getRoofManager(DataType type) const = 0;
    virtual ProgramInfo getProgramInfo() const = 0;
    // Where the result lives: identifies it among the results of a process.
    virtual std::string getResultDirectory() const = 0;
    // Forgets the highlighted rows; true when there were any.
    virtual bool clearHighlighting(DataType /*type*/, int /*view*/) { return false; }
};

// The view of a measured result, CPU or GPU.
class OMBRIX_API ISurveyingViewModel : public IViewModelBase {
public:
    // Raised on the host's thread after a result was loaded or refreshed.
    virtual LoadSignal& onSurveyResultLoaded() = 0;
    // Names of the memory levels that were measured, outermost last.
    virtual std::vector<std::string> getMemoryLevelNames() const = 0;
    virtual int getUsedThreadCount() const = 0;
    virtual int getLogicalCoreCount() const = 0;
    virtual int getPhysicalCoreCount() const = 0;
    virtual int getPackageCount() const = 0;
    // Time of the whole program, all threads, seconds.
    virtual double getTotalTime() const = 0;
    // Bits of `collected_data`.
    virtual std::uint64_t getCollectedDataFlags() const = 0;
    // Null when the host can't find related rows: what needs them then stays out of a comparison.
    virtual sptr_t<IRowNavigator> getRowNavigator() const { return {}; }

    // What GPU results have beside; a result of another kind leaves the answers as they are here.
    // The device of a target; nothing when none is known.
    virtual std::optional<DeviceInfo> getDeviceInfo(TargetDeviceType) const { return std::nullopt; }
    virtual GpuDeviceProperties getGpuDeviceProperties() const { return {}; }
    // Links the rows of dataset `from` to those of dataset `to`; null when there is no such pair. The link
    // keeps what it needs alive.
    virtual std::shared_ptr<IDatasetRowLinker> getRowLinker(DataType /*from*/, DataType /*to*/) const {
        return nullptr;
    }
};

// The view of a projection: a program that was measured on its host, as it would run on a target device.
//
// Its one dataset is DataType::Offload, a row a region of the program on the target. The library reads total
// operations (0 where there are none of a type: without both counts a row has no points by level), their
// performance on the target and intensity (fields 90 to 94, 101, 102, 107 to 109), operations by width (110
// to 116), OffloadElapsedTime, and traffic and bandwidth of the target's levels, which count bytes.
// `getRoofManager(DataType::Offload)` gives the target's roofs, selected by `roof::getGpuRoofConfiguration`;
// `getProgramInfo` the program on the target (an elapsed time of 0: the sum of the rows stands in).
class OMBRIX_API IPerfProjectionViewModel : public IViewModelBase {
public:
    // Raised on the host's thread after a projection was loaded or refreshed.
    virtual LoadSignal& onResultLoaded() = 0;
    // The target's last memory, as it is called without the device's suffix: "L1", "L3", "DRAM", "SLM",
    // "XLI", "GDDR6" or "HBM". Any other text, the empty one too: unknown, taken for memory behind an
    // external link.
    virtual std::string getTargetMemoryName() const = 0;
};

}  // namespace data_models2
