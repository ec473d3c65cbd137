// The details of chosen loops of a result, and of a pair of rows of two results.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "roofline_model/engine_core.h"

#include <boost/property_tree/ptree.hpp>

#include <memory>
#include <string>

namespace data_models2 {

class CRowRooflineEngine;

// What a request for details was parsed into.
struct LoopAdditionalInfoParams {
    sptr_t<IDataset> dataset;
    std::shared_ptr<IRoofManager> roofManager;
    RooflineConfigurations configurations;
    RoofThreadingFeatures features;
};

namespace roofline::helpers {

// The bag of a request's text: a list "item" of loop ids and the keys of `parseRoofParams`. False for what is
// no JSON object.
bool parseLoopAdditionalInfoRequest(const std::string& request, variant_bag_t& bag);

}  // namespace roofline::helpers

// The result whose loops are asked about.
struct DetailsSource {
    std::shared_ptr<IViewModelBase> viewModel;
    ThreadsInfo threads;   // all 0 where there is no choice of threads
    int memoryLevels = 1;  // as measured
};

// The view of one result; it refers to the core of the engine that asks.
class LoopDetails {
public:
    LoopDetails(const EngineCore& core, DetailsSource source) : m_core(core), m_source(std::move(source)) {}
    LoopDetails(const EngineCore& core, const std::shared_ptr<ISurveyingViewModel>& measured);

    // The values of the pair of rows whose object ids are "first" and "second" of the bag `ids`, `data`
    // giving both results.
    static std::string getComparisonData(const EngineCore& core, const ComparisonData& data,
                                         const std::string& ids, const std::string& configuration);

    // A JSON array with the bag of each row that the request names; an empty text when the request can't be
    // met.
    std::string getLoopAdditionalInfo(const std::string& request, const std::string& configuration) const;
    // False without `params`, options, view model, dataset or roof table.
    bool initDataForLoopAdditionalInfo(const variant_bag_t& bag, const std::string& configuration,
                                       const std::shared_ptr<LoopAdditionalInfoParams>& params) const;
    // "id", "bottleneck", "memoryMetrics"; where charts of several numbers of threads can be drawn,
    // "roofline" behind the id and "threads" at the end.
    variant_bag_t getLoopAdditionalInfoBag(const std::string& id, const sptr_t<RowNode>& row,
                                           const LoopAdditionalInfoParams& params) const;
    // The details of the first row of a source object; an empty bag when there is none.
    variant_bag_t getObjectBag(const std::string& objectId, const std::string& configuration) const;

private:
    variant_bag_t getBottleneck(const RooflineConfigurations& configurations, const DetailedRow& row) const;
    // What limits the row, or how the configuration must change to tell.
    std::vector<std::string> describeLimit(const RooflineConfiguration& configuration,
                                           const CRowRooflineEngine& engine) const;
    std::vector<std::string> describeLimit(const CRowRooflineEngine& engine) const;
    variant_bag_t getThreads(const RoofThreadingFeatures& features) const;

    const EngineCore& m_core;
    DetailsSource m_source;
};

}  // namespace data_models2
