// Each row's roofline, from the data and for the threads that were chosen.
#pragma once

#include "host_interfaces/roofline_services.h"

#include "cli/requests.h"
#include "cli/session.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>

namespace cli {

class RowRooflines {
public:
    using Dataset = data_models2::sptr_t<data_models2::IDataset>;
    using Row = data_models2::sptr_t<data_models2::RowNode>;

    // `configuration` is complete, one value a group; of it only the choice of self or total data counts.
    RowRooflines(const Session& session, const std::string& configuration, const RoofChoice& choice);

    // Total data live in the call tree; a result without one has self data only.
    bool isTotal() const { return m_isTotal; }
    // Holds every row.
    const Dataset& dataset() const { return m_dataset; }
    const data_models2::RoofThreadingFeatures& threading() const { return m_features; }
    // Memory levels that the rows know.
    std::size_t levelCount() const { return m_kind.levelCount(m_models); }
    const ResultTraits& kind() const { return m_kind; }
    // Never null.
    std::shared_ptr<data_models2::IRowRooflineInfo> of(const Row& row) const;
    // Whether the roofline of a row of self data speaks of its callees too: the library takes total data
    // where they are there.
    bool isWithCallees(const Row& row, const data_models2::IRowRooflineInfo& info) const;

private:
    bool m_isTotal;
    Dataset m_dataset;
    Dataset m_chosen;  // the same for the chosen threads
    std::set<std::uint64_t> m_callers;
    data_models2::RoofThreadingFeatures m_features;
    const ResultTraits& m_kind;
    Models m_models;
};

// Tells when the library's roofs are those of another number of threads than the one in effect.
void warnOfOddThreads(const Session& session, const RoofChoice& choice, Console& console);

}  // namespace cli
