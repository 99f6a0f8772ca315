#include "controls/PanelFilter.h"

#include "util/Text.h"

namespace zoka {

void PanelFilter::setFolded(size_t heading, bool fold) {
    if (m_folded.size() <= heading) {
        m_folded.resize(heading + 1);
    }
    m_folded[heading] = fold;
}

void PanelFilter::foldAll(std::span<const FilterItem> items, bool fold) {
    m_folded.assign(items.size(), false);
    for (size_t i = 0; i < items.size(); ++i) {
        m_folded[i] = fold && items[i].field == EntryField::Heading;
    }
}

std::vector<bool> PanelFilter::visible(std::span<const FilterItem> items) const {
    const std::string wanted = foldedText(search, textSetOf(search));
    const std::vector<std::string_view> words = tokensOf(wanted, kWhiteSpace);
    const bool filtering = changedOnly || !words.empty();
    std::vector<bool> shown(items.size(), true);
    size_t heading = items.size();
    bool fold = false;
    std::vector<bool> inSection(words.size());  // which of the words the section's caption holds
    for (size_t i = 0; i < items.size(); ++i) {
        const FilterItem& item = items[i];
        if (item.field == EntryField::Heading) {
            heading = i;
            fold = isFolded(i);
            const std::string caption = foldedText(item.label, item.set);
            for (size_t w = 0; w < words.size(); ++w) {
                inSection[w] = caption.find(words[w]) != caption.npos;
            }
            shown[i] = !filtering;
            continue;
        }
        if (!filtering) {
            shown[i] = !fold;
            continue;
        }
        bool match = !changedOnly || item.changed;
        if (match && !words.empty()) {
            const std::string own = foldedText(item.label, item.set) + '\n' + foldedText(item.help, item.set);
            for (size_t w = 0; w < words.size() && match; ++w) {
                match = inSection[w] || own.find(words[w]) != own.npos;
            }
        }
        shown[i] = match;
        if (match && heading < items.size()) {
            shown[heading] = true;
        }
    }
    return shown;
}

}  // namespace zoka
