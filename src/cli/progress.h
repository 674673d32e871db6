#pragma once
// The progress of a long batch, on standard error and only when it is a
// terminal: one line that is rewritten in place, at most a few times a second,
// and wiped at the end. Scripts and logs never see it.

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>

namespace zelmor::cli {

class Progress {
public:
    // what: "zelmor-cli calc-all"; noun: "reports"; total 0 when unknown.
    Progress(std::string what, std::string noun, std::size_t total = 0)
        : what_(std::move(what)), noun_(std::move(noun)), total_(total), shown_(::isatty(STDERR_FILENO) == 1) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { finish(); }

    void step(std::size_t done) {
        if (!shown_ || (done & 15) != 0) return;  // the clock is read now and then only
        const auto now = Clock::now();
        if (now < next_) return;
        next_ = now + std::chrono::milliseconds(250);
        if (total_)
            std::fprintf(stderr, "\r%s: %zu of %zu %s\033[K", what_.c_str(), done, total_, noun_.c_str());
        else
            std::fprintf(stderr, "\r%s: %zu %s\033[K", what_.c_str(), done, noun_.c_str());
        std::fflush(stderr);
        drawn_ = true;
    }
    // Wipes the line, so that the summary or a message takes its place.
    void finish() {
        if (drawn_) std::fputs("\r\033[K", stderr);
        drawn_ = false;
    }

private:
    using Clock = std::chrono::steady_clock;
    std::string what_, noun_;
    std::size_t total_;
    bool shown_;
    bool drawn_ = false;
    Clock::time_point next_{};
};

}  // namespace zelmor::cli
