// TVOPrinterConfiguration: what one printer model can do and under which words the driver
// shows it. Built from the queue's driver name, it decides the model, loads the resource
// library and points at the constant list tables of that model. It holds no live printer
// state: that is in the settings record.
#pragma once

#include "../devmode/devmodeex.h"
#include "../devmode/tvomodels.h"
#include "tvoconfg_lists.h"

class QLMPrinterSnapshot;

constexpr int kPAPER_NAME_CCH = 64; // one DC_PAPERNAMES entry
constexpr int kBIN_NAME_CCH = 24;   // one DC_BINNAMES entry

// Bits of dmxShowPaperTypes: the paper families a user has switched on.
constexpr DWORD kSHOW_STANDARD = 0x01;
constexpr DWORD kSHOW_ANSI = 0x02;
constexpr DWORD kSHOW_ARCH = 0x04;
constexpr DWORD kSHOW_ISO = 0x08;
constexpr DWORD kSHOW_USER_FORMS = 0x10;

// A named paper size of one printer, kept in its printer data as "UserForm%d". The bytes are
// a stored format: every one of them stays.
constexpr int kMAX_USER_FORMS = 64;
struct USERFORM
{
    WCHAR name[32]; // terminated when shorter than 32 characters
    DWORD length;   // tenths of a millimetre
    DWORD width;    // tenths of a millimetre
    DWORD category; // a value of m_UserMediaCategoryList
};
static_assert(sizeof(USERFORM) == 76, "USERFORM is a 76-byte stored record");
static_assert(offsetof(USERFORM, length) == 64 && offsetof(USERFORM, width) == 68 &&
                  offsetof(USERFORM, category) == 72,
              "USERFORM layout");

class TVOPrinterConfiguration
{
public:
    // szPrinter is the queue's driver name; NULL asserts and gives model 7.
    explicit TVOPrinterConfiguration(LPCWSTR szPrinter);
    ~TVOPrinterConfiguration();
    TVOPrinterConfiguration(const TVOPrinterConfiguration&) = delete;
    TVOPrinterConfiguration& operator=(const TVOPrinterConfiguration&) = delete;

    // Points the lists at the model's tables and loads the resource library. Only the first
    // call does that; every call gives the permission back.
    void initialize(DWORD model);
    void setPrinterHandle(HANDLE hPrinter) { m_hPrinter = hPrinter; }

    // String id of the resource library in m_szResourceString, which the next call overwrites.
    // A string that cannot be loaded reads "LoadString Error=%02d (0X%X)", or is empty when
    // the platform gives no error.
    LPWSTR getResourceString(UINT id);
    // 200, 300, 400 on all models, 600 on models 8 to 11, and m_maxRes.
    BOOL isValidRes(int res) const;

    // Empties the combo box, fills it from list (item data: the rows' values) and selects the
    // row whose value is dwSelect (a later equal row wins), else index 0. Returns 1.
    BOOL fillComboBox1(HWND hWnd, DWORD dwControl, TVOList list, DWORD dwSelect);
    // Puts list in front of what the combo box holds and selects the row whose value is
    // dwSelect, else keeps the item selected before. Returns 1.
    BOOL fillComboBox2(HWND hWnd, DWORD dwControl, TVOList list, DWORD dwSelect);

    // Which tab was open last: the printer data value "LastActiveTab" (tab resource id - 101).
    void SetLastActiveTab(DWORD resourceId);
    int GetLastActiveTab();
    int GetLastActiveTab(QLMPrinterSnapshot& snapshot);

    // DC_PAPERS (WORD codes), DC_PAPERSIZE (POINT, tenths of a millimetre) or DC_PAPERNAMES
    // (64 WCHARs each) of the families switched on in lpEnv; with a NULL lpOutput only the
    // count. The buffer's size is the caller's business: it asks for the count first.
    int getPaperInfo(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex);
    int CountPaperInfo(TVOList list) const;
    // Write one list, the user forms, or the custom row through the cursor of wIndex.
    int AddPaperInfo(TVOList list, WORD wIndex, WCHAR** ppNames, WORD** ppPapers, POINT** ppSizes);
    int AddUserDefinedPapers(DWORD units, WORD wIndex, WCHAR** ppNames, WORD** ppPapers,
                             POINT** ppSizes);
    int AddCustomPaper(const DEVMODEEX* lpEnv, WORD wIndex, WCHAR** ppNames, WORD** ppPapers,
                       POINT** ppSizes);
    // Takes a custom size (tenths of a millimetre) into the record at scale 100.
    void getLongPlotSizes(DEVMODEEX* lpdm, DWORD dwWidth, DWORD dwLength, POINT* lpSize,
                          short* lpScale);

    // Limits of a custom paper size in the units asked for (kFIXED_INCHES or kFIXED_MM).
    // bWide is set for model 5 alone.
    static TVOFixed getMinPaperWidth(DWORD units);
    static TVOFixed getMaxPaperWidth(DWORD units, BOOL bWide);
    static TVOFixed getMinPaperLength(DWORD units);
    static TVOFixed getMaxPaperLength(DWORD units);

    // The name of roll width code in m_szResourceString; code 21 and unknown codes give the
    // unknown roll's text.
    LPWSTR getRollSize(DWORD code);
    // DC_BINS (WORD values) or DC_BINNAMES (24 WCHARs each). Lowers lpEnv->dmxNumRolls to
    // m_NumRolls first.
    int getBinInfo(DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex);
    // DC_ENUMRESOLUTIONS: (x, y) pairs of LONG dots per inch.
    int getResolutionInfo(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex);
    // DC_MINEXTENT or DC_MAXEXTENT of the model's papers: length << 16 | width.
    DWORD calcMinMaxExtent(const DEVMODEEX* lpEnv, void* lpOutput, WORD wIndex);

    // The printer's user forms from and to its printer data. The values come with one
    // enumeration of the key, and a save writes only what the store does not hold already.
    void getUserForms(HANDLE hPrinter);
    void setUserForms(HANDLE hPrinter);
    void getUserForms(QLMPrinterSnapshot& snapshot);
    void setUserForms(QLMPrinterSnapshot& snapshot);
    // Fills dm's dmxFinisher from a finisher description file. Returns 5, the finisher type
    // of a file-made finisher, or 0 when the file lacks Model, Version or Programs, in which
    // case dm is untouched. Counts beyond the block's room are cut to it.
    DWORD addFInisherFromFileToDevmode(LPCWSTR fileName, DEVMODEEX* dm);

    // Objects made and released on the calling thread, for the trace.
    static thread_local constinit LONG s_nInstances;

    DWORD m_PrinterModel;
    BOOL m_bHasPermission;
    TVOList m_FirmwareList;
    TVOList m_PaperList;
    TVOList m_PaperGroupStandard;
    TVOList m_PaperGroupAnsi;
    TVOList m_PaperGroupArch;
    TVOList m_PaperGroupIso;
    TVOList m_PaperGroupCustom;
    TVOList m_UserMediaCategoryList;
    TVOList m_ReservedSlot; // never set
    const POINT* m_PaperSizes;
    TVOList m_BinList;
    TVOList m_MediaTypeList;
    TVOList m_RollSizeList;
    TVOList m_SheetSizeList;
    TVOList m_ReservedList;
    TVOList m_FinishingList;
    TVOList m_BannerList;
    TVOList m_LabelList;
    TVOList m_StampList;
    TVOList m_PlotNestList;
    TVOList m_MismatchList;
    TVOList m_QualityModeList;
    TVOList m_RenderModeList;
    TVOList m_GraphicsList2;
    TVOList m_VectorList;
    TVOList m_RasterMethodList;
    TVOList m_GrayscaleList;
    TVOList m_ScaleToPaperList;
    TVOList m_GraphicsList1;
    TVOList m_StampRotationList;
    TVOList m_ResolutionList;
    TVOList m_MarginPlacementXList;
    TVOList m_MarginPlacementYList;
    TVOList m_StampPlacementXList;
    TVOList m_StampPlacementYList;
    TVOList m_LabelPlacementXList;
    TVOList m_LabelPlacementYList;
    TVOList m_LabelFontFamily;
    TVOList m_FinishOptionList;
    TVOList m_SinglePageJobList;
    TVOList m_RenderList;
    BOOL m_bShowPaperTab;
    BOOL m_bShowJobTab;
    BOOL m_bShowGraphicsTab;
    BOOL m_bShowDeviceTab;
    BOOL m_bShowRenderTab;
    BOOL m_bSpareTabFlag;
    WORD m_maxRes;
    int m_UserFormCount;
    // One record more than the store holds: the user media dialog builds a new form there
    // before it checks the count.
    USERFORM m_UserForms[kMAX_USER_FORMS + 1];
    WORD m_NumRolls;
    WORD m_bHasSheetFeed;
    BYTE* m_pSpareBlock1; // 8192 zeroed bytes each, held for the object's life
    BYTE* m_pSpareBlock2;
    HMODULE m_hResources;
    HANDLE m_hPrinter;
    WCHAR m_szResourceString[512];
    BOOL m_bInitialized;
    BOOL m_bMediaInitialized;
    DWORD m_MediaCount;
    WCHAR m_MediaNames[32][128];
    ULONGLONG m_qwSpare;
};
