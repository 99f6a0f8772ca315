// Line and column of an error in a text that was edited on the way there. Internal to this folder.
//
// Names, values and texts are ended and decoded in place, which destroys line ends and shifts characters.
// Rather than counting lines while reading, the parser notes what an edit took away; lines are counted once,
// when there is an error to report, from what is left. Places can be asked for at and behind the last edit
// only.
#pragma once

#include "xml/XMLNames.h"

namespace zoka {

class XMLPosition {
public:
    struct Place {
        int line;
        int column;
    };

    // `leads` are those of the text's character set.
    XMLPosition(const char* begin, bool utf8, XMLLeads leads)
        : m_begin(begin), m_anchor(begin), m_utf8(utf8), m_leads(leads) {}

    // Puts a 0 at `at`.
    void end(char* at) {
        const char c = *at;
        *at = 0;
        if (c == '\n' || (c == '\r' && at[1] != '\n')) {
            ++m_lost;
            m_anchor = at + 1;
            m_anchorColumn = 0;
        }
    }
    // To be called before and after the bytes from `first` to `last` are rewritten. Needless where there are
    // ASCII characters and no line ends, before and after: that many characters still stand there.
    void beforeEdit(const char* first, const char* last);
    void afterEdit(const char* first, const char* last);

    Place at(const char* place) const;

private:
    int characters(const char* first, const char* last) const;
    // Characters between the start of the line that `place` is on and `place`.
    int columnOf(const char* place) const;

    const char* m_begin;
    int m_lost = 0;          // line ends that edits took away
    const char* m_anchor;    // the end of the last edit that matters for columns
    int m_anchorColumn = 0;  // characters in front of it on its line
    const bool m_utf8;
    const XMLLeads m_leads;
};

}  // namespace zoka
