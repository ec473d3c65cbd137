#include "roofline_model/roofline_engine.h"

#include "roofline_model/guard.h"
#include "roofline_model/logging.h"
#include "roofline_model/threading.h"

namespace data_models2 {

using roofline::guarded;

namespace {
constinit const roofline::LogChannel kLog{"roofline_engine"};
}  // namespace

CRooflineEngine::CRooflineEngine() : CRooflineEngine(nullptr) {}

CRooflineEngine::CRooflineEngine(std::shared_ptr<ISurveyingViewModel> viewModel)
    : m_program(cpuAnalysis(), changed) {
    setModel(std::move(viewModel));
    guarded([this] { m_program.rebuildOptions(); });  // a host that fails now may answer at the next load
}

void CRooflineEngine::setModel(std::shared_ptr<ISurveyingViewModel> viewModel) {
    disconnectAll();
    m_program.setModel(std::move(viewModel));
    if (!m_program.viewModel()) return;
    m_program.viewModel()->onSurveyResultLoaded().connect(
        *this, [this](IViewModelBase::LoadType type, const std::string& message) {
            onSurveyResultLoaded(type, message);
        });
}

void CRooflineEngine::onSurveyResultLoaded(IViewModelBase::LoadType type, const std::string&) {
    m_program.onLoaded(type);
    kLog.debug([&](std::ostream& out) {
        out << "load " << static_cast<int>(type) << ": " << (getMetrics() ? "metrics built" : "no data");
    });
}

ThreadsInfo CRooflineEngine::getThreadsInfoStruct() const {
    return roofline::getThreadsInfo(m_program.viewModel());
}

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
    const auto& viewModel = m_program.viewModel();
    return DominatingTypeHelper(viewModel ? viewModel->getDataset(m_program.core().kind().rows) : nullptr);
}

}  // namespace data_models2
