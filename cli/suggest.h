// "Did you mean ...?" for a misspelt step, action or field.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv::cli {

// The candidate closest to `typed` (ignoring case, blanks and "&"), or "" when none is
// close enough to be a likely slip: at most a third of the word's letters (and at least
// two) added, dropped, changed or swapped.
std::string closestMatch(std::string_view typed, const std::vector<std::string>& candidates);

// " Did you mean \"Volume\"?" for the closest candidate, or "" when there is none.
std::string didYouMean(std::string_view typed, const std::vector<std::string>& candidates);

}  // namespace orv::cli
