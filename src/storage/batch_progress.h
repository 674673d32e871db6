#pragma once
// A progress line on standard error for long batches: nothing for a batch that
// ends within its first two seconds, then a line every two seconds and one at
// the end.

#include <chrono>
#include <cstdio>
#include <string>

namespace zelmor::storage {

class BatchProgress {
public:
    // what: "zelmor-cli calc-all"; noun: "reports stored"; total 0 when unknown.
    BatchProgress(std::string what, std::string noun, std::size_t total = 0)
        : what_(std::move(what)), noun_(std::move(noun)), total_(total), next_(Clock::now() + kEvery) {}

    void step(std::size_t done) {
        done_ = done;
        if ((done & 63) != 0) return;  // the clock is read now and then only
        const auto now = Clock::now();
        if (now < next_) return;
        next_ = now + kEvery;
        print();
    }
    // The closing line, when a line was shown at all.
    void finish() {
        if (shown_) print();
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds kEvery{2};
    void print() {
        shown_ = true;
        if (total_)
            std::fprintf(stderr, "%s: %zu of %zu %s\n", what_.c_str(), done_, total_, noun_.c_str());
        else
            std::fprintf(stderr, "%s: %zu %s\n", what_.c_str(), done_, noun_.c_str());
    }

    std::string what_, noun_;
    std::size_t total_ = 0, done_ = 0;
    Clock::time_point next_;
    bool shown_ = false;
};

}  // namespace zelmor::storage
