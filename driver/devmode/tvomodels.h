// The model catalogue: the twelve model identifiers and the driver names that stand for them.
// The record needs the model of a queue to repair a foreign record, and the configuration
// builds on it; so it sits below both.
#pragma once

#include "../../platform/win32.h"

// The model identifiers of the catalogue.
enum eTVOPrinterModel : DWORD
{
    kMODEL_2420 = 0,
    kMODEL_2410 = 1,
    kMODEL_2445 = 2,
    kMODEL_2440 = 3,
    kMODEL_NONE_4 = 4,
    kMODEL_WIDE_5 = 5, // no alias leads here; its rules for wide media stay
    kMODEL_318P = 6,   // Amethyst
    kMODEL_427 = 7,    // Kestrel; also every name the alias table does not know
    kMODEL_3310 = 8,   // sorrento
    kMODEL_3320 = 9,   // sorrento
    kMODEL_3344 = 10,  // tallo
    kMODEL_3320A = 11,
    kNUM_MODELS = 12,
};
// Models 8 to 11 print at 600 dots per inch and carry the wide job list.
inline bool IsHighResolutionModel(DWORD model)
{
    return model >= kMODEL_3310 && model <= kMODEL_3320A;
}

// The model a driver name stands for, by the alias table: first a whole-name match with case
// ignored, then the first row contained in the name; else model 7.
DWORD TVOFindPrinterModel(LPCWSTR szPrinter);
