#include "roofline_model/engine_face.h"

#include "roofline_model/guard.h"

namespace data_models2 {

std::string EngineFace::getRooflineData(sptr_t<IDataset> dataset, sptr_t<IDataset> secondDataset,
                                        const std::string& configuration) {
    return roofline::guarded(std::string(), [&] {
        return m_core.getRooflineData(dataset, secondDataset, configuration, getMemoryLevelsCount());
    });
}

void EngineFace::logLoad(IViewModelBase::LoadType type) const {
    m_log.debug([&](std::ostream& out) {
        out << "load " << static_cast<int>(type) << ": " << (getMetrics() ? "metrics built" : "no data");
    });
}

}  // namespace data_models2
