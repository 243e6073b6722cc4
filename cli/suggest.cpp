#include "cli/suggest.h"

#include <algorithm>
#include <cctype>

namespace orv::cli {

namespace {

std::string folded(std::string_view s) {
    std::string out;
    for (char c : s)
        if (c != ' ' && c != '\t' && c != '&')
            out += char(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

// Edits between a and b, a swap of two neighbours counting as one.
std::size_t distance(const std::string& a, const std::string& b) {
    const std::size_t n = a.size(), m = b.size();
    std::vector<std::vector<std::size_t>> d(n + 1, std::vector<std::size_t>(m + 1));
    for (std::size_t i = 0; i <= n; ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= m; ++j) d[0][j] = j;
    for (std::size_t i = 1; i <= n; ++i) {
        for (std::size_t j = 1; j <= m; ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1,
                                d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    }
    return d[n][m];
}

}  // namespace

std::string closestMatch(std::string_view typed, const std::vector<std::string>& candidates) {
    const std::string t = folded(typed);
    const std::size_t allowed = std::max<std::size_t>(2, t.size() / 3);
    std::string best;
    std::size_t bestDistance = allowed + 1;
    for (const std::string& c : candidates) {
        const std::size_t d = distance(t, folded(c));
        if (d < bestDistance) {
            bestDistance = d;
            best = c;
        }
    }
    return best;
}

std::string didYouMean(std::string_view typed, const std::vector<std::string>& candidates) {
    const std::string best = closestMatch(typed, candidates);
    return best.empty() ? std::string() : " Did you mean \"" + best + "\"?";
}

}  // namespace orv::cli
