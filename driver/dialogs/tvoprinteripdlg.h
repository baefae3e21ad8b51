// TVOPrinterIPDlg: the printer's address, asked when neither the port's name nor the address
// derived from it connects. The user types an address, may test it, and presses OK; OK also
// maps the port to the address for the next time.
#pragma once

#include "../framework/tvodialog.h"

constexpr int kPRINTERIP_ADDRESS_CB = 127;

class TVOPrinterIPDlg : public TVODialog
{
public:
    TVOPrinterIPDlg(LPCWSTR portName, TVOPrinterConfiguration* pConfig, const DEVMODEEX* pDM);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    void OnOK();

    WCHAR m_szPortName[128];
    char m_szPortNameA[128];
    DEVMODEEX m_DM;
    // The result in 8 bits, read after OK: all 127 characters the box takes, and a terminator.
    char m_szAddress[kPRINTERIP_ADDRESS_CB + 1];
};

// Tries a connection to the printer's PJL port at address; TRUE when it connects.
BOOL SocketCheckConnect(LPCWSTR address);

// Makes the dialog the refresh's address question.
void QLMInstallPrinterAddressDialog();
