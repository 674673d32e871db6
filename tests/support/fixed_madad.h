#pragma once
#include <map>

#include "core/madad_lookup.h"

namespace zelmor::testing {

// An index table in memory: months (year*100+month) with values; a month
// without a value takes the latest earlier one, and before the first the base value.
class FixedMadad : public MadadLookup {
public:
    explicit FixedMadad(double base = 100.0) : base_(base) {}
    void set(int year, int month, double value) { values_[year * 100 + month] = value; }
    double GetMadad(Date d) const override {
        const int key = d.year() * 100 + d.month();
        auto it = values_.upper_bound(key);
        if (it == values_.begin()) return base_;
        return std::prev(it)->second;
    }

private:
    double base_;
    std::map<int, double> values_;
};

}  // namespace zelmor::testing
