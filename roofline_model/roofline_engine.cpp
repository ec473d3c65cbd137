#include "roofline_model/roofline_engine.h"

#include "roofline_model/guard.h"
#include "roofline_model/threading.h"

namespace data_models2 {

using roofline::guarded;

namespace {
constinit const roofline::LogChannel kLog{"roofline_engine"};
}  // namespace

CRooflineEngine::CRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel)
    : MeasuredEngine(cpuAnalysis(), kLog, std::move(viewModel)) {}

ThreadsInfo CRooflineEngine::getThreadsInfoStruct() const { return roofline::getThreadsInfo(viewModel()); }

std::string CRooflineEngine::getThreadsInfo() const {
    return guarded(std::string(), [&] {
        const ThreadsInfo info = getThreadsInfoStruct();
        return rabbit::writeObject([&](rabbit::object& root) {
            root.set("physicalCoreCount", info.physicalCoreCount);
            root.set("processorPackageCount", info.processorPackageCount);
            root.set("usedNumberOfThreads", info.usedNumberOfThreads);
        });
    });
}

int CRooflineEngine::getDominatingOperationType(sptr_t<RowNode> row) const {
    return guarded(DominatingTypeHelper::kUnknownOperationType,
                   [&]() -> int { return makeTypeHelper().getDominatingOperationType(row); });
}

int CRooflineEngine::getDominatingFloatType(sptr_t<RowNode> row) const {
    return guarded(DominatingTypeHelper::kUnknownFloatType,
                   [&] { return makeTypeHelper().getDominatingFloatType(row); });
}

int CRooflineEngine::getDominatingIntType(sptr_t<RowNode> row) const {
    return guarded(DominatingTypeHelper::kUnknownIntType,
                   [&] { return makeTypeHelper().getDominatingIntType(row); });
}

DominatingTypeHelper CRooflineEngine::makeTypeHelper() const {
    return DominatingTypeHelper(viewModel() ? viewModel()->getDataset(m_core.kind().rows) : nullptr);
}

}  // namespace data_models2
