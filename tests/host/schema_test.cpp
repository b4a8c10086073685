// What is said of a YANG module that cannot be loaded, and of data that it does not allow.
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "input_error.hpp"
#include "process.hpp"
#include "support.hpp"

namespace aaanc::test
{

namespace
{

// A directory with a module of these statements, which begin in line 4.
class Modules
{
public:
    explicit Modules(const std::string &statements, const std::string &name = "orvek-aaa")
    {
        (void)scratch_.write(name + ".yang", "module " + name + " {\nnamespace \"urn:" + name +
                                                 "\";\nprefix aaa;\n" + statements + "\n}\n");
    }
    [[nodiscard]] const std::string &path() const
    {
        return scratch_.path();
    }
    [[nodiscard]] const ScratchDirectory &scratch() const
    {
        return scratch_;
    }

    // What is said when it is loaded, behind the name of the directory.
    [[nodiscard]] std::string refusal() const
    {
        try {
            const Schema schema(path());
        } catch (const InputError &error) {
            return std::string(error.what()).substr(path().size());
        }
        return "it is loaded";
    }

private:
    ScratchDirectory scratch_;
};

TEST(Module, ThatCannotBeLoadedIsToldWithTheReason)
{
    const std::string kRefused = "the module cannot be loaded: ";
    EXPECT_EQ(Modules("", "other").refusal(),
              ": orvek-aaa: " + kRefused +
                  "Data model \"orvek-aaa\" not found in local searchdirs.");
    EXPECT_EQ(Modules("leaf a {\n  type string\n}").refusal(),
              "/orvek-aaa.yang:6: " + kRefused + "Invalid keyword \"}\", expected \";\" or \"{\".");
    EXPECT_EQ(Modules("\nsurprise me;").refusal(),
              "/orvek-aaa.yang:5: " + kRefused +
                  "Invalid character sequence \"surprise\", expected a keyword.");
    EXPECT_EQ(Modules("leaf a {\n  type strin;\n}").refusal(),
              ": /orvek-aaa:a: " + kRefused + "Referenced type \"strin\" not found.");
    EXPECT_EQ(Modules("import elsewhere {\n  prefix e;\n}").refusal(),
              ": orvek-aaa: " + kRefused +
                  "Data model \"elsewhere\" not found in local searchdirs.");
    const Modules importing("import elsewhere {\n  prefix e;\n}");
    (void)importing.scratch().write("elsewhere.yang", "module elsewhere {\nsurprise me;\n}\n");
    EXPECT_TRUE(importing.refusal().starts_with("/elsewhere.yang:2: " + kRefused));
}

TEST(Module, RefusesDataWithTheNode)
{
    const Modules modules("container top {\n"
                          "  leaf a { type string; }\n"
                          "  leaf b { type string; must \"../a\"; }\n"
                          "}");
    const Schema schema(modules.path());
    const Document edit =
        readDocument(schema, "edit.json", R"({"orvek-aaa:top": {"b": "x"}})", DocumentKind::Edit);
    try {
        applyEdit(schema, {}, edit);
        ADD_FAILURE() << "b is allowed without a";
    } catch (const InputError &error) {
        EXPECT_STREQ(error.what(), "edit.json: /orvek-aaa:top/b: the configuration would not be "
                                   "valid: Must condition \"../a\" not satisfied.");
    }
}

} // namespace

} // namespace aaanc::test
