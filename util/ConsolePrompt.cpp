#include "util/ConsolePrompt.h"

#include <cstdio>
#include <cstdlib>
#include <istream>
#include <ostream>
#include <span>

#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

struct Choice {
    const char* word;
    PromptAnswer answer;
};

constexpr Choice kOkCancel[] = {{"ok", PromptAnswer::Ok}, {"cancel", PromptAnswer::Cancel}};
constexpr Choice kYesNo[] = {{"yes", PromptAnswer::Yes}, {"no", PromptAnswer::No}};
constexpr Choice kYesNoCancel[] = {
    {"yes", PromptAnswer::Yes}, {"no", PromptAnswer::No}, {"cancel", PromptAnswer::Cancel}};

// The first choice is what --yes answers, the last what a closed box does.
std::span<const Choice> choicesOf(PromptButtons buttons) {
    switch (buttons) {
        case PromptButtons::OkCancel:
            return kOkCancel;
        case PromptButtons::YesNo:
        case PromptButtons::YesNoDefaultNo:
            return kYesNo;
        case PromptButtons::YesNoCancel:
            return kYesNoCancel;
        default:
            return {};
    }
}

}  // namespace

std::string shownText(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool plain = c >= ' ' ? c != 0x7f : c == '\n' || c == '\r' || c == '\t';
        // The controls of the upper half, as UTF-8 writes them.
        const bool upper = c == 0xc2 && i + 1 < text.size() &&
                           static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
                           static_cast<unsigned char>(text[i + 1]) < 0xa0;
        if (plain && !upper) {
            shown += text[i];
            continue;
        }
        char code[8];
        std::snprintf(code, sizeof code, "\\x%02x",
                      static_cast<unsigned>(upper ? static_cast<unsigned char>(text[++i]) : c));
        shown += code;
    }
    return shown;
}

PromptAnswer ConsolePrompt::ask(const std::string& text, const std::string& title, PromptButtons buttons,
                                PromptIcon) {
    const auto choices = choicesOf(buttons);
    // A message that needs no answer looks like the tool's own.
    const bool own = title == "ZOKA";
    m_out << (choices.empty() ? "zoka: "
              : own           ? "ZOKA: "
                              : "")
          << shownText((own ? "" : title + ": ") + text);
    if (choices.empty()) {
        m_out << std::endl;
        return PromptAnswer::Ok;
    }
    std::string words;
    for (const Choice& choice : choices) {
        words.append(words.empty() ? "" : "/").append(choice.word);
    }
    if (m_yes) {
        m_out << " [" << words << "] " << choices.front().word << std::endl;
        return choices.front().answer;
    }
    std::string line;
    while (m_out << " [" << words << "] " << std::flush && std::getline(m_in, line)) {
        // A word or its beginning; every choice begins with a letter of its own.
        const std::string_view answer = trimmed(line);
        for (const Choice& choice : choices) {
            if (!answer.empty() &&
                equalNoCase(answer, std::string_view(choice.word).substr(0, answer.size()))) {
                return choice.answer;
            }
        }
    }
    m_out << std::endl;
    return choices.back().answer;
}

std::optional<std::string> ConsolePrompt::choose(const ChooserRequest& request, const char* what) {
    const std::optional<std::string> preset =
        request.fileName.empty() ? std::nullopt : std::optional(request.fileName);
    m_out << shownText(request.title) << " (" << what;
    if (preset) {
        m_out << ", empty for " << shownText(*preset);
    }
    m_out << "): " << std::flush;
    std::string line;
    if (m_yes) {
        m_out << shownText(preset.value_or("")) << std::endl;
        return preset;
    }
    if (!std::getline(m_in, line)) {
        m_out << std::endl;
        return std::nullopt;
    }
    const std::string_view answer = trimmed(line);
    return answer.empty() ? preset : std::string(answer);
}

std::optional<std::string> ConsolePrompt::chooseFile(const ChooserRequest& request) {
    return choose(request, "file");
}

std::optional<std::string> ConsolePrompt::chooseFolder(const ChooserRequest& request) {
    return choose(request, "folder");
}

void ConsolePrompt::fatalStop(const std::string& text, const std::string& title, int exitStatus) {
    m_out << shownText(title + ": " + text) << std::endl;
    std::exit(exitStatus);
}

}  // namespace zoka
