// CLex's token helpers.
#include <algorithm>
#include <climits>
#include <cstring>

#include "util/Lex.h"
#include "util/LexChars.h"

using namespace zoka::lex;

const char* CLex::gettoken_buf = nullptr;
long CLex::gettoken_buflen = 0;
int CLex::gettoken_tokenlen = 0;
const char* CLex::gettoken_delims = nullptr;
int (*CLex::message_box)(int) = nullptr;

namespace {

// Separators come before line ends, so that a LF given as a separator lets a walk cross lines.
bool separates(char c, const char* delims) {
    return isBlank(c) || isOneOf(c, delims);
}
bool endsToken(char c, const char* delims) {
    return c == 0 || isSpace(c) || isOneOf(c, delims);
}

}  // namespace

const char* CLex::GetFirstToken(const char* text, long len, const char* delims) {
    gettoken_buf = text;
    gettoken_buflen = text ? std::max(len, 0L) : 0;
    gettoken_delims = delims;
    return GetNextToken();
}

const char* CLex::GetNextToken() {
    gettoken_tokenlen = 0;
    const char* p = gettoken_buf;
    const char* const end = p + gettoken_buflen;
    while (p != end && separates(*p, gettoken_delims)) {
        ++p;
    }
    if (p == end || *p == 0 || isLineEnd(*p)) {
        gettoken_buf = nullptr;
        gettoken_buflen = 0;
        return nullptr;
    }
    const char* const token = p;
    while (p != end && !endsToken(*p, gettoken_delims)) {
        ++p;
    }
    gettoken_tokenlen = static_cast<int>(std::min<long>(p - token, INT_MAX));
    gettoken_buf = p;
    gettoken_buflen = static_cast<long>(end - p);
    return token;
}

const char* CLex::GetNextTokenEx() {
    const char* const end = gettoken_buf + gettoken_buflen;
    const char* const token = GetNextToken();
    if (!token || *token != '"') {
        return token;
    }
    const char* close = token + 1;
    while (close != end && *close != '"' && *close != 0) {
        ++close;
    }
    if (close == end || *close == 0) {
        return token;
    }
    gettoken_tokenlen = static_cast<int>(std::min<long>(close - token - 1, INT_MAX));
    gettoken_buf = close + 1;
    gettoken_buflen = static_cast<long>(end - gettoken_buf);
    return token + 1;
}

int CLex::GetFirstTokenSize(const char* text, const char* delims) {
    if (!text) {
        return 0;
    }
    const char* p = text;
    while (!endsToken(*p, delims)) {
        ++p;
    }
    return static_cast<int>(std::min<long>(p - text, INT_MAX));
}

const char* CLex::GetTokenPos(const char* text, const char* delims) {
    if (!text) {
        return nullptr;
    }
    while (separates(*text, delims)) {
        ++text;
    }
    return *text == 0 || isLineEnd(*text) ? nullptr : text;
}

const char* CLex::GetToken(const char* text, char*& buffer, int& size, const char* delims) {
    const char* const token = GetTokenPos(text, delims);
    if (!token) {
        return nullptr;
    }
    const int len = GetFirstTokenSize(token, delims);
    if (!buffer || size <= len) {
        char* const larger = new char[static_cast<size_t>(len) + 1];
        delete[] buffer;
        buffer = larger;
        size = len + 1;
    }
    std::memcpy(buffer, token, static_cast<size_t>(len));
    buffer[len] = 0;
    return token + len;
}

const char* CLex::GetTokenGroup(const char* text, char open, char close, int& len) {
    len = 0;
    const char* const start = GetTokenPos(text);
    if (!start || *start != open) {
        return nullptr;
    }
    const char* const end = lineEnd(start);
    long depth = 1;
    for (const char* p = start + 1; p != end; ++p) {
        // The closing bracket first: the two may be the same character.
        if (*p == close && --depth == 0) {
            len = static_cast<int>(std::min<long>(p - start - 1, INT_MAX));
            return start + 1;
        }
        if (*p == open && open != close) {
            ++depth;
        }
    }
    return nullptr;
}

const char* CLex::GetString(const char* text, int& len) {
    len = 0;
    const char* const open = LineStrChr(text, '"');
    const char* const close = open ? LineStrChr(open + 1, '"') : nullptr;
    if (!close) {
        return nullptr;
    }
    len = static_cast<int>(std::min<long>(close - open - 1, INT_MAX));
    return open + 1;
}

const char* CLex::GetString(const char* text, char* buffer, int size) {
    int len = 0;
    const char* const found = GetString(text, len);
    if (buffer && size > 0) {
        const int copied = std::min(len, size - 1);
        if (found) {
            std::memcpy(buffer, found, static_cast<size_t>(copied));
        }
        buffer[copied] = 0;
    }
    return found ? found + len + 1 : nullptr;
}

const char* CLex::StrChr(const char* text, char c) {
    return text && c ? std::strchr(text, c) : nullptr;
}

const char* CLex::LineStrChr(const char* text, char c) {
    if (!text) {
        return nullptr;
    }
    const char* const end = lineEnd(text);
    const char* const found = std::find(text, end, c);
    return found == end ? nullptr : found;
}

const char* CLex::LineStrStr(const char* text, const char* part) {
    if (!text || !part) {
        return nullptr;
    }
    const char* const end = lineEnd(text);
    const char* const found = std::search(text, end, part, part + std::strlen(part));
    return found == end && *part ? nullptr : found;
}

const char* CLex::NextChar(const char* text) {
    while (text && isBlank(*text)) {
        ++text;
    }
    return text;
}

int CLex::ReplaceChar(char* text, char from, char to) {
    int count = 0;
    if (!text || !from) {
        return count;
    }
    for (; *text; ++text) {
        if (*text != from) {
            continue;
        }
        *text = to;
        ++count;
    }
    return count;
}

int CLex::DeleteChar(char* text, char c) {
    if (!text) {
        return 0;
    }
    char* const end = std::remove(text, text + std::strlen(text), c);
    *end = 0;
    return static_cast<int>(end - text);
}
