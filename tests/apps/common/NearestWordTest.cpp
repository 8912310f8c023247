#include "common/NearestWord.h"

#include <gtest/gtest.h>

namespace brantel {
namespace {

const Words COMMANDS = {"rule", "card", "get", "set", "watch", "db", "monitor"};

TEST(NearestWord, DiffersByOneMistake)
{
    for (const char* const word : {"montior", "monitr", "moniitor", "monutor", "onitor", "monitors", "Monitor"}) {
        EXPECT_EQ(nearestWord(word, COMMANDS), "monitor") << word;
    }
    for (const char* const word : {"gt", "gte", "egt", "gets", "GET"}) {
        EXPECT_EQ(nearestWord(word, COMMANDS), "get") << word;
    }
}

TEST(NearestWord, DiffersByMoreMistakesTheLongerItIs)
{
    EXPECT_EQ(nearestWord("wacht", COMMANDS), "watch");
    EXPECT_EQ(nearestWord("wcth", COMMANDS), "watch");
    EXPECT_EQ(nearestWord("wtch", {"watch"}), "watch");
    EXPECT_EQ(nearestWord("wxxxh", {"watch"}), std::nullopt);
    EXPECT_EQ(nearestWord("mxnxtxr", {"monitor"}), "monitor");
    EXPECT_EQ(nearestWord("mxnxtxx", {"monitor"}), std::nullopt);
}

TEST(NearestWord, IsMissingIfNothingIsNear)
{
    for (const char* const word : {"", "x", "xyz", "help", "frobnicate", "getgetget"}) {
        EXPECT_EQ(nearestWord(word, COMMANDS), std::nullopt) << word;
    }
    EXPECT_EQ(nearestWord("monitor", {}), std::nullopt);
    EXPECT_EQ(nearestWord(std::string(100000, 'x'), COMMANDS), std::nullopt);
}

TEST(NearestWord, IsTheNearestOfSeveralAndTheFirstOfEquallyNearOnes)
{
    EXPECT_EQ(nearestWord("cpu.user2", {"cpu.user1", "cpu.user"}), "cpu.user1");
    EXPECT_EQ(nearestWord("cpu.usr", {"cpu.busy", "cpu.user"}), "cpu.user");
}

TEST(NearestWord, IsSuggested)
{
    EXPECT_EQ(suggestion("montior", COMMANDS), "; did you mean 'monitor'?");
    EXPECT_EQ(suggestion("jsn", {"json"}, "--"), "; did you mean '--json'?");
    EXPECT_EQ(suggestion("frob", COMMANDS), "");
    EXPECT_EQ(suggestionOrChoices("jso", {"csv", "json"}), "; did you mean 'json'?");
    EXPECT_EQ(suggestionOrChoices("yaml", {"csv", "json"}), "; expected csv or json");
    EXPECT_EQ(suggestionOrChoices("maybe", {"yes", "no", "auto"}), "; expected yes, no or auto");
}

}  // namespace

}  // namespace brantel
