// The drive script's commands about files.
#include <windows.h>

#include "tools/editor/win/DriveContext.h"
#include "util/OsFiles.h"

namespace zoka {

namespace {

std::string contentOf(const std::string& path) {
    return osFiles().readWhole(path).value_or("");
}

void copyFile(DriveContext&, const Words& words) {
    if (!CopyFileA(words[0].c_str(), words[1].c_str(), FALSE)) {
        throw DriveFault(words[0] + " can't be copied to " + words[1]);
    }
}

std::string linesFrom(const std::vector<std::string>& words) {
    std::string lines;
    for (size_t i = 1; i < words.size(); ++i) {
        lines += words[i] + "\r\n";
    }
    return lines;
}

// At the end of a file, which is made when there is none.
void addLines(DriveContext&, const Words& words) {
    const std::string text = contentOf(words[0]) + linesFrom(words);
    const auto file = osFiles().openForWriting(words[0], OsOpen::Truncate);
    if (!file || !file->write(text)) {
        throw DriveFault(words[0] + " can't be written");
    }
}

void expectLines(DriveContext& drive, const Words& words) {
    const std::string lines = linesFrom(words);
    drive.expect([&] { return ("\n" + contentOf(words[0])).find("\n" + lines) != std::string::npos; },
                 words[0] + " to hold\n" + lines, [&] { return "\n" + contentOf(words[0]); });
}

void expectNoLines(DriveContext&, const Words& words) {
    if (("\n" + contentOf(words[0])).find("\n" + linesFrom(words)) != std::string::npos) {
        throw DriveFault("expected no such lines in " + words[0] + "; they are there");
    }
}

void expectText(DriveContext& drive, const Words& words) {
    drive.expect([&] { return contentOf(words[0]) == words[1]; }, words[0] + " to hold\n" + words[1],
                 [&] { return "\n" + contentOf(words[0]); });
}

void expectPart(DriveContext& drive, const Words& words) {
    drive.expect([&] { return contentOf(words[0]).find(words[1]) != std::string::npos; },
                 words[0] + " to hold\n" + words[1], [&] { return "\n" + contentOf(words[0]); });
}

void expectSameFile(DriveContext& drive, const Words& words) {
    const auto same = [&] {
        const auto first = osFiles().readWhole(words[0]), second = osFiles().readWhole(words[1]);
        return first && second && *first == *second;
    };
    drive.expect(same, words[0] + " to equal " + words[1], [] { return std::string("another content"); });
}

void listBelow(const std::string& folder, const std::string& below, std::vector<std::string>& names) {
    for (const OsEntry& entry : osFiles().list(folder + "\\*", nullptr)) {
        const std::string name = below + entry.name + (entry.isFolder ? "\\" : "");
        names.push_back(name);
        if (entry.isFolder) {
            listBelow(folder + "\\" + entry.name, name, names);
        }
    }
}

void expectFiles(DriveContext& drive, const Words& words) {
    const auto found = [&] {
        std::vector<std::string> names;
        listBelow(words[0], "", names);
        return names;
    };
    const auto lines = [](const std::vector<std::string>& names) {
        std::string text;
        for (const std::string& name : names) {
            text += "\n" + name;
        }
        return text;
    };
    const std::vector<std::string> wanted(words.begin() + 1, words.end());
    drive.expect([&] { return found() == wanted; }, words[0] + " to hold" + lines(wanted),
                 [&] { return lines(found()); });
}

}  // namespace

void addFileCommands(DriveCommands& table) {
    table["copy-file"] = {2, 2, copyFile};
    table["add-lines"] = {2, 40, addLines};
    table["expect-lines"] = {2, 40, expectLines};
    table["expect-no-lines"] = {2, 40, expectNoLines};
    table["expect-text"] = {2, 2, expectText};
    table["expect-part"] = {2, 2, expectPart};
    table["expect-same-file"] = {2, 2, expectSameFile};
    table["expect-files"] = {1, 60, expectFiles};
}

}  // namespace zoka
