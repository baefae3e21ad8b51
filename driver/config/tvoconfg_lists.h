// The configuration's constant tables: the list tables its members point at, the paper sizes,
// the roll names by width code and the media names.
#pragma once

#include "../../platform/win32.h"

// One row of a list table: the resource string that names a choice, and the choice's value.
// A row with identifier 0 ends the list.
struct TVOListEntry
{
    DWORD dwResourceId;
    DWORD dwValue;
};
typedef const TVOListEntry* TVOList;

constexpr int kNUM_PAPER_SIZES = 28; // the 22 standard papers and six spare rows

// The tables live in a namespace of their own: only the configuration's units name them.
namespace tvoconfglists {

extern const TVOListEntry kFirmwareList[];
extern const TVOListEntry kPaperList[];
extern const TVOListEntry kPaperListNarrow[];
extern const TVOListEntry kPaperGroupStandard[];
extern const TVOListEntry kPaperGroupAnsi[];
extern const TVOListEntry kPaperGroupArch[];
extern const TVOListEntry kPaperGroupIso[];
extern const TVOListEntry kPaperGroupIsoNarrow[];
extern const TVOListEntry kPaperGroupCustom[];
extern const TVOListEntry kUserMediaCategoryList[];
extern const POINT kPaperSizes[kNUM_PAPER_SIZES];
extern const TVOListEntry kBinList[];
extern const TVOListEntry kMediaTypeList[];
extern const TVOListEntry kRollSizeList[];
extern const TVOListEntry kSheetSizeList[];
extern const TVOListEntry kReservedList[];
extern const TVOListEntry kFinishingList[];
extern const TVOListEntry kBannerList[];
extern const TVOListEntry kLabelList[];
extern const TVOListEntry kStampList[];
extern const TVOListEntry kPlotNestList[];
extern const TVOListEntry kMismatchList[];
extern const TVOListEntry kQualityModeList[];
extern const TVOListEntry kRenderModeList[];
extern const TVOListEntry kGraphicsList2[];
extern const TVOListEntry kVectorList[];
extern const TVOListEntry kRasterMethodList[];
extern const TVOListEntry kGrayscaleList[];
extern const TVOListEntry kScaleToPaperList[];
extern const TVOListEntry kGraphicsList1[];
extern const TVOListEntry kStampRotationList[];
extern const TVOListEntry kResolutionList[];
extern const TVOListEntry kResolutionList600[];
extern const TVOListEntry kPlacementXList[];
extern const TVOListEntry kPlacementYList[];
extern const TVOListEntry kLabelPlacementXList[];
extern const TVOListEntry kLabelFontFamily[];
extern const TVOListEntry kFinishOptionList[];
extern const TVOListEntry kSinglePageJobList[];
extern const TVOListEntry kSinglePageJobListWide[];
extern const TVOListEntry kSinglePageJobListNarrow[];
extern const TVOListEntry kRenderList[];
extern const UINT kRollSizeNames[29]; // width codes 0 to 28
extern const WCHAR* const kMediaNames[4];

} // namespace tvoconfglists
