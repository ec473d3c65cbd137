// The thread set-up of a chart: what a machine and a program offer, and what a request chooses of it.
#pragma once

#include "host_interfaces/model.h"

#include <memory>

namespace data_models2::roofline {

// All 0 without a view model.
ThreadsInfo getThreadsInfo(const std::shared_ptr<ISurveyingViewModel>& viewModel);

// Set-ups exist for one thread and for even numbers: an odd number above 1 is raised to the next even one.
constexpr int raiseOddThreads(int threads) { return threads > 1 && threads % 2 ? threads + 1 : threads; }

// Caches and main memory that were measured; at least 1.
int getMemoryLevelsCount(const std::shared_ptr<ISurveyingViewModel>& viewModel);

// The set-up of a request's "threadCount", "packageCount" and "useSTRoofsStrategy"; what it doesn't say
// stands at the used threads, one package and the multi-threaded strategy. Threads that don't fit on the
// chosen packages take all.
void parseRoofParams(const variant_bag_t& bag, const ThreadsInfo& info, RoofThreadingFeatures& out);
// The same of a device, which has no threads: its "packageCount" is the number of sub-devices as it is given,
// all of them where it isn't said.
RoofThreadingFeatures parseSubDevices(const variant_bag_t& bag);

}  // namespace data_models2::roofline
