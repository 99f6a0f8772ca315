#include "customize/CustomMarkup.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "controls/EntryRules.h"
#include "customize/DefinitionTokens.h"
#include "customize/MarkupLine.h"
#include "util/LexChars.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

constexpr size_t kBytesPerEntry = 160;
constexpr size_t kBytesBetweenLooks = 1 << 20;  // at whether reading is to stop
constexpr size_t kEntriesForeseen = 32768;
constexpr double kMostGrowth = 15;  // a text may begin with many entries and then have none

class MarkupReader {
public:
    MarkupReader(std::string_view text, CustomScript& script)
        : m_script(script), m_text(text), m_lastQuote(m_text.rfind('"')), m_next(utf8MarkLength(text)) {}

    bool run(JobProgress* progress) {
        // Moving entries about while their number grows would cost more than reading them.
        m_script.entries.reserve(std::min<size_t>(m_text.size() / kBytesPerEntry, kEntriesForeseen));
        while (m_next < m_text.size() && !m_script.tooLarge) {
            if (m_next >= m_nextLook) {
                if (!mayContinue(progress, m_next, m_text.size(), m_script.scriptPath)) {
                    return false;
                }
                m_nextLook = m_next + kBytesBetweenLooks;
            }
            const size_t start = nextLine();
            readLine(start, m_text.substr(start, m_next - start));
        }
        drop("the script ends before it");
        return true;
    }

private:
    void readLine(size_t start, std::string_view line) {
        size_t at = 0;
        while (at < line.size() && lex::isBlank(line[at])) {
            ++at;
        }
        if (at == line.size() || !line[at] || lex::isLineEnd(line[at])) {
            if (m_entry.kind >= 0) {
                drop("a blank line follows");
            }
            m_inAction = m_inBehavior = false;
            return;
        }
        const bool comment = line[at] == '/' && at + 1 < line.size() && line[at + 1] == '/';
        if (m_inAction) {
            if (line.size() - at >= 6 && lex::equalsIgnoringCase(line.data() + at, "action", 6)) {
                m_inAction = false;
            } else if (comment) {
                reportSlip(splitMarkupLine(line.substr(at)));
            }
        } else if (comment) {
            readMarkup(start + at, splitMarkupLine(line.substr(at)));
        } else if (m_entry.kind >= 0) {
            readDefinition(start);
        }
    }

    void readMarkup(size_t slashes, const MarkupLine& line) {
        const int keyword = LookupCustomKeyword(line.keyword);
        switch (keyword) {
            case kTitle:
            case kImage:
            case kText:
            case kSection:
                begin(keyword, line.text);
                complete();
                break;
            case kEnable:
            case kEntry:
            case kEntryEntity:
            case kEntryPath:
            case kEntryDrop:
            case kEntryText:
                begin(keyword, line.text);
                break;
            case kHelp:
            case kEntryHelp:
                if (m_entry.kind >= 0) {
                    if (!m_entry.help.empty()) {
                        m_entry.help += "\r\n";
                    }
                    m_entry.help += line.text;
                }
                break;
            case kId:
                if (refines(line)) {
                    readId(line.text);
                }
                break;
            case kCntl:
                if (refines(line)) {
                    readCntl(line.text);
                }
                break;
            case kAction:
                m_inAction = true;
                break;
            case kVer:
                m_script.version = markupInteger(line.text);
                break;
            case kDate:
                m_script.date = markupInteger(line.text);
                break;
            case kNoKeyword:
                if (m_entry.kind == kEnable && !line.keyword.empty()) {
                    completeSwitchedOff(slashes);
                } else {
                    reportSlip(line);
                }
                break;
            default:  // the behaviour panel's words and the kinds that are no words
                m_inBehavior = keyword >= kDesc;
                break;
        }
    }

    void begin(int keyword, std::string_view text) {
        if (m_entry.kind >= 0) {
            drop("another entry begins");
        }
        m_entry.kind = keyword;
        m_entry.line = lineNumber();
        if (keyword == kEntryText) {
            bool one = false;
            text = readTextNumbers(text, m_entry.textParam1, m_entry.textParam2, one);
            if (one) {
                report(quotedBeginning(text) +
                       " begins with one number; it takes two, the lines and the characters, each with a "
                       "comma behind it. It was taken as the label");
            }
        }
        m_entry.label.assign(text);
    }

    void complete() {
        makeRoom();
        count(m_entry);
        m_script.entries.push_back(std::move(m_entry));
        forget();
    }

    // An entry and its row hold each text about twice.
    void count(const CustomEntry& entry) {
        constexpr size_t kEntryAndRow = 360;  // bytes, where a pointer has four
        m_bytes += kEntryAndRow + 2 * (entry.label.size() + entry.help.size() + entry.value.size());
        for (const std::string& option : entry.options) {
            m_bytes += 2 * (sizeof option + option.size());
        }
        m_script.tooLarge = m_bytes > kMostEntryBytes;
    }

    // What was read so far tells how many entries the rest will have. Doubling the room again and again would
    // move all of them through ever new memory.
    void makeRoom() {
        const size_t count = m_script.entries.size();
        if (count < m_script.entries.capacity()) {
            return;
        }
        const double left = static_cast<double>(m_text.size() - m_next) / static_cast<double>(m_next);
        const auto foreseen =
            static_cast<size_t>(std::min(left * 1.05, kMostGrowth) * static_cast<double>(count));
        m_script.entries.reserve(count + std::max(foreseen, count / 4 + 1));
    }

    // Field by field, because a new entry in its place would take longer than reading one.
    void forget() {
        m_entry.kind = kNoKeyword;
        m_entry.id = -1;
        m_entry.label.clear();
        m_entry.help.clear();
        m_entry.value.clear();
        m_entry.valueStart = m_entry.valueLength = 0;
        m_entry.controlKind = kNoControl;
        m_entry.textParam1 = m_entry.textParam2 = 0;
        m_entry.minimum = m_entry.maximum = m_entry.step = 0;
        m_entry.options.clear();
        m_switchedLines = 0;
    }

    // The entry stays under construction: each further commented line is switched by it too.
    void completeSwitchedOff(size_t slashes) {
        if (m_switchedLines++ == 1) {
            report("the switch " + quotedBeginning(m_entry.label) +
                   " stands above several commented lines: each got a switch of its own with the same id");
        }
        makeRoom();
        count(m_entry);
        m_script.entries.push_back(m_entry);
        CustomEntry& copy = m_script.entries.back();
        copy.value = "0";
        copy.valueStart = slashes;
        copy.valueLength = 2;
    }

    // Ends the construction without an entry.
    void drop(const char* why) {
        if (m_entry.kind < 0) {
            return;
        }
        // A switch whose commented lines were found has what it needs.
        if (m_switchedLines == 0 && m_script.findings.wantsMore()) {
            m_script.findings.add(m_entry.line, "the entry " + quotedBeginning(m_entry.label) +
                                                    " found no value: " + why + "; it was left out");
        }
        forget();
    }

    bool refines(const MarkupLine& line) {
        if (m_entry.kind >= 0) {
            return true;
        }
        // Below a skill or a flag it's the behaviour panel's.
        if (line.colon && !m_inBehavior) {
            report(quotedBeginning(line.keyword) + " belongs to no entry; it was ignored");
        }
        return false;
    }

    void readId(std::string_view text) {
        bool fits = true;
        m_entry.id = markupInteger(text, &fits);
        if (!fits) {
            m_entry.id = -1;
        }
        if (m_entry.id < 1) {
            report("the id " + quotedBeginning(text) + " is no number from 1 to 2147483647: values of " +
                   quotedBeginning(m_entry.label) + " are not kept in the value file");
        }
    }

    void readCntl(std::string_view text) {
        std::string fault;
        if (!readControl(text, m_entry, &fault)) {
            report("unknown control word in " + quotedBeginning(text) + "; it was ignored");
        } else if (!fault.empty()) {
            report(fault);
        }
    }

    void readDefinition(size_t start) {
        if (m_entry.kind == kEnable) {
            m_entry.value = "1";
            m_entry.valueStart = start;
            complete();
            return;
        }
        const DefinitionValue found = findDefinitionValue(m_text, start, m_lastQuote);
        using Found = DefinitionValue::Found;
        if (found.found == Found::Yes) {
            const int line = lineNumber();
            skipLinesTo(found.end);
            takeValue(found.token, line);
            return;
        }
        switch (found.found) {
            case Found::OpenBracket:
                drop("its \"<\" has no \">\" on the same line");
                skipLinesTo(found.end + 1);
                break;
            case Found::OpenQuote:
                drop("its double quote is never closed");
                skipLinesTo(found.end + 1);
                break;
            case Found::Interrupted:
                drop("a comment or the script's end comes first");
                if (found.end < m_text.size()) {
                    lookAgainAt(found.end);
                } else {
                    skipLinesTo(found.end);
                }
                break;
            case Found::NotThere:
            case Found::Yes:
                drop("the definition ends without one");
                skipLinesTo(found.end);
                break;
        }
    }

    void takeValue(std::string_view token, int line) {
        size_t start = static_cast<size_t>(token.data() - m_text.data());
        const size_t end = start + token.size();
        int kind = m_entry.kind;
        const bool quoted = token.front() == '"';
        if (quoted || (kind == kEntry && token.front() == '<')) {
            token = token.substr(1, token.size() - 2);
            ++start;
            if (kind == kEntry) {
                kind = quoted ? kEntryStrEdit : kEntryChooseFile;
            }
        } else if (kind == kEntry) {
            const bool digits = std::ranges::all_of(token, lex::isDecimal);
            if (!digits && !numberOf(token)) {
                const std::string shown = quotedBeginning(token);
                drop((shown + " is neither a number nor a text nor a file name").c_str());
                return;
            }
            kind = digits ? kEntryNumEdit : kEntryNumEditF;
        }
        m_entry.valueStart = start;
        m_entry.valueLength = token.size();
        if (kind == kEntryChooseFile) {
            token = trimmed(token);
        }
        if (token.empty()) {
            drop("the value is empty");
            return;
        }
        m_entry.value.assign(token);
        m_entry.kind = kind;
        reportWhatFollows(end, line);
        complete();
    }

    // Behind a value comes the definition's end, and behind that nothing but a comment.
    void reportWhatFollows(size_t end, int line) {
        size_t at = end;
        const auto skipBlanks = [&] {
            while (at < m_text.size() && lex::isBlank(m_text[at])) {
                ++at;
            }
            return at < m_text.size() && m_text[at] && !lex::isLineEnd(m_text[at]) && m_text[at] != '/';
        };
        if (!skipBlanks() || m_text[at] == ',') {
            return;
        }
        if (m_text[at] == ';') {
            ++at;
            if (!skipBlanks()) {
                return;
            }
        }
        if (!m_script.findings.wantsMore()) {
            return;
        }
        const std::string_view rest = m_text.substr(at, m_text.find_first_of("\r\n", at) - at);
        m_script.findings.add(line, quotedBeginning(rest) + " follows the value of " +
                                        quotedBeginning(m_entry.label) +
                                        "; only the value itself can be customized");
    }

    void reportSlip(const MarkupLine& line) {
        if (!line.colon || line.keyword.size() < 3 || !m_script.findings.wantsMore()) {
            return;
        }
        const int near = nearCustomKeyword(line.keyword);
        if (near >= 0) {
            report(quotedBeginning(line.keyword) + " is no keyword; is \"" + customKeywordName(near) +
                   "\" meant? The line was taken as a comment");
        }
    }

    void report(std::string what) { m_script.findings.add(lineNumber(), std::move(what)); }
    int lineNumber() const { return m_line; }

    // Steps over the next line, which begins where it returns.
    size_t nextLine() {
        const size_t start = m_next;
        const void* end = std::memchr(m_text.data() + start, '\n', m_text.size() - start);
        m_next = end ? static_cast<size_t>(static_cast<const char*>(end) - m_text.data()) + 1 : m_text.size();
        ++m_line;
        return start;
    }

    // The next line is then the first that begins at `end` or later.
    void skipLinesTo(size_t end) {
        while (m_next < end) {
            nextLine();
        }
    }
    // The next line is then the one that holds `place`, unless that's the current one.
    void lookAgainAt(size_t place) {
        if (place < m_next) {
            return;
        }
        size_t start = m_next;
        while (m_next <= place) {
            start = nextLine();
        }
        m_next = start;
        --m_line;
    }

    CustomScript& m_script;
    std::string_view m_text;
    size_t m_lastQuote;
    size_t m_next;  // where the next line begins
    size_t m_nextLook = 0;
    int m_line = 0;       // the current line's number
    CustomEntry m_entry;  // under construction while its kind is one
    bool m_inAction = false;
    bool m_inBehavior = false;  // below a skill, a flag or the like
    int m_switchedLines = 0;    // commented lines that the "enable" under construction has found
    size_t m_bytes = 0;         // that the entries so far and their rows take
};

}  // namespace

bool ParseCustomMarkup(std::string_view text, CustomScript& script, JobProgress* progress) {
    return MarkupReader(text, script).run(progress);
}

}  // namespace zoka
