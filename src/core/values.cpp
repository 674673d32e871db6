#include "core/values.h"
