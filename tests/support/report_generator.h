#pragma once
// Random but plausible reports for property tests and benchmarks: singles and
// couples of every filing mode, with salaries, business income, property and
// special-rate lines, deductions, credits, children and payments.

#include <cstdint>
#include <random>

#include "report/nishum_input.h"

namespace zelmor::testing {

class ReportGenerator {
public:
    explicit ReportGenerator(std::uint64_t seed) : rng_(seed) {}
    NishumInput next();

private:
    std::int32_t amount(double probability, std::int32_t max);
    bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(rng_) < p; }
    int pick(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng_); }
    Date birth(int fromYear, int toYear);
    std::mt19937_64 rng_;
    int counter_ = 0;
};

}  // namespace zelmor::testing
