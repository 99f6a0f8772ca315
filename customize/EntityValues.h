// The skills and flags of the entities shown, as rows of a panel: those that the entities' actions declare.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "controls/EntryModel.h"
#include "customize/EntitySelection.h"

namespace zoka {

// A row is of text alone, or a value of each entity, as it was last read or written. Rows are counted from 0; the
// panel's `models` begin with those that show these rows. [panel thread]
class EntityValues {
public:
    // No row. The selection outlives the object.
    explicit EntityValues(EntitySelection& entities) : m_entities(&entities) {}
    // The rows of those that are shown. Reads the values; what shows each row is added to `models`.
    EntityValues(EntitySelection& entities, std::vector<EntryModel>& models);

    size_t size() const { return m_rows.size(); }
    bool hasValue(size_t row) const { return row < m_rows.size() && m_rows[row].field.number > 0; }
    // "skill3"; empty for a row without a value.
    std::string fieldOf(size_t row) const { return hasValue(row) ? m_rows[row].field.name() : ""; }
    // The field, and where its action declares it; in that set.
    std::string details(size_t row, TextSet set) const;
    // A value as the row writes it: the choice that is equal, or a number.
    std::string textOf(size_t row, const EntryFacts& facts, float value) const;
    // Values outside their limits, a line each, in UTF-8.
    std::vector<std::string> findings(std::span<const EntryModel> models) const;

    // Reads all values again. True when what a row shows is another thing than before.
    bool reread(std::vector<EntryModel>& models);
    // Gives each entity the value. The row's model stays as it is; of what the host refuses it takes nothing until the
    // values are read again.
    Written write(size_t row, float value, std::vector<EntryModel>& models);
    // What undo remembers of a row, and back to that: each entity's own value.
    std::string stateOf(size_t row) const;
    Written putState(size_t row, const std::string& state, std::vector<EntryModel>& models);
    // The values when the rows were made. Not to be had while the host has never given one.
    bool isLoaded(size_t row) const { return hasValue(row) && !m_rows[row].loaded.empty(); }
    Written putLoaded(size_t row, std::vector<EntryModel>& models);

private:
    struct Row {
        EntityField field = {};  // number 0: text alone
        int line = 0;
        std::vector<float> values = {};  // one an entity; a flag's are 0 and 1
        std::vector<float> loaded = {};  // those when the rows were made; none while one can't be read
        std::string closed = {};         // why it takes no value at all
    };

    EntryModel add(const CustomEntry& entry);
    std::vector<size_t> rowsLike(size_t row) const;
    bool rereadRow(size_t row, EntryModel& model);
    Written writeEach(size_t row, const std::vector<float>& values, std::vector<EntryModel>& models);
    Written put(size_t row, const std::vector<float>& values, std::vector<EntryModel>& models);
    void show(size_t row, EntryModel& model) const;

    EntitySelection* m_entities;
    std::vector<Row> m_rows;
};

}  // namespace zoka
