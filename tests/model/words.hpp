// Random contents of leaves: mostly what a user would write, else what sits at
// or beyond a limit.
#pragma once

#include "../harness/scenario.hpp"
#include "random.hpp"

namespace aaanc::test::model
{

// What a leaf holds.
enum class Content {
    Container, // no data
    StartFail,
    Interval,
    InterfaceName, // fields of 39, 32, 63 and 47 characters
    VrfName,
    DomainName,
    Ipv4Address,
    Ipv6Address,
    GroupName,
    MethodGroupName,
    ServerType, // radius, tacacs
    GroupWord,  // radius-group, tacacs-group
    Protocol,
    Stage,
    Port,
    Priority,
    KeyType,
    Key
};

// A value of a type that suits the content, without its xpath.
Value randomValue(Random &random, Content content);

// What stands for the value in a list key: the text, or the number in decimal.
std::string keyText(const Value &value);
// A port key that is no plain decimal number in range.
std::string oddPortText(Random &random);

} // namespace aaanc::test::model
