#pragma once
// The valid name nearest to a mistyped one, for "did you mean ...?" messages.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelmor {

// Edit distance with transpositions, letters compared without case.
std::size_t editDistance(std::string_view a, std::string_view b);

// The candidate nearest to name, when one is near enough to be meant: at most
// a third of the longer name's letters (and at least one) differ.
std::optional<std::string> nearestName(std::string_view name, const std::vector<std::string_view>& candidates);

}  // namespace zelmor
