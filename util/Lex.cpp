#include "util/Lex.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "util/LexChars.h"

using namespace zoka::lex;

CLex::CLex(const char* text, long size)
    : buf(text),
      bufsize(text ? static_cast<int32_t>(std::clamp<long>(size, 0, INT_MAX - 1)) : 0),
      curr(0),
      line{},
      linelen(0),
      lines(0),
      starts(buf, static_cast<size_t>(bufsize)),
      error(starts.longestLine() >= static_cast<size_t>(kMaxLine) ? CLEXERR_LONGLINE : CLEXERR_NONE) {
    lines = static_cast<int>(starts.lines());
}

CLex::~CLex() = default;

// The line without its end: the LF of every line but the last, up to two CR or LF of the last. The last is cut
// to `most` bytes before its end is looked at.
CLex::Span CLex::lineAt(int index, long most) const {
    const char* start = starts.at(static_cast<size_t>(index));
    if (const char* next = starts.at(static_cast<size_t>(index) + 1)) {
        return {start, static_cast<int>(next - start - 1)};
    }
    int len = static_cast<int>(std::min<long>(buf + bufsize - start, most));
    for (int i = 0; i < 2 && len > 0 && (start[len - 1] == '\r' || start[len - 1] == '\n'); ++i) {
        --len;
    }
    return {start, len};
}

const char* CLex::deliverCopy(Span span) {
    linelen = std::min(span.len, kMaxLine);
    std::memcpy(line, span.text, static_cast<size_t>(linelen));
    line[linelen] = 0;
    return line;
}

const char* CLex::getNextUnformLine() {
    if (curr >= lines) {
        return nullptr;
    }
    const Span span = lineAt(curr++, kMaxLine);
    if (curr == lines) {
        return deliverCopy(span);
    }
    linelen = span.len;
    return span.text;
}

namespace {

template <typename Span>
Span withoutIndent(Span span) {
    while (span.len > 0 && isBlank(*span.text)) {
        ++span.text, --span.len;
    }
    return span;
}

}  // namespace

const char* CLex::getNextLine() {
    while (curr < lines) {
        const Span span = withoutIndent(lineAt(curr++, kMaxLine));
        const bool comment = span.len >= 2 && span.text[0] == '/' && span.text[1] == '/';
        if (span.len > 0 && !comment) {
            return deliverCopy(span);
        }
    }
    return nullptr;
}

const char* CLex::search(const char* text, int n, bool wholeWord) {
    if (!text || n < 0) {
        return nullptr;
    }
    for (int step = 0; step < lines; ++step) {
        const int rest = lines - curr;
        const int index = step < rest ? curr + step : step - rest;
        const Span span = withoutIndent(lineAt(index, bufsize));
        if (span.len < n || !equalsIgnoringCase(span.text, text, static_cast<size_t>(n))) {
            continue;
        }
        if (wholeWord && span.len > n && !isSpace(span.text[n])) {
            continue;
        }
        curr = index + 1;
        return deliverCopy(span);
    }
    return nullptr;
}

const char* CLex::search_to_line(const char* text, int n) {
    return search(text, n, false);
}

const char* CLex::searchToLine(const char* text) {
    return text ? search(text, lengthOf(text), false) : nullptr;
}

const char* CLex::searchToLineEx(const char* text) {
    return text ? search(text, lengthOf(text), true) : nullptr;
}

int CLex::setPosAtLine(int n) {
    if (n < 0 || n >= lines) {
        return 0;
    }
    curr = n;
    return 1;
}

long CLex::getPos() const {
    return curr < lines ? static_cast<long>(starts.at(static_cast<size_t>(curr)) - buf) : bufsize;
}

const char* CLex::getCurrLinePos() const {
    return curr > 0 ? starts.at(static_cast<size_t>(curr - 1)) : nullptr;
}
