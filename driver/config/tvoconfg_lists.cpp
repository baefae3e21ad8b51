// The configuration's constant tables.
#include "tvoconfg_lists.h"

#include "../../resources/qlmres.h"

namespace tvoconfglists {

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

} // namespace tvoconfglists
