// Files of inputs that are refused.
#pragma once

#include <gtest/gtest.h>

#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

struct BadCase {
    std::string title;
    std::string input;
    std::string error; // behind the name of the file
};

// "== TITLE", lines of input, "-- ERROR"; lines before the first title are comments.
inline std::vector<BadCase> readBadCases(const std::string &file)
{
    std::vector<BadCase> cases;
    for (const std::string &line : lines(readText(testData(file)))) {
        if (line.starts_with("== ")) {
            cases.push_back({line.substr(3), "", ""});
        } else if (line.starts_with("-- ")) {
            cases.back().error = line.substr(3);
        } else if (!cases.empty()) {
            cases.back().input += line + "\n";
        }
    }
    return cases;
}

// Holds `command` to refusing every case of `file` before it prints anything.
inline void expectRefused(const std::string &command, const std::string &file)
{
    const std::vector<BadCase> cases = readBadCases(file);
    EXPECT_FALSE(cases.empty());
    for (const BadCase &bad : cases) {
        SCOPED_TRACE(bad.title);
        const ScratchDirectory scratch;
        (void)scratch.write("input", bad.input);
        const Outcome outcome = Process(scratch.path(), {command, "input"}).wait();
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, "aaanc: input" + bad.error + "\n");
    }
}

} // namespace aaanc::test
