// TVOPrinterConfiguration: the model catalogue, the list tables, the resource library, the
// paper, bin, resolution and roll answers, and the user forms in the printer data.
#include "tvoconfg.h"

#include "../../resources/qlmres.h"
#include "../foundation/qlmsnapshot.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"

#include <cstdint>
#include <cstring>
#include <new>

LONG TVOPrinterConfiguration::s_nInstances = 0;

namespace {

BOOL TraceConfig()
{
    return g_bTraceTVOConfig;
}

// ---- The alias table ---------------------------------------------------------------------
// Driver names and the model each stands for. The order is a tie-break: the second pass takes
// the first row that a longer name contains.
struct TVOPrinterAlias
{
    const WCHAR* pszName;
    DWORD model;
};

// clang-format off
const TVOPrinterAlias kAliases[] = {
    {TEXT("Tarvo 2410 Wide Format with Lumivar Pentara"), kMODEL_2410},
    {TEXT("Tarvo 2410 PS Wide Format with Lumivar Pentara"), kMODEL_2410},
    {TEXT("Pentara 2410"), kMODEL_2410},
    {TEXT("TVO 2410"), kMODEL_2410},
    {TEXT("TVO Orvanta 2410"), kMODEL_2410},
    {TEXT("TVO Orvanta 2410 PS"), kMODEL_2410},
    {TEXT("Orvanta 2410"), kMODEL_2410},
    {TEXT("Orvanta 2410 PS"), kMODEL_2410},
    {TEXT("Orvanta Print System 2410"), kMODEL_2410},
    {TEXT("Orvanta Print System 2410 PS"), kMODEL_2410},
    {TEXT("Tarvo Plan Output System 2410"), kMODEL_2410},
    {TEXT("Tarvo Plan Output System 2410 PS"), kMODEL_2410},
    {TEXT("Tarvo 2410 Wide Format with Lumivar\u2122 Pentara"), kMODEL_2410},
    {TEXT("Tarvo 2410 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_2410},

    {TEXT("Tarvo 2420 Wide Format with Lumivar Pentara"), kMODEL_2420},
    {TEXT("Tarvo 2420 PS Wide Format with Lumivar Pentara"), kMODEL_2420},
    {TEXT("Pentara 2420"), kMODEL_2420},
    {TEXT("TVO 2420"), kMODEL_2420},
    {TEXT("TVO Orvanta 2420"), kMODEL_2420},
    {TEXT("TVO Orvanta 2420 PS"), kMODEL_2420},
    {TEXT("Orvanta 2420"), kMODEL_2420},
    {TEXT("Orvanta 2420 PS"), kMODEL_2420},
    {TEXT("Orvanta Print System 2420"), kMODEL_2420},
    {TEXT("Orvanta Print System 2420 PS"), kMODEL_2420},
    {TEXT("Tarvo Plan Output System 2420"), kMODEL_2420},
    {TEXT("Tarvo Plan Output System 2420 PS"), kMODEL_2420},
    {TEXT("Tarvo 2420 Wide Format with Lumivar\u2122 Pentara"), kMODEL_2420},
    {TEXT("Tarvo 2420 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_2420},

    {TEXT("Tarvo 2440 Wide Format with Lumivar Pentara"), kMODEL_2440},
    {TEXT("Tarvo 2440 PS Wide Format with Lumivar Pentara"), kMODEL_2440},
    {TEXT("Pentara 2440"), kMODEL_2440},
    {TEXT("TVO 2440"), kMODEL_2440},
    {TEXT("TVO Orvanta 2440"), kMODEL_2440},
    {TEXT("TVO Orvanta 2440 PS"), kMODEL_2440},
    {TEXT("Orvanta 2440"), kMODEL_2440},
    {TEXT("Orvanta 2440 PS"), kMODEL_2440},
    {TEXT("Orvanta Print System 2440"), kMODEL_2440},
    {TEXT("Orvanta Print System 2440 PS"), kMODEL_2440},
    {TEXT("Tarvo Plan Output System 2440"), kMODEL_2440},
    {TEXT("Tarvo Plan Output System 2440 PS"), kMODEL_2440},
    {TEXT("Tarvo 2440 Wide Format with Lumivar\u2122 Pentara"), kMODEL_2440},
    {TEXT("Tarvo 2440 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_2440},

    {TEXT("Pentara 2445"), kMODEL_2445},
    {TEXT("TVO 2445"), kMODEL_2445},
    {TEXT("TVO Orvanta 2445"), kMODEL_2445},
    {TEXT("TVO Orvanta 2445 PS"), kMODEL_2445},
    {TEXT("Orvanta 2445"), kMODEL_2445},
    {TEXT("Orvanta 2445 PS"), kMODEL_2445},
    {TEXT("Orvanta Print System 2445"), kMODEL_2445},
    {TEXT("Orvanta Print System 2445 PS"), kMODEL_2445},
    {TEXT("Tarvo Plan Output System 2445"), kMODEL_2445},
    {TEXT("Tarvo Plan Output System 2445 PS"), kMODEL_2445},

    {TEXT("Tarvo 318p Wide Format with Lumivar Pentara"), kMODEL_318P},
    {TEXT("Tarvo 318p PS Wide Format with Lumivar Pentara"), kMODEL_318P},
    {TEXT("Orvanta Print System 18p"), kMODEL_318P},
    {TEXT("Orvanta Print System 18p PS"), kMODEL_318P},
    {TEXT("Orvanta Print System 318p"), kMODEL_318P},
    {TEXT("Orvanta Print System 318p PS"), kMODEL_318P},
    {TEXT("Tarvo Plan Output System 318p"), kMODEL_318P},
    {TEXT("Tarvo Plan Output System 318p PS"), kMODEL_318P},
    {TEXT("Tarvo 318p Wide Format with Lumivar\u2122 Pentara"), kMODEL_318P},
    {TEXT("Tarvo 318p PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_318P},

    {TEXT("Tarvo 427 Series Wide Format with Lumivar Pentara"), kMODEL_427},
    {TEXT("Tarvo 427 Series PS Wide Format with Lumivar Pentara"), kMODEL_427},
    {TEXT("Orvanta Print System 427dp"), kMODEL_427},
    {TEXT("Orvanta Print System 427dp PS"), kMODEL_427},
    {TEXT("Tarvo Plan Output System 427dp"), kMODEL_427},
    {TEXT("Tarvo Plan Output System 427dp PS"), kMODEL_427},
    {TEXT("Tarvo Plan Output System 427 Series"), kMODEL_427},
    {TEXT("Tarvo Plan Output System 427 Series PS"), kMODEL_427},
    {TEXT("Tarvo 427 Series Wide Format with Lumivar\u2122 Pentara"), kMODEL_427},
    {TEXT("Tarvo 427 Series PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_427},

    {TEXT("Tarvo 3310 Wide Format with Lumivar Pentara"), kMODEL_3310},
    {TEXT("Tarvo 3310 PS Wide Format with Lumivar Pentara"), kMODEL_3310},
    {TEXT("Tarvo Kesmark 3310"), kMODEL_3310},
    {TEXT("Tarvo Kesmark 3310 PS"), kMODEL_3310},
    {TEXT("Tarvo 3310 Wide Format"), kMODEL_3310},
    {TEXT("Tarvo 3310 Wide Format PS"), kMODEL_3310},
    {TEXT("Tarvo 3310 Wide Format with Lumivar\u2122 Pentara"), kMODEL_3310},
    {TEXT("Tarvo 3310 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_3310},

    {TEXT("Tarvo 3320 Wide Format with Lumivar Pentara"), kMODEL_3320},
    {TEXT("Tarvo 3320 PS Wide Format with Lumivar Pentara"), kMODEL_3320},
    {TEXT("Tarvo Kesmark 3320"), kMODEL_3320},
    {TEXT("Tarvo Kesmark 3320 PS"), kMODEL_3320},
    {TEXT("Tarvo 3320 Wide Format"), kMODEL_3320},
    {TEXT("Tarvo 3320 Wide Format PS"), kMODEL_3320},
    {TEXT("Tarvo 3320 Wide Format with Lumivar\u2122 Pentara"), kMODEL_3320},
    {TEXT("Tarvo 3320 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_3320},

    {TEXT("Tarvo 3344 Wide Format with Lumivar Pentara"), kMODEL_3344},
    {TEXT("Tarvo 3344 PS Wide Format with Lumivar Pentara"), kMODEL_3344},
    {TEXT("Tarvo 3344 Wide Format"), kMODEL_3344},
    {TEXT("Tarvo 3344 Wide Format PS"), kMODEL_3344},
    {TEXT("Tarvo 3344 Wide Format with Lumivar\u2122 Pentara"), kMODEL_3344},
    {TEXT("Tarvo 3344 PS Wide Format with Lumivar\u2122 Pentara"), kMODEL_3344},

    {TEXT("Tarvo 3320A Wide Format with Lumivar Pentara"), kMODEL_3320A},
    {TEXT("Tarvo 3320A PS Wide Format with Lumivar Pentara"), kMODEL_3320A},
};
// clang-format on
static_assert(sizeof(kAliases) / sizeof(kAliases[0]) == 96, "the alias table has 96 rows");

// The name of each model in the trace; models 4 and 5 have none. 3320A has no line end.
const WCHAR* const kModelLabels[kNUM_MODELS] = {
    TEXT("2420\n"),
    TEXT("2410\n"),
    TEXT("2445\n"),
    TEXT("2440\n"),
    nullptr,
    nullptr,
    TEXT("Amethyst/318p\n"),
    TEXT("Kestrel/427\n"),
    TEXT("sorrento/3310\n"),
    TEXT("sorrento/3320\n"),
    TEXT("tallo/3344\n"),
    TEXT("3320A"),
};

// ---- List tables ---------------------------------------------------------------------------
// clang-format off
const TVOListEntry kFirmwareList[] = {
    {IDS_FIRMWARE_6_1, 5},   {IDS_FIRMWARE_6_2, 6},   {IDS_FIRMWARE_7_0, 7},
    {IDS_FIRMWARE_7_5, 8},   {IDS_FIRMWARE_8_0, 9},   {IDS_FIRMWARE_8_5, 10},
    {IDS_FIRMWARE_9_0, 11},  {IDS_FIRMWARE_9_1, 12},  {IDS_FIRMWARE_9_2, 13},
    {IDS_FIRMWARE_9_5, 14},  {IDS_FIRMWARE_10_0, 15}, {IDS_FIRMWARE_10_1, 16},
    {IDS_FIRMWARE_10_2, 17}, {IDS_FIRMWARE_10_3, 18}, {IDS_FIRMWARE_10_4, 19},
    {IDS_FIRMWARE_10_5, 20}, {IDS_FIRMWARE_11_0, 21}, {IDS_FIRMWARE_11_1, 22},
    {IDS_FIRMWARE_11_5, 23}, {IDS_FIRMWARE_12_0, 24}, {IDS_FIRMWARE_12_1, 25},
    {IDS_FIRMWARE_12_2, 26}, {IDS_FIRMWARE_12_5, 27}, {IDS_FIRMWARE_12_7, 28},
    {0, 0}};

const TVOListEntry kPaperList[] = {
    {IDS_PAPER_LETTER, 257}, {IDS_PAPER_LEDGER, 258}, {IDS_PAPER_ANSI_A, 259},
    {IDS_PAPER_ANSI_B, 260}, {IDS_PAPER_ANSI_C, 261}, {IDS_PAPER_ANSI_D, 262},
    {IDS_PAPER_ANSI_E, 263}, {IDS_PAPER_ARCH_A, 264}, {IDS_PAPER_ARCH_B, 265},
    {IDS_PAPER_ARCH_C, 266}, {IDS_PAPER_ARCH_D, 267}, {IDS_PAPER_ARCH_E, 268},
    {IDS_PAPER_ARCH_30, 269}, {IDS_PAPER_ISO_A0, 270}, {IDS_PAPER_ISO_A1, 271},
    {IDS_PAPER_ISO_A2, 272}, {IDS_PAPER_ISO_A3, 273}, {IDS_PAPER_ISO_A4, 274},
    {IDS_PAPER_ISO_B1, 275}, {IDS_PAPER_ISO_B2, 276}, {IDS_PAPER_ISO_B3, 277},
    {IDS_PAPER_ISO_B4, 278}, {IDS_PAPER_CUSTOM, 256}, {0, 0}};

// Model 6 takes no ISO B paper.
const TVOListEntry kPaperListNarrow[] = {
    {IDS_PAPER_LETTER, 257}, {IDS_PAPER_LEDGER, 258}, {IDS_PAPER_ANSI_A, 259},
    {IDS_PAPER_ANSI_B, 260}, {IDS_PAPER_ANSI_C, 261}, {IDS_PAPER_ANSI_D, 262},
    {IDS_PAPER_ANSI_E, 263}, {IDS_PAPER_ARCH_A, 264}, {IDS_PAPER_ARCH_B, 265},
    {IDS_PAPER_ARCH_C, 266}, {IDS_PAPER_ARCH_D, 267}, {IDS_PAPER_ARCH_E, 268},
    {IDS_PAPER_ARCH_30, 269}, {IDS_PAPER_ISO_A0, 270}, {IDS_PAPER_ISO_A1, 271},
    {IDS_PAPER_ISO_A2, 272}, {IDS_PAPER_ISO_A3, 273}, {IDS_PAPER_ISO_A4, 274},
    {IDS_PAPER_CUSTOM, 256}, {0, 0}};

const TVOListEntry kPaperGroupStandard[] = {
    {IDS_PAPER_LETTER, 257}, {IDS_PAPER_LEDGER, 258}, {0, 0}};

const TVOListEntry kPaperGroupAnsi[] = {
    {IDS_PAPER_ANSI_A, 259}, {IDS_PAPER_ANSI_B, 260}, {IDS_PAPER_ANSI_C, 261},
    {IDS_PAPER_ANSI_D, 262}, {IDS_PAPER_ANSI_E, 263}, {0, 0}};

const TVOListEntry kPaperGroupArch[] = {
    {IDS_PAPER_ARCH_A, 264}, {IDS_PAPER_ARCH_B, 265}, {IDS_PAPER_ARCH_C, 266},
    {IDS_PAPER_ARCH_D, 267}, {IDS_PAPER_ARCH_E, 268}, {IDS_PAPER_ARCH_30, 269}, {0, 0}};

const TVOListEntry kPaperGroupIso[] = {
    {IDS_PAPER_ISO_A0, 270}, {IDS_PAPER_ISO_A1, 271}, {IDS_PAPER_ISO_A2, 272},
    {IDS_PAPER_ISO_A3, 273}, {IDS_PAPER_ISO_A4, 274}, {IDS_PAPER_ISO_B1, 275},
    {IDS_PAPER_ISO_B2, 276}, {IDS_PAPER_ISO_B3, 277}, {IDS_PAPER_ISO_B4, 278}, {0, 0}};

const TVOListEntry kPaperGroupIsoNarrow[] = {
    {IDS_PAPER_ISO_A0, 270}, {IDS_PAPER_ISO_A1, 271}, {IDS_PAPER_ISO_A2, 272},
    {IDS_PAPER_ISO_A3, 273}, {IDS_PAPER_ISO_A4, 274}, {0, 0}};

const TVOListEntry kPaperGroupCustom[] = {{IDS_PAPER_CUSTOM, 256}, {0, 0}};

const TVOListEntry kUserMediaCategoryList[] = {
    {IDS_MEDIA_CLASS_SHEET, 0}, {IDS_MEDIA_CLASS_INCH_ROLL, 1},
    {IDS_MEDIA_CLASS_METRIC_ROLL, 2}, {IDS_MEDIA_CLASS_ANY_ROLL, 3}, {IDS_MEDIA_CLASS_ANY, 4},
    {IDS_ROLL_11IN, 5},   {IDS_ROLL_12IN, 6},   {IDS_ROLL_17IN, 7},  {IDS_ROLL_18IN, 8},
    {IDS_ROLL_22IN, 9},   {IDS_ROLL_24IN, 10},  {IDS_ROLL_30IN, 11}, {IDS_ROLL_34IN, 12},
    {IDS_ROLL_36IN, 13},  {IDS_ROLL_A3, 21},    {IDS_ROLL_B3, 22},   {IDS_ROLL_A2, 23},
    {IDS_ROLL_B2, 24},    {IDS_ROLL_A1, 25},    {IDS_ROLL_440MM, 26}, {IDS_ROLL_620MM, 27},
    {IDS_ROLL_B1, 28},    {IDS_ROLL_750MM, 29}, {IDS_ROLL_A0, 30},   {IDS_ROLL_860MM, 31},
    {IDS_ROLL_880MM, 32}, {IDS_ROLL_900MM, 33}, {0, 0}};

// Width then length in tenths of a millimetre, by paper code minus 257. The six rows behind
// the standard papers are part of the table though no list leads to them.
const POINT kPaperSizes[kNUM_PAPER_SIZES] = {
    {2159, 2794},  {2794, 4318},  {2159, 2794},  {2794, 4318},  {4318, 5588},
    {5588, 8636},  {8636, 11176}, {2286, 3048},  {3048, 4572},  {4572, 6096},
    {6096, 9144},  {9144, 12192}, {7620, 10668}, {8410, 11890}, {5940, 8410},
    {4200, 5940},  {2970, 4200},  {2100, 2970},  {7070, 10000}, {5000, 7070},
    {3530, 5000},  {2500, 3530},  {2159, 2794},  {9144, 32767}, {9144, 32767},
    {9144, 32767}, {9144, 32767}, {9144, 32767}};

const TVOListEntry kBinList[] = {
    {IDS_BIN_ROLL1, 257}, {IDS_BIN_ROLL2, 258}, {IDS_BIN_ROLL3, 259}, {IDS_BIN_ROLL4, 260},
    {IDS_BIN_ROLL5, 261}, {IDS_BIN_ROLL6, 262}, {IDS_BIN_MANUAL, DMBIN_MANUAL},
    {IDS_BIN_AUTO, DMBIN_AUTO}, {0, 0}};

const TVOListEntry kMediaTypeList[] = {
    {IDS_MEDIA_BOND, 0}, {IDS_MEDIA_VELLUM, 1}, {IDS_MEDIA_FILM, 2}, {IDS_MEDIA_ANY, 3},
    {0, 0}};

const TVOListEntry kRollSizeList[] = {
    {IDS_ROLL_11IN, 0},   {IDS_ROLL_12IN, 1},   {IDS_ROLL_17IN, 2},   {IDS_ROLL_18IN, 3},
    {IDS_ROLL_22IN, 4},   {IDS_ROLL_24IN, 5},   {IDS_ROLL_30IN, 6},   {IDS_ROLL_34IN, 7},
    {IDS_ROLL_36IN, 8},   {IDS_ROLL_A3, 16},    {IDS_ROLL_B3, 17},    {IDS_ROLL_A2, 18},
    {IDS_ROLL_B2, 19},    {IDS_ROLL_A1, 20},    {IDS_ROLL_440MM, 21}, {IDS_ROLL_620MM, 22},
    {IDS_ROLL_B1, 23},    {IDS_ROLL_750MM, 24}, {IDS_ROLL_A0, 25},    {IDS_ROLL_860MM, 26},
    {IDS_ROLL_880MM, 27}, {IDS_ROLL_900MM, 28}, {0, 0}};

// The ISO B rows stand from B4 to B1 here, their values counting down.
const TVOListEntry kSheetSizeList[] = {
    {IDS_PAPER_LETTER, 1},  {IDS_PAPER_LEDGER, 2},  {IDS_PAPER_ANSI_A, 3},
    {IDS_PAPER_ANSI_B, 4},  {IDS_PAPER_ANSI_C, 5},  {IDS_PAPER_ANSI_D, 6},
    {IDS_PAPER_ANSI_E, 7},  {IDS_PAPER_ARCH_A, 8},  {IDS_PAPER_ARCH_B, 9},
    {IDS_PAPER_ARCH_C, 10}, {IDS_PAPER_ARCH_D, 11}, {IDS_PAPER_ARCH_E, 12},
    {IDS_PAPER_ARCH_30, 13}, {IDS_PAPER_ISO_A0, 14}, {IDS_PAPER_ISO_A1, 15},
    {IDS_PAPER_ISO_A2, 16}, {IDS_PAPER_ISO_A3, 17}, {IDS_PAPER_ISO_A4, 18},
    {IDS_PAPER_ISO_B4, 22}, {IDS_PAPER_ISO_B3, 21}, {IDS_PAPER_ISO_B2, 20},
    {IDS_PAPER_ISO_B1, 19}, {0, 0}};

const TVOListEntry kReservedList[] = {
    {IDS_FINISHER_NONE, 0}, {IDS_FINISHER_GERA_ISO, 1}, {IDS_FINISHER_GERA_ANSI, 2},
    {IDS_FINISHER_GERA_ANSI_SPECIAL, 3}, {0, 0}};

const TVOListEntry kFinishingList[] = {
    {IDS_FINISHING_BYPASS, 0}, {IDS_FINISHING_PRINTER, 8}, {IDS_FINISHING_PROGRAM, 9}, {0, 0}};
const TVOListEntry kBannerList[] = {
    {IDS_BANNER_OFF, 0}, {IDS_BANNER_PRINTER, 1}, {IDS_BANNER_BEFORE, 2}, {IDS_BANNER_AFTER, 3},
    {0, 0}};
const TVOListEntry kLabelList[] = {
    {IDS_LABEL_OFF, 0}, {IDS_LABEL_PRINTER, 1}, {IDS_LABEL_ON, 2}, {0, 0}};
const TVOListEntry kStampList[] = {
    {IDS_STAMP_OFF, 0}, {IDS_STAMP_PRINTER, 1}, {IDS_STAMP_ON, 2}, {0, 0}};
const TVOListEntry kPlotNestList[] = {
    {IDS_NEST_OFF, 0}, {IDS_NEST_PRINTER, 1}, {IDS_NEST_ON, 2}, {0, 0}};
const TVOListEntry kMismatchList[] = {
    {IDS_MISMATCH_PRINTER, 0}, {IDS_MISMATCH_HOLD, 1}, {IDS_MISMATCH_PRINT, 2},
    {IDS_MISMATCH_CANCEL, 3}, {0, 0}};

const TVOListEntry kQualityModeList[] = {
    {IDS_QUALITY_FAST, 0}, {IDS_QUALITY_NORMAL, 1}, {IDS_QUALITY_BEST, 2}, {0, 0}};
const TVOListEntry kRenderModeList[] = {
    {IDS_RENDERMODE_STANDARD, 0}, {IDS_RENDERMODE_ENHANCED, 1}, {0, 0}};
// Value 1 stands first, so a stored 0 selects the second row.
const TVOListEntry kGraphicsList2[] = {
    {IDS_MERGE_ON, 1}, {IDS_MERGE_PRINTER, 0}, {IDS_MERGE_OFF, 2}, {0, 0}};
const TVOListEntry kVectorList[] = {
    {IDS_VECTOR_AS_SENT, 0}, {IDS_VECTOR_OPTIMISED, 1}, {0, 0}};
const TVOListEntry kRasterMethodList[] = {
    {IDS_RASTER_ERROR_DIFFUSION, 0}, {IDS_RASTER_DITHER, 1}, {0, 0}};
const TVOListEntry kGrayscaleList[] = {
    {IDS_GRAYSCALE_SHADES, 0}, {IDS_GRAYSCALE_BLACK_WHITE, 1}, {0, 0}};

const TVOListEntry kScaleToPaperList[] = {
    {IDS_PAPER_LETTER, 1},  {IDS_PAPER_LEDGER, 2},  {IDS_PAPER_ANSI_A, 3},
    {IDS_PAPER_ANSI_B, 4},  {IDS_PAPER_ANSI_C, 5},  {IDS_PAPER_ANSI_D, 6},
    {IDS_PAPER_ANSI_E, 7},  {IDS_PAPER_ARCH_A, 8},  {IDS_PAPER_ARCH_B, 9},
    {IDS_PAPER_ARCH_C, 10}, {IDS_PAPER_ARCH_D, 11}, {IDS_PAPER_ARCH_E, 12},
    {IDS_PAPER_ARCH_30, 13}, {IDS_PAPER_ISO_A0, 14}, {IDS_PAPER_ISO_A1, 15},
    {IDS_PAPER_ISO_A2, 16}, {IDS_PAPER_ISO_A3, 17}, {IDS_PAPER_ISO_A4, 18},
    {IDS_PAPER_ISO_B1, 19}, {IDS_PAPER_ISO_B2, 20}, {IDS_PAPER_ISO_B3, 21},
    {IDS_PAPER_ISO_B4, 22}, {IDS_ROLL_11IN, 23},    {IDS_ROLL_12IN, 24},
    {IDS_ROLL_17IN, 25},    {IDS_ROLL_18IN, 26},    {IDS_ROLL_22IN, 27},
    {IDS_ROLL_24IN, 28},    {IDS_ROLL_30IN, 29},    {IDS_ROLL_34IN, 30},
    {IDS_ROLL_36IN, 31},    {IDS_ROLL_A3, 39},      {IDS_ROLL_B3, 40},
    {IDS_ROLL_A2, 41},      {IDS_ROLL_B2, 42},      {IDS_ROLL_A1, 43},
    {IDS_ROLL_620MM, 44},   {IDS_ROLL_B1, 45},      {IDS_ROLL_750MM, 46},
    {IDS_ROLL_A0, 47},      {IDS_ROLL_860MM, 48},   {IDS_ROLL_880MM, 49},
    {IDS_ROLL_900MM, 50},   {0, 0}};

const TVOListEntry kGraphicsList1[] = {
    {IDS_ROTATE_0, 0}, {IDS_ROTATE_90, 1}, {IDS_ROTATE_180, 2}, {IDS_ROTATE_270, 3},
    {IDS_ROTATE_AUTO, 4}, {0, 0}};
const TVOListEntry kStampRotationList[] = {
    {IDS_ROTATE_0, 0}, {IDS_ROTATE_90, 1}, {IDS_ROTATE_180, 2}, {IDS_ROTATE_270, 3}, {0, 0}};

// The value is a resolution code, not dots per inch.
const TVOListEntry kResolutionList[] = {
    {IDS_RES_200, 0}, {IDS_RES_300, 1}, {IDS_RES_400, 2}, {0, 0}};
const TVOListEntry kResolutionList600[] = {
    {IDS_RES_200, 0}, {IDS_RES_300, 1}, {IDS_RES_400, 2}, {IDS_RES_600, 3}, {0, 0}};

// Margin and stamp placement share their lists; the label has two more horizontal places.
const TVOListEntry kPlacementXList[] = {
    {IDS_PLACE_LEFT, 0}, {IDS_PLACE_CENTRE, 2}, {IDS_PLACE_RIGHT, 1}, {IDS_PLACE_OFFSET, 5},
    {0, 0}};
const TVOListEntry kPlacementYList[] = {
    {IDS_PLACE_TOP, 7}, {IDS_PLACE_CENTRE, 2}, {IDS_PLACE_BOTTOM, 8}, {IDS_PLACE_OFFSET, 5},
    {0, 0}};
const TVOListEntry kLabelPlacementXList[] = {
    {IDS_PLACE_LEFT, 0},        {IDS_PLACE_CENTRE, 2},       {IDS_PLACE_RIGHT, 1},
    {IDS_PLACE_LEFT_MARGIN, 3}, {IDS_PLACE_RIGHT_MARGIN, 4}, {IDS_PLACE_OFFSET, 5}, {0, 0}};

const TVOListEntry kLabelFontFamily[] = {
    {IDS_FONT_STICK, 0},              {IDS_FONT_ARC, 1},
    {IDS_FONT_STROKE_ROMAN, 2},       {IDS_FONT_STICK_ITALIC, 3},
    {IDS_FONT_ARC_ITALIC, 4},         {IDS_FONT_STROKE_GOTHIC, 5},
    {IDS_FONT_STROKE_CYRILLIC, 6},    {IDS_FONT_STROKE_SCRIPT, 7},
    {IDS_FONT_STROKE_GREEK, 8},       {IDS_FONT_ALBERTUS, 9},
    {IDS_FONT_ANTIQUE_OLIVE, 10},     {IDS_FONT_ARIAL, 11},
    {IDS_FONT_CG_OMEGA, 12},          {IDS_FONT_CG_TIMES, 13},
    {IDS_FONT_CLARENDON, 14},         {IDS_FONT_CORONET, 15},
    {IDS_FONT_COURIER, 16},           {IDS_FONT_GARAMOND, 17},
    {IDS_FONT_HELVETICA, 18},         {IDS_FONT_LETTER_GOTHIC, 19},
    {IDS_FONT_LINE_PRINTER, 20},      {IDS_FONT_MARIGOLD, 21},
    {IDS_FONT_TIMES_NEW_ROMAN, 22},   {IDS_FONT_UNIVERS, 23},
    {IDS_FONT_WINGDINGS, 24},         {IDS_FONT_SWISS, 25},
    {IDS_FONT_SWISS_NARROW, 26},      {IDS_FONT_DUTCH, 27},
    {IDS_FONT_DUTCH_ITALIC, 28},      {IDS_FONT_SCHOOLBOOK, 29},
    {IDS_FONT_SCHOOLBOOK_ITALIC, 30}, {IDS_FONT_BOOKMAN, 31},
    {IDS_FONT_BOOKMAN_ITALIC, 32},    {IDS_FONT_AVANTGARDE, 33},
    {IDS_FONT_AVANTGARDE_ITALIC, 34}, {IDS_FONT_PALATINO, 35},
    {IDS_FONT_PALATINO_ITALIC, 36},   {IDS_FONT_OPTIMA, 37},
    {IDS_FONT_CHANCERY, 38},          {IDS_FONT_SYMBOL, 39},
    {IDS_FONT_DINGBATS, 40},          {0, 0}};

const TVOListEntry kFinishOptionList[] = {
    {IDS_FOLDOPT_PRINTER, 0}, {IDS_FOLDOPT_STANDARD, 1}, {IDS_FOLDOPT_BINDING_MARGIN, 2},
    {IDS_FOLDOPT_TITLE_OUTSIDE, 3}, {IDS_FOLDOPT_TITLE_INSIDE, 4}, {0, 0}};

// Single-page job: two plain choices, then roll widths, each with a value of its own. The
// general list serves models 0 to 5 and 7.
const TVOListEntry kSinglePageJobList[] = {
    {IDS_JOB_SINGLEPAGE_OFF, 0}, {IDS_JOB_SINGLEPAGE_AUTO, 1},
    {IDS_ROLL_11IN, 2},   {IDS_ROLL_12IN, 3},   {IDS_ROLL_17IN, 4},   {IDS_ROLL_18IN, 5},
    {IDS_ROLL_22IN, 6},   {IDS_ROLL_24IN, 7},   {IDS_ROLL_30IN, 8},   {IDS_ROLL_34IN, 9},
    {IDS_ROLL_36IN, 10},  {IDS_ROLL_A3, 18},    {IDS_ROLL_B3, 21},    {IDS_ROLL_A2, 23},
    {IDS_ROLL_B2, 27},    {IDS_ROLL_A1, 28},    {IDS_ROLL_440MM, 25}, {IDS_ROLL_620MM, 29},
    {IDS_ROLL_B1, 32},    {IDS_ROLL_750MM, 33}, {IDS_ROLL_A0, 34},    {IDS_ROLL_860MM, 35},
    {IDS_ROLL_880MM, 36}, {IDS_ROLL_900MM, 38}, {0, 0}};

// Models 8 to 11.
const TVOListEntry kSinglePageJobListWide[] = {
    {IDS_JOB_SINGLEPAGE_OFF, 0}, {IDS_JOB_SINGLEPAGE_AUTO, 1},
    {IDS_ROLL_11IN, 2},   {IDS_ROLL_12IN, 3},   {IDS_ROLL_17IN, 4},   {IDS_ROLL_18IN, 5},
    {IDS_ROLL_22IN, 6},   {IDS_ROLL_24IN, 7},   {IDS_ROLL_30IN, 8},   {IDS_ROLL_34IN, 9},
    {IDS_ROLL_36IN, 10},  {IDS_ROLL_A3, 18},    {IDS_ROLL_310MM, 19}, {IDS_ROLL_330MM, 20},
    {IDS_ROLL_400MM, 22}, {IDS_ROLL_A2, 23},    {IDS_ROLL_430MM, 24}, {IDS_ROLL_440MM, 25},
    {IDS_ROLL_480MM, 26}, {IDS_ROLL_A1, 28},    {IDS_ROLL_620MM, 29}, {IDS_ROLL_640MM, 30},
    {IDS_ROLL_660MM, 31}, {IDS_ROLL_860MM, 35}, {IDS_ROLL_B3, 21},    {IDS_ROLL_B2, 27},
    {IDS_ROLL_B1, 32},    {IDS_ROLL_A0, 34},    {IDS_ROLL_880MM, 36}, {0, 0}};

// Model 6.
const TVOListEntry kSinglePageJobListNarrow[] = {
    {IDS_JOB_SINGLEPAGE_OFF, 0}, {IDS_JOB_SINGLEPAGE_AUTO, 1},
    {IDS_ROLL_11IN, 2},   {IDS_ROLL_12IN, 3},   {IDS_ROLL_17IN, 4},   {IDS_ROLL_18IN, 5},
    {IDS_ROLL_22IN, 6},   {IDS_ROLL_24IN, 7},   {IDS_ROLL_30IN, 8},   {IDS_ROLL_34IN, 9},
    {IDS_ROLL_36IN, 10},  {IDS_ROLL_A3, 18},    {IDS_ROLL_A2, 23},    {IDS_ROLL_A1, 28},
    {IDS_ROLL_A0, 34},    {IDS_ROLL_440MM, 25}, {IDS_ROLL_880MM, 36}, {IDS_ROLL_890MM, 37},
    {IDS_ROLL_900MM, 38}, {0, 0}};

const TVOListEntry kRenderList[] = {
    {IDS_RENDER_STANDARD, 0}, {IDS_RENDER_LINES, 1}, {IDS_RENDER_IMAGES, 2}, {0, 0}};

// Roll width code to the string that names it. Code 21 (440 mm) has no name here on purpose:
// beside its source it reads as the unknown roll.
const UINT kRollSizeNames[] = {
    IDS_ROLL_11IN, IDS_ROLL_12IN,  IDS_ROLL_17IN,    IDS_ROLL_18IN,  IDS_ROLL_22IN,
    IDS_ROLL_24IN, IDS_ROLL_30IN,  IDS_ROLL_34IN,    IDS_ROLL_36IN,  IDS_ROLL_38IN,
    IDS_ROLL_42IN, IDS_ROLL_44IN,  IDS_ROLL_48IN,    IDS_ROLL_50IN,  IDS_ROLL_53IN,
    IDS_ROLL_54IN, IDS_ROLL_A3,    IDS_ROLL_B3,      IDS_ROLL_A2,    IDS_ROLL_B2,
    IDS_ROLL_A1,   IDS_ROLL_UNKNOWN, IDS_ROLL_620MM, IDS_ROLL_B1,    IDS_ROLL_750MM,
    IDS_ROLL_A0,   IDS_ROLL_860MM, IDS_ROLL_880MM,   IDS_ROLL_900MM};
// clang-format on
static_assert(sizeof(kRollSizeNames) / sizeof(kRollSizeNames[0]) == 29, "roll codes 0 to 28");

const WCHAR* const kMediaNames[] = {TEXT("Bond"), TEXT("Vellum"), TEXT("Film"), TEXT("Any")};

constexpr size_t kSPARE_BLOCK_SIZE = 8192;
constexpr DWORD kFIRST_TAB_RESOURCE = 101;

// Printer data values.
constexpr WCHAR kUserFormCount[] = TEXT("UserFormCount");
constexpr WCHAR kLastActiveTab[] = TEXT("LastActiveTab");

// The spooler's value names are not const in its prototypes; it does not write to them.
LPWSTR ValueName(const WCHAR* pszName)
{
    return const_cast<LPWSTR>(pszName);
}

// A module handle below 32 is a failed load, as the platform has always reported it.
bool IsLoadedModule(HMODULE hModule)
{
    return reinterpret_cast<uintptr_t>(hModule) >= 32;
}

// "UserForm%d" of a form's index (1-based in the store).
void FormatUserFormName(WCHAR* pszName, size_t cch, int index)
{
    WstrPrintf(pszName, cch, TEXT("UserForm%d"), index + 1);
}

// Loads QLMRes.DLL from the driver directory's subfolder; the path it tried goes to pszPath.
HMODULE LoadResourceLibrary(const WCHAR* pszSubfolder, WCHAR* pszPath, size_t cchPath)
{
    WCHAR szDirectory[MAX_PATH] = {};
    DWORD cbNeeded = 0;
    // The spooler counts the buffer in bytes. A failed call leaves the directory empty, and
    // the load that follows fails as for a missing library.
    GetPrinterDriverDirectoryW(nullptr, nullptr, 1, reinterpret_cast<LPBYTE>(szDirectory),
                               sizeof(szDirectory), &cbNeeded);
    szDirectory[MAX_PATH - 1] = 0;
    WstrCopy(pszPath, cchPath, szDirectory);
    WstrCat(pszPath, cchPath, pszSubfolder);
    WstrCat(pszPath, cchPath, TEXT("QLMRes.DLL"));
    return LoadLibraryW(pszPath);
}

// The user forms that the paper lists can show: the count stays within the table.
int ClampFormCount(int count)
{
    if (count < 0)
        return 0;
    return count > kMAX_USER_FORMS ? kMAX_USER_FORMS : count;
}

} // namespace

// ---- Model -----------------------------------------------------------------------------------

DWORD TVOFindPrinterModel(LPCWSTR szPrinter)
{
    QLM_TRACE_SCOPE(TEXT("TVOFindPrinterModel"), TraceConfig());
    if (!szPrinter)
        return kMODEL_427;
    // First the whole name, with case ignored.
    for (const TVOPrinterAlias& alias : kAliases) {
        if (WstrICmp(szPrinter, alias.pszName) == 0)
            return alias.model;
    }
    // Then any row that the name contains, case respected: the earliest row wins.
    for (const TVOPrinterAlias& alias : kAliases) {
        if (WstrStr(szPrinter, alias.pszName))
            return alias.model;
    }
    Trace(TEXT("can't find match."));
    return kMODEL_427;
}

TVOPrinterConfiguration::TVOPrinterConfiguration(LPCWSTR szPrinter)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::TVOPrinterConfiguration"), TraceConfig());
    // Every member is plain data. All start at zero: the reserved slot and word stay so, and
    // the destructor frees nothing that initialize could not allocate.
    memset(static_cast<void*>(this), 0, sizeof(*this));
    s_nInstances++;
    Trace(TEXT("m_bMediaInitialized = %d, instances = %d"), m_bMediaInitialized, s_nInstances);

    ASSERT(szPrinter);
    if (!szPrinter) {
        initialize(kMODEL_427);
        return;
    }
    initialize(TVOFindPrinterModel(szPrinter));
}

TVOPrinterConfiguration::~TVOPrinterConfiguration()
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::~TVOPrinterConfiguration"), TraceConfig());
    m_bInitialized = FALSE;
    m_bMediaInitialized = FALSE;
    Trace(TEXT("m_bMediaInitialized = %d"), m_bMediaInitialized);
    if (FreeLibrary(m_hResources))
        Trace(TEXT("Resources freed!"));
    else
        Trace(TEXT("FreeLibrary failed, resources not freed!"));
    m_hResources = nullptr;
    delete[] m_pSpareBlock1;
    delete[] m_pSpareBlock2;
    m_pSpareBlock1 = nullptr;
    m_pSpareBlock2 = nullptr;
    s_nInstances--;
    Trace(TEXT("instances = %d"), s_nInstances);
}

void TVOPrinterConfiguration::initialize(DWORD model)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::initialize"), TraceConfig());
    m_bHasPermission = TRUE;
    if (m_bInitialized)
        return;
    m_bInitialized = TRUE;

    WCHAR szPath[MAX_PATH + 32];
    m_hResources = LoadResourceLibrary(TEXT("\\3\\"), szPath, MAX_PATH + 32);
    if (!IsLoadedModule(m_hResources))
        m_hResources = LoadResourceLibrary(TEXT("\\2\\"), szPath, MAX_PATH + 32);
    if (IsLoadedModule(m_hResources))
        Trace(TEXT("Loaded RESDLL (%s) OK!\n"), szPath);
    else
        Trace(TEXT("Failed to load RESDLL:%s!\n"), szPath);

    m_PrinterModel = model;
    if (model < kNUM_MODELS && kModelLabels[model])
        Trace(kModelLabels[model]);

    m_FirmwareList = kFirmwareList;
    m_PaperList = kPaperList;
    m_PaperGroupStandard = kPaperGroupStandard;
    m_PaperGroupAnsi = kPaperGroupAnsi;
    m_PaperGroupArch = kPaperGroupArch;
    m_PaperGroupIso = kPaperGroupIso;
    m_PaperGroupCustom = kPaperGroupCustom;
    m_UserMediaCategoryList = kUserMediaCategoryList;
    m_PaperSizes = kPaperSizes;
    m_BinList = kBinList;
    m_MediaTypeList = kMediaTypeList;
    m_RollSizeList = kRollSizeList;
    m_SheetSizeList = kSheetSizeList;
    m_ReservedList = kReservedList;
    m_FinishingList = kFinishingList;
    m_BannerList = kBannerList;
    m_LabelList = kLabelList;
    m_StampList = kStampList;
    m_PlotNestList = kPlotNestList;
    m_MismatchList = kMismatchList;
    m_QualityModeList = kQualityModeList;
    m_RenderModeList = kRenderModeList;
    m_GraphicsList2 = kGraphicsList2;
    m_VectorList = kVectorList;
    m_RasterMethodList = kRasterMethodList;
    m_GrayscaleList = kGrayscaleList;
    m_ScaleToPaperList = kScaleToPaperList;
    m_GraphicsList1 = kGraphicsList1;
    m_StampRotationList = kStampRotationList;
    m_ResolutionList = kResolutionList;
    m_MarginPlacementXList = kPlacementXList;
    m_MarginPlacementYList = kPlacementYList;
    m_StampPlacementXList = kPlacementXList;
    m_StampPlacementYList = kPlacementYList;
    m_LabelPlacementXList = kLabelPlacementXList;
    m_LabelPlacementYList = kPlacementYList;
    m_LabelFontFamily = kLabelFontFamily;
    m_FinishOptionList = kFinishOptionList;
    m_SinglePageJobList = kSinglePageJobList;
    m_RenderList = kRenderList;
    m_bShowPaperTab = TRUE;
    m_bShowJobTab = TRUE;
    m_bShowGraphicsTab = TRUE;
    m_bShowDeviceTab = TRUE;
    m_bShowRenderTab = TRUE;
    m_bSpareTabFlag = TRUE;
    m_maxRes = 400;
    m_bHasSheetFeed = 1;
    m_NumRolls = 3;

    if (IsHighResolutionModel(model)) {
        m_maxRes = 600;
        m_ResolutionList = kResolutionList600;
    }
    if (model == kMODEL_318P) {
        m_PaperList = kPaperListNarrow;
        m_PaperGroupIso = kPaperGroupIsoNarrow;
        m_SinglePageJobList = kSinglePageJobListNarrow;
        m_NumRolls = 4;
    } else {
        if (IsHighResolutionModel(model))
            m_SinglePageJobList = kSinglePageJobListWide;
        if (model == kMODEL_2410 || model == kMODEL_3310 || model == kMODEL_3344)
            m_NumRolls = 2;
        else if (model == kMODEL_2445 || model == kMODEL_3320 || model == kMODEL_3320A)
            m_NumRolls = 4;
    }

    // The owner reads the forms once it has set the printer handle.
    m_UserFormCount = 0;
    memset(m_UserForms, 0, sizeof(m_UserForms));

    m_pSpareBlock1 = new (std::nothrow) BYTE[kSPARE_BLOCK_SIZE]();
    m_pSpareBlock2 = new (std::nothrow) BYTE[kSPARE_BLOCK_SIZE]();
    ASSERT(m_pSpareBlock1 && m_pSpareBlock2);

    m_MediaCount = 4;
    for (DWORD i = 0; i < m_MediaCount; i++)
        WstrCopy(m_MediaNames[i], 128, kMediaNames[i]);
}

// ---- Strings and resolutions -------------------------------------------------------------------

namespace {

// One row into the box at index i, its failures traced; the loop goes on.
void InsertListRow(HWND hWnd, DWORD dwControl, int i, const WCHAR* pszText, DWORD dwValue)
{
    LRESULT rc = SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_INSERTSTRING,
                                     static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(pszText));
    if (rc == CB_ERR || rc == CB_ERRSPACE)
        Trace(TEXT("ERROR %d adding string:%s, index:%d"), static_cast<int>(rc), pszText, i);
    rc = SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_SETITEMDATA,
                             static_cast<WPARAM>(i), static_cast<LPARAM>(dwValue));
    if (rc == CB_ERR || rc == CB_ERRSPACE)
        Trace(TEXT("ERROR %d setting item data for string:%s, index:%d"), static_cast<int>(rc),
              pszText, i);
}

} // namespace

BOOL TVOPrinterConfiguration::fillComboBox1(HWND hWnd, DWORD dwControl, TVOList list,
                                            DWORD dwSelect)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::fillComboBox1"), g_bTraceTVOConfig);
    SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_RESETCONTENT, 0, 0);
    int selection = 0;
    for (int i = 0; list && list[i].dwResourceId; ++i) {
        InsertListRow(hWnd, dwControl, i, getResourceString(list[i].dwResourceId), list[i].dwValue);
        if (list[i].dwValue == dwSelect)
            selection = i;
    }
    SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_SETCURSEL,
                        static_cast<WPARAM>(selection), 0);
    return 1;
}

BOOL TVOPrinterConfiguration::fillComboBox2(HWND hWnd, DWORD dwControl, TVOList list,
                                            DWORD dwSelect)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::fillComboBox2"), g_bTraceTVOConfig);
    const LRESULT oldSelection =
        SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_GETCURSEL, 0, 0);
    int matched = -1;
    int count = 0;
    for (; list && list[count].dwResourceId; ++count) {
        InsertListRow(hWnd, dwControl, count, getResourceString(list[count].dwResourceId),
                      list[count].dwValue);
        if (list[count].dwValue == dwSelect)
            matched = count;
    }
    // Without a match the item selected before stays selected, now count places further on.
    const LRESULT selection = matched >= 0 ? matched : oldSelection + count;
    SendDlgItemMessageW(hWnd, static_cast<int>(dwControl), CB_SETCURSEL,
                        static_cast<WPARAM>(selection), 0);
    return 1;
}

LPWSTR TVOPrinterConfiguration::getResourceString(UINT id)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getResourceString"), TraceConfig());
    const int cch = static_cast<int>(sizeof(m_szResourceString) / sizeof(WCHAR));
    if (LoadStringW(m_hResources, id, m_szResourceString, cch) == 0) {
        DWORD dwError = GetLastError();
        if (dwError != 0)
            WstrPrintf(m_szResourceString, cch, TEXT("LoadString Error=%02d (0X%X)"), dwError,
                       dwError);
        else
            m_szResourceString[0] = 0;
    }
    return m_szResourceString;
}

BOOL TVOPrinterConfiguration::isValidRes(int res) const
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::isValidRes"), TraceConfig());
    if (res == 200 || res == 300 || res == 400)
        return TRUE;
    if (res == 600 && IsHighResolutionModel(m_PrinterModel))
        return TRUE;
    return res == m_maxRes;
}

int TVOPrinterConfiguration::getResolutionInfo(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getResolutionInfo"), TraceConfig());
    (void)lpEnv;
    (void)wIndex;
    LONG* pOut = static_cast<LONG*>(lpOutput);
    int count = 0;
    for (TVOList row = m_ResolutionList; row && row->dwResourceId; row++) {
        count++;
        if (!pOut)
            continue;
        LONG dpi = 400;
        if (row->dwValue == 0)
            dpi = 200;
        else if (row->dwValue == 1)
            dpi = 300;
        else if (row->dwValue == 3)
            dpi = 600;
        *pOut++ = dpi;
        *pOut++ = dpi;
    }
    return count;
}

// ---- The last tab ------------------------------------------------------------------------------

void TVOPrinterConfiguration::SetLastActiveTab(DWORD resourceId)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::SetLastActiveTab"), TraceConfig());
    DWORD dwValue = resourceId - kFIRST_TAB_RESOURCE;
    SetPrinterDataW(m_hPrinter, ValueName(kLastActiveTab), REG_DWORD,
                    reinterpret_cast<LPBYTE>(&dwValue), sizeof(dwValue));
}

int TVOPrinterConfiguration::GetLastActiveTab()
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::GetLastActiveTab"), TraceConfig());
    DWORD dwValue = 0;
    DWORD dwType = 0;
    DWORD cbNeeded = 0;
    if (GetPrinterDataW(m_hPrinter, ValueName(kLastActiveTab), &dwType,
                        reinterpret_cast<LPBYTE>(&dwValue), sizeof(dwValue), &cbNeeded) != 0)
        return 0;
    return static_cast<int>(dwValue);
}

int TVOPrinterConfiguration::GetLastActiveTab(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::GetLastActiveTab"), TraceConfig());
    DWORD dwValue = 0;
    DWORD dwType = 0;
    DWORD cbNeeded = 0;
    if (snapshot.GetData(QLM_DRIVER_DATA_KEY, kLastActiveTab, &dwType,
                         reinterpret_cast<LPBYTE>(&dwValue), sizeof(dwValue), &cbNeeded) != 0)
        return 0;
    return static_cast<int>(dwValue);
}

// ---- Papers ------------------------------------------------------------------------------------

int TVOPrinterConfiguration::CountPaperInfo(TVOList list) const
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::CountPaperInfo"), TraceConfig());
    int count = 0;
    for (TVOList row = list; row && row->dwResourceId; row++)
        count++;
    return count;
}

int TVOPrinterConfiguration::getPaperInfo(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getPaperInfo"), TraceConfig());
    ASSERT(lpEnv);
    if (!lpEnv) {
        Trace(TEXT("bad parameter lpEnv == NULL"));
        return 0;
    }
    ASSERT(wIndex == DC_PAPERS || wIndex == DC_PAPERSIZE || wIndex == DC_PAPERNAMES);
    if (wIndex != DC_PAPERS && wIndex != DC_PAPERSIZE && wIndex != DC_PAPERNAMES) {
        Trace(TEXT("bad parameter wIndex not valid"));
        return 0;
    }

    const DWORD dwShow = lpEnv->dmxShowPaperTypes;
    const struct
    {
        DWORD bit;
        TVOList list;
    } groups[] = {
        {kSHOW_STANDARD, m_PaperGroupStandard},
        {kSHOW_ANSI, m_PaperGroupAnsi},
        {kSHOW_ARCH, m_PaperGroupArch},
        {kSHOW_ISO, m_PaperGroupIso},
    };

    int count = 0;
    if (!lpOutput) {
        for (const auto& group : groups)
            if (dwShow & group.bit)
                count += CountPaperInfo(group.list);
        if (dwShow & kSHOW_USER_FORMS)
            count += ClampFormCount(m_UserFormCount);
        return count + 1;
    }

    WCHAR* pNames = static_cast<WCHAR*>(lpOutput);
    WORD* pPapers = static_cast<WORD*>(lpOutput);
    POINT* pSizes = static_cast<POINT*>(lpOutput);
    for (const auto& group : groups)
        if (dwShow & group.bit)
            count += AddPaperInfo(group.list, wIndex, &pNames, &pPapers, &pSizes);
    if (dwShow & kSHOW_USER_FORMS)
        count += AddUserDefinedPapers(lpEnv->dmxUnits, wIndex, &pNames, &pPapers, &pSizes);
    count += AddCustomPaper(lpEnv, wIndex, &pNames, &pPapers, &pSizes);
    return count;
}

int TVOPrinterConfiguration::AddPaperInfo(TVOList list, WORD wIndex, WCHAR** ppNames,
                                          WORD** ppPapers, POINT** ppSizes)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::AddPaperInfo"), TraceConfig());
    int count = 0;
    for (TVOList row = list; row && row->dwResourceId; row++, count++) {
        switch (wIndex) {
        case DC_PAPERS:
            *(*ppPapers)++ = static_cast<WORD>(row->dwValue);
            break;
        case DC_PAPERSIZE: {
            DWORD index = row->dwValue - PAPER_FIRST_STANDARD;
            ASSERT(index < static_cast<DWORD>(kNUM_PAPER_SIZES));
            POINT size = {0, 0};
            if (m_PaperSizes && index < static_cast<DWORD>(kNUM_PAPER_SIZES))
                size = m_PaperSizes[index];
            *(*ppSizes)++ = size;
            break;
        }
        case DC_PAPERNAMES:
            // wcsncpy's rule: a name of 64 characters or more is not terminated.
            WstrNCopy(*ppNames, getResourceString(row->dwResourceId), kPAPER_NAME_CCH);
            *ppNames += kPAPER_NAME_CCH;
            break;
        default:
            break;
        }
    }
    return count;
}

int TVOPrinterConfiguration::AddUserDefinedPapers(DWORD units, WORD wIndex, WCHAR** ppNames,
                                                  WORD** ppPapers, POINT** ppSizes)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::AddUserDefinedPapers"), TraceConfig());
    // The unit text is read once; a unit that is neither inches nor millimetres has none.
    WCHAR szUnits[64] = {};
    if (units == kDISTANCE_INCHES)
        WstrCopy(szUnits, 64, getResourceString(IDS_UNITS_INCHES));
    else if (units == kDISTANCE_MM)
        WstrCopy(szUnits, 64, getResourceString(IDS_UNITS_MM));

    const int count = ClampFormCount(m_UserFormCount);
    for (int i = 0; i < count; i++) {
        const USERFORM& form = m_UserForms[i];
        switch (wIndex) {
        case DC_PAPERS:
            *(*ppPapers)++ = static_cast<WORD>(PAPER_USER_BASE + i);
            break;
        case DC_PAPERSIZE:
            (*ppSizes)->x = static_cast<LONG>(form.width);
            (*ppSizes)->y = static_cast<LONG>(form.length);
            (*ppSizes)++;
            break;
        case DC_PAPERNAMES: {
            // Tenths of a millimetre to millimetres, and to inches for an inch display.
            TVOFixed width(static_cast<long>(form.width));
            TVOFixed length(static_cast<long>(form.length));
            width /= 10;
            length /= 10;
            if (units == kDISTANCE_INCHES) {
                width.MMToInches();
                length.MMToInches();
            }
            // toString shares one buffer: keep each text before asking for the next.
            WCHAR szWidth[32] = {};
            WCHAR szLength[32] = {};
            WstrCopy(szWidth, 32, width.toString(static_cast<eDistanceUnits>(units)));
            WstrCopy(szLength, 32, length.toString(static_cast<eDistanceUnits>(units)));

            WCHAR szName[33];
            WstrNCopy(szName, form.name, 32);
            szName[32] = 0;

            WCHAR szDisplay[160];
            WstrPrintf(szDisplay, 160, TEXT("%s (%sx%s%s)"), szName, szWidth, szLength, szUnits);
            WstrNCopy(*ppNames, szDisplay, kPAPER_NAME_CCH);
            *ppNames += kPAPER_NAME_CCH;
            break;
        }
        default:
            break;
        }
    }
    return count;
}

int TVOPrinterConfiguration::AddCustomPaper(const DEVMODEEX* lpEnv, WORD wIndex, WCHAR** ppNames,
                                            WORD** ppPapers, POINT** ppSizes)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::AddCustomPaper"), TraceConfig());
    switch (wIndex) {
    case DC_PAPERS:
        *(*ppPapers)++ = PAPER_CUSTOM;
        break;
    case DC_PAPERSIZE: {
        // Thousandths of tenths of a millimetre, rounded to whole tenths; 32-bit as stored.
        ASSERT(lpEnv);
        int64_t width = lpEnv ? lpEnv->dmxPaperWidth.getThousandths() : 0;
        int64_t length = lpEnv ? lpEnv->dmxPaperLength.getThousandths() : 0;
        (*ppSizes)->x = static_cast<LONG>(static_cast<int32_t>(width + 500) / 1000);
        (*ppSizes)->y = static_cast<LONG>(static_cast<int32_t>(length + 500) / 1000);
        (*ppSizes)++;
        break;
    }
    case DC_PAPERNAMES:
        WstrNCopy(*ppNames, getResourceString(IDS_PAPER_CUSTOM), kPAPER_NAME_CCH);
        *ppNames += kPAPER_NAME_CCH;
        break;
    default:
        break;
    }
    return 1;
}

void TVOPrinterConfiguration::getLongPlotSizes(DEVMODEEX* lpdm, DWORD dwWidth, DWORD dwLength,
                                               POINT* lpSize, short* lpScale)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getLongPlotSizes"), TraceConfig());
    ASSERT(lpdm && lpSize && lpScale);
    if (lpSize) {
        lpSize->x = static_cast<LONG>(dwWidth);
        lpSize->y = static_cast<LONG>(dwLength);
    }
    if (lpdm) {
        lpdm->dmxPaperWidth = TVOFixed(static_cast<long>(dwWidth));
        lpdm->dmxPaperLength = TVOFixed(static_cast<long>(dwLength));
        // A long plot is not scaled down.
        lpdm->dmPublic.dmScale = 100;
    }
    if (lpScale)
        *lpScale = 100;
}

// ---- Limits of a custom size -------------------------------------------------------------------

namespace {

// A limit given in thousandths of an inch and of a millimetre, in the units asked for; another
// unit asserts and gives the fallback (0 for a minimum, 1 for a maximum).
TVOFixed LimitInUnits(DWORD units, int32_t inches, int32_t millimetres, long fallback)
{
    if (units == kFIXED_INCHES)
        return TVOFixed::fromThousandths(inches);
    if (units == kFIXED_MM)
        return TVOFixed::fromThousandths(millimetres);
    ASSERT(units == kFIXED_INCHES || units == kFIXED_MM);
    return TVOFixed(fallback);
}

} // namespace

TVOFixed TVOPrinterConfiguration::getMinPaperWidth(DWORD units)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getMinPaperWidth"), TraceConfig());
    return LimitInUnits(units, 8000, 203200, 0);
}

TVOFixed TVOPrinterConfiguration::getMaxPaperWidth(DWORD units, BOOL bWide)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getMaxPaperWidth"), TraceConfig());
    return bWide ? LimitInUnits(units, 54000, 1371600, 1) : LimitInUnits(units, 36000, 914400, 1);
}

TVOFixed TVOPrinterConfiguration::getMinPaperLength(DWORD units)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getMinPaperLength"), TraceConfig());
    return LimitInUnits(units, 10000, 254000, 0);
}

TVOFixed TVOPrinterConfiguration::getMaxPaperLength(DWORD units)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getMaxPaperLength"), TraceConfig());
    return LimitInUnits(units, 960000, 24384000, 1);
}

// ---- Rolls, bins, extents ----------------------------------------------------------------------

LPWSTR TVOPrinterConfiguration::getRollSize(DWORD code)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getRollSize"), TraceConfig());
    const DWORD cCodes = sizeof(kRollSizeNames) / sizeof(kRollSizeNames[0]);
    return getResourceString(code < cCodes ? kRollSizeNames[code] : IDS_ROLL_UNKNOWN);
}

int TVOPrinterConfiguration::getBinInfo(DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getBinInfo"), TraceConfig());
    ASSERT(lpEnv);
    if (!lpEnv)
        return 0;
    // The caller's record learns how many rolls the model can hold.
    if (lpEnv->dmxNumRolls > m_NumRolls)
        lpEnv->dmxNumRolls = m_NumRolls;

    WORD* pBins = static_cast<WORD*>(lpOutput);
    WCHAR* pNames = static_cast<WCHAR*>(lpOutput);
    int count = 0;
    DWORD position = 0;
    for (TVOList row = m_BinList; row && row->dwResourceId; row++, position++) {
        // Rolls from roll 1 up to the rolls present; manual feed and automatic always.
        if (position >= lpEnv->dmxNumRolls && row->dwValue != DMBIN_MANUAL &&
            row->dwValue != DMBIN_AUTO)
            continue;
        count++;
        if (!lpOutput)
            continue;
        if (wIndex == DC_BINS) {
            *pBins++ = static_cast<WORD>(row->dwValue);
        } else if (wIndex == DC_BINNAMES) {
            WstrNCopy(pNames, getResourceString(row->dwResourceId), kBIN_NAME_CCH);
            pNames += kBIN_NAME_CCH;
        }
    }
    return count;
}

DWORD TVOPrinterConfiguration::calcMinMaxExtent(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::calcMinMaxExtent"), TraceConfig());
    (void)lpEnv;
    (void)lpOutput;
    LONG minWidth = 32767;
    LONG minLength = 32767;
    LONG maxWidth = 0;
    LONG maxLength = 0;
    // The sizes are taken by position in the list, not by the row's code.
    int position = 0;
    for (TVOList row = m_PaperList; row && row->dwResourceId && position < kNUM_PAPER_SIZES;
         row++, position++) {
        const POINT& size = m_PaperSizes[position];
        if (size.x < minWidth)
            minWidth = size.x;
        if (size.y < minLength)
            minLength = size.y;
        if (size.x > maxWidth)
            maxWidth = size.x;
        if (size.y > maxLength)
            maxLength = size.y;
    }
    auto pack = [](LONG length, LONG width) {
        DWORD hi = static_cast<DWORD>(length < 32767 ? length : 32767);
        DWORD lo = static_cast<DWORD>(width < 32767 ? width : 32767);
        return (hi << 16) | (lo & 0xFFFF);
    };
    if (wIndex == DC_MINEXTENT)
        return pack(minLength, minWidth);
    return pack(maxLength, maxWidth);
}

// ---- User forms --------------------------------------------------------------------------------

void TVOPrinterConfiguration::getUserForms(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    getUserForms(snapshot);
}

void TVOPrinterConfiguration::getUserForms(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::getUserForms"), TraceConfig());
    DWORD dwCount = 0;
    DWORD dwType = 0;
    DWORD cbNeeded = 0;
    DWORD dwError =
        snapshot.GetData(QLM_DRIVER_DATA_KEY, kUserFormCount, &dwType,
                         reinterpret_cast<LPBYTE>(&dwCount), sizeof(dwCount), &cbNeeded);
    if (dwError != 0) {
        Trace(TEXT("Couldn't get userformcount, dwError=%d, GetLastError()=%d"), dwError,
              GetLastError());
        m_UserFormCount = 0;
        return;
    }
    // The count is a 16-bit number in a 32-bit value: 65536 reads as no forms.
    m_UserFormCount = LOWORD(dwCount);
    if (dwCount == 0)
        return;
    if (m_UserFormCount > kMAX_USER_FORMS)
        m_UserFormCount = kMAX_USER_FORMS;

    for (int i = 0; i < m_UserFormCount; i++) {
        WCHAR szName[32];
        FormatUserFormName(szName, 32, i);
        // A missing record stays as it was; one of another size is taken as far as it goes.
        snapshot.GetData(QLM_DRIVER_DATA_KEY, szName, &dwType,
                         reinterpret_cast<LPBYTE>(&m_UserForms[i]), sizeof(USERFORM), &cbNeeded);
    }
}

void TVOPrinterConfiguration::setUserForms(HANDLE hPrinter)
{
    QLMPrinterSnapshot snapshot(hPrinter);
    setUserForms(snapshot);
}

void TVOPrinterConfiguration::setUserForms(QLMPrinterSnapshot& snapshot)
{
    QLM_TRACE_SCOPE(TEXT("TVOPrinterConfiguration::setUserForms"), TraceConfig());
    HANDLE hPrinter = snapshot.Printer();
    DWORD dwStored = 0;
    DWORD dwType = 0;
    DWORD cbNeeded = 0;
    snapshot.GetData(QLM_DRIVER_DATA_KEY, kUserFormCount, &dwType,
                     reinterpret_cast<LPBYTE>(&dwStored), sizeof(dwStored), &cbNeeded);
    // Only this code writes forms, never more than 64: a larger stored count is damage, and
    // emptying up to it would cost one store write for each of up to 65535 values.
    int oldCount = LOWORD(dwStored);
    if (oldCount > kMAX_USER_FORMS)
        oldCount = kMAX_USER_FORMS;

    if (m_UserFormCount > kMAX_USER_FORMS)
        m_UserFormCount = kMAX_USER_FORMS;
    if (m_UserFormCount < 0)
        m_UserFormCount = 0;

    // A value that already holds what would be written is left as it is: the store ends the
    // same, and the sheet's close costs no call per form.
    bool bWritten = false;
    auto store = [&](LPWSTR pszName, DWORD dwValueType, const void* pData, DWORD cbData) {
        const BYTE* pBytes = static_cast<const BYTE*>(pData);
        if (snapshot.Holds(QLM_DRIVER_DATA_KEY, pszName, dwValueType, pBytes, cbData))
            return;
        SetPrinterDataW(hPrinter, pszName, dwValueType, const_cast<LPBYTE>(pBytes), cbData);
        bWritten = true;
    };
    DWORD dwCount = static_cast<DWORD>(m_UserFormCount);
    store(ValueName(kUserFormCount), REG_DWORD, &dwCount, sizeof(dwCount));

    // Records behind the new count are emptied, not deleted: nothing reads past the count.
    const int rounds = oldCount > m_UserFormCount ? oldCount : m_UserFormCount;
    for (int i = 0; i < rounds; i++) {
        WCHAR szName[32];
        FormatUserFormName(szName, 32, i);
        if (i < m_UserFormCount)
            store(szName, REG_BINARY, &m_UserForms[i], sizeof(USERFORM));
        else
            store(szName, REG_BINARY, nullptr, 0);
    }
    if (bWritten)
        snapshot.DataStored(QLM_DRIVER_DATA_KEY);
}
