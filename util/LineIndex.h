// Where the lines of a text begin.
#pragma once

#include <cstddef>
#include <memory>

namespace zoka {

// The starts of all lines of a text, in order, then one null. A line starts at the text's first byte and
// after every LF, so a text of n LFs has n + 1 lines and a text that ends with a LF has an empty last line. A
// null text has none. The index points into the text: it neither owns nor changes it.
class LineIndex {
public:
    LineIndex() : LineIndex(nullptr, 0) {}
    // `size` is the text's length in bytes. Linear in it: the LFs are counted, then room is taken once.
    LineIndex(const char* text, size_t size);

    size_t lines() const { return m_lines; }
    // Length in bytes of the longest line, its LF counted.
    size_t longestLine() const { return m_longest; }
    // Start of line `index`; the index lines() gives the closing null. Throws std::out_of_range beyond that.
    const char* at(size_t index) const;

private:
    size_t m_lines;
    size_t m_longest;
    std::unique_ptr<const char*[]> m_starts;  // lines() + 1 entries
};

}  // namespace zoka
