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
    // The exit status; what it wrote to standard error is in `errors_`.
    int run(const std::string &arguments)
    {
        const int status = shell(arguments + " 2>" + scratch_.path() + "/errors");
        errors_ = readText(scratch_.path() + "/errors");
        return status;
    }

    ScratchDirectory scratch_;
    std::string edit_ =
        scratch_.write("edit.json", R"({"orvek-aaa:sysAaa": {"aaaGlobal": {"startFailType": 1}}})");
    std::string dump_ = scratch_.write("dump", "00000015 00000001 00000001 02");
    std::string recording_ = testData("recordings/01-global-set.txt");
    std::string errors_;
};

TEST_F(Streams, OutputThatIsLostIsToldAndIsNoSuccess)
{
    for (const std::string &arguments :
         {"apply " + edit_, "apply --json " + edit_, "replay " + recording_, "decode " + dump_,
          "decode --json " + dump_, std::string("--help"), std::string("apply --help"),
          std::string("--version")}) {
        EXPECT_EQ(run(arguments + " >" + scratch_.path() + "/output"), 0) << arguments;
        EXPECT_EQ(errors_, "") << arguments;
        EXPECT_EQ(run(arguments + " >/dev/full"), 2) << arguments;
        EXPECT_EQ(errors_, "aaanc: standard output: No space left on device\n") << arguments;
        EXPECT_EQ(run(arguments + " >&-"), 2) << arguments;
        EXPECT_EQ(errors_, "aaanc: standard output: Bad file descriptor\n") << arguments;
    }
}

TEST_F(Streams, AFailureIsOneThoughOutputIsLost)
{
    EXPECT_EQ(run("apply --socket " + scratch_.path() + "/none " + edit_ + " >/dev/full"), 1);
    EXPECT_EQ(errors_, "aaanc: standard output: No space left on device\n");
}

TEST_F(Streams, APipeThatNobodyReadsIsNoSuccess)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    close(ends[0]);
    EXPECT_EQ(run("apply " + edit_ + " >&" + std::to_string(ends[1])), 2);
    EXPECT_EQ(errors_, "");
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
    EXPECT_EQ(run("apply - <&-"), 2);
    EXPECT_EQ(errors_, "aaanc: standard input: Bad file descriptor\n");
}

} // namespace

} // namespace aaanc::test
