// DEVMODEEX: the driver's one settings record, the public DEVMODEW followed by the private
// dmx fields between two guard blocks. It is persisted and handed between processes and
// driver versions, so its size and every offset are fixed and proven below at compile time.
#pragma once

#include "../../platform/win32.h"
#include "../foundation/tvofixed.h"
#include "tvofinisherinfo.h"

#define TVO_SPEC_VERSION   0x0401
#define TVO_DRIVER_VERSION 0x0C07
// "Dtvo" in memory, read as a little-endian word.
#define DRIVER_SIGNATURE      0x6F767444
#define DRIVER_SIGNATURE_TEXT "Dtvo"
#define TVO_DEVMODE_VERSION   0x0C05
#define TVO_GUARD_WORD        0xCCCCCCCC

constexpr DWORD kDEVMODEEX_SIZE = 13484;
constexpr DWORD kDEVMODEEX_DRIVER_EXTRA = 13264;
// The older layout: the same first bytes, nothing behind them.
constexpr DWORD kDEVMODEEX1_SIZE = 3252;
constexpr DWORD kDEVMODEEX1_DRIVER_EXTRA = 3032;
// DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES | DM_DEFAULTSOURCE | DM_PRINTQUALITY | DM_COLOR |
// DM_TTOPTION | DM_COLLATE | DM_FORMNAME
constexpr DWORD kTVO_DM_FIELDS = 0x1CF03;

enum
{
    kFINISHER_NONE = 0,
    kFINISHER_GERA_ISO = 1,
    kFINISHER_GERA_ANSI = 2,
    kFINISHER_GERA_ANSI_SPECIAL = 3,
    kFINISHER_GFI = 4,
};

constexpr int kMAX_ROLLS = 6;

// Paper codes of dmPaperSize.
constexpr WORD PAPER_CUSTOM = 256;
constexpr WORD PAPER_FIRST_STANDARD = 257; // Letter; the standard papers run to 278
constexpr WORD PAPER_LAST_STANDARD = 278;
constexpr WORD PAPER_USER_BASE = 281; // plus the index of the printer's user form

struct DEVMODEEX
{
    DEVMODEW dmPublic;
    DWORD padding_1[8];
    DWORD dmxDevmodeVersion;
    DWORD dmxSignature;
    WCHAR dmxUserName[64];
    WCHAR dmxReservedName[64];
    DWORD dmxBannerPage;
    DWORD dmxReservedSource;
    DWORD dmxBiDi;
    DWORD dmxRefreshOnOpen;
    DWORD dmxUnits;
    LONG dmxFirmwareRevision;
    DWORD dmxFinisherType;
    TVOFinisherInfo dmxFinisher;
    WORD dmxNumRolls;
    WORD dmxPadding1;
    DWORD dmxRollStatus[kMAX_ROLLS];
    DWORD dmxRollSize[kMAX_ROLLS];
    DWORD dmxRollType[kMAX_ROLLS];
    DWORD dmxSheetStatus;
    DWORD dmxSheetSize;
    DWORD dmxSheetType;
    DWORD dmxSheetSizeSetting;
    DWORD dmxSheetTypeSetting;
    TVOFixed dmxPaperLength;
    TVOFixed dmxPaperWidth;
    DWORD dmxUserMediaCategory;
    DWORD dmxShowPaperTypes;
    DWORD dmxRenderFlag1;
    DWORD dmxFinishing;
    WORD dmxPriority;
    WORD dmxPadding2;
    DWORD dmxSinglePageJob;
    DWORD dmxMismatch;
    DWORD dmxMediaType;
    DWORD dmxMirrorX;
    DWORD dmxMirrorY;
    DWORD dmxGraphicsFlag;
    DWORD dmxRotation;
    DWORD dmxScalingMode;
    DWORD dmxScaleToPaper;
    DWORD dmxScalePercent;
    DWORD dmxRasterImageScaling;
    DWORD dmxQualityMode;
    DWORD dmxRenderMode;
    DWORD dmxGraphicsList;
    SHORT dmxRenderLevel1;
    SHORT dmxRenderLevel2;
    DWORD dmxVector;
    DWORD dmxRasterMethod;
    DWORD dmxRenderFlag2;
    DWORD dmxReservedRender;
    DWORD dmxFLGrayscaleRendering;
    WORD dmxRenderValue1;
    WORD dmxTableA[128];
    WORD dmxTableB[128];
    WORD dmxRenderValue2;
    DWORD dmxReservedOwner;
    DWORD dmxUserSpecifiedOwner;
    WCHAR dmxOwner[64];
    DWORD dmxPadding3;
    DWORD dmxRenderList;
    DWORD dmxLabel;
    WCHAR dmxLabelText[1049];
    WORD dmxLabelPointSize;
    WORD dmxLabelDensity;
    WORD dmxLabelAngle;
    DWORD dmxLabelPlacementX;
    TVOFixed dmxLabelOffsetX;
    DWORD dmxLabelPlacementY;
    TVOFixed dmxLabelOffsetY;
    WCHAR dmxLabelFont[66];
    DWORD dmxLabelFontFamily;
    WCHAR dmxDefaultFont[65];
    WCHAR dmxFontList[1751];
    TVOFixed dmxUnprintableMargin[4];
    DWORD dmxPlacementX;
    TVOFixed dmxPlacementOffsetX;
    DWORD dmxPlacementY;
    TVOFixed dmxPlacementOffsetY;
    DWORD dmxStamp;
    WCHAR dmxRasterStampList[1024];
    WCHAR dmxDefaultStamp[48];
    WCHAR dmxStampName[48];
    WORD dmxStampScale;
    WORD dmxPadding4;
    DWORD dmxStampPlacementX;
    TVOFixed dmxStampOffsetX;
    DWORD dmxStampPlacementY;
    TVOFixed dmxStampOffsetY;
    WORD dmxStampRotation;
    WORD dmxPadding5;
    DWORD dmxStampOption;
    WORD dmxFinishProgram;
    WORD dmxPadding6;
    DWORD dmxFinishFlags[4];
    WORD dmxFinishOutputBin;
    WORD dmxPadding7;
    DWORD dmxFinishFoldOption;
    DWORD dmxPlotNest;
    WORD dmxPlotNestMargin;
    WORD dmxPadding8;
    DWORD dmxAccountingEnable;
    DWORD dmxAccountingMode;
    DWORD dmxRememberAccount;
    DWORD dmxAccount;
    DWORD dmxSubAccount;
    WCHAR dmxJBAUser[32];
    WCHAR dmxJBAAcct[32];
    BYTE dmxReservedTail[32];
    DWORD dmxReservedRevision;
    DWORD dmxReservedFlag;
    DWORD dmxFinishOption;
    DWORD padding_2[8];
};
typedef DEVMODEEX* PDEVMODEEX;
typedef DEVMODEEX* LPDEVMODEEX;

// How a field is shown by the record's dump and by tools.
enum eDevmodeFieldKind
{
    kDMF_BYTES,  // raw bytes (reserved blocks)
    kDMF_SIGNED, // signed integer of the field's width (per element for arrays)
    kDMF_UNSIGNED,
    kDMF_HEX,      // unsigned, shown in hex: versions, masks, the signature, the guards
    kDMF_TEXT,     // NUL-terminated WCHAR text
    kDMF_LIST,     // WCHAR names, each NUL-terminated, ended by an empty name
    kDMF_FIXED,    // TVOFixed: thousandths
    kDMF_FINISHER, // a TVOFinisherInfo, shown by g_FinisherInfoFields and g_FinisherProgramFields
};

// The record, field by field, in offset order: name, offset, element kind and width.
// X(name, offset, kind, element size)
#define DEVMODEEX_PUBLIC_FIELDS(X)                                                                 \
    X(dmDeviceName, 0, kDMF_TEXT, 2)                                                               \
    X(dmSpecVersion, 64, kDMF_HEX, 2)                                                              \
    X(dmDriverVersion, 66, kDMF_HEX, 2)                                                            \
    X(dmSize, 68, kDMF_UNSIGNED, 2)                                                                \
    X(dmDriverExtra, 70, kDMF_UNSIGNED, 2)                                                         \
    X(dmFields, 72, kDMF_HEX, 4)                                                                   \
    X(dmOrientation, 76, kDMF_SIGNED, 2)                                                           \
    X(dmPaperSize, 78, kDMF_SIGNED, 2)                                                             \
    X(dmPaperLength, 80, kDMF_SIGNED, 2)                                                           \
    X(dmPaperWidth, 82, kDMF_SIGNED, 2)                                                            \
    X(dmScale, 84, kDMF_SIGNED, 2)                                                                 \
    X(dmCopies, 86, kDMF_SIGNED, 2)                                                                \
    X(dmDefaultSource, 88, kDMF_SIGNED, 2)                                                         \
    X(dmPrintQuality, 90, kDMF_SIGNED, 2)                                                          \
    X(dmColor, 92, kDMF_SIGNED, 2)                                                                 \
    X(dmDuplex, 94, kDMF_SIGNED, 2)                                                                \
    X(dmYResolution, 96, kDMF_SIGNED, 2)                                                           \
    X(dmTTOption, 98, kDMF_SIGNED, 2)                                                              \
    X(dmCollate, 100, kDMF_SIGNED, 2)                                                              \
    X(dmFormName, 102, kDMF_TEXT, 2)                                                               \
    X(dmLogPixels, 166, kDMF_UNSIGNED, 2)                                                          \
    X(dmBitsPerPel, 168, kDMF_UNSIGNED, 4)                                                         \
    X(dmPelsWidth, 172, kDMF_UNSIGNED, 4)                                                          \
    X(dmPelsHeight, 176, kDMF_UNSIGNED, 4)                                                         \
    X(dmNup, 180, kDMF_UNSIGNED, 4)                                                                \
    X(dmDisplayFrequency, 184, kDMF_UNSIGNED, 4)                                                   \
    X(dmICMMethod, 188, kDMF_UNSIGNED, 4)                                                          \
    X(dmICMIntent, 192, kDMF_UNSIGNED, 4)                                                          \
    X(dmMediaType, 196, kDMF_UNSIGNED, 4)                                                          \
    X(dmDitherType, 200, kDMF_UNSIGNED, 4)                                                         \
    X(dmReserved1, 204, kDMF_UNSIGNED, 4)                                                          \
    X(dmReserved2, 208, kDMF_UNSIGNED, 4)                                                          \
    X(dmPanningWidth, 212, kDMF_UNSIGNED, 4)                                                       \
    X(dmPanningHeight, 216, kDMF_UNSIGNED, 4)

#define DEVMODEEX_PRIVATE_FIELDS(X)                                                                \
    X(padding_1, 220, kDMF_HEX, 4)                                                                 \
    X(dmxDevmodeVersion, 252, kDMF_HEX, 4)                                                         \
    X(dmxSignature, 256, kDMF_HEX, 4)                                                              \
    X(dmxUserName, 260, kDMF_TEXT, 2)                                                              \
    X(dmxReservedName, 388, kDMF_TEXT, 2)                                                          \
    X(dmxBannerPage, 516, kDMF_UNSIGNED, 4)                                                        \
    X(dmxReservedSource, 520, kDMF_UNSIGNED, 4)                                                    \
    X(dmxBiDi, 524, kDMF_UNSIGNED, 4)                                                              \
    X(dmxRefreshOnOpen, 528, kDMF_UNSIGNED, 4)                                                     \
    X(dmxUnits, 532, kDMF_UNSIGNED, 4)                                                             \
    X(dmxFirmwareRevision, 536, kDMF_SIGNED, 4)                                                    \
    X(dmxFinisherType, 540, kDMF_UNSIGNED, 4)                                                      \
    X(dmxFinisher, 544, kDMF_FINISHER, 1)                                                          \
    X(dmxNumRolls, 4164, kDMF_UNSIGNED, 2)                                                         \
    X(dmxRollStatus, 4168, kDMF_UNSIGNED, 4)                                                       \
    X(dmxRollSize, 4192, kDMF_UNSIGNED, 4)                                                         \
    X(dmxRollType, 4216, kDMF_UNSIGNED, 4)                                                         \
    X(dmxSheetStatus, 4240, kDMF_UNSIGNED, 4)                                                      \
    X(dmxSheetSize, 4244, kDMF_UNSIGNED, 4)                                                        \
    X(dmxSheetType, 4248, kDMF_UNSIGNED, 4)                                                        \
    X(dmxSheetSizeSetting, 4252, kDMF_UNSIGNED, 4)                                                 \
    X(dmxSheetTypeSetting, 4256, kDMF_UNSIGNED, 4)                                                 \
    X(dmxPaperLength, 4260, kDMF_FIXED, 4)                                                         \
    X(dmxPaperWidth, 4264, kDMF_FIXED, 4)                                                          \
    X(dmxUserMediaCategory, 4268, kDMF_UNSIGNED, 4)                                                \
    X(dmxShowPaperTypes, 4272, kDMF_HEX, 4)                                                        \
    X(dmxRenderFlag1, 4276, kDMF_UNSIGNED, 4)                                                      \
    X(dmxFinishing, 4280, kDMF_UNSIGNED, 4)                                                        \
    X(dmxPriority, 4284, kDMF_UNSIGNED, 2)                                                         \
    X(dmxSinglePageJob, 4288, kDMF_UNSIGNED, 4)                                                    \
    X(dmxMismatch, 4292, kDMF_UNSIGNED, 4)                                                         \
    X(dmxMediaType, 4296, kDMF_UNSIGNED, 4)                                                        \
    X(dmxMirrorX, 4300, kDMF_UNSIGNED, 4)                                                          \
    X(dmxMirrorY, 4304, kDMF_UNSIGNED, 4)                                                          \
    X(dmxGraphicsFlag, 4308, kDMF_UNSIGNED, 4)                                                     \
    X(dmxRotation, 4312, kDMF_UNSIGNED, 4)                                                         \
    X(dmxScalingMode, 4316, kDMF_UNSIGNED, 4)                                                      \
    X(dmxScaleToPaper, 4320, kDMF_UNSIGNED, 4)                                                     \
    X(dmxScalePercent, 4324, kDMF_UNSIGNED, 4)                                                     \
    X(dmxRasterImageScaling, 4328, kDMF_UNSIGNED, 4)                                               \
    X(dmxQualityMode, 4332, kDMF_UNSIGNED, 4)                                                      \
    X(dmxRenderMode, 4336, kDMF_UNSIGNED, 4)                                                       \
    X(dmxGraphicsList, 4340, kDMF_UNSIGNED, 4)                                                     \
    X(dmxRenderLevel1, 4344, kDMF_SIGNED, 2)                                                       \
    X(dmxRenderLevel2, 4346, kDMF_SIGNED, 2)                                                       \
    X(dmxVector, 4348, kDMF_UNSIGNED, 4)                                                           \
    X(dmxRasterMethod, 4352, kDMF_UNSIGNED, 4)                                                     \
    X(dmxRenderFlag2, 4356, kDMF_UNSIGNED, 4)                                                      \
    X(dmxReservedRender, 4360, kDMF_UNSIGNED, 4)                                                   \
    X(dmxFLGrayscaleRendering, 4364, kDMF_UNSIGNED, 4)                                             \
    X(dmxRenderValue1, 4368, kDMF_UNSIGNED, 2)                                                     \
    X(dmxTableA, 4370, kDMF_UNSIGNED, 2)                                                           \
    X(dmxTableB, 4626, kDMF_UNSIGNED, 2)                                                           \
    X(dmxRenderValue2, 4882, kDMF_UNSIGNED, 2)                                                     \
    X(dmxReservedOwner, 4884, kDMF_UNSIGNED, 4)                                                    \
    X(dmxUserSpecifiedOwner, 4888, kDMF_UNSIGNED, 4)                                               \
    X(dmxOwner, 4892, kDMF_TEXT, 2)                                                                \
    X(dmxRenderList, 5024, kDMF_UNSIGNED, 4)                                                       \
    X(dmxLabel, 5028, kDMF_UNSIGNED, 4)                                                            \
    X(dmxLabelText, 5032, kDMF_TEXT, 2)                                                            \
    X(dmxLabelPointSize, 7130, kDMF_UNSIGNED, 2)                                                   \
    X(dmxLabelDensity, 7132, kDMF_UNSIGNED, 2)                                                     \
    X(dmxLabelAngle, 7134, kDMF_UNSIGNED, 2)                                                       \
    X(dmxLabelPlacementX, 7136, kDMF_UNSIGNED, 4)                                                  \
    X(dmxLabelOffsetX, 7140, kDMF_FIXED, 4)                                                        \
    X(dmxLabelPlacementY, 7144, kDMF_UNSIGNED, 4)                                                  \
    X(dmxLabelOffsetY, 7148, kDMF_FIXED, 4)                                                        \
    X(dmxLabelFont, 7152, kDMF_TEXT, 2)                                                            \
    X(dmxLabelFontFamily, 7284, kDMF_UNSIGNED, 4)                                                  \
    X(dmxDefaultFont, 7288, kDMF_TEXT, 2)                                                          \
    X(dmxFontList, 7418, kDMF_LIST, 2)                                                             \
    X(dmxUnprintableMargin, 10920, kDMF_FIXED, 4)                                                  \
    X(dmxPlacementX, 10936, kDMF_UNSIGNED, 4)                                                      \
    X(dmxPlacementOffsetX, 10940, kDMF_FIXED, 4)                                                   \
    X(dmxPlacementY, 10944, kDMF_UNSIGNED, 4)                                                      \
    X(dmxPlacementOffsetY, 10948, kDMF_FIXED, 4)                                                   \
    X(dmxStamp, 10952, kDMF_UNSIGNED, 4)                                                           \
    X(dmxRasterStampList, 10956, kDMF_LIST, 2)                                                     \
    X(dmxDefaultStamp, 13004, kDMF_TEXT, 2)                                                        \
    X(dmxStampName, 13100, kDMF_TEXT, 2)                                                           \
    X(dmxStampScale, 13196, kDMF_UNSIGNED, 2)                                                      \
    X(dmxStampPlacementX, 13200, kDMF_UNSIGNED, 4)                                                 \
    X(dmxStampOffsetX, 13204, kDMF_FIXED, 4)                                                       \
    X(dmxStampPlacementY, 13208, kDMF_UNSIGNED, 4)                                                 \
    X(dmxStampOffsetY, 13212, kDMF_FIXED, 4)                                                       \
    X(dmxStampRotation, 13216, kDMF_UNSIGNED, 2)                                                   \
    X(dmxStampOption, 13220, kDMF_UNSIGNED, 4)                                                     \
    X(dmxFinishProgram, 13224, kDMF_UNSIGNED, 2)                                                   \
    X(dmxFinishFlags, 13228, kDMF_UNSIGNED, 4)                                                     \
    X(dmxFinishOutputBin, 13244, kDMF_UNSIGNED, 2)                                                 \
    X(dmxFinishFoldOption, 13248, kDMF_UNSIGNED, 4)                                                \
    X(dmxPlotNest, 13252, kDMF_UNSIGNED, 4)                                                        \
    X(dmxPlotNestMargin, 13256, kDMF_UNSIGNED, 2)                                                  \
    X(dmxAccountingEnable, 13260, kDMF_UNSIGNED, 4)                                                \
    X(dmxAccountingMode, 13264, kDMF_UNSIGNED, 4)                                                  \
    X(dmxRememberAccount, 13268, kDMF_UNSIGNED, 4)                                                 \
    X(dmxAccount, 13272, kDMF_UNSIGNED, 4)                                                         \
    X(dmxSubAccount, 13276, kDMF_UNSIGNED, 4)                                                      \
    X(dmxJBAUser, 13280, kDMF_TEXT, 2)                                                             \
    X(dmxJBAAcct, 13344, kDMF_TEXT, 2)                                                             \
    X(dmxReservedTail, 13408, kDMF_BYTES, 1)                                                       \
    X(dmxReservedRevision, 13440, kDMF_UNSIGNED, 4)                                                \
    X(dmxReservedFlag, 13444, kDMF_UNSIGNED, 4)                                                    \
    X(dmxFinishOption, 13448, kDMF_UNSIGNED, 4)                                                    \
    X(padding_2, 13452, kDMF_HEX, 4)

#define DEVMODEEX_CHECK_PUBLIC(name, offset, kind, width)                                          \
    static_assert(offsetof(DEVMODEEX, dmPublic) + offsetof(DEVMODEW, name) == (offset),            \
                  #name " lies at " #offset);
#define DEVMODEEX_CHECK_PRIVATE(name, offset, kind, width)                                         \
    static_assert(offsetof(DEVMODEEX, name) == (offset), #name " lies at " #offset);               \
    static_assert(sizeof(DEVMODEEX::name) % (width) == 0, #name " holds whole elements");
DEVMODEEX_PUBLIC_FIELDS(DEVMODEEX_CHECK_PUBLIC)
DEVMODEEX_PRIVATE_FIELDS(DEVMODEEX_CHECK_PRIVATE)
#undef DEVMODEEX_CHECK_PUBLIC
#undef DEVMODEEX_CHECK_PRIVATE
static_assert(sizeof(DEVMODEEX) == kDEVMODEEX_SIZE, "DEVMODEEX is 13484 bytes");
static_assert(sizeof(DEVMODEEX) - sizeof(DEVMODEW) == kDEVMODEEX_DRIVER_EXTRA, "dmDriverExtra");
static_assert(offsetof(DEVMODEEX, padding_2) - offsetof(DEVMODEEX, padding_1) == 13232,
              "the guard blocks lie 13232 bytes apart");
static_assert(offsetof(DEVMODEEX, dmxNumRolls) > kDEVMODEEX1_SIZE &&
                  offsetof(DEVMODEEX, dmxFinisher) < kDEVMODEEX1_SIZE,
              "the older layout ends inside dmxFinisher");

// One row of the field table: what a dump and the tools need to show a field by its name.
struct DEVMODEEX_FIELD
{
    const char* pszName;
    DWORD dwOffset;
    DWORD cbSize;    // the whole field
    DWORD cbElement; // one element: the field is cbSize / cbElement of them
    eDevmodeFieldKind eKind;
};
// Every named field, public then private, in offset order. Padding words are left out.
extern const DEVMODEEX_FIELD g_DevmodeFields[];
extern const size_t g_cDevmodeFields;
// The finisher block's fields before its programs, and the fields of one program.
extern const DEVMODEEX_FIELD g_FinisherInfoFields[];
extern const size_t g_cFinisherInfoFields;
extern const DEVMODEEX_FIELD g_FinisherProgramFields[];
extern const size_t g_cFinisherProgramFields;

// What a record is, judged by its identity fields. Only bytes within the size that the record
// declares (dmSize + dmDriverExtra) are read.
enum eDevmodeKind
{
    kDM_FOREIGN,              // anything else
    kDM_OWN_CURRENT,          // this driver's current layout
    kDM_OWN_OLDER,            // DEVMODEEX1: 220 + 3032
    kDM_OWN_FOREIGN_PUBLIC,   // own current private part behind a public part of another length
    kDM_OLDER_FOREIGN_PUBLIC, // own older private part behind a public part of another length
};
eDevmodeKind GetDevmodeKind(const DEVMODEW* pdm);
BOOL IsOwnCurrentDevmode(const DEVMODEW* pdm);
BOOL IsOwnOlderDevmode(const DEVMODEW* pdm);

// Traces the record field by field (under the TVODevMode flag).
void TraceDevmode(const DEVMODEEX* pdm, const WCHAR* pszTitle);
