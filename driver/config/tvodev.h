// TVODevice: the short-lived object behind one DrvDeviceCapabilities call. It holds the
// printer's configuration and turns a capability index into a constant or a question to it.
#pragma once

#include "tvoconfg.h"

#include "../foundation/tvoobject.h"

// The indexes AutoCAD asks beyond the platform's own.
#define DC_IDSYSPRN 0x5048
#define DC_MMINCH   0x5049
// DC_MMINCH answers.
constexpr LONG kBD_INCHES = 1;
constexpr LONG kBD_MM = 2;

// What DC_FIELDS answers, whatever the record says.
constexpr DWORD kDC_FIELDS_ANSWER = 0xEF0F;

class TVODevice : public TVOObject
{
public:
    TVODevice();
    ~TVODevice() override;
    TVODevice(const TVODevice&) = delete;
    TVODevice& operator=(const TVODevice&) = delete;

    // Reads the debug switches on the first call, then builds the configuration of the queue's
    // driver and reads its user forms.
    void setDeviceConfiguration(HANDLE hPrinter);
    // The answer to one capability index, or -1. pDevMode NULL takes the queue's default
    // record; a record of the caller is read as this driver's.
    LONG deviceCapabilities(HANDLE hPrinter, LPCWSTR pDeviceName, WORD wIndex, void* pOutput,
                            DEVMODEW* pDevMode);
    // The same within one export call: the steps share what the call's snapshot has fetched.
    void setDeviceConfiguration(QLMPrinterSnapshot& snapshot);
    LONG deviceCapabilities(QLMPrinterSnapshot& snapshot, LPCWSTR pDeviceName, WORD wIndex,
                            void* pOutput, DEVMODEW* pDevMode);

    TVOPrinterConfiguration* m_pConfig;

private:
    LONG answerWithoutRecord(WORD wIndex, void* pOutput, const DEVMODEW* pDevMode, bool* pbDone);
    LONG answerFromRecord(WORD wIndex, void* pOutput, DEVMODEEX* pdm);

    const WORD* m_pEscapeTable; // read by the rendering half only
    BOOL m_bReadDebugSwitches;
    DWORD m_dwSpare1;
    DWORD m_dwSpare2;
    DEVMODEEX m_DevMode; // kept for the layout; these operations use their own records
    BYTE* lpstrDocName;
    DWORD m_PrinterModel;
};

// Whether AutoCAD is installed in a version that takes this driver's own description: the
// first value of HKLM\SOFTWARE\Autodesk\Hardcopy starts with a byte of 7 or more.
BOOL QLMIsAutoCADHardcopyPresent();
