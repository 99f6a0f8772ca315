#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/ScriptedPrompt.h"
#include "util/ConsolePrompt.h"

namespace {

using namespace zoka;

TEST(ConsolePrompt, UnderstandsAnswers) {
    const struct {
        PromptButtons buttons;
        const char* input;
        PromptAnswer answer;
    } rows[] = {
        {PromptButtons::Ok, "", PromptAnswer::Ok},
        {PromptButtons::OkCancel, "ok\n", PromptAnswer::Ok},
        {PromptButtons::OkCancel, "c\n", PromptAnswer::Cancel},
        {PromptButtons::OkCancel, "", PromptAnswer::Cancel},
        {PromptButtons::YesNo, " YES \r\n", PromptAnswer::Yes},
        {PromptButtons::YesNo, "\nperhaps\nyess\nn\n",
         PromptAnswer::No},  // asked until it is one of the words
        {PromptButtons::YesNo, "maybe", PromptAnswer::No},
        {PromptButtons::YesNoCancel, "y\n", PromptAnswer::Yes},
        {PromptButtons::YesNoCancel, "cancel\n", PromptAnswer::Cancel},
        {PromptButtons::YesNoCancel, "", PromptAnswer::Cancel},
    };
    for (const auto& row : rows) {
        std::istringstream in(row.input);
        std::ostringstream out;
        EXPECT_EQ(ConsolePrompt(in, out, false).ask("Save?", "ZOKA", row.buttons, PromptIcon::None),
                  row.answer)
            << row.input;
        // What needs no answer is the tool's own message.
        EXPECT_EQ(out.str().substr(0, 11), row.buttons == PromptButtons::Ok ? "zoka: Save?" : "ZOKA: Save?");
    }
    std::istringstream in("no\n");
    std::ostringstream out;
    ConsolePrompt yes(in, out, true);
    EXPECT_EQ(yes.ask("a", "t", PromptButtons::YesNoCancel, PromptIcon::None), PromptAnswer::Yes);
    EXPECT_EQ(yes.ask("a", "t", PromptButtons::OkCancel, PromptIcon::None), PromptAnswer::Ok);
    EXPECT_EQ(in.tellg(), 0) << "--yes reads nothing";
}

ChooserRequest request(const std::string& preset) {
    ChooserRequest result;
    result.title = "Open";
    result.fileName = preset;
    return result;
}

TEST(ConsolePrompt, TakesPaths) {
    std::istringstream in("C:\\a b.kez \n\n\n");
    std::ostringstream out;
    ConsolePrompt prompt(in, out, false);
    EXPECT_EQ(prompt.chooseFile(request("")), "C:\\a b.kez");
    EXPECT_EQ(prompt.chooseFile(request("preset")), "preset");
    EXPECT_EQ(prompt.chooseFolder(request("")), std::nullopt);
    EXPECT_EQ(prompt.chooseFolder(request("")), std::nullopt) << "the input has ended";
    ConsolePrompt yes(in, out, true);
    EXPECT_EQ(yes.chooseFile(request("preset")), "preset");
    EXPECT_EQ(yes.chooseFile({}), std::nullopt);
}

TEST(ConsolePromptDeathTest, FatalStopEndsTheProcess) {
    EXPECT_EXIT(
        {
            std::istringstream in;
            std::ostringstream out;
            ConsolePrompt(in, out, true).fatalStop("gone", "ZOKA", 7);
        },
        testing::ExitedWithCode(7), "");
    EXPECT_EXIT(userPrompt().fatalStop("gone", "ZOKA", 3), testing::ExitedWithCode(3), "ZOKA: gone");
}

TEST(UserPrompt, IsSetAndTakenBack) {
    UserPrompt& before = userPrompt();
    EXPECT_EQ(before.ask("quiet", "test", PromptButtons::YesNo, PromptIcon::None), PromptAnswer::No);
    EXPECT_EQ(before.ask("quiet", "test", PromptButtons::OkCancel, PromptIcon::None), PromptAnswer::Cancel);
    EXPECT_EQ(before.chooseFile({}), std::nullopt);
    {
        test::ScriptedPrompt script;
        script.answers = {PromptAnswer::Yes};
        EXPECT_EQ(&userPrompt(), &script);
        userPrompt().tell("text");
        EXPECT_EQ(userPrompt().ask("sure?", "T", PromptButtons::YesNo, PromptIcon::Warning),
                  PromptAnswer::Yes);
        EXPECT_EQ(script.texts(), (std::vector<std::string>{"text", "sure?"}));
        EXPECT_EQ(script.asked[0].title, "ZOKA");
        EXPECT_THROW(userPrompt().fatalStop("x", "y", 1), test::FatalStop);
        EXPECT_NONFATAL_FAILURE(userPrompt().ask("unforeseen", "T", PromptButtons::YesNo, PromptIcon::None),
                                "no answer is laid down for: unforeseen");
    }
    EXPECT_EQ(&userPrompt(), &before);
}

}  // namespace
