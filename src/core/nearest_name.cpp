#include "core/nearest_name.h"

#include <algorithm>
#include <limits>

namespace zelmor {

std::size_t editDistance(std::string_view a, std::string_view b) {
    auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; };
    const std::size_t n = a.size(), m = b.size();
    std::vector<std::size_t> prev2(m + 1), prev(m + 1), cur(m + 1);
    for (std::size_t j = 0; j <= m; ++j) prev[j] = j;
    for (std::size_t i = 1; i <= n; ++i) {
        cur[0] = i;
        for (std::size_t j = 1; j <= m; ++j) {
            const std::size_t cost = lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1;
            cur[j] = std::min({prev[j] + 1, cur[j - 1] + 1, prev[j - 1] + cost});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]))
                cur[j] = std::min(cur[j], prev2[j - 2] + 1);
        }
        std::swap(prev2, prev);
        std::swap(prev, cur);
    }
    return prev[m];
}

std::optional<std::string> nearestName(std::string_view name, const std::vector<std::string_view>& candidates) {
    std::optional<std::string> best;
    std::size_t bestDistance = std::numeric_limits<std::size_t>::max();
    for (std::string_view c : candidates) {
        const std::size_t d = editDistance(name, c);
        const std::size_t allowed = std::max<std::size_t>(1, std::max(name.size(), c.size()) / 3);
        if (d <= allowed && d < bestDistance) {
            bestDistance = d;
            best = std::string(c);
        }
    }
    return best;
}

}  // namespace zelmor
