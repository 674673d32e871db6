#pragma once
#include "core/date.h"

namespace zelmor {

// The consumer price index as the calculation sees it: the value of the index
// (on the base September 1951) in force for the month of a date.
class MadadLookup {
public:
    virtual ~MadadLookup() = default;
    virtual double GetMadad(Date date) const = 0;
};

}  // namespace zelmor
