#pragma once
// Independent pieces of work spread over the cores.

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <thread>
#include <vector>

namespace tolm {

// Calls work(0) .. work(count - 1), in any order, from as many threads as there are cores, and
// progress(done) from the calling thread only, at the end with all. The first exception stops the
// rest and is rethrown.
template <class Work, class Progress>
void forAll(std::size_t count, Work&& work, Progress&& progress)
{
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> done{0};
    std::atomic<bool> failed{false};
    std::exception_ptr failure;
    const auto takePieces = [&](bool reports) {
        try {
            for (std::size_t i = next++; i < count && !failed.load(); i = next++) {
                work(i);
                const std::size_t finished = ++done;
                if (reports)
                    progress(finished);
            }
        } catch (...) {
            if (!failed.exchange(true))
                failure = std::current_exception();
        }
    };
    {
        std::vector<std::jthread> helpers;
        const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
        for (std::size_t i = 1; i < std::min(cores, count); ++i)
            helpers.emplace_back(takePieces, false);
        takePieces(true);
    }
    if (failure)
        std::rethrow_exception(failure);
    progress(count);
}

} // namespace tolm
