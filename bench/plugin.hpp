// The built plug-in, loaded as the daemon loads it.
#pragma once

namespace aaanc::bench
{

// Loads and initialises it. Ends the program, with an error, where that fails.
void loadPlugin();

} // namespace aaanc::bench
