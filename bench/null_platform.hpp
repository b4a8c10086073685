// A platform that does nothing: every function returns at once with a canned
// answer. One walk at a time, on one thread.
#pragma once

// The rest of the project hides its names; these are there to be found.
#pragma GCC visibility push(default)

#include "cmf.h"
#include "gnl.h"
#include "nlog.h"
#include "sysrepo.h"

#include <cstddef>

namespace aaanc::bench
{

// A change as the platform delivers it, and what it answers about it.
struct CannedChange {
    sr_val_t value; // created
    char *leaf;     // last node of its xpath
    char *keys[4];  // keys of its entry, in the order in which they are asked for
};

// The next walk gets `count` changes: those at `changes`, from the start again
// after `period` of them. The array must outlive the walk.
void playCanned(const CannedChange *changes, std::size_t period, std::size_t count);

// Called for every platform call, with the bytes that it was given.
using Observer = void (*)(const char *call, const void *bytes, std::size_t length);
void observe(Observer observer); // null: nobody looks

// The callback subscribed for `xpath`, or null.
sr_subtree_change_cb subscribedCallback(const char *xpath);

// What every key decodes to.
inline constexpr char kDecodedKey[] = "correct horse battery staple";

} // namespace aaanc::bench

#pragma GCC visibility pop
