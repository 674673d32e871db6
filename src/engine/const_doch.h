#pragma once
#include "core/tax_year.h"  // the year's parameters live in core; kept for code that still names this header
