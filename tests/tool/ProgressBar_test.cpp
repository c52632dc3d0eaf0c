#include "tools/ProgressBar.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace {

std::string drawn(std::initializer_list<float> shares)
{
    std::ostringstream terminal;
    tool::ProgressBar bar(terminal);
    for (const float share : shares)
        bar.show(share);
    return terminal.str();
}

TEST(ProgressBar, FillsWithTheShare)
{
    EXPECT_EQ(drawn({0.5f}), "\r[" + std::string(20, '#') + std::string(20, ' ') + "] 50 %");
    EXPECT_EQ(drawn({1.0f}), "\r[" + std::string(40, '#') + "] 100 %");
    EXPECT_EQ(drawn({0.0f}), "\r[" + std::string(40, ' ') + "] 0 %");
}

TEST(ProgressBar, IsDrawnAgainOnlyForAnotherPercent)
{
    EXPECT_EQ(drawn({0.5f, 0.501f, 0.509f}), drawn({0.5f}));
    EXPECT_EQ(drawn({0.5f, 0.51f}).size(), 2 * drawn({0.5f}).size());
}

TEST(ProgressBar, StaysInRange)
{
    EXPECT_EQ(drawn({7.0f}), drawn({1.0f}));
    EXPECT_EQ(drawn({-7.0f}), drawn({0.0f}));
    EXPECT_EQ(drawn({std::numeric_limits<float>::quiet_NaN()}), drawn({0.0f}));
}

TEST(ProgressBar, ErasesWhatItDrew)
{
    std::ostringstream terminal;
    {
        tool::ProgressBar bar(terminal);
        bar.show(1.0f);
    }
    const std::string text = terminal.str();
    const std::string line = "[" + std::string(40, '#') + "] 100 %";
    EXPECT_EQ(text, "\r" + line + "\r" + std::string(line.size(), ' ') + "\r");
}

TEST(ProgressBar, SaysNothingWhenNothingWasShown)
{
    std::ostringstream terminal;
    {
        const tool::ProgressBar bar(terminal);
    }
    EXPECT_EQ(terminal.str(), "");
}

}  // namespace
