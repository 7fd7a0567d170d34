#include "NameSelection.h"

#include "Glob.h"

#include <numeric>

namespace {

std::string joined(const std::vector<std::string>& words) {
    return std::accumulate(words.begin() + 1, words.end(), words.front(),
                           [](const std::string& text, const std::string& word) { return text + " " + word; });
}

/// @return false when the word fits nothing
bool addFitting(const std::string& word, const std::unordered_set<std::string>& known,
                std::unordered_set<std::string>& names) {
    if (known.count(word) > 0) {
        names.insert(word);
        return true;
    }
    bool isFound = false;
    for (const std::string& name : known)
        if (fitsGlob(word, name)) {
            names.insert(name);
            isFound = true;
        }
    return isFound;
}

} // namespace

NameSelection NameSelection::of(const std::vector<std::string>& words, const std::unordered_set<std::string>& known) {
    if (words.size() > 1)
        if (const std::string name = joined(words); known.count(name) > 0) return {{name}, {}};
    NameSelection selection;
    for (const std::string& word : words)
        if (!addFitting(word, known, selection.names)) selection.unmatched.push_back(word);
    return selection;
}
