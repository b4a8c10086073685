// Runs the tests of an executable on the loaded plug-in.
#include "harness/fake_platform.hpp"

#include <gtest/gtest.h>

#include <iostream>

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    try {
        aaanc::test::loadPlugin(AAANC_PLUGIN);
    } catch (const std::runtime_error &error) {
        std::cerr << argv[0] << ": " << error.what() << '\n';
        return 2;
    }
    return RUN_ALL_TESTS();
}
