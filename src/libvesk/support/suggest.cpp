// Distances between names.
#include "libvesk/support/suggest.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace {

constexpr std::size_t MOST_SUGGESTED = 3;
constexpr std::size_t LONGEST = 64;            // longer ones are nobody's name
constexpr std::size_t SHORTEST_CONTAINED = 3;  // shorter ones are in too many
constexpr std::size_t LETTERS_PER_ERROR = 4;

std::string lower(std::string_view text) {
    std::string result(text);
    for (char& c : result)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return result;
}

// Typing errors that make `b` of `a`: the optimal string alignment distance, row by row.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> now(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        now[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t wrong = a[i - 1] != b[j - 1] ? 1 : 0;
            now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + wrong});
            const bool exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (exchanged) now[j] = std::min(now[j], before[j - 2] + 1);
        }
        std::swap(before, last);
        std::swap(last, now);
    }
    return last[b.size()];
}

}  // namespace

std::vector<std::string_view> SUGGEST_names(std::string_view wanted,
                                            const std::vector<std::string_view>& names) {
    if (wanted.empty() || wanted.size() > LONGEST) return {};
    const std::string low = lower(wanted);
    std::vector<std::pair<std::size_t, std::string_view>> close;
    std::vector<std::string_view> result;
    for (const std::string_view name : names) {
        const std::size_t errors = distance(low, lower(name));
        if (errors <= std::max<std::size_t>(1, wanted.size() / LETTERS_PER_ERROR))
            close.emplace_back(errors, name);
        else if (low.size() >= SHORTEST_CONTAINED && lower(name).find(low) != std::string::npos)
            close.emplace_back(LONGEST, name);
    }
    std::stable_sort(close.begin(), close.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    // One that is much closer than the others was meant.
    for (const auto& [errors, name] : close)
        if (result.size() < MOST_SUGGESTED && errors <= close.front().first + 1) result.push_back(name);
    return result;
}

std::string SUGGEST_text(std::string_view wanted, const std::vector<std::string_view>& names) {
    const std::vector<std::string_view> close = SUGGEST_names(wanted, names);
    std::string text;
    for (std::size_t i = 0; i < close.size(); ++i) {
        const char* const joint = i + 1 < close.size() ? ", " : " or ";
        text += i == 0 ? ", did you mean " : joint;
        text += '"' + std::string(close[i]) + '"';
    }
    return text.empty() ? text : text + "?";
}
