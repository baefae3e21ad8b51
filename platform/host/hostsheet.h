// The host's common printer UI: what a test or qlmhost learns of the last property sheet that
// CommonPropertySheetUIW ran.
#pragma once

#include "host.h"

#include <string>
#include <vector>

namespace host {

struct SheetPage
{
    int templateId = 0;   // the page's template, when it is named by number
    bool created = false; // the page was activated at least once
    std::string dump;     // DumpWindow of the page as it stood when the sheet closed
    std::u16string title; // the page's caption
    std::vector<ControlState> controls;
};

struct SheetRun
{
    std::vector<SheetPage> pages;   // in the order they were added
    int startPage = 0;              // the page shown first
    std::vector<int> activations;   // template ids in the order the pages became active
    bool applyEnabled = false;      // the Apply button when the sheet closed
    LONG_PTR result = 0;            // the last result set, which the sheet reports
    std::vector<std::string> calls; // "INIT 1", "CPSFUNC_SET_RESULT 1", ..., "DESTROY 1"
};

// The record of the last sheet (empty before the first).
SheetRun LastSheetRun();

} // namespace host
