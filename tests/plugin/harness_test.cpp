// The harness itself: mistakes in scenario files are named by their place, and a
// run that is not what a case says is found out.
#include "harness/fake_platform.hpp"
#include "harness/scenario_file.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include <unistd.h>

namespace aaanc::test
{

namespace
{

class ScenarioFile : public testing::Test
{
protected:
    ~ScenarioFile() override
    {
        std::remove(path_.c_str());
    }

    std::vector<ScenarioCase> read(const std::string &text)
    {
        std::ofstream(path_) << text;
        return readScenarioFile(path_);
    }

    // What reading `text` says, without the path.
    std::string errorOf(const std::string &text)
    {
        try {
            read(text);
        } catch (const ScenarioError &error) {
            return std::string(error.what()).substr(path_.size());
        }
        return "no error";
    }

    // What is wrong with the plug-in's run of a case that starts like this.
    std::vector<std::string> findingsOf(const std::string &text)
    {
        const ScenarioCase played = read(kIntervalSet + text).front();
        return mismatches(played, play(played.scenario));
    }

    const std::string kCallback = "callback /orvek-aaa:sysAaa/aaaGlobal event 1\n";
    const std::string kIntervalSet = kCallback +
                                     "== a ==\n"
                                     "created /orvek-aaa:sysAaa/aaaGlobal/accountInterval|21|15\n";

private:
    std::string path_ = testing::TempDir() + "scenario-" + std::to_string(getpid()) + ".scn";
};

using ReadingAFile = ScenarioFile;

TEST_F(ReadingAFile, NamesThePlaceOfAMistake)
{
    const std::pair<std::string, const char *> mistakes[] = {
        {"", ":0: holds no case"},
        {"# only\n", ":1: holds no case"},
        {"== a\n", ":1: a case starts with == TITLE =="},
        {"== a ==\nresult 0\n", ":1: case 'a' plays no callback"},
        {"== a ==\nresult 0\n== b ==\n" + kCallback + "result 0\n",
         ":1: case 'a' plays no callback"},
        {kCallback + "== a ==\n", ":2: case 'a' has no result"},
        {kCallback + "== a ==\n\n== b ==\nresult 0\n", ":2: case 'a' has no result"},
        {kCallback + "== a ==\nresult 0\n== a ==\nresult 0\n",
         ":4: there is another case of this title"},
        {"== a ==\nresult 0\nresult 0\n", ":3: a case has one result"},
        {"result 0\n", ":1: 'result' does not belong before the first case"},
        {"== a ==\n\nresults 0\n", ":3: 'results' is unknown"},
        {"== a ==\nresult 0 7\n", ":2: '7' is too much"},
        {"== a ==\nresult\n", ":2: '' is not a number in range"},
        {"== a ==\nresult 0x\n", ":2: '0x' is not a number in range"},
        {"== a ==\nresult 4294967296\n", ":2: '4294967296' is not a number in range"},
        {"callback /orvek-aaa:sysAaa event 1\n",
         ":1: nothing is subscribed to '/orvek-aaa:sysAaa'"},
        {"callback /orvek-aaa:sysAaa/aaaGlobal 1\n", ":1: a callback is callback XPATH event N"},
        {kCallback + kCallback, ":2: a case plays one callback"},
        {"== a ==\n" + kCallback + kCallback, ":3: a case plays one callback"},
        {"== a ==\ncreated /a:b/c|18\n", ":2: a value is XPATH|TYPE|TEXT or -"},
        {"== a ==\ncreated /a:b/c|21|x\n", ":2: 'x' is not a number in range"},
        {"== a ==\ncreated /a:b/c|19|256\n", ":2: '256' does not fit its type"},
        {"== a ==\ncreated /a:b/c|20|65536\n", ":2: '65536' does not fit its type"},
        {"== a ==\ncreated /a:b/c|2|x\n", ":2: a list or container has no text"},
        {"== a ==\ncreated /a:b/c|18|\\q\n",
         ":2: a backslash starts \\\\, \\\", \\|, \\xHH, or is \\N alone"},
        {"== a ==\ncreated /a:b/c|18|\\x1g\n", ":2: \\x takes two hexadecimal digits"},
        {"== a ==\nchange GONE old=- new=-\n", ":2: 'GONE' is no operation"},
        {"== a ==\nchange 4294967296 old=- new=-\n", ":2: '4294967296' is not a number in range"},
        {"== a ==\nchange CREATED new=-\n", ":2: a change is change OPER old=VALUE new=VALUE"},
        {"== a ==\nmodified /a:b/c|18|x\n", ":2: a modification is modified XPATH|TYPE|OLD|NEW"},
        {"== a ==\ncreated $A|18|x\n", ":2: $A is not defined (a dollar sign is \\x24)"},
        {"== a ==\ncreated /a:b/c|18|$(x)\n", ":2: a repetition is $(TEXT*N)"},
        {"let = b\n", ":1: a definition is let NAME = TEXT"},
        {"exchange 0 send returns 5\n", ":1: counting starts at 1"},
        {"exchange 1 smile returns 5\n", ":1: 'smile' is no step of an exchange"},
        {"exchange 1 reply smile\n", ":1: 'smile' is no part of a reply"},
        {"== a ==\nrequest 2 set\n", ":2: message type 2 is never sent"},
        {"== a ==\nrequest 5 put\n", ":2: a request is request TYPE set or request TYPE undo"},
        {"== a ==\nrequest 5 set\n  vrfName x\n", ":3: message type 5 has no field 'vrfName' here"},
        {"== a ==\nrequest 21 set\n  startFailType 256\n", ":3: the number does not fit its field"},
        {"== a ==\nrequest 22 set\n  groupName $(a*34)\n", ":3: the text does not fit its field"},
        {"== a ==\nrequest 21 set\n  startFailType 2\n  startFailType 2\n",
         ":4: 'startFailType' is given twice"},
        {"== a ==\nrequest 21 set\n  answer 3\n  answer 4\n", ":4: 'answer' is given twice"},
        {"== a ==\n  vrfName x\n",
         ":2: an indented line belongs to a block, a request or to calls"},
        {"== a ==\nlog INF a b\n", ":2: a severity is DBG or ERR"},
        {"== a ==\nlog DBG a b\nno log\n", ":3: 'no log' stands beside no log line"},
        {"== a ==\nno log\nlog ERR a b\n", ":3: 'no log' stands beside no log line"},
        {"== a ==\nerror a b\nno log\n", ":3: 'no log' stands beside no log line"},
        {"== a ==\ndebug a b\nno log\n", ":3: 'no log' stands beside no log line"},
        {"== a ==\nno log\nerror a b\n", ":3: 'no log' stands beside no log line"},
        {"== a ==\nlog DBG a b\nerror a b\n", ":3: 'log' gives all lines, those of errors too"},
        {"== a ==\nerror a b\nlog DBG a b\n", ":3: 'log' gives all lines, those of errors too"},
        {"block b\n  results 0\n== a ==\nuse b\n", ":2: 'results' is unknown"},
        {"block b\n  use b\n== a ==\nuse b\n", ":2: a block holds no case and no other block"},
        {"block b\n  block c\nuse b\n", ":2: a block holds no case and no other block"},
        {"block b\n  == a ==\n== c ==\nuse b\n", ":2: a block holds no case and no other block"},
        {kCallback + "block b\n  results 0\n== a ==\nresult 0\n", ":2: block 'b' is never used"},
        {kCallback + "let A = 1\n== a ==\nresult 0\n", ":2: $A is never used"},
        {kCallback + "== a ==\nlet A = 1\nresult 0\n== b ==\nlet A = 2\nresult $A\n",
         ":3: $A is never used"},
        {"block b\nblock b\n", ":2: there is another block of this name"},
        {"== a ==\nblock b\n", ":2: a block is stored before the first case"},
        {"== a ==\nuse b\n", ":2: there is no block 'b'"},
    };
    for (const auto &[text, error] : mistakes)
        EXPECT_EQ(errorOf(text), error) << text;
}

TEST_F(ReadingAFile, NamesAFileThatIsNotThere)
{
    EXPECT_THROW(readScenarioFile("no such file"), ScenarioError);
}

TEST_F(ReadingAFile, ExpandsAndUnescapesTexts)
{
    const auto cases = read(kCallback + "let A = /a:b\n"
                                        "== a ==\n"
                                        "created $A/c[k='\\|\\\\']|18|x\\x20\\\"$(ab*3)\n"
                                        "change 7 old=\\N|18|\\N new=-\n"
                                        "result -1\n");
    const auto &changes = cases.at(0).scenario.changes;
    EXPECT_EQ(changes.at(0).new_value->xpath, "/a:b/c[k='|\\']");
    EXPECT_EQ(std::get<std::string>(changes.at(0).new_value->data), "x \"ababab");
    EXPECT_EQ(changes.at(1).oper, 7U);
    EXPECT_FALSE(changes.at(1).old_value->xpath);
    EXPECT_TRUE(std::holds_alternative<NullString>(changes.at(1).old_value->data));
    EXPECT_EQ(cases.at(0).result, -1);
}

TEST_F(ReadingAFile, BlocksStandWhereTheyAreUsed)
{
    const auto cases = read(kCallback + "block two changes\n"
                                        "  created $A/b|18|x\n"
                                        "  deleted $A/b|18|x\n"
                                        "block a request\n"
                                        "  request 5 set\n"
                                        "    accountInterval 15\n"
                                        "== a ==\n"
                                        "let A = /a:b\n"
                                        "use two changes\n"
                                        "use a request\n"
                                        "  answer 9\n"
                                        "result 0\n");
    EXPECT_EQ(cases.at(0).scenario.changes.size(), 2U);
    EXPECT_EQ(cases.at(0).scenario.changes[1].old_value->xpath, "/a:b/b");
    EXPECT_EQ(cases.at(0).requests.size(), 1U);
    EXPECT_EQ(cases.at(0).scenario.exchanges.at(1).reply.result, 9U);
}

TEST_F(ReadingAFile, CasesShareWhatStandsBeforeThem)
{
    const auto cases = read(kCallback + "log-level 3\n"
                                        "let A = 1\n"
                                        "== a ==\n"
                                        "log-level 2\n"
                                        "let A = 2\n"
                                        "result $A\n"
                                        "== b ==\n"
                                        "result $A\n");
    EXPECT_EQ(cases.at(0).scenario.log_level, 2);
    EXPECT_EQ(cases.at(0).result, 2);
    EXPECT_EQ(cases.at(1).scenario.log_level, 3);
    EXPECT_EQ(cases.at(1).result, 1);
}

using HoldingARunAgainstACase = ScenarioFile;

TEST_F(HoldingARunAgainstACase, FindsNothingWhereAllIsAsItShould)
{
    EXPECT_TRUE(findingsOf("request 5 set\n  accountInterval 15\nresult 0\n").empty());
}

TEST_F(HoldingARunAgainstACase, FindsEveryDifference)
{
    const std::string request = "request 5 set\n  accountInterval 15\n";
    const std::string wrong[] = {
        "result 0\n",                                           // a request too many
        request + "result 1\n",                                 // another result
        request + request + "result 0\n",                       // a request missing
        "request 5 undo\n  accountInterval 15\nresult 0\n",     // another direction
        "request 5 set\n  accountInterval 16\nresult 0\n",      // another payload
        "request 21 set\n  startFailType 15\nresult 0\n",       // another message
        request + "error aaaNcGlobalConfChanges x\nresult 0\n", // an error missing
        request + "debug aaaNcParamSet x\nresult 0\n",          // a line missing
        request + "no log\nresult 0\n",                         // lines too many
        request + "iterator stays open\nresult 0\n",            // it is freed
        request + "calls\n  free-iter\nresult 0\n",             // other calls
        "changes-iter returns 4\nresult 4\n",                   // an error too many
    };
    for (const std::string &text : wrong)
        EXPECT_EQ(findingsOf(text).size(), 1U) << text;
}

// One change is walked: two calls of next, one of node-name, one request.
TEST_F(HoldingARunAgainstACase, FindsAPlannedFailureThatNeverHappens)
{
    const std::string run = "request 5 set\n  accountInterval 15\nresult 0\n";
    const std::string happening = "next call 2 returns 5\nexchange 1 reply result 0\n";
    const std::string calls = std::to_string(play(read(kIntervalSet + run)[0].scenario).size() - 1);
    EXPECT_EQ(findingsOf(happening + "log-level 4 from call " + calls + '\n' + run), Trace());

    const std::pair<const char *, const char *> plans[] = {
        {"next call 3 returns 4\n", "next call 3"},
        {"node-name call 2 is null\n", "node-name call 2"},
        {"key call 1 is null\n", "key call 1"},
        {"unhex call 1 returns 4\n", "unhex call 1"},
        {"log-level 4 from call 99\n", "log-level from call 99"},
        {"strerror is null\n", "strerror"},
        {"next call 2 returns 5\nend-of-changes is 55\n", "end-of-changes"},
        {"exchange 2 context null\n", "exchange 2"},
        {"exchange 2 reply result 0\n", "exchange 2"},
    };
    for (const auto &[plan, what] : plans)
        EXPECT_EQ(findingsOf(plan + run), Trace{std::string(what) + " never happened"});

    EXPECT_EQ(findingsOf("event 2\nchanges-iter returns 4\nresult 0\n"),
              Trace{"changes-iter never happened"});
}

TEST_F(HoldingARunAgainstACase, FindsAPlannedStepBehindTheOneThatFails)
{
    const std::pair<std::string, std::string> plans[] = {
        {"context null", "object returns 3"},      {"object returns 3", "encode returns 3"},
        {"encode returns 3", "send returns 3"},    {"send returns 3", "receive returns 3"},
        {"receive returns 3", "decode returns 3"}, {"decode returns 3", "reply result 3"},
    };
    for (const auto &[first, second] : plans) {
        const Trace failing = findingsOf("exchange 1 " + first + "\nresult 7\n");
        Trace wanted = failing;
        wanted.push_back("exchange 1 " + second.substr(0, second.find(' ')) + " never happened");
        EXPECT_EQ(findingsOf("exchange 1 " + first + "\nexchange 1 " + second + "\nresult 7\n"),
                  wanted);
    }
}

TEST_F(HoldingARunAgainstACase, FindsMisuseInATrace)
{
    const ScenarioCase played =
        read(kIntervalSet + "request 5 set\n  accountInterval 15\nresult 0\n").front();
    const Trace right = play(played.scenario);
    ASSERT_TRUE(mismatches(played, right).empty());
    for (const char *line : {"free null", "free new#1", "free-iter", "cmf-object 5 3 0 -> 0"}) {
        Trace without = right;
        std::erase(without, line);
        ASSERT_EQ(without.size(), right.size() - 1);
        EXPECT_EQ(mismatches(played, without).size(), 1U) << line;
    }
    Trace with_wrong = {"WRONG doing"};
    with_wrong.insert(with_wrong.end(), right.begin(), right.end());
    EXPECT_EQ(mismatches(played, with_wrong), Trace{"WRONG doing"});
}

} // namespace

} // namespace aaanc::test
