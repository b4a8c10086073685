// Counts how often each behaviour that is worth a test occurs in the random
// scenarios, so that none of them is held against the model in name only.
#pragma once

#include "story.hpp"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace aaanc::test::model
{

// A behaviour, by its name, and how to tell it in a story.
struct Behaviour {
    const char *name;
    bool (*shows)(const Story &);
};

// The behaviours of the callbacks whose names hold `callbacks`; of all callbacks
// where it is empty.
struct Chapter {
    const char *callbacks;
    std::vector<Behaviour> behaviours;
};

// What all handlers share; then the handlers'.
Chapter logChapter();
Chapter exchangeChapter();
Chapter walkChapter();
Chapter addressChapter();
Chapter globalChapter();
Chapter sourceInterfaceChapter();
Chapter radiusKeyChapter();
Chapter tacacsKeyChapter();
Chapter radiusChapter();
Chapter tacacsChapter();
Chapter serverGroupChapter();
Chapter serverGroupVrfChapter();
Chapter domainChapter();
Chapter authenticationChapter();
Chapter accountingChapter();

class Coverage
{
public:
    Coverage();
    void add(const Story &story);
    // A line a behaviour: how often it occurred.
    std::string table() const;
    // The names of those that never did.
    std::vector<std::string> missing() const;

private:
    struct Row {
        Behaviour behaviour;
        std::size_t count = 0;
    };
    std::vector<Row> rows_;
    std::map<std::string, std::vector<std::size_t>> rows_of_callback_;
};

} // namespace aaanc::test::model
