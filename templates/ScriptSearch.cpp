#include "templates/ScriptSearch.h"

#include <algorithm>

#include "controls/TextSet.h"
#include "templates/ScriptNeeds.h"

namespace zoka {

namespace {

// Records between two looks at the progress: often enough to keep a window alive, too seldom to be felt.
constexpr std::uint32_t kStep = 1024;

// In a form that doesn't depend on case, nor on the set that a catalogue's file, or what is searched for, is in.
std::string searchable(const std::string& text) {
    return foldedText(text, textSetOf(text));
}

}  // namespace

std::unique_ptr<ScriptSearch> ScriptSearch::make(const CTemplateData& catalogue, JobProgress* progress) {
    std::unique_ptr<ScriptSearch> search(new ScriptSearch);
    if (!search->take(catalogue, progress)) {
        search.reset();
    }
    return search;
}

bool ScriptSearch::take(const CTemplateData& catalogue, JobProgress* progress) {
    const std::vector<CTemplateData::Row>& rows = catalogue.rows();
    m_texts.reserve(rows.size());
    m_classes.reserve(rows.size());
    m_found.reserve(rows.size());
    for (std::uint32_t record = 0; record < rows.size(); ++record) {
        const CTemplateData::Row& row = rows[record];
        if (record % kStep == 0 &&
            !mayContinue(progress, record, rows.size(), std::string(row.displayName()))) {
            return false;
        }
        m_classes.push_back(searchable(std::string(row.className)));
        std::string text(row.name);
        ((text += '\n') += row.className) += '\n';
        ((text += row.filename) += '\n') += catalogue.description(record);
        m_texts.push_back(searchable(text));
        m_found.push_back(record);
    }
    return true;
}

const std::vector<std::uint32_t>& ScriptSearch::find(const std::string& className, const std::string& query) {
    const std::string wantedClass = searchable(className);
    const std::string wanted = searchable(query);
    const std::vector<std::string_view> words = tokensOf(wanted, kWhiteSpace);
    const auto matches = [&](std::uint32_t record) {
        if (wantedClass != "<all>" && m_classes[record] != wantedClass) {
            return false;
        }
        return holdsAll(m_texts[record], words);
    };
    if (wantedClass == m_className && wanted.starts_with(m_query)) {
        std::erase_if(m_found, [&](std::uint32_t record) { return !matches(record); });
    } else {
        m_found.clear();
        for (std::uint32_t record = 0; record < m_texts.size(); ++record) {
            if (matches(record)) {
                m_found.push_back(record);
            }
        }
    }
    m_className = wantedClass;
    m_query = wanted;
    return m_found;
}

}  // namespace zoka
