// What people see: tables, colours and the progress bar.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "process.hpp"
#include "support.hpp"
#include "table.hpp"

namespace aaanc::test
{

namespace
{

constexpr unsigned short kColumns = 60;
constexpr const char *kEscape = "\033[";

struct Seen {
    std::string terminal; // all that was written to it
    std::string file;     // the other output
};

enum class Terminal { Both, ErrorsOnly };

// Runs aaanc on a terminal of its own.
Seen onTerminal(Terminal which, const std::vector<std::string> &arguments,
                const std::vector<std::pair<const char *, const char *>> &environment = {})
{
    const ScratchDirectory scratch;
    const std::string file = scratch.path() + "/output";
    winsize size{};
    size.ws_col = kColumns;
    size.ws_row = 25;
    std::vector<char *> argv = {const_cast<char *>(AAANC_EXECUTABLE)};
    for (const std::string &argument : arguments) {
        argv.push_back(const_cast<char *>(argument.c_str()));
    }
    argv.push_back(nullptr);
    int terminal = -1;
    const pid_t id = forkpty(&terminal, nullptr, nullptr, &size);
    if (id == 0) {
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
        for (const auto &[name, value] : environment) {
            setenv(name, value, 1);
        }
        if (which == Terminal::ErrorsOnly) {
            dup2(open(file.c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
        }
        execv(AAANC_EXECUTABLE, argv.data());
        _exit(127);
    }
    Seen seen;
    std::array<char, 4096> buffer{};
    ssize_t count = 0;
    while ((count = read(terminal, buffer.data(), buffer.size())) > 0) {
        seen.terminal.append(buffer.data(), static_cast<std::size_t>(count));
    }
    close(terminal);
    waitpid(id, nullptr, 0);
    seen.file = readText(file);
    return seen;
}

std::string exampleFile(const std::string &name)
{
    return std::string(AAANC_EXAMPLES) + "/" + name;
}

TEST(Terminal, HasColoursUnlessToldOtherwise)
{
    const std::vector<std::string> arguments = {"apply", "--no-enabled",
                                                exampleFile("interval.xml")};
    EXPECT_NE(onTerminal(Terminal::Both, arguments).terminal.find(kEscape), std::string::npos);
    for (const auto &variable : {std::pair("NO_COLOR", "1"), std::pair("TERM", "dumb")}) {
        const Seen seen = onTerminal(Terminal::Both, arguments, {variable});
        EXPECT_NE(seen.terminal.find("Summary"), std::string::npos);
        EXPECT_EQ(seen.terminal.find(kEscape), std::string::npos) << variable.first;
    }
    EXPECT_EQ(runAaanc(arguments).output.find(kEscape), std::string::npos);
}

TEST(Terminal, IsAsWideAsTheTablesOfTheState)
{
    const std::vector<std::string> arguments = {"apply", "--startup", exampleFile("switch.xml")};
    const Seen seen = onTerminal(Terminal::Both, arguments, {{"NO_COLOR", "1"}});
    const std::size_t begin = seen.terminal.find("State of the AAA service");
    ASSERT_NE(begin, std::string::npos);
    const std::string tables = seen.terminal.substr(begin, seen.terminal.find("Summary") - begin);
    for (const std::string &line : lines(tables)) {
        EXPECT_LE(line.size(), kColumns + 1U) << line; // with its carriage return
    }
    // A file takes lines of any width.
    const std::vector<std::string> written = lines(runAaanc(arguments).output);
    EXPECT_GT(std::ranges::max(written, {}, &std::string::size).size(), kColumns);
}

TEST(Terminal, ShowsABarWhileAPushIsLongAndTakesItAway)
{
    const ScratchDirectory scratch;
    std::string domains;
    for (int i = 0; i < 20; ++i) {
        domains += fmt::format(R"({}{{"domainName": "d{}"}})", i == 0 ? "" : ", ", i);
    }
    const std::string edit = scratch.write(
        "edit.json", R"({"orvek-aaa:sysAaa": {"aaaDomain": {"domainInfo": [)" + domains + "]}}}");
    const std::vector<std::string> slow = {"apply", "--no-enabled", "--misbehave", "late 0.05",
                                           edit};
    const Seen seen = onTerminal(Terminal::ErrorsOnly, slow);
    EXPECT_NE(seen.terminal.find("\r[#"), std::string::npos);
    EXPECT_NE(seen.terminal.find(" of 42 changes"), std::string::npos);
    EXPECT_TRUE(seen.terminal.ends_with("\r\033[K"));
    EXPECT_EQ(seen.file.find('\r'), std::string::npos);
    EXPECT_NE(seen.file.find("Summary"), std::string::npos);

    EXPECT_EQ(runAaanc(slow).errors, "") << "no bar in a file";
    const Seen quick = onTerminal(Terminal::ErrorsOnly, {"apply", "--no-enabled", edit});
    EXPECT_EQ(quick.terminal, "") << "no bar for a short push";
}

TEST(Table, IsAsNarrowAsItsCells)
{
    const Table table{{"name", "n"}, {{"one", "1"}, {"three", "345"}}};
    EXPECT_EQ(formatTable(table, "  ", 0, false), "  name   n\n"
                                                  "  one    1\n"
                                                  "  three  345\n");
}

TEST(Table, LosesNothingWhereItIsTooWide)
{
    const Table table{{"groups", "n"}, {{"radius campus, tacacs operators", "1"}}};
    EXPECT_EQ(formatTable(table, "  ", 20, false), "  groups           n\n"
                                                   "  radius campus,   1\n"
                                                   "  tacacs\n"
                                                   "  operators\n");
    // Words are broken where there is no other way, those of titles first.
    const Table address{{"address", "groups"}, {{"192.0.2.111", "radius campus, tacacs ops"}}};
    EXPECT_EQ(formatTable(address, "", 20, false), "address      groups\n"
                                                   "192.0.2.111  radius\n"
                                                   "             campus,\n"
                                                   "             tacacs\n"
                                                   "             ops\n");
    const Table title{{"priority", "address"}, {{"1", "192.0.2.1"}}};
    EXPECT_EQ(formatTable(title, "", 15, false), "prio  address\n"
                                                 "rity\n"
                                                 "1     192.0.2.1\n");
    const Table long_word{{"word"}, {{"abcdefghij"}}};
    EXPECT_EQ(formatTable(long_word, "", 4, false), "word\nabcd\nefgh\nij\n");
    const Table umlauts{{"w"}, {{"\xc3\xa4\xc3\xb6\xc3\xbc"}, {"abc"}}};
    EXPECT_EQ(formatTable(umlauts, "", 0, false), "w\n\xc3\xa4\xc3\xb6\xc3\xbc\nabc\n");
}

} // namespace

} // namespace aaanc::test
