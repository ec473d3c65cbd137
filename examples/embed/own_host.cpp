// A host of one's own at its smallest: the functions that a host defines, without result or messages. It
// links nothing of the embedded host; docs/embedding.md tells what a whole host brings.
#include "host_interfaces/host_functions.h"
#include "host_interfaces/tasks.h"

#include "roofline_model/factories.h"

#include <boost/property_tree/ptree.hpp>

#include <cstdio>
#include <string>

namespace data_models2 {

void reportAssertion(const char* expression, const char* unit, int line) {
    std::fprintf(stderr, "%s:%d: %s\n", unit, line, expression);
}
std::string getFieldStringId(FieldId field) { return std::to_string(static_cast<int>(field)); }
sptr_t<IDatasetHelper> createDatasetHelper(const sptr_t<IDataset>&) { return nullptr; }
std::shared_ptr<const IMessageCatalogue> loadMessageCatalogue(const std::string&) { return nullptr; }
std::string toText(const variant_t&) { return {}; }
std::string double2str(double value, const std::string&, int, double) { return std::to_string(value); }
std::string int2str(long long value) { return std::to_string(value); }
bool loadBag(const std::string&, variant_bag_t&) { return false; }
std::string saveBag(const variant_bag_t&) { return "{}"; }
sptr_t<IScheduler> IScheduler::Get() {
    class Idle final : public RefCounted<IScheduler> {
        bool isEnabled() const override { return false; }
        void schedule(const sptr_t<ITask>&, const std::string&) override {}
    };
    static const sptr_t<IScheduler> scheduler(new Idle);
    return scheduler;
}
std::vector<std::string> split_string(const std::string&, const std::string&, int) { return {}; }
InstructionMix getInstructionMixMap(const sptr_t<RowNode>&, const sptr_t<IDataset>&) { return {}; }

namespace isa_helpers {
unsigned getTypeMaxWidth(const std::string&, const std::string&) { return 0; }
long long getVectorLength(const std::string&) { return 1; }
}  // namespace isa_helpers

namespace tripcounts_helpers {
bool getSourceTripCounts(const sptr_t<RowNode>&, const sptr_t<IDataset>&, FieldId, SourceTripCountsData&) {
    return false;
}
}  // namespace tripcounts_helpers

namespace roof {
OperationsType getOperationsType(const RoofItem&) { return OperationsType::Float; }
bool hasType(const RoofItem& roof, RoofItem::Type type) { return (roof.typeBits & type) != 0; }
std::string getCpuRoofConfiguration(const RoofThreadingFeatures&, OperationsType,
                                    IRooflineInfo::Perspective) {
    return {};
}
std::string getCpuRoofConfiguration(int, int, RoofThreadingFeatures::Strategy, OperationsType,
                                    IRooflineInfo::Perspective) {
    return {};
}
std::string getGpuRoofConfiguration(TileUsage, OperationsType) { return {}; }
}  // namespace roof

namespace roofline_helpers {
std::string getMemoryRooflineType(MemoryLevel, TargetDeviceType) { return {}; }
std::string getGpuMemoryRooflineType(unsigned long long) { return {}; }
RoofId getGpuLastMemLevelRoofId(const std::string&) { return RoofId::XliBandwidth; }
}  // namespace roofline_helpers

namespace gpu_helpers {
bool useNewGpuTerminology(unsigned long long) { return false; }
}  // namespace gpu_helpers

namespace gpu_roofline_helpers {
std::string getInstructionType(int) { return "other"; }
}  // namespace gpu_roofline_helpers

namespace issue_helpers {
variant_bag_t getRowIssues(const sptr_t<RowNode>&) { return {}; }
}  // namespace issue_helpers

namespace dataset_helpers {
RowIterator getChildren(const sptr_t<RowNode>&) { return {}; }
}  // namespace dataset_helpers

namespace library_helpers {
bool hasLibrary(const sptr_t<RowNode>&, const sptr_t<IDataset>&, int) { return false; }
}  // namespace library_helpers

}  // namespace data_models2

int main() {
    const auto engine = data_models2::createRooflineInfo(nullptr);
    std::printf("%s\n%s\n", engine->getRooflineOptions().c_str(), engine->getThreadsInfo().c_str());
    return 0;
}
