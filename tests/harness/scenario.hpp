// One run of one callback: the changes that the platform delivers, how the
// platform behaves, and the trace of everything that the plug-in did.
//
// The fake platform (fake_platform.hpp) plays a Scenario through the built
// libaaa-nc.so and writes a Trace; the model writes the Trace that it expects
// for the same Scenario; scenario files are read into both. Only the standard
// library is used here, so that it builds for every target.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace aaanc::test
{

// A string leaf whose pointer is null.
struct NullString {
};

// What a value's data union holds. monostate: zero bytes (list, container). A
// string is played as a NUL-terminated copy. A number is stored with the width
// of its type: one byte for types 9 and 19, two for 20, four for 21.
using Data = std::variant<std::monostate, NullString, std::string, std::uint32_t>;

struct Value {
    std::optional<std::string> xpath; // nullopt: a null pointer
    std::uint32_t type = 18;
    Data data;
};

struct Change {
    std::uint32_t oper = 0;         // any 32-bit number
    std::optional<Value> old_value; // nullopt: a null pointer
    std::optional<Value> new_value;
};

// What CMF_ClientParamDecode() gives: `result` and `length_field`, each in the
// machine's byte order, then zeros. `decoded_length` is the length that is
// reported; that many bytes are readable, but no more (up to 4096: a longer one
// is reported, and 4096 bytes are readable).
struct Reply {
    std::uint32_t result = 0;
    std::uint32_t length_field = 0;
    std::uint32_t decoded_length = 8;
    bool null_data = false;

    bool operator==(const Reply &) const = default;
};

// How the CMF calls of one request behave, in the order of the calls. The
// first that fails ends the request.
struct Exchange {
    bool null_context = false;
    std::int32_t object_set = 0;
    std::int32_t encode = 0;
    std::int32_t send = 0;
    std::int32_t receive = 0;
    std::int32_t decode = 0;
    Reply reply;
};

struct Scenario {
    std::string callback = "aaaNcGlobalConfChanges";
    std::string xpath = "/orvek-aaa:sysAaa/aaaGlobal"; // as passed to the callback
    std::uint32_t event = 1;
    int log_level = 4;
    // The n-th platform call (1-based, every line of the trace but the result
    // counts as one) sets the log level to this one before it returns.
    std::map<std::size_t, int> log_level_from_call;

    std::vector<Change> changes;
    std::int32_t changes_iter = 0; // result of sr_get_changes_iter()
    // The n-th call (1-based) of sr_get_change_next() returns this code instead.
    std::map<std::size_t, std::int32_t> next_result;
    std::int32_t end_of_changes = 5;

    // sr_xpath_key_value() writes a NUL over the closing quote of a key found
    // (every key is found all the same, in whatever order).
    bool cuts_xpath = true;
    bool strerror_null = false; // sr_strerror() returns null
    // sr_xpath_node_name() returns null at its n-th call (1-based).
    std::set<std::size_t> node_name_null;
    // sr_xpath_key_value() returns null at its n-th call (1-based).
    std::set<std::size_t> key_null;
    // sr_convert_hexstring_to_string() returns this code at its n-th call
    // (1-based), output untouched.
    std::map<std::size_t, std::int32_t> unhex_result;

    // Behaviour of the n-th request (1-based); others succeed with result 0.
    std::map<std::size_t, Exchange> exchanges;
};

// Everything that happened, a line a platform call, in order. Texts in a line
// are escaped: backslash, double quote, and bytes outside 0x20..0x7e become \\,
// \" and \xHH. <q> is such a text in double quotes, or null for a null pointer.
//
//   changes-iter <q xpath> -> RC
//   next -> RC                             RC is not 0
//   next -> 0 oper OPER                    OPER unsigned
//   node-name <q xpath> -> <q name>        the xpath as it stands when called
//   key <q list> <q key> in <q xpath> -> <q value>    the xpath as it stands before the call
//   strlcpy <q src> SIZE
//   unhex <q text> SIZE -> RC
//   strerror RC                            or, where it returns null, strerror RC -> null
//   log SEVERITY FUNCTION <q text>         SEVERITY DBG or ERR; text: what follows the prefix,
//                                          its arguments worked in. %s of null is (null).
//                                          Old and new value pointers (%p) are written
//                                          old#N, new#N, null.
//   cmf-init "aaa" 145 1 -> ok             or -> null
//   cmf-object TYPE OPERATION 0 -> RC      the three words of the object record, unsigned
//   cmf-encode KIND LENGTH HEX -> RC       HEX: the LENGTH bytes, lower-case, two digits each
//   cmf-send -> RC
//   cmf-receive -> RC
//   cmf-decode -> RC
//   cmf-close
//   free old#N                             N: the 1-based number of the change; free null
//   free new#N
//   free-iter
//   result N                               the last line: what the callback returned
//
// RC and the result are signed decimals. What can never be right (a log line
// that does not start with the prefix, a call with a stale pointer, a second
// free, an xpath state that is not zeroed, ...) is a line that starts with
// "WRONG".
using Trace = std::vector<std::string>;

} // namespace aaanc::test
