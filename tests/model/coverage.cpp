#include "coverage.hpp"

#include "schema.hpp"

namespace aaanc::test::model
{
namespace
{

std::vector<Chapter> chapters()
{
    return {logChapter(),       exchangeChapter(),       walkChapter(),
            addressChapter(),   globalChapter(),         sourceInterfaceChapter(),
            radiusKeyChapter(), tacacsKeyChapter(),      radiusChapter(),
            tacacsChapter(),    serverGroupChapter(),    serverGroupVrfChapter(),
            domainChapter(),    authenticationChapter(), accountingChapter()};
}

} // namespace

Coverage::Coverage()
{
    for (const Chapter &chapter : chapters()) {
        for (const Behaviour &behaviour : chapter.behaviours) {
            for (const Schema &schema : schemas()) {
                if (schema.callback.find(chapter.callbacks) != std::string::npos)
                    rows_of_callback_[schema.callback].push_back(rows_.size());
            }
            rows_.push_back({behaviour});
        }
    }
}

void Coverage::add(const Story &story)
{
    for (const std::size_t row : rows_of_callback_[story.scenario.callback]) {
        if (rows_[row].behaviour.shows(story))
            ++rows_[row].count;
    }
}

std::string Coverage::table() const
{
    std::string table;
    for (const Row &row : rows_) {
        const std::string count = std::to_string(row.count);
        table += std::string(count.size() < 9 ? 9 - count.size() : 0, ' ') + count + "  " +
                 row.behaviour.name + '\n';
    }
    return table;
}

std::vector<std::string> Coverage::missing() const
{
    std::vector<std::string> names;
    for (const Row &row : rows_) {
        if (row.count == 0)
            names.emplace_back(row.behaviour.name);
    }
    return names;
}

} // namespace aaanc::test::model
