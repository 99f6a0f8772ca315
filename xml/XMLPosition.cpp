#include "xml/XMLPosition.h"

namespace zoka {
namespace {

// Whether a line ends at `p`: LF, CR LF (at its LF) or a CR alone.
bool endsLine(const char* p) {
    return *p == '\n' || (*p == '\r' && p[1] != '\n');
}

int lineEnds(const char* first, const char* last) {
    int count = 0;
    for (; first < last; ++first) {
        count += endsLine(first);
    }
    return count;
}

}  // namespace

int XMLPosition::characters(const char* first, const char* last) const {
    int count = 0;
    if (!m_utf8) {
        if (!m_leads) {
            return static_cast<int>(last - first);
        }
        // A terminator counts, too: names and values are ended in place.
        for (; first < last; first += platformCharacter(first, m_leads)) {
            ++count;
        }
        return count;
    }
    for (; first < last; ++first) {
        count += (static_cast<unsigned char>(*first) & 0xc0) != 0x80;
    }
    return count;
}

int XMLPosition::columnOf(const char* place) const {
    const char* p = place;
    while (p > m_anchor) {
        if (endsLine(--p)) {
            return characters(p + 1, place);
        }
    }
    return m_anchorColumn + characters(m_anchor, place);
}

void XMLPosition::beforeEdit(const char* first, const char* last) {
    m_anchorColumn = columnOf(last);
    m_anchor = last;
    // The byte in front belongs to the line ends counted: a CR there may become one with a LF decoded here.
    m_lost += lineEnds(first - 1, last);
}

void XMLPosition::afterEdit(const char* first, const char* last) {
    m_lost -= lineEnds(first - 1, last);
}

XMLPosition::Place XMLPosition::at(const char* place) const {
    return {1 + m_lost + lineEnds(m_begin, place), 1 + columnOf(place)};
}

}  // namespace zoka
