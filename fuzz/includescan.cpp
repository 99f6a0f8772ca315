// The include block over the fuzzer's bytes: what goes in can be found and taken out again, and nothing else
// changes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "templates/IncludeList.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using Names = std::vector<std::string>;
    const auto fail = [](const char* what) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    };
    // A copy of its own size, so that reading past the end is seen.
    const std::vector<char> bytes(data, data + size);
    const std::string_view text(bytes.data(), size);
    CLex lexer(bytes.data(), static_cast<long>(size));
    Names names;
    const long position = zoka::ScanIncludeBlock(lexer, names);
    if (position < 0 || position > static_cast<long>(size)) fail("the insertion point lies in the text");
    // A byte order mark stays in front of all lines.
    const bool behindMark = position == 3 && text.starts_with("\xEF\xBB\xBF");
    if (position > 0 && text[static_cast<size_t>(position) - 1] != '\n' && !behindMark)
        fail("it is a line's start");

    const Names scripts = {"C:\\t\\fuzz_a.kez", "fuzz_b.kez"};
    const auto read = [](const std::string&) { return zoka::ScriptFacts(); };
    const zoka::Insertion insertion = zoka::planInsertion(text, "main.kez", scripts, {}, read);
    if (insertion.position != position) fail("both scans find one place");
    const auto applied = zoka::applyInsertion(text, insertion);
    if (!applied) fail("no script has a need");
    const std::string& after = *applied;
    std::string lines;
    for (const std::string& name : insertion.names) lines += zoka::includeLine(name);
    if (after.size() != size + lines.size() ||
        after.substr(0, static_cast<size_t>(position)) != text.substr(0, static_cast<size_t>(position)) ||
        after.substr(static_cast<size_t>(position) + lines.size()) !=
            text.substr(static_cast<size_t>(position)))
        fail("every other byte stays");

    // The new lines stand in the block, so nothing is put in a second time.
    if (!zoka::planInsertion(after, "main.kez", scripts, {}, read).names.empty())
        fail("nothing goes in twice");
    const auto rest = zoka::withoutIncludes(after.empty() ? "x" : after, insertion.names);
    if (!rest) fail("what went in is found");
    // An include line of that name further up would have been taken instead, but the block is the first run.
    if (insertion.names.size() == 2 && *rest != text) fail("taken out again, the text is as before");
    return 0;
}
