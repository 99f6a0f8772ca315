// The sample scripts, and the forms in which scripts lie on users' disks.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/support/SourceDir.h"

namespace zoka::test {

// Name (with "newer/" in front of the later versions) and bytes.
inline std::map<std::string, std::string> sampleScripts() {
    std::map<std::string, std::string> scripts;
    const std::filesystem::path samples = zoka::test::sourceDir() / "samples";
    for (const char* folder : {"templates", "templates-newer"}) {
        for (const auto& file : std::filesystem::directory_iterator(samples / folder)) {
            if (file.path().extension() == ".kez") {
                scripts[(folder == std::string("templates") ? "" : "newer/") + file.path().stem().string()] =
                    readNative(file.path());
            }
        }
    }

    return scripts;
}

// The script with other line ends and odd bytes: CR LF, LF, mixed, without its last line end, with bytes of
// value 0 and above 127 in a comment at its end.
inline std::vector<std::string> formsOf(const std::string& crlf) {
    std::string lf, mixed;
    int line = 0;
    for (size_t i = 0; i < crlf.size(); ++i) {
        const bool end = crlf[i] == '\r' && i + 1 < crlf.size() && crlf[i + 1] == '\n';
        if (!end) {
            lf += crlf[i];
        }

        if (!end || ++line % 3 != 0) {
            mixed += crlf[i];
        }
    }
    const std::string bare = lf.substr(0, lf.find_last_not_of('\n') + 1);
    return {crlf,
            lf,
            mixed,
            bare,
            crlf + std::string("// \0\xFF\x80\0\r\n\0", 10),
            std::string("\0\r\n", 3) + crlf};
}

}  // namespace zoka::test
