// Standard streams that are closed, full, or a pipe that nobody reads.
#include <array>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

constexpr const char *kLimited = "timeout 60 " AAANC_EXECUTABLE " ";

// Runs "aaanc ARGUMENTS", which a shell reads. The exit status.
int shell(const std::string &arguments)
{
    const int status = std::system((kLimited + arguments).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class Streams : public testing::Test
{
protected:
    // Runs it, and holds it to an exit status and to what it writes to standard error.
    void expect(const std::string &arguments, int status, const std::string &errors)
    {
        const std::string file = scratch_.path() + "/errors";
        EXPECT_EQ(shell(arguments + " 2>" + file), status) << arguments;
        EXPECT_EQ(readText(file), errors) << arguments;
    }

    ScratchDirectory scratch_;
    std::string edit_ =
        scratch_.write("edit.json", R"({"orvek-aaa:sysAaa": {"aaaGlobal": {"startFailType": 1}}})");
    std::string dump_ = scratch_.write("dump", "00000015 00000001 00000001 02");
    std::string recording_ = testData("recordings/01-global-set.txt");
};

TEST_F(Streams, OutputThatIsLostIsToldAndIsNoSuccess)
{
    for (const std::string &arguments :
         {"apply " + edit_, "apply --json " + edit_, "replay " + recording_, "decode " + dump_,
          "decode --json " + dump_, std::string("--help"), std::string("apply --help"),
          std::string("--version")}) {
        expect(arguments + " >" + scratch_.path() + "/output", 0, "");
        expect(arguments + " >/dev/full", 2, "aaanc: standard output: No space left on device\n");
        expect(arguments + " >&-", 2, "aaanc: standard output: Bad file descriptor\n");
    }
}

TEST_F(Streams, AFailureIsOneThoughOutputIsLost)
{
    expect("apply --socket " + scratch_.path() + "/none " + edit_ + " >/dev/full", 1,
           "aaanc: standard output: No space left on device\n");
}

TEST_F(Streams, APipeThatNobodyReadsIsNoSuccess)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    expect("apply " + edit_ + " >&" + std::to_string(ends[1]), 2, "");
    close(ends[1]);
}

TEST_F(Streams, AnErrorThatCannotBeWrittenIsStillOne)
{
    for (const std::string arguments : {"apply /nowhere.xml", "aply", "apply --no-such-option",
                                        "decode /dev/null", "service --socket /nowhere/socket"}) {
        EXPECT_EQ(shell(arguments + " 2>/dev/full"), 2) << arguments;
        EXPECT_EQ(shell(arguments + " 2>&-"), 2) << arguments;
        EXPECT_EQ(shell(arguments + " <&- >&- 2>&-"), 2) << arguments;
    }
}

TEST_F(Streams, StandardInputThatIsClosedIsAnError)
{
    expect("apply - <&-", 2, "aaanc: standard input: Bad file descriptor\n");
}

} // namespace

} // namespace aaanc::test
