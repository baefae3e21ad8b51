// The graphics tab: how the page is placed on the medium. Scaling, mirroring, rotation and the
// handling of raster images; the tab only stores them in the record.
#pragma once

#include "../framework/tvotab.h"

class TVOGraphicsTab : public TVOTab
{
public:
    // bReducedControls hides the raster image controls; the sheet builder passes 0.
    TVOGraphicsTab(TVODialogInfo* lpdi, TVOPrinterConfiguration* pConfig, BOOL bReducedControls);
    ~TVOGraphicsTab() override;

    INT_PTR DialogProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void SetControlsFromDM() override;

    BOOL OnInitDialog();
    void OnCommand(int id, int code);
    LRESULT OnNotify(HWND hWnd, WPARAM wParam, NMHDR* pnmhdr);
    void SetPrinterDefaults();
    // The percentage and the paper list by the scaling mode; an unknown mode changes nothing.
    void enableGraphicsScalingFields();
    void checkScalingRadioButton();
    void checkRasterImageScalingRadioButton();

    BOOL m_bReducedControls;

private:
    void OnListChoice(int id, DWORD* pField);
    void OnToggle(int id, DWORD* pField);
};
