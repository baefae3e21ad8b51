// TVOPrinterConfiguration's life: built from a driver name, it decides the model, loads the
// resource library and points at the model's tables; and the memory of the last tab.
#include "tvoconfg.h"

#include "../foundation/qlmsnapshot.h"
#include "../foundation/qlmtrace.h"
#include "../foundation/wstr.h"
#include "tvoconfg_internal.h"
#include "tvoconfg_lists.h"

#include <cstdint>
#include <cstring>
#include <new>

thread_local constinit LONG TVOPrinterConfiguration::s_nInstances = 0;

using namespace tvoconfglists;

namespace {

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

constexpr size_t kSPARE_BLOCK_SIZE = 8192;
constexpr DWORD kFIRST_TAB_RESOURCE = 101;

// Printer data value.
constexpr WCHAR kLastActiveTab[] = TEXT("LastActiveTab");

// A module handle below 32 is a failed load, as the platform has always reported it.
bool IsLoadedModule(HMODULE hModule)
{
    return reinterpret_cast<uintptr_t>(hModule) >= 32;
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

} // namespace

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
