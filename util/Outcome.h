// "No, and why": the one form in which an operation that may fail, or may not be allowed, answers.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace zoka {

// The reason, in words for the user. It is empty only where there is nothing to tell: the user declined, or the window
// that asked is closing.
struct Refusal {
    std::string why;
};

// Done, or why not. Whoever asks must look at the answer.
class [[nodiscard]] Outcome {
public:
    Outcome() = default;
    Outcome(Refusal refusal) : m_done(false), m_why(std::move(refusal.why)) {}
    // Done where a rule found no reason against it.
    static Outcome unless(std::string refusal) {
        return refusal.empty() ? Outcome() : Outcome(Refusal{std::move(refusal)});
    }

    explicit operator bool() const { return m_done; }
    // Empty when it is done.
    const std::string& why() const { return m_why; }

private:
    bool m_done = true;
    std::string m_why;
};

// A value, or why there is none.
template <typename Value>
class [[nodiscard]] Result {
public:
    Result(Value value) : m_held(std::move(value)) {}
    Result(Refusal refusal) : m_held(std::move(refusal)) {}

    explicit operator bool() const { return std::holds_alternative<Value>(m_held); }
    // Only where there is one.
    Value& operator*() { return *std::get_if<Value>(&m_held); }
    const Value& operator*() const { return *std::get_if<Value>(&m_held); }
    Value* operator->() { return std::get_if<Value>(&m_held); }
    const Value* operator->() const { return std::get_if<Value>(&m_held); }
    // For those who don't tell the reason.
    std::optional<Value> value() const { return *this ? std::optional(**this) : std::nullopt; }
    // Empty when there is a value.
    std::string why() const { return *this ? std::string() : std::get_if<Refusal>(&m_held)->why; }

private:
    std::variant<Value, Refusal> m_held;
};

}  // namespace zoka
