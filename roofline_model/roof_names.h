// Names, captions and tokens of roofs, memory levels, operation types and rows.
#pragma once

#include "host_interfaces/model.h"
#include "host_interfaces/records.h"

#include <string>
#include <vector>

namespace data_models2::roofline {

namespace helpers {

// The fixed short name of a roof, such as "l1bandwidth"; empty for an id without one.
std::string getRoofNameById(RoofId id);
// The form in which roof names are compared: lower case, without "(single-threaded)" and white space.
std::string getRoofShortName(const std::string& name);
// The catalogue's description of a roof; empty when it has none.
std::string getRoofDescription(const std::string& name, TargetDeviceType target);
// The translated caption of a memory level, by its token ("L1", "DRAMgpu"). Throws std::out_of_range for an
// unknown one.
std::string getMemLevelPrefixName(const std::string& name);
// The same; an unknown token is its own caption.
std::string getMemLevelCaption(const std::string& name);
// The same; the caption of an unknown token is given.
std::string getMemLevelCaption(const std::string& name, const std::string& unknown);
// The unit caption of a roof. The texts are translated once a process.
const std::string& getRoofMeasureTranslated(bool isMemory, OperationsType operations);

struct AxisText {
    std::string caption;
    std::string measure;
};
// The texts of the axis that shows a self intensity or performance field; empty for any other field.
AxisText getRoofAxesTranslated(FieldId field);

// The token of the level at which the core's own traffic counts.
std::string getCoreLevelName(TargetDeviceType device);
// The token of the level whose traffic a roof of `level` stands for: on a device that of the first is the
// core's.
std::string getTrafficLevelName(MemoryLevel level, TargetDeviceType device);
// The roof of a device's last memory level, by its token; the external link's for an unknown one.
RoofId getGpuLastMemLevelRoofId(const std::string& name);
// `value` with `precision` digits behind the point.
std::string double2Str(double value, int precision);
// The row's 64-bit identifier in decimal; empty for a null row.
std::string getLoopId(const sptr_t<RowNode>& row);

}  // namespace helpers

// The identifier of the row's source object in decimal; empty without a row or a dataset.
std::string getObjectId(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset);
// Each caption with a "-" behind it, the last one too.
std::string getMemoryLevelCaption(const std::vector<std::string>& levels);
// The option token of an operations type: "f", "i", "b"; empty for Undefined.
std::string getRooflineTypeFromOpsType(OperationsType type);
// The operations type that the tokens of a configuration string name: several letters or "b" give Mixed, none
// Undefined.
OperationsType getRooflineOperationType(const std::string& configuration);
// The configuration strings with the token "b" replaced by the token of `operations` ("f", or "i" for all but
// Float); other tokens stay, so a string that names both types goes on naming both.
std::vector<std::string> transformRooflineTypes(std::vector<std::string> types, OperationsType operations);
// A base type folded with its width in bits; None for an unsupported pair.
ArithTypeExtDef getArithTypeExtDef(ArithTypeDef base, std::uint64_t bits);

}  // namespace data_models2::roofline
