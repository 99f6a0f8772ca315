#include "controls/RowEditing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zoka;
using testing::ElementsAre;

namespace {

EntryFacts fact(EntryField field, const char* label, const char* value) {
    return {.field = field, .label = label, .value = value};
}

// Rows whose values someone else holds, who may refuse them.
class HeldRows : public RowEditing, public RowsListener {
public:
    HeldRows() {
        setListener(this);
        EntryFacts many = fact(EntryField::IntField, "Several", "");
        many.different = true;
        EntryFacts standard = fact(EntryField::IntField, "Depth", "5");
        standard.extras = std::make_shared<EntryExtras>(EntryExtras{.standard = "3"});
        EntryFacts waves = fact(EntryField::Switch, "Waves", "1");
        waves.extras = std::make_shared<EntryExtras>(EntryExtras{.standard = "1"});
        for (const EntryFacts& facts :
             {fact(EntryField::Heading, "Water", ""), standard, waves, many,
              fact(EntryField::Heading, "Air", ""), fact(EntryField::StringField, "Wind", "calm")}) {
            made.emplace_back(facts);
        }
        showRows(made);
    }
    void rowsReplaced() override { calls += "rows "; }
    void valuesChanged() override { calls += "values "; }
    std::vector<std::string> values() const {
        std::vector<std::string> all;
        for (size_t i = 0; i < size(); ++i) {
            all.push_back(row(i).isDifferent() ? "(different)" : row(i).value());
        }
        return all;
    }

    std::vector<EntryModel> made;
    std::string calls;
    std::string refused;  // a value that the holder does not take

protected:
    Outcome store(size_t, const std::string& value) override {
        return Outcome::unless(value == refused ? "held" : "");
    }
    // Row 3 stands for the values 1 and 2.
    std::string stateOf(size_t i) const override {
        return i == 3 && row(i).isDifferent() ? "1|2" : RowEditing::stateOf(i);
    }
    Outcome putState(size_t i, const std::string& state) override {
        if (state != "1|2") {
            return RowEditing::putState(i, state);
        }
        rowToEdit(i).setDifferent();
        return {};
    }
};

TEST(RowEditing, WhatTheHolderRefusesStaysAsItWas) {
    HeldRows rows;
    EXPECT_TRUE(rows.setValue(1, "9"));
    EXPECT_TRUE(rows.setValue(1, "9"));  // nothing new: no step
    rows.refused = "7";
    EXPECT_EQ(rows.setValue(1, "7").why(), "held");
    rows.refused = "5";
    EXPECT_EQ(rows.undo().why(), "held");
    EXPECT_TRUE(rows.canUndo());
    EXPECT_THAT(rows.values(), ElementsAre("", "9", "1", "(different)", "", "calm"));
    rows.refused = "-";
    EXPECT_EQ(rows.undo().value(), 1u);
    EXPECT_EQ(rows.redo().value(), 1u);
    EXPECT_EQ(rows.calls, "rows values values values ");
    rows.made[2].setBlocked("The entity is gone.");
    EXPECT_EQ(rows.setValue(2, "0").why(), "The entity is gone.");
    EXPECT_EQ(rows.tooltip(2), "Waves\r\nThe entity is gone.\r\nDefault: on");
}

TEST(RowEditing, ADifferentRowTakesOneValueAndGetsItsOwnBack) {
    HeldRows rows;
    EXPECT_FALSE(rows.row(3).HasChanged());
    EXPECT_FALSE(rows.setValue(3, ""));
    EXPECT_TRUE(rows.setValue(3, "4"));
    EXPECT_TRUE(rows.row(3).HasChanged());
    EXPECT_TRUE(rows.undo());
    EXPECT_THAT(rows.values(), ElementsAre("", "5", "1", "(different)", "", "calm"));
    EXPECT_FALSE(rows.row(3).HasChanged());
}

TEST(RowEditing, ResetsAndTooltipsKnowTheStandardValue) {
    HeldRows rows;
    EXPECT_FALSE(rows.canReset(0, rows.size(), ResetTo::Loaded));
    EXPECT_TRUE(rows.setValue(2, "0"));
    EXPECT_TRUE(rows.setValue(5, "storm"));
    EXPECT_EQ(rows.tooltip(1), "Depth\r\nDefault: 3");
    EXPECT_EQ(rows.tooltip(2), "Waves\r\nDefault: on\r\nSaved: on");
    EXPECT_EQ(rows.resetAll(ResetTo::Default), 2u);
    EXPECT_EQ(rows.row(2).value(), "1");
    EXPECT_TRUE(rows.setValue(2, "0"));
    EXPECT_EQ(rows.resetSection(4, ResetTo::Loaded), 1u);
    EXPECT_THAT(rows.values(), ElementsAre("", "3", "0", "(different)", "", "calm"));
    rows.refused = "1";
    EXPECT_EQ(rows.resetAll(ResetTo::Loaded), 1u);  // the switch keeps its value
    EXPECT_THAT(rows.values(), ElementsAre("", "5", "0", "(different)", "", "calm"));
    rows.filter.changedOnly = true;
    EXPECT_THAT(rows.visibleRows(), ElementsAre(true, false, true, false, false, false));
}

}  // namespace
