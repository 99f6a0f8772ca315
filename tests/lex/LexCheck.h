// Laws that hold for the lexer on every text, shared by the tests and the fuzz target.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "util/Lex.h"

namespace zoka::lexcheck {

// A copy of exactly these bytes on the heap, so that the address sanitizer sees a read past them.
struct ExactCopy {
    explicit ExactCopy(std::string_view text) : bytes(new char[text.size()]), size(text.size()) {
        std::copy(text.begin(), text.end(), bytes.get());
    }
    std::unique_ptr<char[]> bytes;
    size_t size;
};

inline std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (size_t start = 0;;) {
        const size_t lf = text.find('\n', start);
        lines.push_back(text.substr(start, lf == text.npos ? lf : lf - start));
        if (lf == text.npos) {
            return lines;
        }
        start = lf + 1;
    }
}

inline bool isSeparator(char c, std::string_view delims) {
    return c == ' ' || c == '\t' || delims.find(c) != delims.npos;
}

// The tokens of a line must be what splitting it at separators gives, up to its first 0, CR or LF.
inline bool tokensHold(std::string_view line, const char* delims) {
    const std::string_view extra = delims ? delims : "";
    std::vector<std::string_view> expected;
    for (size_t i = 0; i < line.size();) {
        while (i < line.size() && isSeparator(line[i], extra)) {
            ++i;
        }
        const size_t start = i;
        while (i < line.size() && line[i] && line[i] != '\r' && line[i] != '\n' &&
               !isSeparator(line[i], extra)) {
            ++i;
        }
        if (i == start) {
            break;
        }
        expected.push_back(line.substr(start, i - start));
    }
    const char* token = CLex::GetFirstToken(line.data(), static_cast<long>(line.size()), delims);
    for (const std::string_view want : expected) {
        if (token != want.data() || CLex::GetTokenLen() != static_cast<int>(want.size())) {
            return false;
        }
        token = CLex::GetNextToken();
    }
    return token == nullptr && CLex::GetTokenLen() == 0 && CLex::GetNextToken() == nullptr;
}

// Walks quoted tokens: each lies in the line, behind the one before it.
inline bool quotedTokensHold(std::string_view line) {
    const char* from = line.data();
    const char* const end = from + line.size();
    if (!CLex::GetFirstToken(from, static_cast<long>(line.size()))) {
        return true;
    }
    while (const char* token = CLex::GetNextTokenEx()) {
        if (token < from || token + CLex::GetTokenLen() > end) {
            return false;
        }
        from = token + CLex::GetTokenLen();
    }
    return true;
}

// Runs every helper that takes a 0-terminated text; what comes back must lie inside it.
inline bool stringHelpersHold(std::string_view line) {
    std::string text(line.substr(0, line.find('\0')));
    const char* const first = text.c_str();
    const char* const last = first + text.size();
    const auto inside = [&](const char* p) { return !p || (p >= first && p <= last); };
    int number = 0, len = 0, size = 0;
    double wide = 0;
    float narrow = 0;
    unsigned long bits = 0;
    char small[16];
    char* heap = nullptr;
    const char* const after = CLex::GetToken(first, heap, size, ";,");
    const bool copied = !after || (after - std::strlen(heap) >= first &&
                                   CLex::GetFirstTokenSize(heap) == static_cast<int>(std::strlen(heap)));
    delete[] heap;
    const char* const group = CLex::GetTokenGroup(first, '(', ')', len);
    const bool groupIn = inside(group) && (!group || inside(group + len));
    const char* const quoted = CLex::GetString(first, len);
    const bool quotedIn = inside(quoted) && (!quoted || inside(quoted + len));
    const bool all = copied && groupIn && quotedIn && inside(CLex::ScanIntValue(first, number)) &&
                     inside(CLex::ScanDoubleValue(first, wide)) &&
                     inside(CLex::ScanFloatValue(first, narrow)) && inside(CLex::ScanBinValue(first, bits)) &&
                     bits <= 0xFFFFFFFFul && inside(CLex::GetString(first, small, sizeof small)) &&
                     inside(CLex::StrChr(first, '=')) && inside(CLex::LineStrChr(first, '=')) &&
                     inside(CLex::LineStrStr(first, "//")) && inside(CLex::NextChar(first)) &&
                     inside(CLex::GetTokenPos(first));
    CLex::IsDigit(first, static_cast<int>(text.size()));
    std::string edited = text;
    const int replaced = CLex::ReplaceChar(edited.data(), 'a', 'b');
    const int kept = CLex::DeleteChar(edited.data(), 'b');
    const auto had = std::count_if(text.begin(), text.end(), [](char c) { return c == 'a' || c == 'b'; });
    const bool deleted = kept == static_cast<int>(text.size()) - had && replaced <= had;
    const int cropped = CLex::StringCrop(text.data());
    return all && deleted && cropped == static_cast<int>(std::strlen(text.c_str()));
}

inline std::string folded(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    std::string lower(line);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return lower;
}

// A search for the beginning of line `wanted`, started at line `from`, must end where
// trying each line in turn does.
inline bool searchHolds(CLex& lex, const std::vector<std::string_view>& lines, size_t wanted, size_t from) {
    const std::string part = folded(lines[wanted]).substr(0, 3);
    size_t at = 0;
    while (at < lines.size() && !folded(lines[(from + at) % lines.size()]).starts_with(part)) {
        ++at;
    }
    lex.setPosAtLine(static_cast<int>(from));
    const char* const found = lex.search_to_line(part.data(), static_cast<int>(part.size()));
    if (at == lines.size()) {
        return !found && lex.getLineNum() == static_cast<int>(from);
    }
    return found && lex.getCurrLine() == static_cast<int>((from + at) % lines.size()) &&
           folded({found, static_cast<size_t>(lex.getLineLen())}).starts_with(part);
}

// Null when everything holds, else what does not. `firstLine` is where the walk begins: lines
// before it are indexed only.
inline const char* fault(std::string_view source, size_t firstLine = 0) {
    const ExactCopy copy(source);
    const std::string_view text(copy.bytes.get(), copy.size);
    CLex lex(text.data(), static_cast<long>(text.size()));
    const std::vector<std::string_view> lines = splitLines(text);
    if (lex.getLinesNumber() != static_cast<int>(lines.size())) {
        return "number of lines";
    }
    bool longLine = false;
    for (const auto& line : lines) {
        longLine |= line.size() + (&line != &lines.back()) >= 1024;
    }
    if (lex.GetLastError() != (longLine ? CLEXERR_LONGLINE : CLEXERR_NONE)) {
        return "long line";
    }
    for (size_t i = firstLine; i < lines.size(); ++i) {
        lex.setPosAtLine(static_cast<int>(i));
        if (lex.getPos() != lines[i].data() - text.data()) {
            return "line start";
        }
        const char* const got = lex.getNextUnformLine();
        if (lex.getCurrLinePos() != lines[i].data()) {
            return "start of the delivered line";
        }
        const std::string_view line(got, static_cast<size_t>(lex.getLineLen()));
        const bool last = i + 1 == lines.size();
        if (last ? line != lines[i].substr(0, line.size()) || got[line.size()] != 0
                 : line.data() != lines[i].data() || line.size() != lines[i].size()) {
            return "delivered line";
        }
        for (const char* delims : {static_cast<const char*>(nullptr), ":;=,", "\"<>\r"}) {
            if (!tokensHold(line, delims)) {
                return "tokens";
            }
        }
        if (!quotedTokensHold(line)) {
            return "quoted tokens";
        }
        if (!stringHelpersHold(line)) {
            return "string helpers";
        }
    }
    if (lex.getNextUnformLine() || lex.getPos() != static_cast<long>(text.size())) {
        return "end of the text";
    }

    std::vector<std::string_view> bare = lines;
    for (int i = 0; i < 2 && bare.back().ends_with('\r'); ++i) {
        bare.back().remove_suffix(1);
    }
    for (size_t i = firstLine; i < bare.size() && i < firstLine + 8; ++i) {
        if (!searchHolds(lex, bare, i, bare.size() - 1 - (i - firstLine))) {
            return "search";
        }
    }

    lex.setPosAtLine(static_cast<int>(firstLine));
    for (int before = lex.getCurrLine(); const char* line = lex.getNextLine(); before = lex.getCurrLine()) {
        if (lex.getCurrLine() <= before) {
            return "no advance";
        }
        if (lex.getLineLen() < 1 || lex.getLineLen() > 1024 || line[lex.getLineLen()] != 0) {
            return "trimmed line";
        }
        if (line[0] == ' ' || line[0] == '\t' || std::string_view(line).starts_with("//")) {
            return "passed over";
        }
    }
    const size_t tail = static_cast<size_t>(lines[firstLine].data() - text.data());
    const long block =
        CLex::GetDefinitionBlockSize(text.data() + tail, static_cast<long>(text.size() - tail));
    if (block < -1 || block > static_cast<long>(text.size() - tail)) {
        return "block size";
    }
    return nullptr;
}

}  // namespace zoka::lexcheck
