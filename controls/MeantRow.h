// The row that the user meant: until something is done to it, other rows may stand in its place.
#pragma once

#include <cstddef>
#include <string>

#include "controls/RowEditing.h"

namespace zoka {

class MeantRow {
public:
    MeantRow(const RowEditing& rows, size_t row)
        : m_row(row), m_subject(rows.subject()), m_name(nameIn(rows, row)) {}

    size_t row() const { return m_row; }
    bool isStillThere(const RowEditing& rows) const {
        return m_row < rows.size() && rows.subject() == m_subject && nameIn(rows, m_row) == m_name;
    }

private:
    // Of a row without a name its label.
    static std::string nameIn(const RowEditing& rows, size_t row) {
        std::string name = row < rows.size() ? rows.nameOf(row) : "";
        return name.empty() && row < rows.size() ? rows.row(row).facts().label : name;
    }

    size_t m_row;
    std::string m_subject, m_name;
};

}  // namespace zoka
