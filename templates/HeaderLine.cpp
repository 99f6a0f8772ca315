#include "templates/HeaderLine.h"

#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {

namespace {

struct Keyword {
    std::string_view text;
    HeaderCode code;
};

constexpr Keyword kKeywords[] = {
    {"action", HeaderCode::Action},   {"enable", HeaderCode::Enable},
    {"entry", HeaderCode::Entry},     {"function", HeaderCode::Function},
    {"section", HeaderCode::Section}, {"class", HeaderCode::Class},
    {"data", HeaderCode::Data},       {"date", HeaderCode::Date},
    {"desc", HeaderCode::Desc},       {"enginereq", HeaderCode::EngineReq},
    {"help", HeaderCode::Help},       {"idcode", HeaderCode::IdCode},
    {"image", HeaderCode::Image},     {"needs", HeaderCode::Needs},
    {"note", HeaderCode::Note},       {"prefix", HeaderCode::Prefix},
    {"title", HeaderCode::Title},     {"type", HeaderCode::Type},
    {"ver", HeaderCode::Ver},         {"ENDHEADER", HeaderCode::EndHeader},
};
constexpr std::string_view kSeparators = " ,";

}  // namespace

std::string_view headerKeyword(std::string_view line) {
    const size_t colon = line.find(':');
    if (!isCommentLine(line) || colon == std::string_view::npos) {
        return {};
    }
    return trimmed(line.substr(2, colon - 2));
}

HeaderCode classifyHeaderLine(std::string_view line) {
    if (line.starts_with("///")) {
        return HeaderCode::Continuation;
    }
    if (!isCommentLine(line)) {
        return HeaderCode::None;
    }
    const std::string_view keyword = headerKeyword(line);
    for (const Keyword& known : kKeywords) {
        if (equalNoCase(keyword, known.text)) {
            return known.code;
        }
    }
    const std::string_view rest = trimmed(line.substr(2));
    const std::string_view word = rest.substr(0, rest.find(' '));
    return equalNoCase(word, "ENDHEADER") ? HeaderCode::EndHeader : HeaderCode::None;
}

HeaderGroup groupOf(HeaderCode code) {
    const int number = static_cast<int>(code);
    if (number < 0 || number >= 20) {
        return HeaderGroup::None;
    }
    return number < 5 ? HeaderGroup::Block : HeaderGroup::Field;
}

std::string_view headerValue(std::string_view line) {
    if (line.starts_with("///")) {
        return trimmed(line.substr(3));
    }
    const size_t colon = line.find(':');
    return colon == std::string_view::npos ? std::string_view() : trimmed(line.substr(colon + 1));
}

std::vector<std::string_view> headerTokens(std::string_view value) {
    return tokensOf(value, kSeparators);
}

std::string_view firstHeaderToken(std::string_view value) {
    return LineTokens(value, kSeparators).next();
}

}  // namespace zoka
