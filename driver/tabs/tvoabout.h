// The about tab (the last tab of the document sheet, the only one of the device sheet) and the
// about dialog of the paper tab: a picture of the model and the product versions of the three
// driver files. They edit nothing.
#pragma once

#include "../framework/tvodialog.h"
#include "../framework/tvotab.h"

class TVOAboutTab : public TVOTab
{
public:
    // bFlag is kept for the builders' sake; nothing reads it.
    TVOAboutTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig, BOOL bFlag);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;
    BOOL OnInitDialog();

    BOOL m_bFlag;
};

class TVOAboutDlg : public TVODialog
{
public:
    TVOAboutDlg(TVOPrinterConfiguration* pConfig, DEVMODEEX* pDM);
    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    BOOL OnInitDialog();
};

// A file's product version text into buffer (characters wide characters, terminated); 0 when
// the file has no version information.
BOOL QLMGetProductVersion(LPCWSTR path, WCHAR* buffer, DWORD characters);

// The bitmap of the model's picture.
int QLMModelBitmap(DWORD model);
