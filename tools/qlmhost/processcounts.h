// What the process holds at a moment, for the soak: its memory and its handles, each platform
// counted its own way. A process that hosts the driver for days must see these stay flat.
#pragma once

#include <string>
#include <vector>

struct ProcessCount
{
    std::string name;     // "windows", "gdi fonts", "private KiB"
    long long value = 0;  // -1 when the platform does not tell
    bool memory = false;  // in KiB, and subject to the allocator's own growth
    int keptPerAbout = 0; // what each showing of the about tab or dialog keeps by design
};

// The counts now, in the same order every time.
std::vector<ProcessCount> SampleProcess();
// A line of what the platform could not count, or empty.
std::string ProcessCountNote();
