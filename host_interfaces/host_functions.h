// The functions that a host of the library defines. The embedded host's are in embedded_host/services; a host
// of its own brings its own and links without them.
#pragma once

#include "host_interfaces/export.h"
#include "host_interfaces/model.h"
#include "host_interfaces/records.h"
#include "host_interfaces/roofline_services.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace data_models2 {

// Reports that a program invariant is broken and returns: the caller goes on safely. `unit` is the source
// unit, such as "roofline_model/unified/roofline_options".
OMBRIX_API void reportAssertion(const char* expression, const char* unit, int line);

// The textual name of a field, unique among all fields; "field<number>" for an unknown one.
OMBRIX_API std::string getFieldStringId(FieldId field);

// A walker over `dataset`; null for a null dataset.
OMBRIX_API sptr_t<IDatasetHelper> createDatasetHelper(const sptr_t<IDataset>& dataset);

// The messages of one catalogue in the language of the process.
class OMBRIX_API IMessageCatalogue {
public:
    virtual ~IMessageCatalogue() = default;
    // Whether the catalogue has the message; no trace is left when it hasn't.
    virtual bool has(const std::string& id) const = 0;
    // The message with "%1" to "%3" replaced by the arguments' text forms and "%%" by "%"; an empty variant
    // and a missing argument read as an empty text. Empty when there is no such message.
    virtual std::string format(const std::string& id, const std::vector<variant_t>& arguments) const = 0;
};
// Null when there is no such catalogue. The same object for the life of the process.
OMBRIX_API std::shared_ptr<const IMessageCatalogue> loadMessageCatalogue(const std::string& name);
inline constexpr std::size_t kMaxMessageArguments = 3;

// The text form of a variant: integers in decimal, floating kinds through a default stream, texts as they
// are, an empty text for all else.
OMBRIX_API std::string toText(const variant_t& value);

// A number for people: `precision` digits behind the point, or as many as show that it isn't 0, then `unit`
// when there is one. What is nearer to 0 than `smallest` is written as "< smallest" or "> -smallest"; "N/A"
// for a value that isn't finite.
OMBRIX_API std::string double2str(double value, const std::string& unit, int precision, double smallest);
OMBRIX_API std::string int2str(long long value);

// The pieces of `text` between occurrences of `delimiter`, empty pieces too; none of an empty text. `flags`
// is 0.
OMBRIX_API std::vector<std::string> split_string(const std::string& text, const std::string& delimiter,
                                                 int flags);

// A bag from and to JSON. Non-negative integers become kind 7 (larger ones 9), negative ones 6 or 8, other
// numbers doubles; an array is a bag of "item" children beside "arrayOf". Loading is false, with `bag` as it
// was, for a text that is no JSON object or nested deeper than a bag can safely be. Saving writes the first
// of the children of one name, and null for what JSON can't say.
OMBRIX_API bool loadBag(const std::string& json, variant_bag_t& bag);
OMBRIX_API std::string saveBag(const variant_bag_t& bag);

// Counts of a row's instructions by class; the numbers of the classes are the host's.
using InstructionMix = std::map<int, variant_t>;
// Empty when the row's mix isn't known.
OMBRIX_API InstructionMix getInstructionMixMap(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset);

namespace isa_helpers {
// The largest width in bits among the types of a base name ("int", "float") in a lower-case text of data
// types, such as "float32, int64"; 0 when there is none.
OMBRIX_API unsigned getTypeMaxWidth(const std::string& text, const std::string& base);
// How long the vectors of an instruction set are. The unit is the host's: lengths are only compared.
OMBRIX_API long long getVectorLength(const std::string& isa);
}  // namespace isa_helpers

namespace tripcounts_helpers {
// How often a loop's body ran each time that the loop was entered.
struct SourceTripCountsData {
    struct Summand {
        sptr_t<const IRefCounted> object;  // the host's
    };
    std::vector<Summand> summands;
    std::int64_t median = 0;
};
// False, with `data` left alone, when the row has no trip counts. `field` is FieldId::TripCounts.
OMBRIX_API bool getSourceTripCounts(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset,
                                    FieldId field, SourceTripCountsData& data);
}  // namespace tripcounts_helpers

namespace roof {
// Float for a compute roof of a float type, Int for an integer type, Undefined for a memory roof and a type
// that isn't known.
OMBRIX_API OperationsType getOperationsType(const RoofItem& roof);
OMBRIX_API bool hasType(const RoofItem& roof, RoofItem::Type type);
// The text by which the roof table selects the roofs of a thread set-up.
OMBRIX_API std::string getCpuRoofConfiguration(const RoofThreadingFeatures& features,
                                               OperationsType operations,
                                               IRooflineInfo::Perspective perspective);
OMBRIX_API std::string getCpuRoofConfiguration(int threadCount, int packageCount,
                                               RoofThreadingFeatures::Strategy strategy,
                                               OperationsType operations,
                                               IRooflineInfo::Perspective perspective);
// The same of a device. Undefined and Mixed take the roofs of all operations.
OMBRIX_API std::string getGpuRoofConfiguration(TileUsage usage, OperationsType operations);
}  // namespace roof

namespace roofline_helpers {
// The name of a memory level, as options and metrics use it: "L1", "DRAM", "L3gpu". Empty for no level. A
// level that only devices have gives its "gpu" name for a CPU too.
OMBRIX_API std::string getMemoryRooflineType(MemoryLevel level, TargetDeviceType target);
// The name of a device's last memory level: "DRAMgpu", "HBMgpu", ... `memoryType` is that of
// `GpuDeviceProperties`; what isn't known is taken for memory behind an external link, "XLIgpu".
OMBRIX_API std::string getGpuMemoryRooflineType(unsigned long long memoryType);
// The roof of a device's last memory level, by the level's name.
OMBRIX_API RoofId getGpuLastMemLevelRoofId(const std::string& name);
}  // namespace roofline_helpers

namespace gpu_helpers {
// Whether texts about a device with this memory speak of stacks (true) or of tiles. `memoryType` is that of
// `GpuDeviceProperties`.
OMBRIX_API bool useNewGpuTerminology(unsigned long long memoryType);
}  // namespace gpu_helpers

namespace gpu_roofline_helpers {
// The group of an instruction class, a number of `GpuInstruction`: "compute", "memory", "atomic", or "other"
// for all else.
OMBRIX_API std::string getInstructionType(int instruction);
}  // namespace gpu_roofline_helpers

namespace issue_helpers {
// What an analysis has found about a row. What bounds it stands in "bounded_by", a bag of "item" children
// (beside "arrayOf") that each hold a text, the weightiest first: the name of a roof, such as "L3_BW", or of
// something else, such as "Latencies". An empty bag when nothing was found.
OMBRIX_API variant_bag_t getRowIssues(const sptr_t<RowNode>& row);
}  // namespace issue_helpers

namespace dataset_helpers {
// The rows right below a row; a null iterator when there are none, and for a null row.
OMBRIX_API RowIterator getChildren(const sptr_t<RowNode>& row);
}  // namespace dataset_helpers

namespace library_helpers {
// Whether the row's time belongs to a library that is known to do work which no counter sees.
OMBRIX_API bool hasLibrary(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, int library);
}  // namespace library_helpers

}  // namespace data_models2
