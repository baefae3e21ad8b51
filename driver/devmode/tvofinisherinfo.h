// TVOFinisherInfo: the description of the finisher behind the plotter, as it lies in the
// record's dmxFinisher block. It is persisted with the record, so its layout is fixed and proven
// below; the parser's larger copy shares these first 3620 bytes so that the block is copied whole.
#pragma once

#include "../../platform/win32.h"

constexpr int kFINISHER_MAX_PROGRAMS = 20;

struct TVOFinisherProgram
{
    WCHAR name[64];
    WORD fanFold;
    WORD crossFold;
    WORD length; // whole millimetres, as are width and margin
    WORD width;
    WORD margin;
    WORD punch;
    WORD tab;
    WORD bins;
    WORD title;
    WORD reserved;
    LONG maxLength;
    WORD edge;
    WORD sheetDelivery;
};

struct TVOFinisherInfo
{
    WCHAR Model[128];
    WCHAR Version[16];
    WORD numBins;
    WORD titleBlock;
    WORD minMargin;
    WORD maxMargin;
    WORD accordionFolds[33]; // slot 0 stays 0: entries start at slot 1, as in the lists below
    WORD crossFolds[33];
    WORD punches[17];
    WORD tabs[17];
    DWORD numPrograms;
    TVOFinisherProgram programs[kFINISHER_MAX_PROGRAMS];
};

// The fields, in offset order, for the dump and the tools: X(name, offset, kind, element size),
// with the kinds of the record's own field table.
#define TVOFINISHERPROGRAM_FIELDS(X)                                                               \
    X(name, 0, kDMF_TEXT, 2)                                                                       \
    X(fanFold, 128, kDMF_UNSIGNED, 2)                                                              \
    X(crossFold, 130, kDMF_UNSIGNED, 2)                                                            \
    X(length, 132, kDMF_UNSIGNED, 2)                                                               \
    X(width, 134, kDMF_UNSIGNED, 2)                                                                \
    X(margin, 136, kDMF_UNSIGNED, 2)                                                               \
    X(punch, 138, kDMF_UNSIGNED, 2)                                                                \
    X(tab, 140, kDMF_UNSIGNED, 2)                                                                  \
    X(bins, 142, kDMF_UNSIGNED, 2)                                                                 \
    X(title, 144, kDMF_UNSIGNED, 2)                                                                \
    X(maxLength, 148, kDMF_SIGNED, 4)                                                              \
    X(edge, 152, kDMF_UNSIGNED, 2)                                                                 \
    X(sheetDelivery, 154, kDMF_UNSIGNED, 2)

#define TVOFINISHERINFO_FIELDS(X)                                                                  \
    X(Model, 0, kDMF_TEXT, 2)                                                                      \
    X(Version, 256, kDMF_TEXT, 2)                                                                  \
    X(numBins, 288, kDMF_UNSIGNED, 2)                                                              \
    X(titleBlock, 290, kDMF_UNSIGNED, 2)                                                           \
    X(minMargin, 292, kDMF_UNSIGNED, 2)                                                            \
    X(maxMargin, 294, kDMF_UNSIGNED, 2)                                                            \
    X(accordionFolds, 296, kDMF_UNSIGNED, 2)                                                       \
    X(crossFolds, 362, kDMF_UNSIGNED, 2)                                                           \
    X(punches, 428, kDMF_UNSIGNED, 2)                                                              \
    X(tabs, 462, kDMF_UNSIGNED, 2)                                                                 \
    X(numPrograms, 496, kDMF_UNSIGNED, 4)

#define TVOFINISHER_CHECK_PROGRAM(name, offset, kind, width)                                       \
    static_assert(offsetof(TVOFinisherProgram, name) == (offset), #name " lies at " #offset);
#define TVOFINISHER_CHECK_INFO(name, offset, kind, width)                                          \
    static_assert(offsetof(TVOFinisherInfo, name) == (offset), #name " lies at " #offset);
TVOFINISHERPROGRAM_FIELDS(TVOFINISHER_CHECK_PROGRAM)
TVOFINISHERINFO_FIELDS(TVOFINISHER_CHECK_INFO)
#undef TVOFINISHER_CHECK_PROGRAM
#undef TVOFINISHER_CHECK_INFO
static_assert(sizeof(TVOFinisherProgram) == 156, "TVOFinisherProgram is 156 bytes");
static_assert(offsetof(TVOFinisherInfo, programs) == 500, "the programs follow the count");
static_assert(sizeof(TVOFinisherInfo) == 3620, "TVOFinisherInfo is 3620 bytes");
