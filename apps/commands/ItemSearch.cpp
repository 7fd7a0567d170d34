#include "ItemSearch.h"

#include "ItemQuery.h"
#include "Nearness.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HUTText.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <string_view>

namespace {

enum Place : unsigned { wholeName, beginOfName, inName, amongMarks, inTexts };

/// What describes an item, in lower case; a text a line, so that no word is found across two texts.
struct Description {
    std::string name;
    std::string marks; ///< keywords and categories
    std::string texts;

    static Description of(const HSCPlazQItem& item) {
        Description description;
        const HSCPlazQItemModel* model = item.getModel();
        if (!model) return description;
        description.name = HUTText::lowered(model->getName());
        for (const std::string& keyword : model->getSearchKeywords()) description.marks.append(keyword) += '\n';
        for (const std::string& category : model->getCategories()) description.marks.append(category) += '\n';
        description.marks = HUTText::lowered(std::move(description.marks) + model->getCategory());
        for (const std::string* text : {&model->getDisplayName(), &model->getDescription(), &model->getCompany(),
                                        &model->getCompanyDisplayName()})
            description.texts.append(*text) += '\n';
        description.texts = HUTText::lowered(std::move(description.texts));
        return description;
    }
};

std::optional<unsigned> findPlace(const Description& description, const std::string& word) {
    const std::size_t at = description.name.find(word);
    if (at == 0) return word.size() == description.name.size() ? wholeName : beginOfName;
    if (at != std::string::npos) return inName;
    if (description.marks.find(word) != std::string::npos) return amongMarks;
    if (description.texts.find(word) != std::string::npos) return inTexts;
    return std::nullopt;
}

std::optional<unsigned> findBestPlace(const Description& description, const std::vector<std::string>& words) {
    std::optional<unsigned> best;
    for (const std::string& word : words)
        if (const auto place = findPlace(description, word); place && (!best || *place < *best)) best = place;
    return best;
}

bool endsWord(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x80U && !(c >= '0' && c <= '9') && !(c >= 'a' && c <= 'z');
}

/// Calls @p look with each run of letters and digits. Characters that are not ASCII count as letters.
template <typename Look> void forEachWord(std::string_view text, Look look) {
    while (!text.empty()) {
        const auto begin = std::find_if_not(text.begin(), text.end(), endsWord);
        const auto end = std::find_if(begin, text.end(), endsWord);
        if (begin != end)
            look(text.substr(static_cast<std::size_t>(begin - text.begin()), static_cast<std::size_t>(end - begin)));
        text.remove_prefix(static_cast<std::size_t>(end - text.begin()));
    }
}

/// A word that nothing has mentioned so far, and the nearest words until then.
class UnknownWord {
public:
    explicit UnknownWord(std::string word) : m_word(std::move(word)), m_nearness(m_word) {}

    const std::string& get() const { return m_word; }
    void lookAt(const Description& description) {
        const auto compare = [this](std::string_view word) { take(word); };
        take(description.name);
        for (const std::string* text : {&description.name, &description.marks, &description.texts})
            forEachWord(*text, compare);
    }
    /// At most five.
    std::vector<std::string> getNearest() const {
        std::vector<std::string> nearest(m_nearest.begin(), m_nearest.end());
        nearest.resize(std::min(nearest.size(), mostReplacements));
        return nearest;
    }

private:
    static constexpr std::size_t mostReplacements = 5;

    void take(std::string_view word) {
        const auto edits = m_nearness.to(word);
        if (!edits || (!m_nearest.empty() && *edits > m_edits)) return;
        if (*edits < m_edits) m_nearest.clear();
        m_edits = *edits;
        m_nearest.emplace(word);
    }

    std::string m_word;
    Nearness m_nearness;
    std::size_t m_edits = 0; ///< between the word and each of the nearest
    std::set<std::string> m_nearest;
};

} // namespace

void addWords(const std::string& text, std::vector<std::string>& words) {
    std::istringstream stream(text);
    for (std::string word; stream >> word;) words.push_back(word);
}

ItemSearch::ItemSearch(const ItemQuery& query) {
    for (const std::string& given : query.words) {
        const std::string word = HUTText::lowered(given);
        const auto replaced = query.replaced.find(word);
        m_words.push_back(replaced == query.replaced.end() ? std::vector<std::string>{word} : replaced->second);
    }
}

std::optional<unsigned> ItemSearch::rank(const HSCPlazQItem& item) const {
    unsigned rank = 0;
    if (m_words.empty()) return rank;
    const Description description = Description::of(item);
    for (const std::vector<std::string>& words : m_words) {
        const auto place = findBestPlace(description, words);
        if (!place) return std::nullopt;
        rank += *place;
    }
    return rank;
}

std::map<std::string, std::vector<std::string>>
ItemSearch::findReplacements(const std::vector<std::string>& words, const std::vector<HSCPlazQStore*>& stores) {
    std::vector<UnknownWord> unknown;
    for (const std::string& word : words) unknown.emplace_back(HUTText::lowered(word));
    for (const HSCPlazQStore* store : stores)
        for (const HSCPlazQItem* item : store->getItems()) {
            if (unknown.empty()) return {};
            const Description description = Description::of(*item);
            const auto isMentioned = [&](const UnknownWord& word) {
                return findPlace(description, word.get()).has_value();
            };
            unknown.erase(std::remove_if(unknown.begin(), unknown.end(), isMentioned), unknown.end());
            for (UnknownWord& word : unknown) word.lookAt(description);
        }
    std::map<std::string, std::vector<std::string>> replacements;
    for (const UnknownWord& word : unknown)
        if (std::vector<std::string> nearest = word.getNearest(); !nearest.empty())
            replacements.emplace(word.get(), std::move(nearest));
    return replacements;
}
