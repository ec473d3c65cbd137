// Threads that hear no signals: those are for the thread that started the program.
#pragma once

#include <csignal>
#include <thread>
#include <utility>

namespace cli::page {

// Threads that `work` starts hear none either.
template <class Work>
std::thread startQuietly(Work work) {
    return std::thread([work = std::move(work)]() mutable {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        work();
    });
}

}  // namespace cli::page
