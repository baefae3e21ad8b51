// What a refresh put into a record, as a person reads it: rolls, sheet feed, firmware, fonts,
// stamps and finisher, by the printer's own words rather than by codes.
#pragma once

#include "records.h"

#include "driver/devmode/devmodeex.h"

#include <string>

std::string PrinterStateAsText(const DEVMODEEX& dm);
void PrinterStateToJson(JsonWriter& json, const char* key, const DEVMODEEX& dm);
