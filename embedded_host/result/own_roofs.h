// The user's own values of a machine's roofs: for answers, and kept in the machine's file.
#pragma once

#include "host_interfaces/model.h"

#include "embedded_host/result/machine_file.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace embedded_host {

// Safe from several threads. Thread counts are those of a program, above 0.
class OwnRoofs {
public:
    explicit OwnRoofs(std::shared_ptr<const Machine> machine);

    // Puts the own values of exactly this set-up in place of those of `roofs`. They are of a roof itself, and
    // of its single-node form only where that one stands alone.
    void apply(std::vector<data_models2::RoofItem>& roofs,
               const data_models2::RoofThreadingFeatures& features) const;

    // Both read the machine's file anew, since another process may have written it, and answer from then on
    // what it holds. When that or the writing fails they answer false and nothing has changed.
    bool set(const std::map<data_models2::RoofId, std::uint64_t>& values,
             const data_models2::RoofThreadingFeatures& features);
    // Takes away all values of the set-up.
    bool clear(const data_models2::RoofThreadingFeatures& features);

    // Why the last change failed; empty when it succeeded.
    std::string fault() const;

private:
    using Values = std::vector<MeasuredRoof>;

    // `values` empty: clears.
    bool change(const std::map<data_models2::RoofId, std::uint64_t>& values,
                const data_models2::RoofThreadingFeatures& features);

    const std::shared_ptr<const Machine> m_machine;
    mutable std::mutex m_mutex;  // guards what follows
    std::shared_ptr<const Values> m_values;
    std::string m_fault;
};

// A roof table that keeps own values.
class IOwnRoofsTable : public data_models2::IRoofManager {
public:
    // Why the last change failed; empty when it succeeded.
    virtual std::string fault() const = 0;
};

// The same of any table; empty for one that keeps none.
std::string ownRoofsFault(const data_models2::IRoofManager& table);

}  // namespace embedded_host
