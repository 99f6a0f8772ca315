#include "tools/editor/win/OpenLevel.h"

#include <algorithm>
#include <optional>

#include "util/OsFiles.h"
#include "util/SafeWrite.h"

namespace zoka {

Outcome OpenLevel::open(const std::string& path) {
    const std::optional<std::string> text = osFiles().readWhole(path);
    if (!text) {
        return Refusal{path + " can't be read: " + osFiles().lastError()};
    }
    auto map = readLevelMap(*text);
    if (!map) {
        return Refusal{path + ": " + map.why()};
    }
    const std::lock_guard lock(m_mutex);
    m_map = std::move(*map);
    m_path = path;
    m_selection.clear();
    ++m_changes;
    return {};
}

Outcome OpenLevel::save() {
    return safeWrite(path(), writeLevelMap(map()));
}

void OpenLevel::close() {
    const std::lock_guard lock(m_mutex);
    m_map = {};
    m_path.clear();
    m_selection.clear();
    ++m_changes;
}

std::string OpenLevel::path() const {
    const std::lock_guard lock(m_mutex);
    return m_path;
}

std::string OpenLevel::folder() const {
    const std::string file = path();
    const size_t cut = file.find_last_of("\\/");
    return cut == std::string::npos ? std::string() : file.substr(0, cut);
}

LevelMap OpenLevel::map() const {
    const std::lock_guard lock(m_mutex);
    return m_map;
}

unsigned OpenLevel::changes() const {
    const std::lock_guard lock(m_mutex);
    return m_changes;
}

void OpenLevel::entityChanged() {
    const std::lock_guard lock(m_mutex);
    ++m_changes;
}

void OpenLevel::erase(const std::string& entity) {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_map.entities, [&](const LevelEntity& one) { return one.name == entity; });
    std::erase(m_selection, entity);
    ++m_changes;
}

void OpenLevel::select(std::vector<std::string> entities) {
    const std::lock_guard lock(m_mutex);
    if (m_selection != entities) {
        m_selection = std::move(entities);
        ++m_selectionChanges;
    }
}

std::vector<std::string> OpenLevel::selection() const {
    const std::lock_guard lock(m_mutex);
    return m_selection;
}

unsigned OpenLevel::allChanges() const {
    const std::lock_guard lock(m_mutex);
    return m_changes + m_selectionChanges;
}

}  // namespace zoka
