#include "customize/ValueFile.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "customize/MarkupLine.h"
#include "util/KeyedHash.h"
#include "util/LexChars.h"
#include "util/OsFiles.h"
#include "util/SafeWrite.h"

namespace zoka {
namespace {

class LineReader {
public:
    explicit LineReader(std::string_view bytes) : m_rest(bytes) {}

    // With its LF; nothing at the end of the file.
    std::optional<std::string_view> next() {
        if (m_rest.empty()) {
            return std::nullopt;
        }
        const std::string_view head = m_rest.substr(0, kValueFileLine);
        const size_t end = head.find('\n');
        const std::string_view line = head.substr(0, end == head.npos ? head.size() : end + 1);
        m_rest.remove_prefix(line.size());
        ++m_lines;
        if (m_longLine == 0 && end == head.npos && !m_rest.empty()) {
            m_longLine = m_lines;
        }
        return line;
    }

    // The first of those read that didn't end where it was cut; 0: none.
    int longLine() const { return m_longLine; }

private:
    std::string_view m_rest;
    int m_lines = 0;
    int m_longLine = 0;
};

int integerOf(std::string_view line) {
    while (!line.empty() && lex::isSpace(line.front())) {
        line.remove_prefix(1);
    }
    return markupInteger(line);
}

std::string valueOf(const CustomEntry& entry, bool useControlValues) {
    return useControlValues && entry.control ? entry.control->GetValueText() : entry.value;
}

}  // namespace

ValueRecords parseValueFile(std::string_view bytes) {
    LineReader lines(bytes);
    ValueRecords result;
    for (const char* missing : {"Error reading file.\n(Code 2802)", "Error reading file.\n(Code 2803)",
                                "Error reading file.\n(Code 2804)"}) {
        if (!lines.next()) {
            result.whole = Refusal{missing};
            return result;
        }
    }
    lines.next();  // the empty line
    while (const auto idLine = lines.next()) {
        ValueRecord record;
        record.id = integerOf(*idLine);
        if (record.id <= 0) {
            lines.next();  // one line alone, not a whole record
            continue;
        }
        const auto kindLine = lines.next();
        if (!kindLine) {
            result.whole = Refusal{"Error reading file (no type).\n(Code 2807)"};
            break;
        }
        record.kind = integerOf(*kindLine);
        const auto valueLine = lines.next();
        if (!valueLine) {
            result.whole = Refusal{"Error reading file (no type).\n(Code 2808)"};
            break;
        }
        record.value = valueLine->substr(0, valueLine->find('\n'));
        result.records.push_back(std::move(record));
        lines.next();  // the empty line
    }
    result.longLine = lines.longLine();
    return result;
}

void appendValueRecord(std::string& text, int id, int kind, std::string_view value) {
    char numbers[24];
    char* at = numbers;
    for (const int number : {id, kind}) {
        at = std::to_chars(at, numbers + sizeof numbers, number).ptr;
        *at++ = '\n';
    }
    text.append(numbers, at).append(value).append("\n\n");
}

std::string valueFileText(const CustomScript& script, bool useControlValues) {
    constexpr size_t kUsualRecord = 16;
    std::string text = "1\n" + std::to_string(script.version) + '\n' + std::to_string(script.date) + "\n\n";
    text.reserve(text.size() + script.entries.size() * kUsualRecord);
    for (const CustomEntry& entry : script.entries) {
        if (entry.id >= 1) {
            appendValueRecord(text, entry.id, entry.kind, valueOf(entry, useControlValues));
        }
    }
    return text;
}

Outcome WriteValueFile(const CustomScript& script, bool useControlValues, UserPrompt& prompt) {
    const std::string text = valueFileText(script, useControlValues);
    const FileContent file{script.scriptPath + kValueFileEnding, text, FileKind::Generated, std::nullopt,
                           script.scriptPath};
    Outcome written = safeWrite({&file, 1});
    if (!written) {
        prompt.tell(kValueFileNotWritten);
    }
    return written;
}

bool ReadValueFile(CustomScript& script, UserPrompt& prompt, const ValueSink& sink) {
    const auto bytes = osFiles().readWhole(script.scriptPath + kValueFileEnding);
    if (!bytes) {
        prompt.tell("Error open file to read\n(Code 2801)");
        return false;
    }
    KeyedMap<int, CustomEntry*> firstOf;
    for (CustomEntry& entry : script.entries) {
        if (entry.id >= 1) {
            firstOf.try_emplace(entry.id, &entry);
        }
    }
    const ValueRecords stored = parseValueFile(*bytes);
    for (const ValueRecord& record : stored.records) {
        const auto found = firstOf.find(record.id);
        CustomEntry* const entry = found == firstOf.end() ? nullptr : found->second;
        if (!entry) {
            warnNoMatch(prompt);
        }
        if (sink) {
            sink(record, entry);
        } else if (entry && entry->control) {
            entry->control->SetValueFromText(record.value);
        }
    }
    if (!stored.whole) {
        prompt.tell(stored.whole.why());
    }
    return bool(stored.whole);
}

std::vector<NotCarried> notCarried(const CustomScript& script, bool useControlValues) {
    std::vector<NotCarried> lost;
    KeyedSet<int> ids;
    for (size_t i = 0; i < script.entries.size(); ++i) {
        const CustomEntry& entry = script.entries[i];
        const auto add = [&](const std::string& why) { lost.push_back({i, why}); };
        if (entry.id < 1) {
            if (entry.hasValue()) {
                add("it has no id");
            }
            continue;
        }
        const std::string value = valueOf(entry, useControlValues);
        if (!ids.insert(entry.id).second) {
            add("another entry has the id " + std::to_string(entry.id) + " too");
        } else if (value.find_first_of("\r\n") != value.npos) {
            add("a line end ends the value in the file");
        } else if (value.size() >= kValueFileLine) {
            add("a value of more than " + std::to_string(kValueFileLine - 1) + " bytes is cut");
        }
    }
    return lost;
}

bool valueFileCarriesAll(const CustomScript& script, bool useControlValues) {
    const std::vector<NotCarried> lost = notCarried(script, useControlValues);
    return std::ranges::all_of(lost, [&](const NotCarried& one) { return script.entries[one.entry].id < 1; });
}

}  // namespace zoka
