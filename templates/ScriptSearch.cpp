#include "templates/ScriptSearch.h"

#include "templates/ScriptNeeds.h"

namespace zoka {

namespace {

std::vector<std::string> wordsOf(const std::string& query) {
    std::vector<std::string> words;
    std::string word;
    for (const char c : query + " ") {
        if (c != ' ' && c != '\t') {
            word += c;
        } else if (!word.empty()) {
            words.push_back(std::move(word));
            word.clear();
        }
    }
    return words;
}

}  // namespace

ScriptSearch::ScriptSearch(const CTemplateData& catalogue) {
    m_texts.reserve(catalogue.scripts().size());
    m_classes.reserve(catalogue.scripts().size());
    for (const CScriptElm& script : catalogue.scripts()) {
        m_classes.push_back(lowered(script.m_class));
        std::string text =
            script.m_name + "\n" + script.m_class + "\n" + script.m_filename + "\n" + script.m_desc;
        m_texts.push_back(lowered(text));
        m_found.push_back(static_cast<std::uint32_t>(m_found.size()));
    }
    m_className = "<all>";
}

const std::vector<std::uint32_t>& ScriptSearch::find(const std::string& className, const std::string& query) {
    const std::string wantedClass = lowered(className);
    const std::string wanted = lowered(query);
    const std::vector<std::string> words = wordsOf(wanted);
    const auto matches = [&](std::uint32_t record) {
        if (wantedClass != "<all>" && m_classes[record] != wantedClass) return false;
        for (const std::string& word : words)
            if (m_texts[record].find(word) == std::string::npos) return false;
        return true;
    };
    if (wantedClass == m_className && wanted.starts_with(m_query)) {
        std::erase_if(m_found, [&](std::uint32_t record) { return !matches(record); });
    } else {
        m_found.clear();
        for (std::uint32_t record = 0; record < m_texts.size(); ++record)
            if (matches(record)) m_found.push_back(record);
    }
    m_className = wantedClass;
    m_query = wanted;
    return m_found;
}

}  // namespace zoka
