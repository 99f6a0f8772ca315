#include "plugin/host/HostAdapter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

// Members of a class that we don't have are called through plain pointers.
#pragma GCC diagnostic ignored "-Wattributes"

using testing::ElementsAre, testing::IsEmpty;

namespace zoka::test {
namespace {

using Word = std::int32_t;

// A host as the editor is one: an object whose first word points to a table of operations.
struct RawHost {
    void* const* table;
    Word result = 1;
    std::string answer = {};  // put into each buffer, with its terminator
    bool fillsAll = false;    // instead: every byte of the buffer, without a terminator
    Word recordResult = 1;    // left in a record's fourth word
    std::vector<std::string> calls = {};

    Word fill(char* buffer, Word size) {
        EXPECT_EQ(std::count(buffer, buffer + size, '\0'), size) << "not cleared before the call";
        if (fillsAll) {
            std::memset(buffer, 'x', static_cast<size_t>(size));
        } else {
            std::memcpy(buffer, answer.c_str(), answer.size() + 1);
        }
        return result;
    }
};

// What a byte result leaves in the rest of the register is anybody's guess.
Word byteResult(Word result) {
    return static_cast<Word>(0xabcdef00u | static_cast<unsigned>(result));
}

// An operation that takes and gives nothing, by its slot.
template <int slot>
Word ZOKA_HOST_MEMBER note(RawHost* host) {
    return host->calls.push_back("slot " + std::to_string(slot)), 0;
}
Word ZOKA_HOST_MEMBER mainScriptPath(RawHost* host, char* buffer, Word size) {
    host->calls.push_back("script " + std::to_string(size));
    return host->fill(buffer, size);
}
Word ZOKA_HOST_MEMBER listItemName(RawHost* host, Word index, char* buffer, Word size) {
    host->calls.push_back("item " + std::to_string(index) + " " + std::to_string(size));
    return host->fill(buffer, size);
}
Word ZOKA_HOST_MEMBER chooseFile(RawHost* host, char* buffer, Word size, Word mode, const char* topic) {
    host->calls.push_back("choose " + std::string(buffer) + " " + std::to_string(mode) + " " + topic);
    std::memset(buffer, 0, static_cast<size_t>(size));
    return host->fill(buffer, size);
}
Word ZOKA_HOST_MEMBER projectFolder(RawHost* host, char* buffer, Word size) {
    host->calls.push_back("folder " + std::to_string(size));
    return host->fill(buffer, size);
}
// All of a path buffer may be read.
void expectBuffer(const char* path) {
    const size_t length = std::strlen(path);
    EXPECT_EQ(std::count(path + length, path + kHostPathSize, '\0'),
              static_cast<std::ptrdiff_t>(kHostPathSize - length));
}
Word ZOKA_HOST_MEMBER copyToFolder(RawHost* host, const char* source, const char* folder, Word size) {
    expectBuffer(source);
    expectBuffer(folder);
    host->calls.push_back("copy " + std::string(source) + " " + folder + " " + std::to_string(size));
    return byteResult(host->result);
}
Word ZOKA_HOST_MEMBER copyWithSubstitutions(RawHost* host, const char* source, const char* target,
                                            const ZunSubstitution* list) {
    expectBuffer(source);
    expectBuffer(target);
    std::string call = "substitute " + std::string(source) + " " + target;
    for (; list && list->find; ++list) {
        call += " " + std::string(list->find) + "=" + list->replacement;
    }
    host->calls.push_back(call + (list ? " end" : " null"));
    return byteResult(host->result);
}
Word ZOKA_HOST_MEMBER executeCommand(RawHost* host, Word zero, Word command, void* data, Word size) {
    const std::string call =
        "command " + std::to_string(zero) + " " + std::to_string(command) + " " + std::to_string(size);
    if (command == CmdOpenMap) {
        host->calls.push_back(call + " " + static_cast<char*>(data));
        return host->result;
    }
    auto& record = *static_cast<ZunCommandRecord*>(data);
    host->calls.push_back(call + ": " + std::to_string(record.code) + " " + std::to_string(record.reserved) +
                          " " + std::to_string(record.size));
    host->fill(record.buffer, record.size);
    record.size = host->recordResult;
    return host->result;
}

class Adapter : public testing::Test {
protected:
    Adapter() {
        table[1] = reinterpret_cast<void*>(note<1>);
        table[4] = reinterpret_cast<void*>(mainScriptPath);
        table[5] = reinterpret_cast<void*>(note<5>);
        table[13] = reinterpret_cast<void*>(listItemName);
        table[14] = reinterpret_cast<void*>(note<14>);
        table[15] = reinterpret_cast<void*>(chooseFile);
        table[16] = reinterpret_cast<void*>(projectFolder);
        table[17] = reinterpret_cast<void*>(copyToFolder);
        table[18] = reinterpret_cast<void*>(copyWithSubstitutions);
        table[22] = reinterpret_cast<void*>(executeCommand);
    }
    void* table[kHostSlotCount] = {};
    RawHost host{table};
    HostAdapter editor{&host};
};

TEST_F(Adapter, CallsEachOperationByItsSlot) {
    host.answer = "C:\\p";
    editor.CreateMainScript();
    EXPECT_EQ(editor.GetMainScriptPath(), "C:\\p");
    editor.MainScriptChanged();
    EXPECT_EQ(editor.GetListItemName(3), "C:\\p");
    editor.EndListUpdate();
    EXPECT_EQ(editor.ChooseFile("C:\\t\\a.kez"), "C:\\p");
    EXPECT_EQ(editor.GetProjectFolder(), "C:\\p");
    EXPECT_TRUE(editor.CopyFileToFolder("C:\\a.kez", "C:\\p"));
    const std::pair<std::string, std::string> pairs[] = {{"ONE", "TWO"}};
    EXPECT_TRUE(editor.CopyFileWithSubstitutions("a", "b", pairs));
    EXPECT_TRUE(editor.CopyFileWithSubstitutions("a", "b", {}));
    EXPECT_EQ(editor.QueryFolder(CmdGetTemplateSubfolder), "C:\\p");
    EXPECT_TRUE(editor.OpenMap("C:\\p\\map.zlm"));
    EXPECT_THAT(host.calls,
                ElementsAre("slot 1", "script 260", "slot 5", "item 3 64", "slot 14",
                            "choose C:\\t\\a.kez 2 template_6", "folder 260", "copy C:\\a.kez C:\\p 260",
                            "substitute a b ONE=TWO end", "substitute a b null", "command 0 1 16: 12 0 260",
                            "command 0 8 12 C:\\p\\map.zlm"));
}

TEST_F(Adapter, FailingHostMeansNothing) {
    host.result = 0;
    EXPECT_EQ(editor.GetMainScriptPath(), std::nullopt);
    EXPECT_EQ(editor.GetListItemName(0), std::nullopt);
    EXPECT_EQ(editor.ChooseFile(""), std::nullopt);
    EXPECT_EQ(editor.GetProjectFolder(), "");
    EXPECT_FALSE(editor.CopyFileToFolder("a", "b"));
    EXPECT_FALSE(editor.CopyFileWithSubstitutions("a", "b", {}));
    EXPECT_EQ(editor.QueryFolder(CmdGetSuiteFolder), "");
    EXPECT_FALSE(editor.OpenMap("map.zlm"));
    host.result = -1;
    EXPECT_EQ(editor.GetListItemName(0), std::nullopt);
    host.result = 1;
    host.recordResult = 0;
    host.answer = "C:\\p";
    EXPECT_EQ(editor.QueryFolder(CmdGetSuiteFolder), "");
}

TEST_F(Adapter, EmptyAnswersAreNone) {
    EXPECT_EQ(editor.GetMainScriptPath(), std::nullopt);
    EXPECT_EQ(editor.ChooseFile(std::string(300, 'p')), std::nullopt);
    EXPECT_EQ(editor.GetListItemName(0), "");
    EXPECT_EQ(host.calls[1], "choose " + std::string(259, 'p') + " 2 template_6");
}

TEST_F(Adapter, UnterminatedAnswersAreCut) {
    host.fillsAll = true;
    const std::string path(259, 'x');
    EXPECT_EQ(editor.GetMainScriptPath(), path);
    EXPECT_EQ(editor.ChooseFile(""), path);
    EXPECT_EQ(editor.GetProjectFolder(), path);
    EXPECT_EQ(editor.QueryFolder(CmdGetSuiteFolder), path);
    EXPECT_EQ(editor.GetListItemName(0), std::string(63, 'x'));
}

TEST_F(Adapter, PathsThatTheHostCannotTakeAreNotCut) {
    const std::string longest(259, 'p'), tooLong(260, 'p');
    EXPECT_TRUE(editor.CopyFileToFolder(longest, longest));
    EXPECT_TRUE(editor.CopyFileWithSubstitutions(longest, longest, {}));
    host.calls.clear();
    EXPECT_FALSE(editor.CopyFileToFolder(tooLong, "a"));
    EXPECT_FALSE(editor.CopyFileToFolder("a", tooLong));
    EXPECT_FALSE(editor.CopyFileWithSubstitutions(tooLong, "a", {}));
    EXPECT_FALSE(editor.CopyFileWithSubstitutions("a", tooLong, {}));
    EXPECT_THAT(host.calls, IsEmpty());
}

}  // namespace
}  // namespace zoka::test
