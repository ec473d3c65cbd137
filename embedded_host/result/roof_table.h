// The roof table of a machine: which roofs stand for a thread set-up.
#pragma once

#include "host_interfaces/model.h"

#include "embedded_host/result/machine_file.h"

#include <memory>
#include <string>
#include <vector>

namespace embedded_host {

// The roofs of `machine` for a thread set-up, one per id (and single-node form), ascending by id.
//
// A thread count that was measured is taken as it is. Otherwise the next smaller measured count stands in:
// compute roofs and private caches (L1, L2) grow with the threads, outer levels do so too but never exceed
// the largest value measured, and threads beyond the physical cores add nothing. Below the smallest measured
// count that one stands in: compute roofs and private caches shrink, outer levels stay. Measurements on no
// more than the asked packages are preferred. A single-threaded set-up takes the roofs marked so, unscaled,
// and else the roofs of one thread. Own values of the user aren't taken here.
std::vector<data_models2::RoofItem> selectRoofs(const Machine& machine,
                                                const data_models2::RoofThreadingFeatures& features);

// `usedThreads` is what a thread count of 0 means. Own values of roofs hold for exactly their set-up and are
// kept in the machine's file. Any thread may ask while another changes them.
std::shared_ptr<data_models2::IRoofManager> makeRoofTable(std::shared_ptr<const Machine> machine,
                                                          int usedThreads);

}  // namespace embedded_host
