#include "controls/EntryModel.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "controls/Colour.h"
#include "controls/EntryRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

constexpr int kSliderPositions = 1'000'000;  // at most; a slider's window counts in 32 bits

// A step that suits a number for which none was given: whole numbers by 1; others by the last digit of the
// value loaded, or by about a hundredth of their range.
double fallbackStep(const EntryFacts& facts) {
    if (!facts.decimal) {
        return 1;
    }
    const int decimals = std::min(decimalsOf(facts.value), 6);
    const double byValue = std::pow(10.0, -std::max(decimals, 1));
    const double range = facts.maximum - facts.minimum;
    if (!facts.limited || !(range > 0) || range > 100000) {
        return byValue;
    }
    return std::min(byValue, std::pow(10.0, std::floor(std::log10(range / 100))));
}

// Where no whole number of steps leads back, what is left is at most the error of the sum.
double nearest(double value) {
    return std::floor(value + 0.5);
}

}  // namespace

EntryModel::EntryModel(EntryFacts facts)
    : m_facts(std::move(facts)), m_value(m_facts.value), m_different(m_facts.different) {
    if (isNumber(m_facts.field)) {
        m_step = m_facts.step > 0 ? m_facts.step : fallbackStep(m_facts);
        if (!m_facts.decimal) {
            m_step = std::max(1.0, nearest(m_step));
        }
    }
}

bool EntryModel::SetValueFromText(const std::string& text) {
    std::string value = text.ends_with('\r') ? text.substr(0, text.size() - 1) : text;
    if (value != m_facts.value && !fieldRefusal(m_facts, value).empty()) {
        return false;
    }
    putBack(std::move(value));
    return true;
}

void EntryModel::takeAsLoaded() {
    m_facts.value = m_value;
    m_facts.different = m_different;
    m_others = false;
}

void EntryModel::putBack(std::string value) {
    m_value = std::move(value);
    m_different = m_others = false;
}

void EntryModel::setDifferent(bool others) {
    m_value.clear();
    m_different = true;
    m_others = others;
}

static const std::string kNotBlocked;

const std::string& EntryModel::blocked() const {
    return m_blocked && !m_reachable ? *m_blocked : kNotBlocked;
}

const std::string& EntryModel::readOnly() const {
    return m_blocked && m_reachable ? *m_blocked : kNotBlocked;
}

void EntryModel::setReadOnly(const std::string& reason) {
    setBlocked(reason);
    m_reachable = true;
}

void EntryModel::setBlocked(const std::string& reason) {
    m_reachable = false;
    m_blocked = reason.empty() ? nullptr : std::make_shared<const std::string>(reason);
}

int EntryModel::GetHeight() const {
    switch (m_facts.field) {
        case EntryField::Caption:
            return 28;
        case EntryField::Heading:
            return 26;
        case EntryField::Picture:
            return 120;
        case EntryField::Text:
            return 20;
        case EntryField::StringField:
            return m_facts.lines > 1 ? 26 + 16 * (std::min(m_facts.lines, 12) - 1) : 26;
        case EntryField::Slider:
            return 28;
        case EntryField::Switch:
        case EntryField::IntField:
        case EntryField::FloatField:
        case EntryField::FileField:
        case EntryField::ColourField:
        case EntryField::DropList:
            break;
    }
    return 26;
}

std::string EntryModel::asWritten(const std::string& typed) const {
    if (m_facts.field == EntryField::ColourField) {
        const auto colour = colourOf(typed);
        return !colour                             ? typed
               : colourOf(m_facts.value) == colour ? m_facts.value
                                                   : colourText(*colour, m_facts.value);
    }
    if (m_facts.shape == ValueShape::WithBrackets && !typed.empty() &&
        typed.find_first_of("<>") == typed.npos) {
        return '<' + typed + '>';
    }
    if (m_facts.field == EntryField::StringField && m_facts.lines > 1) {
        const std::string value = onOneLine(typed, m_facts.bareFeeds ? "\n" : "\r\n");
        return onOneLine(m_facts.value, "\n") == onOneLine(typed, "\n") ? m_facts.value : value;
    }
    if (!isNumber(m_facts.field)) {
        return typed;
    }
    const auto value = numberOf(typed);
    if (!value || !fieldRefusal(m_facts, typed).empty()) {
        return typed;
    }
    // Without a value loaded, or with several, there is no text to keep.
    if (const auto loaded = numberOf(m_facts.value); !m_facts.value.empty() && loaded == value) {
        return m_facts.value;
    }
    return m_facts.keepPoint && isDigits(typed) ? typed + ".0" : typed;
}

std::string EntryModel::refusalOf(const std::string& value) const {
    return m_blocked ? *m_blocked : entryRefusal(m_facts, value);
}

Outcome EntryModel::edit(const std::string& typed) {
    std::string value = asWritten(typed);
    Outcome taken = Outcome::unless(refusalOf(value));
    if (taken) {
        putBack(std::move(value));
    }
    return taken;
}

double EntryModel::number() const {
    return numberOf(m_value).value_or(0);
}

std::string EntryModel::numberAsText(double value) const {
    if (m_facts.limited && m_facts.minimum <= m_facts.maximum) {
        value = std::clamp(value, m_facts.minimum, m_facts.maximum);
    }
    const int decimals =
        m_facts.decimal ? std::max({decimalsOf(m_step), decimalsOf(m_value), decimalsOf(m_facts.minimum)})
                        : 0;
    return asWritten(numberText(value, decimals));
}

std::string EntryModel::stepped(int steps) const {
    return numberAsText(number() + steps * m_step);
}

int EntryModel::sliderRange() const {
    const double range = (m_facts.maximum - m_facts.minimum) / m_step;
    return m_facts.limited && range > 0
               ? static_cast<int>(std::min<double>(std::ceil(range - 1e-6), kSliderPositions))
               : 0;
}

int EntryModel::sliderPosition() const {
    const double range = m_facts.maximum - m_facts.minimum;
    if (sliderRange() == 0) {
        return 0;
    }
    // Positions are steps, unless there are more of them than a slider has.
    const double unit = range / m_step > kSliderPositions ? range / kSliderPositions : m_step;
    return static_cast<int>(
        std::clamp(nearest((number() - m_facts.minimum) / unit), 0.0, double(sliderRange())));
}

std::string EntryModel::textAt(int position) const {
    const double range = m_facts.maximum - m_facts.minimum;
    const double unit = range / m_step > kSliderPositions ? range / kSliderPositions : m_step;
    return numberAsText(m_facts.minimum + std::clamp(position, 0, sliderRange()) * unit);
}

}  // namespace zoka
