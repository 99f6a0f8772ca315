#include "controls/PanelFilter.h"

#include <algorithm>

namespace zoka {
namespace {

// Letters of the Windows-1252 set in their small form.
char folded(char c) {
    const auto u = static_cast<unsigned char>(c);
    if ((u >= 'A' && u <= 'Z') || (u >= 0xC0 && u <= 0xDE && u != 0xD7)) {
        return static_cast<char>(u + 0x20);
    }
    if (u == 0x8A || u == 0x8C || u == 0x8E) {
        return static_cast<char>(u + 0x10);
    }
    return c;
}

std::string foldedText(std::string_view text) {
    std::string made(text);
    std::transform(made.begin(), made.end(), made.begin(), folded);
    return made;
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    for (size_t at = 0; (at = text.find_first_not_of(" \t\r\n", at)) != text.npos;) {
        const size_t end = std::min(text.find_first_of(" \t\r\n", at), text.size());
        words.push_back(foldedText(text.substr(at, end - at)));
        at = end;
    }
    return words;
}

}  // namespace

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
    const std::vector<std::string> words = wordsOf(search);
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
            const std::string caption = foldedText(item.label);
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
            const std::string own = foldedText(item.label) + '\n' + foldedText(item.help);
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
