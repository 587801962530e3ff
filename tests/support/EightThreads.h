// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <atomic>
#include <future>
#include <thread>
#include <vector>

/** Calls @p function(0) to @p function(7) in eight threads at the same time and returns the sum of the
 * results. */
template <class Function> int sumOfEightThreads(Function function)
{
    std::promise<void> start;
    const std::shared_future<void> isStarted = start.get_future().share();
    std::atomic<int> sum {0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&sum, &function, isStarted, i] {
            isStarted.wait();
            sum += function(i);
        });
    }
    start.set_value();
    for (std::thread &thread : threads)
        thread.join();
    return sum;
}
